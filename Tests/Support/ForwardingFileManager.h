#pragma once

#include "Platform/SystemFileManager.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace torvo::test {

/// One call of a file manager or of a file that it opened.
struct FileCall {
    /// The function's name; for `open` the name of the mode ("read", "update", "create",
    /// "createUnique") is added: "open create". A file's own `read` is "read", its `writeParts`
    /// "write".
    std::string function;
    std::filesystem::path path;                    ///< of a replacement: the destination
    FileOperation operation = FileOperation::read; ///< that the `FileError` of a failure names
    std::uint64_t offset = 0;                      ///< of a file's `read` or `write`
    std::size_t size = 0;                          ///< of a file's `read` or `write`, in bytes
};

/// Called before each call is forwarded, but after the file was closed for `close`, from any
/// thread. Its exceptions become those of the call.
using FileHook = std::function<void(const FileCall&)>;

/// Makes every call of a function fail; `errorNumber` is a value of `errno`.
FileHook failing(const std::string& function, int errorNumber);

/// Forwards every call to another file. Derived classes override some of them.
class ForwardingFile : public File {
public:
    explicit ForwardingFile(std::unique_ptr<File> behind, FileHook hook = {});

    std::size_t read(std::uint64_t offset, std::span<std::byte> bytes) const override;
    void writeParts(std::uint64_t offset, std::span<const Bytes> parts) override;
    void copyFrom(const File& source, const FileEdit& edit) override;
    std::filesystem::path path() const override;
    std::optional<int> descriptor() const override;
    std::uint64_t size() const override;
    void setPermissions(std::filesystem::perms permissions) override;
    void flush() override;
    void close() override;

protected:
    File& behind() const { return *behind_; }

private:
    void callHook(const char* function, FileOperation operation, std::uint64_t offset = 0,
                  std::size_t size = 0) const;

    std::unique_ptr<File> behind_;
    FileHook hook_;
};

/// Forwards every call to another file manager, including those of its files. Derived classes
/// override what answers differently; the hook is told of every other call.
class ForwardingFileManager : public FileManager {
public:
    explicit ForwardingFileManager(std::shared_ptr<const FileManager> behind = systemFileManager(),
                                   FileHook hook = {});
    /// The operating system's files with a hook.
    explicit ForwardingFileManager(FileHook hook);

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

protected:
    const FileManager& behind() const { return *behind_; }
    const FileHook& hook() const { return hook_; }
    /// The file that `open` returns for one of the file manager behind.
    virtual std::unique_ptr<File> wrapped(std::unique_ptr<File> file) const;

private:
    void callHook(const char* function, FileOperation operation,
                  const std::filesystem::path& path) const;

    std::shared_ptr<const FileManager> behind_;
    FileHook hook_;
};

} // namespace torvo::test
