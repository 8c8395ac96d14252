#include "AppModel.h"

#include "IgnoredItemLookUp.h"
#include "Models/Device.h"
#include "Platform/FreedMemory.h"
#include "SourceFolder.h"

#include <QRandomGenerator>

#include <utility>

namespace torvo::app {

namespace {

constexpr std::int64_t targetBankCount = 99;

/// Uniform over 1 … 2^64 − 1, from the system's cryptographic random source.
std::uint64_t drawSeed() {
    std::uint64_t seed = 0;
    while (seed == 0)
        seed = QRandomGenerator::system()->generate64();
    return seed;
}

/// False when the item cannot be inspected.
bool itemExists(const FileManager& fileManager, const std::filesystem::path& path) {
    try {
        return fileManager.linkStatus(path).has_value();
    } catch (const FileError&) {
        return false;
    }
}

/// Follows links. False when the item cannot be inspected.
bool targetExists(const FileManager& fileManager, const std::filesystem::path& path) {
    try {
        return fileManager.status(path).has_value();
    } catch (const FileError&) {
        return false;
    }
}

bool isSamePath(const FileURL& left, const FileURL& right) {
    return left.nativePath() == right.nativePath();
}

/// Whether a volume is mounted on a folder's parent. False when this cannot be found out.
bool isAtTopOfVolume(const FileManager& fileManager, const FileURL& folder) {
    try {
        return fileManager.isMountPoint(folder.path().parent_path());
    } catch (const FileError&) {
        return false;
    }
}

/// Frees the report that the state may hold.
void freeReport(AppModel::ScanState& state) {
    state = AppModel::Idle{};
    returnFreedMemory();
}

} // namespace

AppModel::AppModel(SampleScanner scanner, BankGenerator generator, BankExporter exporter,
                   BankMappingStore mappingStore, std::shared_ptr<Panels> panels,
                   std::shared_ptr<const FileManager> fileManager)
    : scanner_(std::move(scanner)),
      generator_(generator),
      exporter_(std::move(exporter)),
      mappingStore_(std::move(mappingStore)),
      panels_(std::move(panels)),
      fileManager_(std::move(fileManager)),
      exportRootExists_(
          tasks_,
          [files = fileManager_](const InspectedRoot& root) {
              return root.isUpdated ? targetExists(*files, root.folder.path())
                                    : itemExists(*files, root.folder.path());
          },
          [this] { Q_EMIT exportRootExistsChanged(); }),
      sourceLeadsToReport_(
          tasks_,
          [files = fileManager_](const SourceAndReport& both) {
              return leadsTo(*files, both.source, both.scanned);
          },
          [this] { Q_EMIT isReportOfSourceChanged(); }) {}

bool AppModel::isUpdatingExistingBank() const {
    return sourceFolder_ && isDeviceFolder(*sourceFolder_);
}

bool AppModel::canGenerate() const {
    if (isUpdatingExistingBank() || !exportFolder_)
        return false;
    const auto* ready = std::get_if<Ready>(&scanState_);
    return ready != nullptr && ready->report->mode == generationMode_ &&
           generator_.canGenerate(ready->report->buckets, generationMode_);
}

bool AppModel::canApplyExistingBankMetadata() const {
    return isUpdatingExistingBank() && !isRunning() &&
           targetExists(*fileManager_, sourceFolder_->path());
}

bool AppModel::isReportOfSource() const {
    const auto* ready = std::get_if<Ready>(&scanState_);
    return ready != nullptr && sourceFolder_ &&
           (isSamePath(*sourceFolder_, ready->report->sourceFolder) ||
            sourceLeadsToReport_.isYes());
}

bool AppModel::canClearSource() const {
    return sourceFolder_ || currentDocument_;
}

std::optional<FileURL> AppModel::expectedExportRoot() const {
    if (isUpdatingExistingBank())
        return sourceFolder_;
    if (!exportFolder_ || (!sourceFolder_ && !currentDocument_))
        return std::nullopt;
    const std::string folderName = sourceFolder_ ? sourceFolder_->lastPathComponent()
                                                 : currentDocument_->naming.sourceFolderName;
    return exportFolder_->appendingPathComponent(folderName, FileURL::Kind::directory)
        .appendingPathComponent(device::folderName, FileURL::Kind::directory);
}

void AppModel::setSourceFolder(const FileURL& folder) {
    assignSourceFolder(folder);
    if (isDeviceFolder(folder))
        resetLoadedSourceState();
    else
        scanSourceFolder();
}

void AppModel::chooseSourceFolder(const FileURL& folder) {
    if (isDeviceFolder(folder)) {
        setSourceFolder(folder);
        return;
    }
    setChoice(std::make_shared<const FileURL>(folder));
    tasks_.start([this, choice = choice_, fileManager = fileManager_] {
        const FileURL resolved = resolvedSource(*fileManager, *choice);
        tasks_.postToMainThread([this, choice, resolved] {
            if (choice == choice_)
                setSourceFolder(resolved);
        });
    });
}

void AppModel::clearSource() {
    assignSourceFolder(std::nullopt);
    resetLoadedSourceState();
}

void AppModel::setGenerationMode(GenerationMode mode) {
    if (mode == generationMode_)
        return;
    assignGenerationMode(mode);
    if (isUpdatingExistingBank() || !sourceFolder_)
        resetLoadedSourceState();
    else
        scanSourceFolder();
}

void AppModel::setCVChannel(std::int64_t channel, bool enabled) {
    if (!device::hasChannel(channel))
        return;
    TorvoMetadataOptions options = metadataOptions_;
    if (enabled)
        options.cvAssignedChannels.insert(channel);
    else
        options.cvAssignedChannels.erase(channel);
    setMetadataOptions(std::move(options));
}

void AppModel::showWrittenFolder() {
    if (writtenFolder_)
        panels_->showInFileBrowser(*writtenFolder_);
}

void AppModel::lookUpIgnoredItem(const std::string& path,
                                 std::function<void(const FileURL&)> found) {
    const auto* ready = std::get_if<Ready>(&scanState_);
    if (ready == nullptr)
        return;
    nextLookUp_ = {ready->report, path, std::move(found)};
    if (!isLookingUp_)
        startNextLookUp();
}

void AppModel::startNextLookUp() {
    isLookingUp_ = nextLookUp_.has_value();
    if (!isLookingUp_)
        return;
    tasks_.start(
        [this, lookUp = *std::exchange(nextLookUp_, std::nullopt), fileManager = fileManager_] {
            const auto item = findIgnoredItem(*fileManager, *lookUp.report, lookUp.path);
            tasks_.postToMainThread([this, item, found = lookUp.found] {
                if (item)
                    found(*item);
                startNextLookUp();
            });
        });
}

void AppModel::showIgnoredItem(const FileURL& item) {
    panels_->showInFileBrowser(item);
}

std::optional<FileURL> AppModel::pickFolder(const std::string& title) {
    return panels_->pickFolder(title);
}

void AppModel::resetLoadedSourceState() {
    setScanState(Idle{});
    setRunState(Idle{});
    setCurrentDocument(nullptr);
    setLastJSONURL(std::nullopt);
}

// Intended: a result is not checked against the current folder or mode. When two scans overlap, the
// one that ends last sets the state.
void AppModel::scanSourceFolder() {
    if (!sourceFolder_)
        return;
    ScanState previous = replaceScanState(Scanning{});
    setRunState(Idle{});
    setCurrentDocument(nullptr);
    setLastJSONURL(std::nullopt);
    tasks_.start([this, previous = std::move(previous), scanner = scanner_, folder = *sourceFolder_,
                  mode = generationMode_]() mutable {
        // First, because two reports of a large library take much memory.
        freeReport(previous);
        ScanState outcome = Idle{};
        try {
            outcome = Ready{std::make_shared<const ScanReport>(scanner.scan(folder, mode))};
        } catch (...) {
            outcome = Failed{userFacingDescription(std::current_exception())};
        }
        returnFreedMemory();
        tasks_.postToMainThread(
            [this, outcome = std::move(outcome)]() mutable { setScanState(std::move(outcome)); });
    });
}

void AppModel::generateBanks() {
    const auto* ready = std::get_if<Ready>(&scanState_);
    if (ready == nullptr || !exportFolder_ || ready->report->mode != generationMode_)
        return;
    startRun([this, report = ready->report, seed = drawSeed(), mode = generationMode_,
              generator = generator_, exporter = exporter_, store = mappingStore_,
              exportFolder = *exportFolder_, options = metadataOptions_]() mutable -> Publication {
        const GenerationTemplate& layout = generationTemplate(mode);
        const BankNameScheme naming(report->sourceFolder.lastPathComponent());
        auto recipes =
            generator.makeRecipes(report->buckets, mode, layout, targetBankCount, naming, seed);
        auto document = std::make_shared<const BankMappingDocument>(
            store.document(report->sourceFolder, mode, naming, layout, std::move(recipes)));
        // A new scan may replace it before all banks are written.
        report = nullptr;
        auto banks = writeBanks(exporter, std::move(document), exportFolder, options);
        return [this, banks = std::move(banks)] {
            setCurrentDocument(banks.completedExport.document);
            finish(banks);
        };
    });
}

void AppModel::inspectFolders() {
    inspectExportRoot();
    inspectSource();
}

void AppModel::inspectExportRoot() {
    std::optional<InspectedRoot> root;
    if (const auto folder = expectedExportRoot())
        root = {*folder, isUpdatingExistingBank()};
    exportRootExists_.ask(root);
}

void AppModel::inspectSource() {
    const auto* ready = std::get_if<Ready>(&scanState_);
    std::optional<SourceAndReport> both;
    if (ready != nullptr && sourceFolder_ &&
        !isSamePath(*sourceFolder_, ready->report->sourceFolder))
        both = {*sourceFolder_, ready->report->sourceFolder};
    sourceLeadsToReport_.ask(both);
}

void AppModel::startRun(std::function<Publication()> work, const Publication& begin) {
    const auto publishStart = [this, begin] {
        begin();
        setRunState(Running{});
    };
    ++unfinishedRuns_;
    publishStart();
    tasks_.startInTurn(
        [this, publishStart, work = std::move(work), hasWaited = unfinishedRuns_ > 1] {
            if (hasWaited)
                tasks_.postToMainThread(publishStart);
            Publication publication;
            try {
                publication = work();
            } catch (...) {
                publication = failure(std::current_exception());
            }
            tasks_.postToMainThread([this, publication = std::move(publication)] {
                --unfinishedRuns_;
                publication();
            });
        });
}

AppModel::Publication AppModel::failure(const std::exception_ptr& error) {
    std::optional<FileURL> file;
    if (const auto path = torvo::failedFile(error))
        file = FileURL(*path);
    return
        [this, failed = Failed{userFacingDescription(error)}, file] { setRunState(failed, file); };
}

AppModel::WrittenBanks AppModel::writeBanks(const BankExporter& exporter,
                                            std::shared_ptr<const BankMappingDocument> document,
                                            const FileURL& exportFolder,
                                            const TorvoMetadataOptions& options) {
    const auto job = exportJob(*document, exportFolder, options);
    const ExportSummary summary = exporter.exportBanks(job, [this](const ProgressUpdate& update) {
        tasks_.postToMainThread([this, update] { setRunState(Running{update}); });
    });
    const bool areAtTop = isAtTopOfVolume(*fileManager_, summary.rootFolder);
    return {{std::move(document), summary, "Random banks created"}, areAtTop};
}

void AppModel::assignSourceFolder(std::optional<FileURL> folder) {
    sourceFolder_ = std::move(folder);
    setChoice(nullptr);
    inspectFolders();
    Q_EMIT sourceFolderChanged();
}

void AppModel::setChoice(std::shared_ptr<const FileURL> choice) {
    choice_ = std::move(choice);
    Q_EMIT isResolvingSourceChanged();
}

void AppModel::setExportFolder(std::optional<FileURL> folder) {
    exportFolder_ = std::move(folder);
    inspectExportRoot();
    Q_EMIT exportFolderChanged();
}

void AppModel::assignGenerationMode(GenerationMode mode) {
    generationMode_ = mode;
    Q_EMIT generationModeChanged();
}

void AppModel::setMetadataOptions(TorvoMetadataOptions options) {
    metadataOptions_ = std::move(options);
    Q_EMIT metadataOptionsChanged();
}

AppModel::ScanState AppModel::replaceScanState(ScanState state) {
    ScanState previous = std::exchange(scanState_, std::move(state));
    inspectSource();
    Q_EMIT scanStateChanged();
    return previous;
}

void AppModel::setScanState(ScanState state) {
    ScanState previous = replaceScanState(std::move(state));
    // Freeing the report of a large library takes longer than a frame.
    if (std::holds_alternative<Ready>(previous))
        tasks_.start([previous = std::move(previous)]() mutable { freeReport(previous); });
}

void AppModel::setRunState(RunState state, std::optional<FileURL> failedFile,
                           std::optional<FileURL> writtenFolder, bool isWrittenToTop) {
    runState_ = std::move(state);
    failedFile_ = std::move(failedFile);
    writtenFolder_ = std::move(writtenFolder);
    isWrittenToTop_ = isWrittenToTop;
    Q_EMIT runStateChanged();
    if (!isRunning())
        inspectExportRoot();
}

void AppModel::finish(WrittenBanks banks) {
    const FileURL folder = banks.completedExport.summary.rootFolder;
    setRunState(Finished{std::move(banks.completedExport)}, std::nullopt, folder, banks.areAtTop);
}

void AppModel::setCurrentDocument(std::shared_ptr<const BankMappingDocument> document) {
    currentDocument_ = std::move(document);
    inspectExportRoot();
    Q_EMIT currentDocumentChanged();
}

void AppModel::setLastJSONURL(std::optional<FileURL> url) {
    lastJSONURL_ = std::move(url);
    Q_EMIT lastJSONURLChanged();
}

} // namespace torvo::app
