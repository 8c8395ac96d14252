#include "RecordingFileManager.h"

#include <algorithm>
#include <utility>

namespace torvo::test {

namespace fs = std::filesystem;

namespace {

std::string shownPath(const fs::path& path, const fs::path& root) {
    const auto relative = path.lexically_relative(root);
    const auto name = relative.filename().string();
    const bool isTemporary = name.starts_with(".torvo-") && name.ends_with(".tmp");
    return (isTemporary ? relative.parent_path() / ".tmp" : relative).string();
}

} // namespace

void FileCallLog::add(const FileCall& call) {
    const std::scoped_lock lock(mutex_);
    calls_.push_back(call);
}

std::vector<std::string> FileCallLog::described(const fs::path& root,
                                                const std::vector<std::string>& functions) const {
    const std::scoped_lock lock(mutex_);
    std::vector<std::string> lines;
    for (const auto& call : calls_) {
        if (functions.empty() || std::ranges::count(functions, call.function) != 0)
            lines.push_back(call.function + " " + shownPath(call.path, root));
    }
    return lines;
}

RecordingFileManager::RecordingFileManager(const std::shared_ptr<FileCallLog>& log,
                                           std::shared_ptr<const FileManager> behind)
    : ForwardingFileManager(std::move(behind), [log](const FileCall& call) { log->add(call); }) {}

} // namespace torvo::test
