#pragma once

#include "Platform/FileManager.h"
#include "Platform/FileURL.h"

#include <memory>

namespace torvo {

/// Locks the folder that contains the device folder, so that only one program writes there at a
/// time. Throws `GenerationError::exportFailed` while another program holds the lock. Null when the
/// folder cannot be locked, for example because its file system does not support flock().
std::unique_ptr<FolderLock> lockForWriting(const FileManager& fileManager, const FileURL& folder);

/// The folder to lock while settings are written to `stamped`. After resolving links, this is the
/// parent of the device folder that contains `stamped`, or `stamped` itself when it is in no device
/// folder.
FileURL folderToLockForStamping(const FileManager& fileManager, const FileURL& stamped);

} // namespace torvo
