#pragma once

#include "Support/ContentViewFixture.h"

#include <functional>
#include <string>

namespace torvo::test {

/// The content of the window and the way through all its states.
struct WindowStates : ContentViewFixture {
    using Check = std::function<void(const std::string&)>;

    /// Brings the window into each of its states and calls `check`.
    void inEveryState(const Check& check) {
        const auto settled = [&](const char* state) {
            settle();
            check(state);
        };
        settled("empty");
        const FileURL kit = drumKit();
        {
            const auto gate = inspector->hold("Kit A");
            model.setSourceFolder(kit);
            settled("scanning");
            gate->open();
            waitForWork();
        }
        settled("scanned");
        folder.createFolder("full/Kit A/QZT508");
        model.setExportFolder(outputFolder("full"));
        waitForWork();
        ASSERT_TRUE(shows("exists, will be replaced"));
        settled("to be replaced");
        model.setExportFolder(outputFolder());
        settled("ready");
        {
            const auto gate = preparer->holdBank(1);
            model.generateBanks();
            settled("preparing");
            const auto later = preparer->holdBank(8);
            gate->open();
            ASSERT_TRUE(waitUntil([this] { return shows("WRITING KitA007  7/99"); }));
            settled("writing");
            later->open();
            waitForWork();
        }
        settled("finished");
        panels->saveTarget = FileURL(folder / "saved.json");
        model.exportJSON();
        settled("saved");
        for (const auto mode : {GenerationMode::loops, GenerationMode::stabs}) {
            model.setGenerationMode(mode);
            waitForWork();
            settled("another mode");
        }
        model.setGenerationMode(GenerationMode::drums);
        waitForWork();
        folder.createFolder("Thin");
        loops("Thin/Percussion", 2);
        loops("Thin/Kick", 1);
        scan(FileURL::directory(folder / "Thin"));
        settled("too few");
        model.generateBanks();
        waitForWork();
        ASSERT_TRUE(std::holds_alternative<app::AppModel::Failed>(model.runState()));
        settled("run failed");
        scan(FileURL::directory("/nowhere/" + std::string(180, 'n') + "/" + std::string(150, 'm')));
        settled("scan failed");
        model.setSourceFolder(deviceFolder());
        settled("device folder");
        model.applyMetadataToExistingBank();
        waitForWork();
        settled("applied");
        model.clearSource();
        settled("cleared");
    }
};

} // namespace torvo::test
