#pragma once

#include "Models/BankRecipe.h"
#include "Models/ExportRecords.h"
#include "Platform/FileManager.h"
#include "Platform/FileURL.h"

#include <cstdint>
#include <string>
#include <vector>

namespace torvo {

/// Checks that an export makes before it deletes anything. Each function throws `GenerationError`
/// or `FileError` when the export must not continue.

/// Requires that `name` is a valid name for the run folder, and that the run folder is not a
/// symbolic link to something other than a folder.
void requireValidRunFolder(const FileManager& fileManager, const FileURL& runFolder,
                           const std::string& name);

/// Requires that the source folder and all samples of the job lie outside the device folder.
void requireSourceOutside(const FileManager& fileManager, const FileURL& deviceFolder,
                          const ExportJob& job);

} // namespace torvo
