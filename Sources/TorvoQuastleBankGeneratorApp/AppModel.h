#pragma once

#include "BackgroundAnswer.h"
#include "BackgroundTasks.h"
#include "BankExporter.h"
#include "BankGenerator.h"
#include "BankMappingStore.h"
#include "Models.h"
#include "Panels.h"
#include "Platform/FileManager.h"
#include "SampleScanner.h"

#include <QObject>

#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>

namespace torvo::app {

/// The state and the workflow of the application. Belongs to the main thread: call all functions
/// there; properties change only there, and each signal is emitted after its change. Long work runs
/// in the background on copies of its inputs. No function throws: failures are shown in `scanState`
/// or `runState`.
class AppModel : public QObject {
    Q_OBJECT

public:
    /// The result of a run that made a document.
    struct CompletedExport {
        std::shared_ptr<const BankMappingDocument> document;
        ExportSummary summary;
        std::string statusHeadline;

        friend bool operator==(const CompletedExport&, const CompletedExport&) = default;
    };

    struct Ready {
        std::shared_ptr<const ScanReport> report;
        friend bool operator==(const Ready&, const Ready&) = default;
    };
    struct Failed {
        std::string description;
        friend bool operator==(const Failed&, const Failed&) = default;
    };
    struct Idle {
        friend bool operator==(const Idle&, const Idle&) = default;
    };
    struct Scanning {
        friend bool operator==(const Scanning&, const Scanning&) = default;
    };
    struct Running {
        std::optional<ProgressUpdate> progress; ///< absent until the first bank is written
        friend bool operator==(const Running&, const Running&) = default;
    };
    struct Finished {
        CompletedExport completedExport;
        friend bool operator==(const Finished&, const Finished&) = default;
    };
    /// A run that makes no document has succeeded.
    struct FinishedMessage {
        std::string message;
        friend bool operator==(const FinishedMessage&, const FinishedMessage&) = default;
    };

    using ScanState = std::variant<Ready, Failed, Idle, Scanning>;
    using RunState = std::variant<Running, Finished, FinishedMessage, Failed, Idle>;

    AppModel(SampleScanner scanner, BankGenerator generator, BankExporter exporter,
             BankMappingStore mappingStore, std::shared_ptr<Panels> panels,
             std::shared_ptr<const FileManager> fileManager);

    const std::optional<FileURL>& sourceFolder() const { return sourceFolder_; }
    const std::optional<FileURL>& exportFolder() const { return exportFolder_; }
    GenerationMode generationMode() const { return generationMode_; }
    const TorvoMetadataOptions& metadataOptions() const { return metadataOptions_; }
    const ScanState& scanState() const { return scanState_; }
    const RunState& runState() const { return runState_; }
    /// The file that caused the failure in `runState`. Absent in other states, when no file is
    /// known, and when the description already contains the whole path. Changes together with
    /// `runState`, before its signal.
    const std::optional<FileURL>& failedFile() const { return failedFile_; }
    /// The device folder that the successful run in `runState` wrote or stamped; absent in any
    /// other state. It changes like `failedFile`.
    const std::optional<FileURL>& writtenFolder() const { return writtenFolder_; }
    /// Whether a run wrote `writtenFolder` to the top of a volume, where the device looks for it.
    bool isWrittenToTop() const { return isWrittenToTop_; }
    const std::shared_ptr<const BankMappingDocument>& currentDocument() const {
        return currentDocument_;
    }
    /// The mapping document that was last saved or loaded.
    const std::optional<FileURL>& lastJSONURL() const { return lastJSONURL_; }

    /// Whether the source is a device folder, which is stamped and not scanned.
    bool isUpdatingExistingBank() const;
    /// Independent of `runState`.
    bool canGenerate() const;
    /// Asks the file system, which may not answer for a long time; `exportRootExists` does not.
    bool canApplyExistingBankMetadata() const;
    bool canClearSource() const;
    /// Whether the links of a chosen source are being resolved.
    bool isResolvingSource() const { return choice_ != nullptr; }
    bool isRunning() const { return std::holds_alternative<Running>(runState_); }
    /// Whether a run is in progress or waiting. `runState` may show something else: a new scan or a
    /// document that could not be saved replaces it there.
    bool hasUnfinishedRun() const { return unfinishedRuns_ > 0; }
    /// The folder that a run writes into.
    std::optional<FileURL> expectedExportRoot() const;
    /// Whether `expectedExportRoot` exists: GENERATE would replace it, APPLY needs it. The folder
    /// is inspected in the background after each change of its path and after each run; false until
    /// the answer arrives.
    bool exportRootExists() const { return exportRootExists_.isYes(); }
    /// Whether the report in `scanState` is that of `sourceFolder`, links resolved. After an import
    /// or overlapping scans it may be that of another folder, and a run would replace banks that
    /// `expectedExportRoot` does not show. Links are resolved in the background, as above.
    bool isReportOfSource() const;
    /// Whether background work is in progress or its results have not reached the main thread yet.
    bool isBusy() const { return tasks_.isBusy(); }

