#pragma once

#include "Platform/FileManager.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace torvo {

/// A new file that the destructor removes unless `replace` succeeded.
class TemporaryFile {
public:
    TemporaryFile(const FileManager& fileManager, std::filesystem::path path);

    File& content() { return *file_; }
    FileStatus status() const;
    /// Ignores the error of file systems without permissions, such as FAT and many network shares.
    void setPermissions(std::filesystem::perms permissions);
    /// Renames the file. A `FileError` names `destination`.
    void replace(const std::filesystem::path& destination);

private:
    /// Constructed before the file is opened, because open() may create the file and still fail.
    class Removal {
    public:
        Removal(const FileManager& fileManager, const std::filesystem::path& path)
            : fileManager_(fileManager), path_(path) {}
        ~Removal();
        Removal(const Removal&) = delete;
        Removal& operator=(const Removal&) = delete;
        void cancel() { isCancelled_ = true; }

    private:
        const FileManager& fileManager_;
        const std::filesystem::path& path_;
        bool isCancelled_ = false;
    };

    const FileManager& fileManager_;
    std::filesystem::path path_;
    Removal removal_;
    std::unique_ptr<File> file_;
};

/// Writes the new content of `destination` into a hidden temporary file in the same folder and
/// closes it. `write` is called with the empty file, which has `permissions` already. On failure
/// the temporary file is removed and the `FileError` names `destination`; errors of files that
/// `write` reads keep their own path.
std::unique_ptr<TemporaryFile> writeTemporaryFile(const FileManager& fileManager,
                                                  const std::filesystem::path& destination,
                                                  std::optional<std::filesystem::perms> permissions,
                                                  const std::function<void(File&)>& write);

} // namespace torvo
