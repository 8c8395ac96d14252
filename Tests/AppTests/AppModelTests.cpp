#include "AppModel.h"
#include "ForwardingFileManager.h"
#include "Support/AppFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>

using namespace torvo;
using namespace torvo::app;
using namespace torvo::test;

namespace {

using Idle = AppModel::Idle;
using Scanning = AppModel::Scanning;
using Ready = AppModel::Ready;
using Running = AppModel::Running;
using Finished = AppModel::Finished;

const std::string manyBanks = "Random banks created";

class AppModelTest : public testing::Test, protected AppFixture {
protected:
    explicit AppModelTest(Banks banks = Banks::forgotten) : AppFixture(banks) {}

    bool scanIs(AppModel::ScanState state) const { return model.scanState() == state; }
    bool runIs(AppModel::RunState state) const { return model.runState() == state; }
    const ScanReport* report() const {
        const auto* ready = std::get_if<Ready>(&model.scanState());
        return ready ? ready->report.get() : nullptr;
    }
    std::string scanFailure() const {
        const auto* failed = std::get_if<AppModel::Failed>(&model.scanState());
        return failed ? failed->description : std::string();
    }
    std::string runFailure() const {
        const auto* failed = std::get_if<AppModel::Failed>(&model.runState());
        return failed ? failed->description : std::string();
    }
    const AppModel::CompletedExport* completed() const {
        const auto* finished = std::get_if<Finished>(&model.runState());
        return finished ? &finished->completedExport : nullptr;
    }
    /// Starts work that ends with a document and its file after the source has been cleared.
    std::shared_ptr<Gate> importHeldBack() {
        panels->document = savedRun();
        const auto gate = preparer->holdBank(1);
        model.importJSON();
        return gate;
    }
    void expectANewModeToForget() {
        ASSERT_TRUE(model.currentDocument());
        ASSERT_TRUE(model.lastJSONURL());
        model.setGenerationMode(GenerationMode::stabs);
        EXPECT_TRUE(scanIs(Idle{}));
        expectLoadedStateReset();
    }
    void expectLoadedStateReset() const {
        EXPECT_TRUE(runIs(Idle{}));
        EXPECT_FALSE(model.currentDocument());
        EXPECT_FALSE(model.lastJSONURL());
    }
};

class AppModelRunTest : public AppModelTest {
protected:
    AppModelRunTest() : AppModelTest(Banks::written) {}
};

} // namespace

TEST_F(AppModelTest, startsWithTheDefaults) {
    EXPECT_FALSE(model.sourceFolder());
    EXPECT_FALSE(model.exportFolder());
    EXPECT_EQ(model.generationMode(), GenerationMode::drums);
    EXPECT_EQ(model.metadataOptions(),
              TorvoMetadataOptions(16, TorvoPlaybackRate::rate44, TorvoFilterType::off, false, {}));
    EXPECT_TRUE(scanIs(Idle{}));
    expectLoadedStateReset();
    EXPECT_FALSE(model.isUpdatingExistingBank());
    EXPECT_FALSE(model.canGenerate());
    EXPECT_FALSE(model.canApplyExistingBankMetadata());
    EXPECT_FALSE(model.canClearSource());
    EXPECT_FALSE(model.expectedExportRoot());
}

TEST_F(AppModelTest, scansAChosenFolder) {
    const FileURL kit = drumKit();
    model.setSourceFolder(kit);
    EXPECT_EQ(model.sourceFolder(), kit);
    EXPECT_TRUE(scanIs(Scanning{}));
    waitForWork();
    ASSERT_TRUE(report());
    EXPECT_EQ(report()->sourceFolder, kit);
    EXPECT_EQ(report()->buckets.kick.size(), 4U);
    EXPECT_TRUE(runIs(Idle{}));
    EXPECT_TRUE(model.canClearSource());
}

TEST_F(AppModelTest, choosingAFolderClearsTheResultOfTheLastRun) {
    savedRun();
    model.setSourceFolder(loops());
    EXPECT_TRUE(scanIs(Scanning{}));
    expectLoadedStateReset();
    waitForWork();
}

TEST_F(AppModelTest, reportsWhyAScanFailed) {
    scan(FileURL::directory(folder / "absent"));
    EXPECT_EQ(scanFailure(), "Unable to read " + (folder / "absent").string() + ".");
    EXPECT_TRUE(runIs(Idle{}));
}

