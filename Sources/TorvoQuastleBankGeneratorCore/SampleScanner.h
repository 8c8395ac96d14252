#pragma once

#include "AudioSupport.h"
#include "Models/SampleRecords.h"
#include "Platform/FileManager.h"
#include "Platform/FileURL.h"

#include <memory>

namespace torvo {

/// Classifies every file below a folder: as a sample with a role, as an ignored file with a reason,
/// or as part of an ignored folder.
class SampleScanner {
public:
    SampleScanner(std::shared_ptr<const AudioFileInspecting> inspector,
                  AudioCompatibilityEvaluator evaluator,
                  std::shared_ptr<const FileManager> fileManager);

    /// Scans the folder and blocks until the scan is finished. Opens many files at
    /// once; the report does not depend on how many. Throws `GenerationError` when the folder
    /// cannot be read, `FileError` when an item cannot be inspected, and `BrokenInstallation`.
    /// Unsupported files and broken links are not errors.
    ScanReport scan(const FileURL& sourceFolder, GenerationMode mode) const;

private:
    std::shared_ptr<const AudioFileInspecting> inspector_;
    AudioCompatibilityEvaluator evaluator_;
    std::shared_ptr<const FileManager> fileManager_;
};

} // namespace torvo
