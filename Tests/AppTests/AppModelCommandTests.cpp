#include "AppModel.h"
#include "BankMappingStore.h"
#include "Support/AppFixture.h"
#include "WavFixture.h"

#include <gtest/gtest.h>

using namespace torvo;
using namespace torvo::app;
using namespace torvo::test;

namespace {

using Asked = std::vector<std::string>;

const std::string folderPanel = "folder: Choose an export destination folder";

class AppModelCommandTest : public testing::Test, protected AppFixture {
protected:
    AppModelCommandTest() : AppFixture(Banks::written) {}

    std::string runFailure() const {
        const auto* failed = std::get_if<AppModel::Failed>(&model.runState());
        return failed ? failed->description : std::string();
    }
    std::string runMessage() const {
        const auto* finished = std::get_if<AppModel::FinishedMessage>(&model.runState());
        return finished ? finished->message : std::string();
    }
    bool runIs(AppModel::RunState state) const { return model.runState() == state; }

    /// A document with one bank of eight loops; the files exist unless `absent`.
    BankMappingDocument savedDocument(const FileURL& at, const std::string& source = "Loops") {
        BankRecipe recipe{.bankIndex = 1,
                          .shortName = "Loops001",
                          .channels = {},
                          .seed = 7,
                          .reusedSamples = false};
        for (std::int64_t channel = 1; channel <= 8; ++channel) {
            const auto file = folder / (source + "/sample " + std::to_string(channel) + ".wav");
            recipe.channels[channel] = {.sourceURL = FileURL(file),
                                        .role = ChannelRole::loop,
                                        .displayName = "sample " + std::to_string(channel),
                                        .compatibility = CompatibleWav{},
                                        .formatDetails = {"wav", 44100, 1, 16, true}};
        }
        BankMappingStore store;
        const auto document =
            store.document(FileURL::directory(folder / source), GenerationMode::loops,
                           BankNameScheme(source), GenerationTemplate::torvoLoopsV1(), {recipe});
        store.exportDocument(document, at);
        return document;
    }
    FileURL documentURL() const { return FileURL(folder / "mapping.json"); }

    /// Imports a document and waits until its banks are written.
    void import() {
        loops();
        savedDocument(documentURL());
        panels->document = documentURL();
        model.setExportFolder(outputFolder());
        model.importJSON();
        waitForWork();
        panels->asked.clear();
    }
};

} // namespace

TEST_F(AppModelCommandTest, savesNothingWithoutADocument) {
    panels->saveTarget = documentURL();
    model.exportJSON();
    EXPECT_TRUE(panels->asked.empty());
    EXPECT_FALSE(model.lastJSONURL());
}

TEST_F(AppModelCommandTest, savesTheDocumentUnderTheChosenName) {
    import();
    const auto run = model.runState();
    panels->saveTarget = FileURL(folder / "other.json");
    model.exportJSON();
    EXPECT_EQ(panels->asked, Asked{"save: Loops001.json"});
    EXPECT_EQ(model.lastJSONURL(), panels->saveTarget);
    EXPECT_TRUE(runIs(run));
    EXPECT_EQ(BankMappingStore().importDocument(*panels->saveTarget), *model.currentDocument());
}

TEST_F(AppModelCommandTest, aCancelledSavePanelChangesNothing) {
    import();
    const auto run = model.runState();
    model.exportJSON();
    EXPECT_EQ(model.lastJSONURL(), documentURL());
    EXPECT_TRUE(runIs(run));
}

TEST_F(AppModelCommandTest, reportsWhyADocumentCouldNotBeSaved) {
    import();
    panels->saveTarget = FileURL("/proc/nowhere/mapping.json");
    model.exportJSON();
    EXPECT_NE(runFailure().find("/proc/nowhere"), std::string::npos);
    EXPECT_EQ(model.lastJSONURL(), documentURL());
}

TEST_F(AppModelCommandTest, aCancelledOpenPanelChangesNothing) {
    model.importJSON();
    EXPECT_EQ(panels->asked, Asked{"open"});
    EXPECT_TRUE(runIs(AppModel::Idle{}));
    EXPECT_FALSE(model.isBusy());
}

TEST_F(AppModelCommandTest, anUnreadableDocumentChangesNothingElse) {
    folder.write("mapping.json", "{\"version\": 2}");
    panels->document = documentURL();
    model.importJSON();
    EXPECT_FALSE(runFailure().empty());
    EXPECT_EQ(panels->asked, Asked{"open"});
    EXPECT_FALSE(model.sourceFolder());
    EXPECT_FALSE(model.exportFolder());
    EXPECT_FALSE(model.lastJSONURL());
    EXPECT_FALSE(model.currentDocument());
    EXPECT_EQ(model.generationMode(), GenerationMode::drums);
}