TEST_F(AppModelTest, aBrokenLinkIsListedAndTheScanContinues) {
    drumKit();
    std::filesystem::create_symlink("nothing", folder / "Kit A/Kick/dead.wav");
    scan(FileURL::directory(folder / "Kit A"));
    ASSERT_TRUE(report());
    EXPECT_EQ(std::ranges::count(report()->ignoredFiles,
                                 IgnoredItem{"Kick/dead.wav", "Unsupported audio file"}),
              1);
}

TEST_F(AppModelTest, neverScansADeviceFolder) {
    savedRun();
    for (const char* name : {"QZT508", "qzt508", "Qzt508"}) {
        SCOPED_TRACE(name);
        const FileURL device = FileURL::directory(folder.createFolder(std::string(name)));
        model.setSourceFolder(device);
        EXPECT_TRUE(scanIs(Idle{}));
        expectLoadedStateReset();
        EXPECT_TRUE(model.isUpdatingExistingBank());
        EXPECT_FALSE(model.canGenerate());
        EXPECT_TRUE(model.canApplyExistingBankMetadata());
        EXPECT_EQ(model.expectedExportRoot(), device);
    }
}

TEST_F(AppModelTest, selectingTheSelectedModeDoesNothing) {
    scan(drumKit());
    const auto before = model.scanState();
    model.setGenerationMode(GenerationMode::drums);
    EXPECT_TRUE(scanIs(before));
    EXPECT_FALSE(model.isBusy());
}

TEST_F(AppModelTest, aNewModeScansAgain) {
    savedRun();
    model.setGenerationMode(GenerationMode::loops);
    EXPECT_TRUE(scanIs(Scanning{}));
    expectLoadedStateReset();
    waitForWork();
    ASSERT_TRUE(report());
    EXPECT_EQ(report()->mode, GenerationMode::loops);
    EXPECT_EQ(report()->buckets.loop.size(), 24U);
}

TEST_F(AppModelTest, aNewModeWithoutASourceResets) {
    panels->document = FileURL(folder.write("broken.json", "no document"));
    model.importJSON();
    ASSERT_FALSE(runFailure().empty());
    ASSERT_FALSE(model.sourceFolder());
    model.setGenerationMode(GenerationMode::stabs);
    EXPECT_EQ(model.generationMode(), GenerationMode::stabs);
    EXPECT_TRUE(scanIs(Idle{}));
    expectLoadedStateReset();
}

TEST_F(AppModelTest, aNewModeWithADeviceFolderResets) {
    model.setSourceFolder(FileURL::directory(folder.createFolder("QZT508")));
    model.applyMetadataToExistingBank();
    waitForWork();
    ASSERT_FALSE(runIs(Idle{}));
    model.setGenerationMode(GenerationMode::stabs);
    EXPECT_TRUE(scanIs(Idle{}));
    expectLoadedStateReset();
}

// Work that ends after its source was cleared sets the scan, the document and its file of a model
// without a source.
TEST_F(AppModelTest, aNewModeWithoutASourceDiscardsTheDocument) {
    const auto bank = importHeldBack();
    const auto scan = inspector->hold("Kit B");
    model.setSourceFolder(drumKit("Kit B"));
    model.clearSource();
    scan->open();
    bank->open();
    waitForWork();
    ASSERT_TRUE(report());
    expectANewModeToForget();
}

TEST_F(AppModelTest, aNewModeWithADeviceFolderDiscardsTheDocument) {
    const auto bank = importHeldBack();
    model.setSourceFolder(FileURL::directory(folder.createFolder("QZT508")));
    bank->open();
    waitForWork();
    expectANewModeToForget();
}

TEST_F(AppModelTest, clearingTheSourceResetsButKeepsTheSettings) {
    savedRun();
    const auto exportFolder = model.exportFolder();
    model.setCVChannel(2, true);
    const auto options = model.metadataOptions();
    model.clearSource();
    EXPECT_FALSE(model.sourceFolder());
    EXPECT_TRUE(scanIs(Idle{}));
    expectLoadedStateReset();
    EXPECT_FALSE(model.canClearSource());
    EXPECT_EQ(model.exportFolder(), exportFolder);
    EXPECT_EQ(model.metadataOptions(), options);
}

