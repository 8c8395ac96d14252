#pragma once

#include "ForwardingFileManager.h"

namespace torvo::test {

/// A file system in which one folder is locked: it can neither be listed, nor can anything in it be
/// opened, created or replaced (`EACCES`). Tests may run as root, whom permission bits do not stop.
class LockedFolderFileManager final : public ForwardingFileManager {
public:
    explicit LockedFolderFileManager(std::filesystem::path locked);

    std::vector<DirectoryEntry>
    contentsOfDirectory(const std::filesystem::path& path) const override;
    void createDirectory(const std::filesystem::path& path) const override;
    void removeItem(const std::filesystem::path& path) const override;
    void copyItem(const std::filesystem::path& source,
                  const std::filesystem::path& destination) const override;
    void replaceItem(const std::filesystem::path& destination,
                     const std::filesystem::path& source) const override;
    std::unique_ptr<File> open(const std::filesystem::path& path, OpenMode mode) const override;

private:
    void requireUnlockedParent(FileOperation operation, const std::filesystem::path& path) const;

    std::filesystem::path locked_;
};

} // namespace torvo::test