TEST_F(AppModelCommandTest, asksForTheOutputFolderWhenThereIsNone) {
    loops();
    savedDocument(documentURL());
    panels->document = documentURL();
    model.importJSON();
    EXPECT_EQ(panels->asked, (Asked{"open", folderPanel}));
    EXPECT_TRUE(runIs(AppModel::Idle{}));
    EXPECT_FALSE(model.currentDocument());
    EXPECT_FALSE(model.lastJSONURL());

    panels->folder = outputFolder();
    model.importJSON();
    EXPECT_EQ(model.exportFolder(), panels->folder);
    EXPECT_TRUE(runIs(AppModel::Running{}));
    waitForWork();
}

TEST_F(AppModelCommandTest, aCancelledFolderPanelLeavesEverything) {
    savedDocument(documentURL());
    scan(drumKit());
    const auto source = model.sourceFolder();
    const auto scanned = model.scanState();
    panels->document = documentURL();
    model.importJSON();
    EXPECT_EQ(panels->asked, (Asked{"open", folderPanel}));
    EXPECT_EQ(model.sourceFolder(), source);
    EXPECT_FALSE(model.exportFolder());
    EXPECT_EQ(model.generationMode(), GenerationMode::drums);
    EXPECT_TRUE(model.scanState() == scanned);
    EXPECT_TRUE(runIs(AppModel::Idle{}));
    EXPECT_FALSE(model.currentDocument());
    EXPECT_FALSE(model.lastJSONURL());
    EXPECT_FALSE(model.isBusy());
}

TEST_F(AppModelCommandTest, writesTheBanksOfADocument) {
    loops();
    const auto document = savedDocument(documentURL());
    panels->document = documentURL();
    const FileURL out = outputFolder();
    model.setExportFolder(out);
    model.importJSON();

    EXPECT_EQ(panels->asked, Asked{"open"});
    EXPECT_EQ(model.sourceFolder(), document.sourceFolder);
    EXPECT_EQ(model.generationMode(), GenerationMode::loops);
    EXPECT_EQ(model.lastJSONURL(), documentURL());
    ASSERT_TRUE(model.currentDocument());
    EXPECT_EQ(*model.currentDocument(), document);
    EXPECT_TRUE(runIs(AppModel::Running{}));
    EXPECT_TRUE(model.scanState() == AppModel::ScanState(AppModel::Idle{}));
    waitForWork();

    const auto* finished = std::get_if<AppModel::Finished>(&model.runState());
    ASSERT_TRUE(finished);
    EXPECT_EQ(finished->completedExport.statusHeadline, "Random banks created");
    EXPECT_EQ(finished->completedExport.summary.banksWritten, 1);
    EXPECT_EQ(*model.currentDocument(), document);
    EXPECT_EQ(model.lastJSONURL(), documentURL());
    EXPECT_TRUE(std::filesystem::is_directory(out.path() / "Loops/QZT508/Bank 1/8"));
}

TEST_F(AppModelCommandTest, importKeepsTheScanAndItsModeBlocksGenerating) {
    loops();
    savedDocument(documentURL());
    prepareRun();
    ASSERT_TRUE(model.canGenerate());
    const auto before = model.scanState();
    panels->document = documentURL();
    model.importJSON();
    waitForWork();
    EXPECT_TRUE(model.scanState() == before);
    EXPECT_FALSE(model.canGenerate());
    const auto run = model.runState();
    model.generateBanks();
    EXPECT_TRUE(runIs(run));
}

TEST_F(AppModelCommandTest, importOfARemovedFolderFailsWhileWriting) {
    const auto document = savedDocument(documentURL(), "Gone");
    panels->document = documentURL();
    model.setExportFolder(outputFolder());
    model.importJSON();
    EXPECT_EQ(model.sourceFolder(), document.sourceFolder);
    EXPECT_TRUE(runIs(AppModel::Running{}));
    waitForWork();
    EXPECT_FALSE(runFailure().empty());
    ASSERT_TRUE(model.currentDocument());
    EXPECT_EQ(*model.currentDocument(), document);
    EXPECT_EQ(model.generationMode(), GenerationMode::loops);
}

// Meanwhile the run before it has made a document of its own.
TEST_F(AppModelCommandTest, aFailedImportKeepsItsDocumentAfterAnotherRun) {
    const auto document = savedDocument(documentURL(), "Gone");
    panels->document = documentURL();
    prepareRun();
    const auto gate = preparer->holdBank(1);
    model.generateBanks();
    model.importJSON();
    gate->open();
    waitForWork();
    EXPECT_FALSE(runFailure().empty());
    ASSERT_TRUE(model.currentDocument());
    EXPECT_EQ(*model.currentDocument(), document);
}