TEST_F(AppModelTest, theScanThatEndsLastWins) {
    const auto gate = inspector->hold("Slow");
    const FileURL slow = drumKit("Slow");
    const FileURL fast = drumKit("Fast");
    model.setSourceFolder(slow);
    model.setSourceFolder(fast);
    ASSERT_TRUE(waitUntil([this] { return report() != nullptr; }));
    EXPECT_EQ(report()->sourceFolder, fast);
    gate->open();
    waitForWork();
    ASSERT_TRUE(report());
    EXPECT_EQ(report()->sourceFolder, slow);
    EXPECT_EQ(model.sourceFolder(), fast);
}

TEST_F(AppModelTest, assignsChannelsOneToEightOnly) {
    for (const std::int64_t channel : {0, 9, -1})
        model.setCVChannel(channel, true);
    EXPECT_EQ(model.metadataOptions(), TorvoMetadataOptions());
    model.setCVChannel(1, true);
    model.setCVChannel(8, true);
    EXPECT_EQ(model.metadataOptions().cvAssignedChannels, (std::set<std::int64_t>{1, 8}));
    EXPECT_FALSE(model.metadataOptions().cvAssignmentsEnabled);
    model.setCVChannel(9, false);
    model.setCVChannel(1, false);
    EXPECT_EQ(model.metadataOptions().cvAssignedChannels, std::set<std::int64_t>{8});
}

TEST_F(AppModelTest, canGenerateWithEnoughSamplesAndAnOutputFolder) {
    scan(drumKit());
    EXPECT_FALSE(model.canGenerate());
    model.setExportFolder(outputFolder());
    EXPECT_TRUE(model.canGenerate());
    model.setExportFolder(std::nullopt);
    EXPECT_FALSE(model.canGenerate());
    model.setExportFolder(outputFolder());
    scan(loops("Few", 7));
    EXPECT_FALSE(model.canGenerate());
    model.setGenerationMode(GenerationMode::loops);
    EXPECT_FALSE(model.canGenerate());
    waitForWork();
    EXPECT_FALSE(model.canGenerate());
    scan(loops("Enough", 8));
    EXPECT_TRUE(model.canGenerate());
}

TEST_F(AppModelTest, canGenerateDoesNotLookAtTheRun) {
    prepareRun();
    const auto gate = preparer->holdBank(1);
    model.generateBanks();
    EXPECT_TRUE(model.isRunning());
    EXPECT_TRUE(model.canGenerate());
    gate->open();
    waitForWork();
}

TEST_F(AppModelTest, namesTheFolderItWillWriteInto) {
    EXPECT_FALSE(model.expectedExportRoot());
    model.setExportFolder(FileURL::directory("/out"));
    EXPECT_FALSE(model.expectedExportRoot());
    model.setSourceFolder(FileURL::directory("/samples/Kit A"));
    EXPECT_EQ(model.expectedExportRoot(), FileURL::directory("/out/Kit A/QZT508"));
    waitForWork();
    model.clearSource();
    EXPECT_FALSE(model.expectedExportRoot());
}

TEST_F(AppModelTest, doesNotGenerateBeforeEverythingIsChosen) {
    model.generateBanks();
    EXPECT_TRUE(runIs(Idle{}));
    model.setExportFolder(outputFolder());
    model.generateBanks();
    EXPECT_TRUE(runIs(Idle{}));
    model.setExportFolder(std::nullopt);
    scan(drumKit());
    model.generateBanks();
    EXPECT_TRUE(runIs(Idle{}));
    EXPECT_FALSE(model.isBusy());
}

