#include "ForwardingFileManager.h"

#include <utility>

namespace torvo::test {

namespace fs = std::filesystem;

namespace {

const char* nameOf(OpenMode mode) {
    switch (mode) {
    case OpenMode::read:
        return "open read";
    case OpenMode::create:
        return "open create";
    case OpenMode::createUnique:
        break;
    }
    return "open createUnique";
}

} // namespace

FileHook failing(const std::string& function, int errorNumber) {
    return [=](const FileCall& call) {
        if (call.function == function)
            throw FileError(call.operation, call.path, errorNumber);
    };
}

ForwardingFile::ForwardingFile(std::unique_ptr<File> behind, FileHook hook)
    : behind_(std::move(behind)), hook_(std::move(hook)) {}

void ForwardingFile::callHook(const char* function, FileOperation operation, std::uint64_t offset,
                              std::size_t size) const {
    if (hook_)
        hook_({function, path(), operation, offset, size});
}

std::size_t ForwardingFile::read(std::uint64_t offset, std::span<std::byte> bytes) const {
    callHook("read", FileOperation::read, offset, bytes.size());
    return behind_->read(offset, bytes);
}

void ForwardingFile::writeParts(std::uint64_t offset, std::span<const Bytes> parts) {
    std::size_t size = 0;
    for (const auto& part : parts)
        size += part.size();
    callHook("write", FileOperation::write, offset, size);
    behind_->writeParts(offset, parts);
}

void ForwardingFile::copyFrom(const File& source, const FileEdit& edit) {
    callHook("copyFrom", FileOperation::copy);
    behind_->copyFrom(source, edit);
}

fs::path ForwardingFile::path() const {
    return behind_->path();
}

std::optional<int> ForwardingFile::descriptor() const {
    return behind_->descriptor();
}

std::uint64_t ForwardingFile::size() const {
    callHook("size", FileOperation::inspect);
    return behind_->size();
}

void ForwardingFile::setPermissions(fs::perms permissions) {
    callHook("setPermissions", FileOperation::write);
    behind_->setPermissions(permissions);
}

void ForwardingFile::flush() {
    callHook("flush", FileOperation::flush);
    behind_->flush();
}

void ForwardingFile::close() {
    behind_->close();
    callHook("close", FileOperation::flush);
}

ForwardingFileManager::ForwardingFileManager(std::shared_ptr<const FileManager> behind,
                                             FileHook hook)
    : behind_(std::move(behind)), hook_(std::move(hook)) {}

ForwardingFileManager::ForwardingFileManager(FileHook hook)
    : ForwardingFileManager(systemFileManager(), std::move(hook)) {}

void ForwardingFileManager::callHook(const char* function, FileOperation operation,
                                     const fs::path& path) const {
    if (hook_)
        hook_({function, path, operation});
}

std::optional<FileStatus> ForwardingFileManager::linkStatus(const fs::path& path) const {
    callHook("linkStatus", FileOperation::inspect, path);
    return behind_->linkStatus(path);
}

std::optional<FileStatus> ForwardingFileManager::status(const fs::path& path) const {
    callHook("status", FileOperation::inspect, path);
    return behind_->status(path);
}

fs::path ForwardingFileManager::resolve(const fs::path& path) const {
    callHook("resolve", FileOperation::read, path);
    return behind_->resolve(path);
}

fs::path ForwardingFileManager::linkTarget(const fs::path& link) const {
    callHook("linkTarget", FileOperation::inspect, link);
    return behind_->linkTarget(link);
}

std::vector<DirectoryEntry> ForwardingFileManager::contentsOfDirectory(const fs::path& path) const {
    callHook("contentsOfDirectory", FileOperation::list, path);
    return behind_->contentsOfDirectory(path);
}

void ForwardingFileManager::createDirectory(const fs::path& path) const {
    callHook("createDirectory", FileOperation::createFolder, path);
    behind_->createDirectory(path);
}

void ForwardingFileManager::removeItem(const fs::path& path) const {
    callHook("removeItem", FileOperation::remove, path);
    behind_->removeItem(path);
}

void ForwardingFileManager::replaceItem(const fs::path& destination, const fs::path& source) const {
    callHook("replaceItem", FileOperation::replace, destination);
    behind_->replaceItem(destination, source);
}

std::unique_ptr<File> ForwardingFileManager::open(const fs::path& path, OpenMode mode) const {
    callHook(nameOf(mode), mode == OpenMode::read ? FileOperation::read : FileOperation::write,
             path);
    return wrapped(behind_->open(path, mode));
}

std::unique_ptr<File> ForwardingFileManager::wrapped(std::unique_ptr<File> file) const {
    return hook_ ? std::make_unique<ForwardingFile>(std::move(file), hook_) : std::move(file);
}

bool ForwardingFileManager::flushDirectory(const fs::path& path) const {
    callHook("flushDirectory", FileOperation::flush, path);
    return behind_->flushDirectory(path);
}

void ForwardingFileManager::flushVolume(const fs::path& path) const {
    callHook("flushVolume", FileOperation::flush, path);
    behind_->flushVolume(path);
}

bool ForwardingFileManager::volumeFlushCoversFiles(const fs::path& folder) const {
    return behind_->volumeFlushCoversFiles(folder);
}

std::unique_ptr<FolderLock> ForwardingFileManager::lockFolder(const fs::path& folder) const {
    callHook("lockFolder", FileOperation::lock, folder);
    return behind_->lockFolder(folder);
}

std::optional<std::uint64_t> ForwardingFileManager::availableSpace(const fs::path& folder) const {
    callHook("availableSpace", FileOperation::inspect, folder);
    return behind_->availableSpace(folder);
}

bool ForwardingFileManager::isMountPoint(const fs::path& folder) const {
    callHook("isMountPoint", FileOperation::inspect, folder);
    return behind_->isMountPoint(folder);
}

} // namespace torvo::test
