#include "RecordingFileManager.h"

#include <algorithm>
#include <utility>

namespace torvo::test {

namespace fs = std::filesystem;

namespace {

class RecordingFile final : public ForwardingFile {
public:
    RecordingFile(std::unique_ptr<File> behind, fs::path path, std::shared_ptr<FileCallLog> log)
        : ForwardingFile(std::move(behind)), path_(std::move(path)), log_(std::move(log)) {}

    std::size_t read(std::uint64_t offset, std::span<std::byte> bytes) const override {
        log_->add("read", path_);
        return behind().read(offset, bytes);
    }

    void write(std::uint64_t offset, std::span<const std::byte> bytes) override {
        log_->add("write", path_);
        behind().write(offset, bytes);
    }

    std::uint64_t size() const override {
        log_->add("size", path_);
        return behind().size();
    }

    void resize(std::uint64_t size) override {
        log_->add("resize", path_);
        behind().resize(size);
    }

    void setPermissions(fs::perms permissions) override {
        log_->add("setPermissions", path_);
        behind().setPermissions(permissions);
    }

    void flush() override {
        log_->add("flush", path_);
        behind().flush();
    }

    void close() override {
        behind().close();
        log_->add("close", path_);
    }

private:
    fs::path path_;
    std::shared_ptr<FileCallLog> log_;
};

const char* nameOf(OpenMode mode) {
    switch (mode) {
    case OpenMode::read:
        return "open read";
    case OpenMode::update:
        return "open update";
    case OpenMode::create:
        return "open create";
    case OpenMode::createUnique:
        break;
    }
    return "open createUnique";
}

std::string shownPath(const fs::path& path, const fs::path& root) {
    const auto relative = path.lexically_relative(root);
    const auto name = relative.filename().string();
    const bool isTemporary = name.starts_with(".torvo-") && name.ends_with(".tmp");
    return (isTemporary ? relative.parent_path() / ".tmp" : relative).string();
}

} // namespace

void FileCallLog::add(std::string operation, const fs::path& path) {
    FileCall call{std::move(operation), path};
    {
        const std::scoped_lock lock(mutex_);
        calls_.push_back(call);
    }
    if (hook_)
        hook_(call);
}

std::vector<FileCall> FileCallLog::calls() const {
    const std::scoped_lock lock(mutex_);
    return calls_;
}

std::vector<std::string> FileCallLog::described(const fs::path& root,
                                                const std::vector<std::string>& operations) const {
    std::vector<std::string> lines;
    for (const auto& call : calls()) {
        if (operations.empty() || std::ranges::count(operations, call.operation) != 0)
            lines.push_back(call.operation + " " + shownPath(call.path, root));
    }
    return lines;
}

RecordingFileManager::RecordingFileManager(std::shared_ptr<FileCallLog> log,
                                           std::shared_ptr<const FileManager> behind)
    : ForwardingFileManager(std::move(behind)), log_(std::move(log)) {}

std::optional<FileStatus> RecordingFileManager::linkStatus(const fs::path& path) const {
    log_->add("linkStatus", path);
    return behind().linkStatus(path);
}

std::optional<FileStatus> RecordingFileManager::status(const fs::path& path) const {
    log_->add("status", path);
    return behind().status(path);
}

fs::path RecordingFileManager::resolve(const fs::path& path) const {
    log_->add("resolve", path);
    return behind().resolve(path);
}

fs::path RecordingFileManager::linkTarget(const fs::path& link) const {
    log_->add("linkTarget", link);
    return behind().linkTarget(link);
}

std::vector<DirectoryEntry> RecordingFileManager::contentsOfDirectory(const fs::path& path) const {
    log_->add("contentsOfDirectory", path);
    return behind().contentsOfDirectory(path);
}

void RecordingFileManager::createDirectory(const fs::path& path) const {
    log_->add("createDirectory", path);
    behind().createDirectory(path);
}

void RecordingFileManager::removeItem(const fs::path& path) const {
    log_->add("removeItem", path);
    behind().removeItem(path);
}

void RecordingFileManager::copyItem(const fs::path& source, const fs::path& destination) const {
    log_->add("copyItem", destination);
    behind().copyItem(source, destination);
}

void RecordingFileManager::replaceItem(const fs::path& destination, const fs::path& source) const {
    log_->add("replaceItem", destination);
    behind().replaceItem(destination, source);
}

std::unique_ptr<File> RecordingFileManager::open(const fs::path& path, OpenMode mode) const {
    log_->add(nameOf(mode), path);
    return std::make_unique<RecordingFile>(behind().open(path, mode), path, log_);
}

bool RecordingFileManager::flushDirectory(const fs::path& path) const {
    log_->add("flushDirectory", path);
    return behind().flushDirectory(path);
}

void RecordingFileManager::flushVolume(const fs::path& path) const {
    log_->add("flushVolume", path);
    behind().flushVolume(path);
}

std::unique_ptr<FolderLock> RecordingFileManager::lockFolder(const fs::path& folder) const {
    log_->add("lockFolder", folder);
    return behind().lockFolder(folder);
}

std::optional<std::uint64_t> RecordingFileManager::availableSpace(const fs::path& folder) const {
    log_->add("availableSpace", folder);
    return behind().availableSpace(folder);
}

} // namespace torvo::test