TEST_F(AppModelRunTest, generatesNinetyNineBanks) {
    const FileURL kit = drumKit();
    model.setExportFolder(outputFolder());
    scan(kit);
    std::vector<ProgressUpdate> updates;
    QObject::connect(&model, &AppModel::runStateChanged, &model, [&] {
        const auto* run = std::get_if<Running>(&model.runState());
        if (run && run->progress)
            updates.push_back(*run->progress);
    });
    model.generateBanks();
    EXPECT_TRUE(runIs(Running{}));
    waitForWork();

    ASSERT_TRUE(completed());
    EXPECT_EQ(completed()->statusHeadline, manyBanks);
    EXPECT_EQ(completed()->document, model.currentDocument());
    EXPECT_EQ(completed()->summary.banksWritten, 99);
    EXPECT_EQ(completed()->summary.rootFolder, model.expectedExportRoot());
    EXPECT_EQ(completed()->summary.copiedFiles, 99 * 16);
    const BankMappingDocument& document = *model.currentDocument();
    EXPECT_EQ(document.version, 2);
    EXPECT_EQ(document.sourceFolder, kit);
    EXPECT_EQ(document.generationMode, GenerationMode::drums);
    EXPECT_EQ(document.naming, BankNameScheme("Kit A"));
    EXPECT_EQ(document.generationTemplate, GenerationTemplate::torvoV1());
    ASSERT_EQ(document.recipes.size(), 99U);
    EXPECT_NE(document.recipes.front().seed, 0U);
    ASSERT_EQ(updates.size(), 99U);
    EXPECT_EQ(updates.front(), (ProgressUpdate{1, 99, document.naming.bankName(1)}));
    EXPECT_EQ(updates.back(), (ProgressUpdate{99, 99, document.naming.bankName(99)}));
    EXPECT_TRUE(
        std::filesystem::is_regular_file(model.expectedExportRoot()->path() / "Bank 99/info.txt"));
}

TEST_F(AppModelTest, drawsANewSeedForEachRun) {
    prepareRun();
    model.generateBanks();
    waitForWork();
    const std::uint64_t first = model.currentDocument()->recipes.front().seed;
    model.generateBanks();
    waitForWork();
    EXPECT_NE(model.currentDocument()->recipes.front().seed, first);
}

TEST_F(AppModelTest, drawsSeedsOfSixtyFourBits) {
    prepareRun();
    std::uint64_t bits = 0;
    for (int run = 0; run < 2; ++run) {
        model.generateBanks();
        waitForWork();
        bits |= model.currentDocument()->recipes.front().seed;
    }
    // A half of a random seed is 0 in both runs with a probability of 2^-64.
    EXPECT_NE(bits >> 32U, 0U);
    EXPECT_NE(bits & 0xFFFFFFFFU, 0U);
}

TEST_F(AppModelTest, laterEditsDoNotChangeARun) {
    const FileURL first = outputFolder("first");
    model.setExportFolder(first);
    scan(drumKit());
    const auto gate = preparer->holdBank(1);
    model.generateBanks();
    model.setExportFolder(outputFolder("second"));
    model.setGenerationMode(GenerationMode::loops);
    gate->open();
    waitForWork();
    ASSERT_TRUE(completed());
    EXPECT_EQ(completed()->document->generationMode, GenerationMode::drums);
    EXPECT_EQ(completed()->summary.rootFolder.path(), first.path() / "Kit A/QZT508");
}

TEST_F(AppModelTest, aRunDoesNotKeepAReportThatANewScanHasReplaced) {
    model.setExportFolder(outputFolder());
    scan(drumKit());
    const std::weak_ptr<const ScanReport> replaced = std::get<Ready>(model.scanState()).report;
    const auto gate = preparer->holdBank(1);
    model.generateBanks();
    model.setGenerationMode(GenerationMode::loops);
    ASSERT_TRUE(waitUntil([this] { return report() != nullptr; }));
    EXPECT_TRUE(waitUntil([&] { return replaced.expired(); }));
    EXPECT_TRUE(model.hasUnfinishedRun());
    gate->open();
    waitForWork();
}

TEST_F(AppModelTest, aFailedRunKeepsTheLastDocument) {
    savedRun();
    const auto document = model.currentDocument();
    model.setExportFolder(FileURL::directory("/proc/nowhere"));
    model.generateBanks();
    waitForWork();
    EXPECT_NE(runFailure().find("/proc/nowhere"), std::string::npos);
    EXPECT_EQ(model.currentDocument(), document);
}

TEST_F(AppModelTest, reportsWhatIsMissingForBanks) {
    model.setExportFolder(outputFolder());
    scan(drumKit("Thin", 2));
    model.generateBanks();
    waitForWork();
    EXPECT_EQ(runFailure(), "At least 3 percussion samples are required for channels 6-8, but only "
                            "2 usable files were found.");
    EXPECT_FALSE(model.currentDocument());
}

