#pragma once

#include "AudioSupport.h"
#include "ConversionCache.h"
#include "Models/ExportRecords.h"
#include "Platform/FileManager.h"
#include "TorvoMetadata.h"

#include <functional>
#include <memory>

namespace torvo {

/// Writes bank recipes as the folder tree that the device reads.
class BankExporter {
public:
    using Progress = std::function<void(const ProgressUpdate&)>;

    /// `conversionMemory` is the memory in bytes that the converted files of a run may use.
    BankExporter(std::shared_ptr<const FileManager> fileManager,
                 std::shared_ptr<const AudioFilePreparing> preparer,
                 TorvoWAVMetadataWriter metadataWriter,
                 std::size_t conversionMemory = ConversionCache::defaultMemoryBudget);

    /// Replaces the device folder and returns the counts once all data has reached the storage
    /// medium. Calls `progress`, which may be empty, on this thread after each finished bank. Stops
    /// at the first failure and throws it as `GenerationError` or `FileError`; files written so far
    /// are kept. An existing device folder is deleted only if every sample can be opened and the
    /// volume has enough space. Changes nothing while another program writes into the run folder.
    ExportSummary exportBanks(const ExportJob& job, const Progress& progress = {}) const;

private:
    std::shared_ptr<const FileManager> fileManager_;
    std::shared_ptr<const AudioFilePreparing> preparer_;
    TorvoWAVMetadataWriter metadataWriter_;
    std::size_t conversionMemory_; ///< bytes
};

} // namespace torvo
