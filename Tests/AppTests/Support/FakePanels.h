#pragma once

#include "Panels.h"

#include <functional>
#include <string>
#include <vector>

namespace torvo::test {

/// Panels that return preset answers at once and record the calls.
class FakePanels final : public app::Panels {
public:
    std::optional<FileURL> folder;
    /// Called while a folder panel is open.
    std::function<void()> whilePickingFolder = [] {};
    std::optional<FileURL> saveTarget;
    std::optional<FileURL> document;
    /// "folder: title", "save: name", "open", "show: path", in order.
    std::vector<std::string> asked;

    std::optional<FileURL> pickFolder(const std::string& title) override {
        asked.push_back("folder: " + title);
        whilePickingFolder();
        return folder;
    }
    std::optional<FileURL> saveJSONPanel(const std::string& defaultFileName) override {
        asked.push_back("save: " + defaultFileName);
        return saveTarget;
    }
    std::optional<FileURL> pickJSONFile() override {
        asked.emplace_back("open");
        return document;
    }
    void showInFileBrowser(const FileURL& item) override {
        asked.push_back("show: " + item.shownPath());
    }
};

} // namespace torvo::test
