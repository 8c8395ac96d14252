#include "WriterLock.h"

#include "Models/Device.h"
#include "Models/GenerationError.h"
#include "Platform/FileOperations.h"

namespace torvo {

std::unique_ptr<FolderLock> lockForWriting(const FileManager& fileManager, const FileURL& folder) {
    try {
        return fileManager.lockFolder(folder.path());
    } catch (const FileError& error) {
        if (error.code() == std::errc::operation_would_block) {
            throw GenerationError::exportFailed("Another program is writing into " +
                                                folder.shownPath() + ". Nothing was changed.");
        }
        return nullptr;
    }
}

FileURL folderToLockForStamping(const FileManager& fileManager, const FileURL& stamped) {
    auto resolved = stamped;
    try {
        resolved = resolvingSymlinks(fileManager, stamped);
    } catch (const FileError&) {
        // The enumeration of the folder reports the error.
    }
    for (auto folder = resolved; folder.path() != "/";
         folder = folder.deletingLastPathComponent()) {
        if (folder.lastPathComponent() == device::folderName)
            return folder.deletingLastPathComponent();
    }
    return resolved;
}

} // namespace torvo
