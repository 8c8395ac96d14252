#include "AppModel.h"
#include "TorvoMetadata.h"

#include <utility>

// The menu's commands, and stamping an existing device folder.
namespace torvo::app {

void AppModel::exportJSON() {
    if (!currentDocument_)
        return;
    // Copied, because a run may replace the current document while the panel is open.
    const auto document = currentDocument_;
    const auto url = panels_->saveJSONPanel(document->naming.manifestFileName());
    if (!url)
        return;
    try {
        mappingStore_.exportDocument(*document, *url);
        setLastJSONURL(url);
    } catch (...) {
        failure(std::current_exception())();
    }
}

void AppModel::importJSON() {
    const auto url = panels_->pickJSONFile();
    if (!url)
        return;
    // A document contains no playback settings; the current ones are used.
    const TorvoMetadataOptions options = metadataOptions_;
    std::shared_ptr<const BankMappingDocument> document;
    try {
        document = std::make_shared<const BankMappingDocument>(mappingStore_.importDocument(*url));
    } catch (...) {
        failure(std::current_exception())();
        return;
    }
    const auto folder = exportFolder_ ? exportFolder_ : pickFolder(exportFolderTitle);
    if (!folder)
        return;

    // Intended: only assignments. Nothing is scanned, and `scanState` is not changed.
    setExportFolder(folder);
    assignSourceFolder(document->sourceFolder);
    assignGenerationMode(document->generationMode);
    setLastJSONURL(url);
    startRun(
        [this, document, options, url, folder = *folder, exporter = exporter_]() -> Publication {
            auto banks = writeBanks(exporter, document, folder, options);
            return [this, url, banks = std::move(banks)] {
                setCurrentDocument(banks.completedExport.document);
                finish(banks);
                setLastJSONURL(url);
            };
        },
        [this, document] { setCurrentDocument(document); });
}

void AppModel::applyMetadataToExistingBank() {
    applyMetadata(false);
}

void AppModel::applyMetadataIfFolderExists() {
    applyMetadata(true);
}

void AppModel::applyMetadata(bool onlyIfFolderExists) {
    if (!isUpdatingExistingBank())
        return;
    startRun([this, folder = *sourceFolder_, options = metadataOptions_, onlyIfFolderExists,
              fileManager = fileManager_]() -> Publication {
        if (onlyIfFolderExists && !fileManager->status(folder.path()))
            return [this] { setRunState(Idle{}); };
        const std::int64_t count = TorvoWAVMetadataWriter().apply(options, folder);
        // Intended: "WAVs" for every count, 1 included.
        return [this, message = "Metadata applied to " + std::to_string(count) + " WAVs", folder] {
            setRunState(FinishedMessage{message}, std::nullopt, folder);
        };
    });
}

} // namespace torvo::app
