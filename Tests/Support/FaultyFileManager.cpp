#include "FaultyFileManager.h"

#include "Platform/FileOperations.h"

#include <utility>

namespace torvo::test {

namespace fs = std::filesystem;

namespace {

class FaultyFile final : public ForwardingFile {
public:
    FaultyFile(std::unique_ptr<File> behind, fs::path path, std::shared_ptr<FaultPlan> plan)
        : ForwardingFile(std::move(behind)), path_(std::move(path)), plan_(std::move(plan)) {}

    std::size_t read(std::uint64_t offset, std::span<std::byte> bytes) const override {
        plan_->check(FileOperation::read, path_);
        return behind().read(offset, bytes);
    }

    void write(std::uint64_t offset, std::span<const std::byte> bytes) override {
        if (plan_->countsAndFails(FileOperation::write, path_)) {
            behind().write(offset, bytes.first(bytes.size() / 2));
            throw FileError(FileOperation::write, path_, plan_->errorNumber());
        }
        behind().write(offset, bytes);
    }

    std::uint64_t size() const override {
        plan_->check(FileOperation::inspect, path_);
        return behind().size();
    }

    void resize(std::uint64_t size) override {
        plan_->check(FileOperation::write, path_);
        behind().resize(size);
    }

    void setPermissions(fs::perms permissions) override {
        plan_->check(FileOperation::write, path_);
        behind().setPermissions(permissions);
    }

    void flush() override { plan_->check(FileOperation::flush, path_); }

    void close() override {
        behind().close();
        plan_->check(FileOperation::flush, path_);
    }

private:
    fs::path path_;
    std::shared_ptr<FaultPlan> plan_;
};

void copyFirstHalf(const FileManager& fileManager, const fs::path& source,
                   const fs::path& destination) {
    const auto bytes = readFile(fileManager, source);
    const auto file = fileManager.open(destination, OpenMode::createUnique);
    file->write(0, std::span(bytes).first(bytes.size() / 2));
    file->close();
}

} // namespace

bool FaultPlan::countsAndFails(FileOperation operation, const fs::path& path) {
    const auto number = ++count_;
    const bool fails =
        failAt_ != 0 && (extent_ == Extent::once ? number == failAt_ : number >= failAt_);
    if (fails) {
        const std::scoped_lock lock(mutex_);
        faults_.emplace_back(operation, path, errorNumber_);
    }
    return fails;
}

void FaultPlan::check(FileOperation operation, const fs::path& path) {
    if (countsAndFails(operation, path))
        throw FileError(operation, path, errorNumber_);
}

std::vector<FileError> FaultPlan::faults() const {
    const std::scoped_lock lock(mutex_);
    return faults_;
}

FaultyFileManager::FaultyFileManager(std::shared_ptr<const FileManager> behind,
                                     std::shared_ptr<FaultPlan> plan)
    : ForwardingFileManager(std::move(behind)), plan_(std::move(plan)) {}

std::optional<FileStatus> FaultyFileManager::linkStatus(const fs::path& path) const {
    plan_->check(FileOperation::inspect, path);
    return behind().linkStatus(path);
}

std::optional<FileStatus> FaultyFileManager::status(const fs::path& path) const {
    plan_->check(FileOperation::inspect, path);
    return behind().status(path);
}

fs::path FaultyFileManager::resolve(const fs::path& path) const {
    plan_->check(FileOperation::read, path);
    return behind().resolve(path);
}

fs::path FaultyFileManager::linkTarget(const fs::path& link) const {
    plan_->check(FileOperation::inspect, link);
    return behind().linkTarget(link);
}

std::vector<DirectoryEntry> FaultyFileManager::contentsOfDirectory(const fs::path& path) const {
    plan_->check(FileOperation::list, path);
    return behind().contentsOfDirectory(path);
}

void FaultyFileManager::createDirectory(const fs::path& path) const {
    plan_->check(FileOperation::createFolder, path);
    behind().createDirectory(path);
}

void FaultyFileManager::removeItem(const fs::path& path) const {
    plan_->check(FileOperation::remove, path);
    behind().removeItem(path);
}

void FaultyFileManager::copyItem(const fs::path& source, const fs::path& destination) const {
    if (plan_->countsAndFails(FileOperation::copy, destination)) {
        copyFirstHalf(behind(), source, destination);
        throw FileError(FileOperation::copy, destination, plan_->errorNumber());
    }
    behind().copyItem(source, destination);
}

void FaultyFileManager::replaceItem(const fs::path& destination, const fs::path& source) const {
    plan_->check(FileOperation::replace, destination);
    behind().replaceItem(destination, source);
}

std::unique_ptr<File> FaultyFileManager::open(const fs::path& path, OpenMode mode) const {
    const bool forReading = mode == OpenMode::read || mode == OpenMode::update;
    plan_->check(forReading ? FileOperation::read : FileOperation::write, path);
    return std::make_unique<FaultyFile>(behind().open(path, mode), path, plan_);
}

bool FaultyFileManager::flushDirectory(const fs::path& path) const {
    plan_->check(FileOperation::flush, path);
    return true;
}

void FaultyFileManager::flushVolume(const fs::path& path) const {
    plan_->check(FileOperation::flush, path);
}

std::unique_ptr<FolderLock> FaultyFileManager::lockFolder(const fs::path& folder) const {
    plan_->check(FileOperation::lock, folder);
    return behind().lockFolder(folder);
}

} // namespace torvo::test