    void setSourceFolder(const FileURL& folder);
    /// Sets the folder that `resolvedSource` returns for a chosen or dropped folder, as soon as its
    /// links have been resolved in the background, unless the source is changed before.
    void chooseSourceFolder(const FileURL& folder);
    void clearSource();
    void setExportFolder(std::optional<FileURL> folder);
    void setGenerationMode(GenerationMode mode);
    void setMetadataOptions(TorvoMetadataOptions options);
    /// Numbers outside 1 to 8 are ignored.
    void setCVChannel(std::int64_t channel, bool enabled);

    /// Shows `writtenFolder` in the desktop's file browser.
    void showWrittenFolder();
    /// Looks in the background for the item that a row of the ignored lists stands for and calls
    /// `found` if there is one. One look-up is carried out at a time; of those that wait, only the
    /// newest is kept.
    void lookUpIgnoredItem(const std::string& path, std::function<void(const FileURL&)> found);
    /// Shows an item in the desktop's file browser.
    void showIgnoredItem(const FileURL& item);

    /// Empty when the panel was cancelled.
    std::optional<FileURL> pickFolder(const std::string& title);

    void scanSourceFolder();
    void generateBanks();
    void exportJSON();
    void importJSON();
    void applyMetadataToExistingBank();
    /// The same, but the run ends without a result if the folder does not exist.
    void applyMetadataIfFolderExists();
    /// Updates `exportRootExists` and `isReportOfSource` after other programs may have changed the
    /// folders.
    void inspectFolders();

Q_SIGNALS:
    void sourceFolderChanged();
    void isResolvingSourceChanged();
    void exportFolderChanged();
    void generationModeChanged();
    void metadataOptionsChanged();
    void scanStateChanged();
    void runStateChanged();
    void currentDocumentChanged();
    void lastJSONURLChanged();
    void exportRootExistsChanged();
    void isReportOfSourceChanged();

private:
    struct InspectedRoot {
        FileURL folder;
        bool isUpdated = false; ///< a link to nothing is replaced, but cannot be updated

        friend bool operator==(const InspectedRoot&, const InspectedRoot&) = default;
    };
    struct SourceAndReport {
        FileURL source;
        FileURL scanned;

        friend bool operator==(const SourceAndReport&, const SourceAndReport&) = default;
    };
    struct ItemLookUp {
        std::shared_ptr<const ScanReport> report;
        std::string path;
        std::function<void(const FileURL&)> found;
    };

    struct WrittenBanks {
        CompletedExport completedExport;
        bool areAtTop = false; ///< of a volume
    };

    /// Publishes the result of a run, on the main thread.
    using Publication = std::function<void()>;

    void resetLoadedSourceState();
    void assignSourceFolder(std::optional<FileURL> folder);
    void setChoice(std::shared_ptr<const FileURL> choice);
    void assignGenerationMode(GenerationMode mode);
    /// Returns the previous state, whose report must be freed in the background.
    ScanState replaceScanState(ScanState state);
    void setScanState(ScanState state);
    void setRunState(RunState state, std::optional<FileURL> failedFile = std::nullopt,
                     std::optional<FileURL> writtenFolder = std::nullopt,
                     bool isWrittenToTop = false);
    void finish(WrittenBanks banks);
    /// Sets `runState` and `failedFile` to the description of an error and its file.
    Publication failure(const std::exception_ptr& error);
    void setCurrentDocument(std::shared_ptr<const BankMappingDocument> document);
    void setLastJSONURL(std::optional<FileURL> url);
    void inspectExportRoot();
    void inspectSource();
    void startNextLookUp();
    void applyMetadata(bool onlyIfFolderExists);

    /// Carries out one run at a time, so that two never write into the same tree. `begin` is
    /// published at once and, if the run has to wait, again when it starts, because `runState` then
    /// shows the result of the previous run.
    void startRun(
        std::function<Publication()> work, const Publication& begin = [] {});
    /// Called in the background.
    WrittenBanks writeBanks(const BankExporter& exporter,
                            std::shared_ptr<const BankMappingDocument> document,
                            const FileURL& exportFolder, const TorvoMetadataOptions& options);

    const SampleScanner scanner_;
    const BankGenerator generator_;
    const BankExporter exporter_;
    const BankMappingStore mappingStore_;
    const std::shared_ptr<Panels> panels_;
    const std::shared_ptr<const FileManager> fileManager_;

    std::optional<FileURL> sourceFolder_;
    std::optional<FileURL> exportFolder_;
    GenerationMode generationMode_ = GenerationMode::drums;
    TorvoMetadataOptions metadataOptions_;
    ScanState scanState_ = Idle{};
    RunState runState_ = Idle{};
    std::optional<FileURL> failedFile_;
    std::optional<FileURL> writtenFolder_;
    bool isWrittenToTop_ = false;
    std::shared_ptr<const BankMappingDocument> currentDocument_;
    std::optional<FileURL> lastJSONURL_;
    int unfinishedRuns_ = 0;
    BackgroundAnswer<InspectedRoot> exportRootExists_;
    BackgroundAnswer<SourceAndReport> sourceLeadsToReport_;
    std::shared_ptr<const FileURL> choice_; ///< the chosen source, until its links are resolved
    std::optional<ItemLookUp> nextLookUp_;
    bool isLookingUp_ = false;

    /// The last member: its destructor waits for background work that uses the members above.
    BackgroundTasks tasks_;
};

} // namespace torvo::app
