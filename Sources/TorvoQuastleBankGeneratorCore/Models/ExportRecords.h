#pragma once

#include "Models/BankMappingDocument.h"
#include "Models/BankNameScheme.h"
#include "Models/BankRecipe.h"
#include "Models/GenerationMode.h"
#include "Models/SampleRecords.h"
#include "Models/TorvoMetadataOptions.h"

#include <cstdint>
#include <string>
#include <vector>

namespace torvo {

/// The input of an export: what to write, and where.
struct ExportJob {
    FileURL sourceFolder;
    FileURL exportFolder;
    GenerationTemplate generationTemplate;
    std::int64_t targetBankCount = 0;
    std::uint64_t seed = 0;
    BankNameScheme naming;
    TorvoMetadataOptions metadataOptions;
    std::vector<BankRecipe> recipes; ///< in bank order
};

/// Creates the job that exports a document's banks.
ExportJob exportJob(const BankMappingDocument& document, const FileURL& exportFolder,
                    const TorvoMetadataOptions& metadataOptions);

/// The counts of a finished export.
struct ExportSummary {
    FileURL rootFolder; ///< the device folder
    std::int64_t banksWritten = 0;
    std::int64_t copiedFiles = 0;    ///< bank and pool files together
    std::int64_t convertedFiles = 0; ///< bank and pool files together
    std::int64_t reusedBankCount = 0;
    std::int64_t poolFilesWritten =
        0; ///< 8 for each bank with channels, not the number of files written

    friend bool operator==(const ExportSummary&, const ExportSummary&) = default;
};

/// Sent after each finished bank.
struct ProgressUpdate {
    std::int64_t completedBanks = 0;
    std::int64_t totalBanks = 0;
    std::string currentBankName;

    friend bool operator==(const ProgressUpdate&, const ProgressUpdate&) = default;
};

/// The record of one whole run.
struct GenerationReport {
    ScanReport scanReport;
    ExportSummary summary;
    std::uint64_t seed = 0;
    std::vector<std::string> missingRequirements;

    friend bool operator==(const GenerationReport&, const GenerationReport&) = default;
};

} // namespace torvo
