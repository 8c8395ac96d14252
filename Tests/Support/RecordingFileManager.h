#pragma once

#include "ForwardingFileManager.h"

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace torvo::test {

/// The calls of one `RecordingFileManager` and its files, from any thread.
class FileCallLog {
public:
    void add(const FileCall& call);
    /// The calls as text, in the order in which they were made, "write Bank 1/info.txt": paths
    /// relative to `root`, which is ".", and the name of a temporary file as ".tmp". With
    /// `functions`, only the calls of these functions.
    std::vector<std::string> described(const std::filesystem::path& root,
                                       const std::vector<std::string>& functions = {}) const;

private:
    mutable std::mutex mutex_;
    std::vector<FileCall> calls_;
};

/// Records and forwards every call.
class RecordingFileManager final : public ForwardingFileManager {
public:
    explicit RecordingFileManager(const std::shared_ptr<FileCallLog>& log,
                                  std::shared_ptr<const FileManager> behind = systemFileManager());
};

} // namespace torvo::test
