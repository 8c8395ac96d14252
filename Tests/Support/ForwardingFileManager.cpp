#include "ForwardingFileManager.h"

#include <utility>

namespace torvo::test {

namespace fs = std::filesystem;

ForwardingFile::ForwardingFile(std::unique_ptr<File> behind) : behind_(std::move(behind)) {}

std::size_t ForwardingFile::read(std::uint64_t offset, std::span<std::byte> bytes) const {
    return behind_->read(offset, bytes);
}

void ForwardingFile::write(std::uint64_t offset, std::span<const std::byte> bytes) {
    behind_->write(offset, bytes);
}

std::uint64_t ForwardingFile::size() const {
    return behind_->size();
}

void ForwardingFile::resize(std::uint64_t size) {
    behind_->resize(size);
}

void ForwardingFile::setPermissions(fs::perms permissions) {
    behind_->setPermissions(permissions);
}

void ForwardingFile::flush() {
    behind_->flush();
}

void ForwardingFile::close() {
    behind_->close();
}

ForwardingFileManager::ForwardingFileManager(std::shared_ptr<const FileManager> behind)
    : behind_(std::move(behind)) {}

std::optional<FileStatus> ForwardingFileManager::linkStatus(const fs::path& path) const {
    return behind_->linkStatus(path);
}

std::optional<FileStatus> ForwardingFileManager::status(const fs::path& path) const {
    return behind_->status(path);
}

fs::path ForwardingFileManager::resolve(const fs::path& path) const {
    return behind_->resolve(path);
}

fs::path ForwardingFileManager::linkTarget(const fs::path& link) const {
    return behind_->linkTarget(link);
}

std::vector<DirectoryEntry> ForwardingFileManager::contentsOfDirectory(const fs::path& path) const {
    return behind_->contentsOfDirectory(path);
}

void ForwardingFileManager::createDirectory(const fs::path& path) const {
    behind_->createDirectory(path);
}

void ForwardingFileManager::removeItem(const fs::path& path) const {
    behind_->removeItem(path);
}

void ForwardingFileManager::copyItem(const fs::path& source, const fs::path& destination) const {
    behind_->copyItem(source, destination);
}

void ForwardingFileManager::replaceItem(const fs::path& destination, const fs::path& source) const {
    behind_->replaceItem(destination, source);
}

std::unique_ptr<File> ForwardingFileManager::open(const fs::path& path, OpenMode mode) const {
    return behind_->open(path, mode);
}

bool ForwardingFileManager::flushDirectory(const fs::path& path) const {
    return behind_->flushDirectory(path);
}

void ForwardingFileManager::flushVolume(const fs::path& path) const {
    behind_->flushVolume(path);
}

std::unique_ptr<FolderLock> ForwardingFileManager::lockFolder(const fs::path& folder) const {
    return behind_->lockFolder(folder);
}

std::optional<std::uint64_t> ForwardingFileManager::availableSpace(const fs::path& folder) const {
    return behind_->availableSpace(folder);
}

} // namespace torvo::test
