#include "LockedFolderFileManager.h"

#include <cerrno>
#include <utility>

namespace torvo::test {

namespace fs = std::filesystem;

LockedFolderFileManager::LockedFolderFileManager(fs::path locked) : locked_(std::move(locked)) {}

void LockedFolderFileManager::requireUnlockedParent(FileOperation operation,
                                                    const fs::path& path) const {
    if (path.parent_path() == locked_)
        throw FileError(operation, path, EACCES);
}

std::vector<DirectoryEntry>
LockedFolderFileManager::contentsOfDirectory(const fs::path& path) const {
    if (path == locked_)
        throw FileError(FileOperation::list, path, EACCES);
    return behind().contentsOfDirectory(path);
}

void LockedFolderFileManager::createDirectory(const fs::path& path) const {
    requireUnlockedParent(FileOperation::createFolder, path);
    behind().createDirectory(path);
}

void LockedFolderFileManager::removeItem(const fs::path& path) const {
    requireUnlockedParent(FileOperation::remove, path);
    behind().removeItem(path);
}

void LockedFolderFileManager::copyItem(const fs::path& source, const fs::path& destination) const {
    requireUnlockedParent(FileOperation::read, source);
    requireUnlockedParent(FileOperation::copy, destination);
    behind().copyItem(source, destination);
}

void LockedFolderFileManager::replaceItem(const fs::path& destination,
                                          const fs::path& source) const {
    requireUnlockedParent(FileOperation::replace, destination);
    behind().replaceItem(destination, source);
}

std::unique_ptr<File> LockedFolderFileManager::open(const fs::path& path, OpenMode mode) const {
    requireUnlockedParent(mode == OpenMode::read ? FileOperation::read : FileOperation::write,
                          path);
    return behind().open(path, mode);
}

} // namespace torvo::test
