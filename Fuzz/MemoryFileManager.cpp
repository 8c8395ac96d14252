#include "MemoryFileManager.h"

#include <algorithm>
#include <array>
#include <cerrno>

namespace torvo::fuzz {

namespace fs = std::filesystem;

namespace {

// The size of the simulated card: converting a few seconds of a 1 Hz recording would otherwise
// write hours of audio.
constexpr std::size_t maxFileSize = std::size_t{8} * 1024 * 1024; // bytes

class MemoryFile final : public File {
public:
    MemoryFile(fs::path path, std::shared_ptr<MemoryFileManager::Bytes> bytes)
        : path_(std::move(path)), bytes_(std::move(bytes)) {}

    std::size_t read(std::uint64_t offset, std::span<std::byte> bytes) const override {
        if (offset >= bytes_->size())
            return 0;
        const auto part = std::span(*bytes_).subspan(static_cast<std::size_t>(offset));
        const auto count = std::min(part.size(), bytes.size());
        std::copy_n(part.begin(), count, bytes.begin());
        return count;
    }

    void writeParts(std::uint64_t offset, std::span<const Bytes> parts) override {
        for (const auto& part : parts) {
            const auto end = static_cast<std::size_t>(offset) + part.size();
            if (end > maxFileSize)
                throw FileError(FileOperation::write, path_, ENOSPC);
            if (end > bytes_->size())
                bytes_->resize(end);
            std::ranges::copy(part, bytes_->begin() + static_cast<std::ptrdiff_t>(offset));
            offset += part.size();
        }
    }

    void copyFrom(const File& source, const FileEdit& edit) override {
        std::vector<std::byte> content(static_cast<std::size_t>(source.size()));
        source.read(0, content);
        const auto all = std::span(content);
        const auto rest = static_cast<std::size_t>(edit.offset + edit.replacedSize);
        writeParts(0, std::array<Bytes, 3>{all.first(static_cast<std::size_t>(edit.offset)),
                                           edit.bytes, all.subspan(rest)});
    }

    fs::path path() const override { return path_; }
    std::optional<int> descriptor() const override { return std::nullopt; }
    std::uint64_t size() const override { return bytes_->size(); }
    void setPermissions(fs::perms) override {}
    void flush() override {}
    void close() override {}

private:
    fs::path path_;
    std::shared_ptr<MemoryFileManager::Bytes> bytes_;
};

} // namespace

void MemoryFileManager::put(const fs::path& path, std::span<const std::byte> bytes) {
    files_[path] = std::make_shared<Bytes>(bytes.begin(), bytes.end());
}

std::shared_ptr<const MemoryFileManager::Bytes>
MemoryFileManager::contentOf(const fs::path& path) const {
    const auto found = files_.find(path);
    return found == files_.end() ? nullptr : found->second;
}

const std::shared_ptr<MemoryFileManager::Bytes>&
MemoryFileManager::existing(const fs::path& path) const {
    const auto found = files_.find(path);
    if (found == files_.end())
        throw FileError(FileOperation::read, path, ENOENT);
    return found->second;
}

std::optional<FileStatus> MemoryFileManager::linkStatus(const fs::path& path) const {
    return status(path);
}

std::optional<FileStatus> MemoryFileManager::status(const fs::path& path) const {
    const auto found = files_.find(path);
    if (found == files_.end())
        return std::nullopt;
    return FileStatus{.kind = FileKind::regular,
                      .size = found->second->size(),
                      .identity = {},
                      .permissions = fs::perms::owner_all};
}

fs::path MemoryFileManager::resolve(const fs::path& path) const {
    existing(path);
    return path;
}

fs::path MemoryFileManager::linkTarget(const fs::path& link) const {
    throw FileError(FileOperation::inspect, link, EINVAL);
}

std::vector<DirectoryEntry> MemoryFileManager::contentsOfDirectory(const fs::path&) const {
    return {};
}

void MemoryFileManager::createDirectory(const fs::path&) const {}

void MemoryFileManager::removeItem(const fs::path& path) const {
    files_.erase(path);
}

void MemoryFileManager::replaceItem(const fs::path& destination, const fs::path& source) const {
    files_[destination] = existing(source);
    files_.erase(source);
}

std::unique_ptr<File> MemoryFileManager::open(const fs::path& path, OpenMode mode) const {
    const bool isNew = mode == OpenMode::create || mode == OpenMode::createUnique;
    if (isNew)
        files_[path] = std::make_shared<Bytes>();
    return std::make_unique<MemoryFile>(path, existing(path));
}

bool MemoryFileManager::flushDirectory(const fs::path&) const {
    return true;
}

void MemoryFileManager::flushVolume(const fs::path&) const {}

bool MemoryFileManager::volumeFlushCoversFiles(const fs::path&) const {
    return true;
}

std::unique_ptr<FolderLock> MemoryFileManager::lockFolder(const fs::path&) const {
    return std::make_unique<FolderLock>();
}

std::optional<std::uint64_t> MemoryFileManager::availableSpace(const fs::path&) const {
    return std::nullopt;
}

bool MemoryFileManager::isMountPoint(const fs::path&) const {
    return false;
}

} // namespace torvo::fuzz
