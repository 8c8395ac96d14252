#pragma once

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

/// The state of the application and its whole workflow. Lives on the main thread: operations are
/// called there and every property is written there; each signal follows the change it tells of.
/// Long work runs in the background with its inputs copied when it starts. No operation reports an
/// error: failures end in `scanState` or `runState`.
class AppModel : public QObject {
    Q_OBJECT

public:
    /// What a run that made a document ended with.
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
    /// A run that makes no document succeeded.
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
    /// The file that the failure in `runState` is about. Absent in any other state, when no file is
    /// known and when the description contains the whole path already. It changes with `runState`,
    /// before observers are told.
    const std::optional<FileURL>& failedFile() const { return failedFile_; }
    /// The device folder that the successful run in `runState` wrote or stamped; absent in any
    /// other state. It changes like `failedFile`.
    const std::optional<FileURL>& writtenFolder() const { return writtenFolder_; }
    const std::shared_ptr<const BankMappingDocument>& currentDocument() const {
        return currentDocument_;
    }
    /// The mapping file last saved or loaded.
    const std::optional<FileURL>& lastJSONURL() const { return lastJSONURL_; }

    /// The source is a device folder: it is stamped, never scanned.
    bool isUpdatingExistingBank() const;
    /// Says nothing about `runState`.
    bool canGenerate() const;
    bool canApplyExistingBankMetadata() const;
    bool canClearSource() const;
    bool isRunning() const { return std::holds_alternative<Running>(runState_); }
    /// A run is being carried out or waits for its turn, whatever `runState` shows meanwhile: a new
    /// scan or a document that could not be saved takes its place there.
    bool hasUnfinishedRun() const { return unfinishedRuns_ > 0; }
    /// The folder that a run writes into.
    std::optional<FileURL> expectedExportRoot() const;
    /// GENERATE would replace what is in `expectedExportRoot` now. The folder is inspected in the
    /// background after each change of its path and after each run: false until the answer is
    /// there.
    bool replacesExistingBanks() const { return replacesExistingBanks_; }
    /// Background work is in progress, results on their way to the main thread included.
    bool isBusy() const { return tasks_.isBusy(); }

    void setSourceFolder(const FileURL& folder);
    void clearSource();
    void setExportFolder(std::optional<FileURL> folder);
    void setGenerationMode(GenerationMode mode);
    void setMetadataOptions(TorvoMetadataOptions options);
    /// Numbers outside 1 to 8 are ignored.
    void setCVChannel(std::int64_t channel, bool enabled);

    /// Shows `writtenFolder` in the desktop's file browser.
    void showWrittenFolder();

    /// None when the panel was cancelled.
    std::optional<FileURL> pickFolder(const std::string& title);

    void scanSourceFolder();
    void generateBanks();
    void exportJSON();
    void importJSON();
    void applyMetadataToExistingBank();
    /// Brings `replacesExistingBanks` up to date when other programs may have changed the folder.
    void inspectExportRoot();

Q_SIGNALS:
    void sourceFolderChanged();
    void exportFolderChanged();
    void generationModeChanged();
    void metadataOptionsChanged();
    void scanStateChanged();
    void runStateChanged();
    void currentDocumentChanged();
    void lastJSONURLChanged();
    void replacesExistingBanksChanged();

private:
    struct Inspection {
        bool isOutdated = false; ///< another one was asked for meanwhile
    };

    /// Writes the result of a run, on the main thread.
    using Publication = std::function<void()>;

    void resetLoadedSourceState();
    void assignSourceFolder(std::optional<FileURL> folder);
    void assignGenerationMode(GenerationMode mode);
    void setScanState(ScanState state);
    void setRunState(RunState state, std::optional<FileURL> failedFile = std::nullopt,
                     std::optional<FileURL> writtenFolder = std::nullopt);
    void finish(CompletedExport completedExport);
    /// Writes the description of an error and its file to `runState` and `failedFile`.
    Publication failure(const std::exception_ptr& error);
    void setCurrentDocument(std::shared_ptr<const BankMappingDocument> document);
    void setLastJSONURL(std::optional<FileURL> url);
    void setReplacesExistingBanks(bool replaces);

    /// Runs are carried out one at a time, so that two never write into one tree at once. `begin`
    /// is published with the start of the run, and again when the turn of one comes that had to
    /// wait: the end of the run before stands in its place.
    void startRun(
        std::function<Publication()> work, const Publication& begin = [] {});
    /// Called in the background.
    CompletedExport writeBanks(const BankExporter& exporter,
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
    std::shared_ptr<const BankMappingDocument> currentDocument_;
    std::optional<FileURL> lastJSONURL_;
    int unfinishedRuns_ = 0;
    std::optional<FileURL> inspectedRoot_;
    std::shared_ptr<Inspection> inspection_; ///< of `inspectedRoot_`, while it is under way
    bool replacesExistingBanks_ = false;

    /// Last, so that it waits for its work while everything above still stands.
    BackgroundTasks tasks_;
};

} // namespace torvo::app
