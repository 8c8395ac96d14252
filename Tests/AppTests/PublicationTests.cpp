#include "Support/AppFixture.h"

#include <gmock/gmock.h>

using namespace torvo;
using namespace torvo::app;
using namespace torvo::test;
using ::testing::ElementsAre;

namespace {

/// Records the model's signals in order, each with the value at that time.
class PublicationTest : public testing::Test, protected AppFixture {
protected:
    std::vector<std::string> told;

    void SetUp() override {
        observe(&AppModel::sourceFolderChanged,
                [this] { return "source " + lastOf(model.sourceFolder()); });
        observe(&AppModel::exportFolderChanged,
                [this] { return "output " + lastOf(model.exportFolder()); });
        observe(&AppModel::generationModeChanged,
                [this] { return "mode " + std::string(rawValue(model.generationMode())); });
        observe(&AppModel::scanStateChanged, [this] { return scanState(); });
        observe(&AppModel::runStateChanged, [this] { return runState(); });
        observe(&AppModel::currentDocumentChanged, [this] {
            return std::string(model.currentDocument() ? "document" : "no document");
        });
        observe(&AppModel::lastJSONURLChanged,
                [this] { return "file " + lastOf(model.lastJSONURL()); });
    }
    /// The signals without those of a run's progress.
    std::vector<std::string> toldSoFar() {
        auto all = std::exchange(told, {});
        std::erase(all, "run writing");
        return all;
    }

private:
    template <typename Signal, typename Describe>
    void observe(Signal signal, Describe describe) {
        QObject::connect(&model, signal, &model, [this, describe] { told.push_back(describe()); });
    }
    static std::string lastOf(const std::optional<FileURL>& url) {
        return url ? url->lastPathComponent() : "none";
    }
    std::string scanState() const {
        static constexpr std::array names{"scan ready", "scan failed", "scan idle", "scanning"};
        return names.at(model.scanState().index());
    }
    std::string runState() const {
        static constexpr std::array names{"run", "run finished", "run message", "run failed",
                                          "run idle"};
        const auto* run = std::get_if<AppModel::Running>(&model.runState());
        return run && run->progress ? "run writing" : names.at(model.runState().index());
    }
};

} // namespace

TEST_F(PublicationTest, aScanResetsBeforeItEnds) {
    scan(drumKit());
    EXPECT_THAT(told, ElementsAre("source Kit A", "scanning", "run idle", "no document",
                                  "file none", "scan ready"));
}

TEST_F(PublicationTest, aDeviceFolderResets) {
    model.setSourceFolder(FileURL::directory("/QZT508"));
    EXPECT_THAT(told,
                ElementsAre("source QZT508", "scan idle", "run idle", "no document", "file none"));
}

TEST_F(PublicationTest, clearingResets) {
    model.clearSource();
    EXPECT_THAT(told,
                ElementsAre("source none", "scan idle", "run idle", "no document", "file none"));
}

TEST_F(PublicationTest, aNewModeComesBeforeItsScan) {
    scan(drumKit());
    told.clear();
    model.setGenerationMode(GenerationMode::loops);
    waitForWork();
    EXPECT_THAT(told, ElementsAre("mode loops", "scanning", "run idle", "no document", "file none",
                                  "scan ready"));
}

TEST_F(PublicationTest, aRunPublishesItsDocumentBeforeItsResult) {
    prepareRun();
    told.clear();
    model.generateBanks();
    EXPECT_THAT(told, ElementsAre("run"));
    waitForWork();
    EXPECT_THAT(toldSoFar(), ElementsAre("run", "document", "run finished"));
}

TEST_F(PublicationTest, anImportAssignsInOrderAndAgainAtItsEnd) {
    panels->document = savedRun();
    told.clear();
    model.importJSON();
    EXPECT_THAT(told, ElementsAre("output out", "source Kit A", "mode drums", "file saved.json",
                                  "document", "run"));
    told.clear();
    waitForWork();
    EXPECT_THAT(toldSoFar(), ElementsAre("document", "run finished", "file saved.json"));
}

TEST_F(PublicationTest, savingPublishesOnlyTheFile) {
    savedRun();
    told.clear();
    model.exportJSON();
    EXPECT_THAT(told, ElementsAre("file saved.json"));
}

// While the next run writes, `runState` must not show the result of the previous one.
TEST_F(PublicationTest, aRunThatWaitedIsPublishedWhenItBegins) {
    panels->document = savedRun();
    const auto gate = preparer->holdBank(1);
    told.clear();
    model.generateBanks();
    model.importJSON();
    EXPECT_TRUE(model.hasUnfinishedRun());
    EXPECT_THAT(toldSoFar(), ElementsAre("run", "output out", "source Kit A", "mode drums",
                                         "file saved.json", "document", "run"));
    gate->open();
    waitForWork();
    EXPECT_THAT(toldSoFar(), ElementsAre("document", "run finished", "document", "run", "document",
                                         "run finished", "file saved.json"));
    EXPECT_FALSE(model.hasUnfinishedRun());
}

TEST_F(PublicationTest, aRunIsUnfinishedWhateverElseHappens) {
    prepareRun();
    const auto gate = preparer->holdBank(1);
    model.generateBanks();
    model.setSourceFolder(drumKit("Kit B"));
    EXPECT_TRUE(waitUntil([this] { return told.back() == "scan ready"; }));
    EXPECT_TRUE(model.runState() == AppModel::RunState(AppModel::Idle{}));
    EXPECT_TRUE(model.canGenerate());
    EXPECT_TRUE(model.hasUnfinishedRun());
    std::vector<bool> unfinishedAtTheEnd;
    QObject::connect(&model, &AppModel::currentDocumentChanged, &model,
                     [&] { unfinishedAtTheEnd.push_back(model.hasUnfinishedRun()); });
    gate->open();
    waitForWork();
    EXPECT_THAT(unfinishedAtTheEnd, ElementsAre(false));
}
