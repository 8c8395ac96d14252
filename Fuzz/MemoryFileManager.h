#pragma once

#include "Platform/FileManager.h"

#include <map>
#include <memory>
#include <span>
#include <vector>

namespace torvo::fuzz {

/// Files in memory, without folders, so that the disk does not slow down the fuzzer.
class MemoryFileManager final : public FileManager {
public:
    using Bytes = std::vector<std::byte>;

    void put(const std::filesystem::path& path, std::span<const std::byte> bytes);
    /// The content, or none when there is no such file.
    std::shared_ptr<const Bytes> contentOf(const std::filesystem::path& path) const;

    std::optional<FileStatus> linkStatus(const std::filesystem::path& path) const override;
    std::optional<FileStatus> status(const std::filesystem::path& path) const override;
    std::filesystem::path resolve(const std::filesystem::path& path) const override;
    std::filesystem::path linkTarget(const std::filesystem::path& link) const override;
    std::vector<DirectoryEntry>
    contentsOfDirectory(const std::filesystem::path& path) const override;
    void createDirectory(const std::filesystem::path& path) const override;
    void removeItem(const std::filesystem::path& path) const override;
    void replaceItem(const std::filesystem::path& destination,
                     const std::filesystem::path& source) const override;
    std::unique_ptr<File> open(const std::filesystem::path& path, OpenMode mode) const override;
    bool flushDirectory(const std::filesystem::path& path) const override;
    void flushVolume(const std::filesystem::path& path) const override;
    bool volumeFlushCoversFiles(const std::filesystem::path& folder) const override;
    std::unique_ptr<FolderLock> lockFolder(const std::filesystem::path& folder) const override;
    std::optional<std::uint64_t> availableSpace(const std::filesystem::path& folder) const override;
    bool isMountPoint(const std::filesystem::path& folder) const override;

private:
    const std::shared_ptr<Bytes>& existing(const std::filesystem::path& path) const;

    // The interface is const because the real file manager has no state.
    mutable std::map<std::filesystem::path, std::shared_ptr<Bytes>> files_;
};

} // namespace torvo::fuzz
