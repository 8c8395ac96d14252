#pragma once

#include "ForwardingFileManager.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace torvo::test {

/// One call of a file manager or of a file that it opened.
struct FileCall {
    /// The function's name; for `open` the name of the mode ("read", "update", "create",
    /// "createUnique") is added: "open update". A file's own `read` is "read".
    std::string operation;
    std::filesystem::path path; ///< of a copy or a replacement: the destination
};

/// The calls of one `RecordingFileManager` and its files, from any thread.
class FileCallLog {
public:
    /// Called before each operation, but after the file was closed for `close`. Its exceptions
    /// become those of the operation.
    using Hook = std::function<void(const FileCall&)>;

    explicit FileCallLog(Hook hook = {}) : hook_(std::move(hook)) {}

    void add(std::string operation, const std::filesystem::path& path);
    /// In the order in which they were made.
    std::vector<FileCall> calls() const;
    /// The calls as text, "write Bank 1/info.txt": paths relative to `root`, which is ".", and the
    /// name of a temporary file as ".tmp". With `operations`, only the calls of these functions.
    std::vector<std::string> described(const std::filesystem::path& root,
                                       const std::vector<std::string>& operations = {}) const;

private:
    Hook hook_;
    mutable std::mutex mutex_;
    std::vector<FileCall> calls_;
};

/// Records and forwards every call.
class RecordingFileManager final : public ForwardingFileManager {
public:
    explicit RecordingFileManager(std::shared_ptr<FileCallLog> log,
                                  std::shared_ptr<const FileManager> behind = systemFileManager());

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

private:
    std::shared_ptr<FileCallLog> log_;
};

} // namespace torvo::test