TEST_F(AppModelTest, carriesOutRunsOneAtATimeInOrder) {
    model.setExportFolder(outputFolder("first"));
    scan(drumKit());
    const auto gate = preparer->holdBank(1);
    model.generateBanks();
    model.setExportFolder(outputFolder("second"));
    model.generateBanks();
    std::vector<std::filesystem::path> finished;
    QObject::connect(&model, &AppModel::runStateChanged, &model, [&] {
        if (completed())
            finished.push_back(completed()->summary.rootFolder.path());
        // The second run must not write while the first one does.
        EXPECT_TRUE(!finished.empty() || std::filesystem::is_empty(folder / "second"));
    });
    gate->open();
    waitForWork();
    EXPECT_EQ(finished, (std::vector<std::filesystem::path>{folder / "first/Kit A/QZT508",
                                                            folder / "second/Kit A/QZT508"}));
}

TEST_F(AppModelTest, notifiesObserversAfterTheChange) {
    std::vector<std::string> seen;
    const auto observe = [&](auto signal, auto describe) {
        QObject::connect(&model, signal, &model, [&seen, describe] { seen.push_back(describe()); });
    };
    observe(&AppModel::sourceFolderChanged,
            [this] { return model.sourceFolder() ? "source" : "no source"; });
    observe(&AppModel::scanStateChanged, [this] { return scanIs(Idle{}) ? "idle" : "not idle"; });
    observe(&AppModel::generationModeChanged,
            [this] { return std::string(rawValue(model.generationMode())); });
    observe(&AppModel::exportFolderChanged,
            [this] { return model.exportFolder() ? "folder" : "no folder"; });
    observe(&AppModel::metadataOptionsChanged,
            [this] { return std::to_string(model.metadataOptions().bits); });
    model.setSourceFolder(FileURL::directory("/QZT508"));
    model.setGenerationMode(GenerationMode::stabs);
    model.clearSource();
    model.setExportFolder(FileURL::directory("/out"));
    model.setMetadataOptions({8, TorvoPlaybackRate::rate44, TorvoFilterType::off, false, {}});
    EXPECT_EQ(seen, (std::vector<std::string>{"source", "idle", "stabs", "idle", "no source",
                                              "idle", "folder", "8"}));
}

TEST_F(AppModelTest, appliesMetadataOnlyToAFolderThatExistsAndWhileNothingRuns) {
    model.setSourceFolder(FileURL::directory(folder / "QZT508"));
    EXPECT_FALSE(model.canApplyExistingBankMetadata());
    folder.createFolder("QZT508");
    EXPECT_TRUE(model.canApplyExistingBankMetadata());
    model.applyMetadataToExistingBank();
    EXPECT_FALSE(model.canApplyExistingBankMetadata());
    waitForWork();
    EXPECT_TRUE(model.canApplyExistingBankMetadata());
    scan(drumKit());
    EXPECT_FALSE(model.canApplyExistingBankMetadata());
}

/// A file system on which every item exists, or none can be inspected.
class FakeCard final : public ForwardingFileManager {
public:
    bool canBeInspected = true;

    std::optional<FileStatus> status(const std::filesystem::path& path) const override {
        if (!canBeInspected)
            throw FileError(FileOperation::inspect, path, EIO);
        return FileStatus();
    }
};

TEST_F(AppModelTest, usesItsFileManagerToFindTheDeviceFolder) {
    const auto card = std::make_shared<FakeCard>();
    AppModel onCard(SampleScanner(inspector, AudioCompatibilityEvaluator{}, card), BankGenerator{},
                    BankExporter(card, preparer, TorvoWAVMetadataWriter{}), BankMappingStore{},
                    panels, card);
    onCard.setSourceFolder(FileURL::directory(folder / "QZT508"));
    ASSERT_TRUE(waitUntil([&] { return !onCard.isBusy(); }));
    EXPECT_TRUE(onCard.exportRootExists());
    EXPECT_TRUE(onCard.canApplyExistingBankMetadata());
    card->canBeInspected = false;
    EXPECT_FALSE(onCard.canApplyExistingBankMetadata());
}

TEST(AppModelEnd, waitsForRunningWork) {
    auto fixture = std::make_unique<AppFixture>();
    const std::weak_ptr<GatedInspector> inspector = fixture->inspector;
    const auto gate = fixture->inspector->hold("Kit A");
    fixture->model.setSourceFolder(fixture->drumKit());
    ASSERT_TRUE(fixture->model.isBusy());
    gate->open();
    // The scan holds a copy of the scanner until its thread ends.
    fixture.reset();
    EXPECT_TRUE(inspector.expired());
}