TEST_F(AppModelCommandTest, theDocumentNamesTheTargetAfterTheSourceIsCleared) {
    loops();
    savedDocument(documentURL());
    panels->document = documentURL();
    model.setExportFolder(outputFolder());
    const auto gate = preparer->holdBank(1);
    model.importJSON();
    model.clearSource();
    EXPECT_FALSE(model.canClearSource());
    gate->open();
    waitForWork();
    EXPECT_FALSE(model.sourceFolder());
    ASSERT_TRUE(model.currentDocument());
    EXPECT_EQ(model.expectedExportRoot(), FileURL::directory(folder / "out/Loops/QZT508"));
    EXPECT_TRUE(model.canClearSource());
}

TEST_F(AppModelCommandTest, countsTheStampedFiles) {
    struct Row {
        const char* name;
        const char* source;
        int files;
        std::string message;
    };
    const std::vector<Row> rows{{"none", "a/QZT508", 0, "Metadata applied to 0 WAVs"},
                                {"one", "b/qzt508", 1, "Metadata applied to 1 WAVs"},
                                {"some", "c/QZT508", 12, "Metadata applied to 12 WAVs"}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        folder.createFolder(row.source);
        loops(std::string(row.source) + "/Bank 1/3", row.files);
        model.setSourceFolder(FileURL::directory(folder / row.source));
        model.applyMetadataToExistingBank();
        EXPECT_TRUE(runIs(AppModel::Running{}));
        waitForWork();
        EXPECT_EQ(runMessage(), row.message);
    }
}

TEST_F(AppModelCommandTest, stampsWithTheSettingsAtTheStart) {
    const auto file = folder.write("QZT508/Bank 1/3/hit.wav", wavFile(WavFormat{}, 16));
    model.setSourceFolder(FileURL::directory(folder / "QZT508"));
    model.applyMetadataToExistingBank();
    model.setMetadataOptions({4, TorvoPlaybackRate::rate4, TorvoFilterType::notch, false, {}});
    waitForWork();
    const auto withDefaults = bytesOf(file);
    model.setMetadataOptions(TorvoMetadataOptions());
    model.applyMetadataToExistingBank();
    waitForWork();
    EXPECT_EQ(bytesOf(file), withDefaults);
    model.setMetadataOptions({4, TorvoPlaybackRate::rate4, TorvoFilterType::notch, false, {}});
    model.applyMetadataToExistingBank();
    waitForWork();
    EXPECT_NE(bytesOf(file), withDefaults);
}

TEST_F(AppModelCommandTest, reportsWhyAFileCouldNotBeStamped) {
    folder.write("QZT508/Bank 1/3/broken.wav", "no sound");
    model.setSourceFolder(FileURL::directory(folder / "QZT508"));
    model.applyMetadataToExistingBank();
    waitForWork();
    EXPECT_EQ(runFailure(), "Not a RIFF/WAVE file.");
}

TEST_F(AppModelCommandTest, namesTheFileOfAFailureWhileTheFailureIsShown) {
    const FileURL broken(folder.write("QZT508/Bank 1/3/broken.wav", "no sound"));
    std::vector<std::optional<FileURL>> seen;
    QObject::connect(&model, &AppModel::runStateChanged, &model,
                     [&] { seen.push_back(model.failedFile()); });
    model.setSourceFolder(FileURL::directory(folder / "QZT508"));
    model.applyMetadataToExistingBank();
    waitForWork();
    model.applyMetadataToExistingBank();
    waitForWork();
    model.clearSource();
    using Seen = std::vector<std::optional<FileURL>>;
    const std::optional<FileURL> none;
    // Idle, running, failed, running, failed, idle.
    EXPECT_EQ(seen, (Seen{none, none, broken, none, broken, none}));
    // The description contains the path already.
    panels->document = FileURL(folder / "absent.json");
    model.importJSON();
    EXPECT_NE(runFailure().find(panels->document->shownPath()), std::string::npos);
    EXPECT_FALSE(model.failedFile());
}

TEST_F(AppModelCommandTest, stampsDeviceFoldersOnly) {
    model.applyMetadataToExistingBank();
    EXPECT_TRUE(runIs(AppModel::Idle{}));
    scan(drumKit());
    model.applyMetadataToExistingBank();
    EXPECT_TRUE(runIs(AppModel::Idle{}));
    EXPECT_FALSE(model.isBusy());
}
