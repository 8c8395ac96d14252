#pragma once

#include "Platform/SystemFileManager.h"

#include <memory>

namespace torvo::test {

/// Forwards every call to another file. Derived classes override some of them.
class ForwardingFile : public File {
public:
    explicit ForwardingFile(std::unique_ptr<File> behind);

    std::size_t read(std::uint64_t offset, std::span<std::byte> bytes) const override;
    void write(std::uint64_t offset, std::span<const std::byte> bytes) override;
    std::uint64_t size() const override;
    void resize(std::uint64_t size) override;
    void setPermissions(std::filesystem::perms permissions) override;
    void flush() override;
    void close() override;

protected:
    File& behind() const { return *behind_; }

private:
    std::unique_ptr<File> behind_;
};

/// Forwards every call to another file manager, including those of its files.
class ForwardingFileManager : public FileManager {
public:
    explicit ForwardingFileManager(std::shared_ptr<const FileManager> behind = systemFileManager());

    std::optional<FileStatus> linkStatus(const std::filesystem::path& path) const override;
    std::optional<FileStatus> status(const std::filesystem::path& path) const override;
    std::filesystem::path resolve(const std::filesystem::path& path) const override;
    std::filesystem::path linkTarget(const std::filesystem::path& link) const override;
    std::vector<DirectoryEntry>
    contentsOfDirectory(const std::filesystem::path& path) const override;
    void createDirectory(const std::filesystem::path& path) const override;
    void removeItem(const std::filesystem::path& path) const override;
    void copyItem(const std::filesystem::path& source,
                  const std::filesystem::path& destination) const override;
    void replaceItem(const std::filesystem::path& destination,
                     const std::filesystem::path& source) const override;
    std::unique_ptr<File> open(const std::filesystem::path& path, OpenMode mode) const override;
    bool flushDirectory(const std::filesystem::path& path) const override;
    void flushVolume(const std::filesystem::path& path) const override;
    std::unique_ptr<FolderLock> lockFolder(const std::filesystem::path& folder) const override;
    std::optional<std::uint64_t> availableSpace(const std::filesystem::path& folder) const override;

protected:
    const FileManager& behind() const { return *behind_; }

private:
    std::shared_ptr<const FileManager> behind_;
};

} // namespace torvo::test
