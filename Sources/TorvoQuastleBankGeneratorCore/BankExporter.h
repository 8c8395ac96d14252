#pragma once

#include "AudioSupport.h"
#include "ConversionCache.h"
#include "Models/ExportRecords.h"
#include "Platform/FileManager.h"
#include "TorvoMetadata.h"

#include <functional>
#include <memory>

namespace torvo {

/// Writes recipes to disk as the folder tree that the device reads.
class BankExporter {
public:
    using Progress = std::function<void(const ProgressUpdate&)>;

    /// `conversionMemory` is the memory in bytes that the converted files of a run may use.
    BankExporter(std::shared_ptr<const FileManager> fileManager,
                 std::shared_ptr<const AudioFilePreparing> preparer,
                 TorvoWAVMetadataWriter metadataWriter,
                 std::size_t conversionMemory = ConversionCache::defaultMemoryBudget);

    /// Rebuilds the device folder from empty and returns the counts once everything is on the
    /// medium. `progress` (may be empty) is called on this thread after each finished bank. The
    /// first failure ends the export and is passed on; what was written so far stays.
    ExportSummary exportBanks(const ExportJob& job, const Progress& progress = {}) const;

private:
    std::shared_ptr<const FileManager> fileManager_;
    std::shared_ptr<const AudioFilePreparing> preparer_;
    TorvoWAVMetadataWriter metadataWriter_;
    std::size_t conversionMemory_; ///< bytes
};

} // namespace torvo
