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

/// Opens every sample of channels 1 to 8 for reading, in the order of the run, each file once and
/// one at a time. Throws the error that preparing the sample would throw. Returns the minimum
/// number of bytes that the run writes: the sizes of the copied samples, counted once for the
/// channel and once for the pool.
std::uint64_t openSamples(const FileManager& fileManager, const std::vector<BankRecipe>& recipes);

/// Requires space for `neededSpace` bytes on the volume after the existing device folder is
/// deleted. Does nothing when the free space is unknown. `earlier` is the status of the existing
/// device folder, links not followed.
void requireSpace(const FileManager& fileManager, const FileURL& deviceFolder,
                  const FileStatus& earlier, std::uint64_t neededSpace);

} // namespace torvo
