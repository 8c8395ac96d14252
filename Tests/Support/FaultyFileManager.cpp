#include "FaultyFileManager.h"

#include <utility>

namespace torvo::test {

namespace fs = std::filesystem;

namespace {

class FaultyFile final : public File {
public:
    FaultyFile(std::unique_ptr<File> behind, fs::path path, std::shared_ptr<FaultPlan> plan)
        : behind_(std::move(behind)), path_(std::move(path)), plan_(std::move(plan)) {}

    std::size_t read(std::uint64_t offset, std::span<std::byte> bytes) const override {
        check(FileOperation::read);
        return behind_->read(offset, bytes);
    }

    void write(std::uint64_t offset, std::span<const std::byte> bytes) override {
        if (plan_->countsAndFails(FileOperation::write, path_)) {
            behind_->write(offset, bytes.first(bytes.size() / 2));
            throw FileError(FileOperation::write, path_, plan_->errorNumber());
        }
        behind_->write(offset, bytes);
    }

    std::uint64_t size() const override {
        check(FileOperation::inspect);
        return behind_->size();
    }

    void resize(std::uint64_t size) override {
        check(FileOperation::write);
        behind_->resize(size);
    }

    void setPermissions(fs::perms permissions) override {
        check(FileOperation::write);
        behind_->setPermissions(permissions);
    }

    void flush() override { check(FileOperation::flush); }

    void close() override {
        behind_->close();
        check(FileOperation::flush);
    }

private:
    void check(FileOperation operation) const {
        if (plan_->countsAndFails(operation, path_))
            throw FileError(operation, path_, plan_->errorNumber());
    }

    std::unique_ptr<File> behind_;
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

std::vector<FileError> FaultPlan::faults() const {
    const std::scoped_lock lock(mutex_);
    return faults_;
}

FaultyFileManager::FaultyFileManager(std::shared_ptr<const FileManager> behind,
                                     std::shared_ptr<FaultPlan> plan)
    : behind_(std::move(behind)), plan_(std::move(plan)) {}

void FaultyFileManager::check(FileOperation operation, const fs::path& path) const {
    if (plan_->countsAndFails(operation, path))
        throw FileError(operation, path, plan_->errorNumber());
}

std::optional<FileStatus> FaultyFileManager::linkStatus(const fs::path& path) const {
    check(FileOperation::inspect, path);
    return behind_->linkStatus(path);
}

std::optional<FileStatus> FaultyFileManager::status(const fs::path& path) const {
    check(FileOperation::inspect, path);
    return behind_->status(path);
}

fs::path FaultyFileManager::resolve(const fs::path& path) const {
    check(FileOperation::read, path);
    return behind_->resolve(path);
}

std::vector<DirectoryEntry> FaultyFileManager::contentsOfDirectory(const fs::path& path) const {
    check(FileOperation::list, path);
    return behind_->contentsOfDirectory(path);
}

void FaultyFileManager::createDirectory(const fs::path& path) const {
    check(FileOperation::createFolder, path);
    behind_->createDirectory(path);
}

void FaultyFileManager::removeItem(const fs::path& path) const {
    check(FileOperation::remove, path);
    behind_->removeItem(path);
}

void FaultyFileManager::copyItem(const fs::path& source, const fs::path& destination) const {
    if (plan_->countsAndFails(FileOperation::copy, destination)) {
        copyFirstHalf(*behind_, source, destination);
        throw FileError(FileOperation::copy, destination, plan_->errorNumber());
    }
    behind_->copyItem(source, destination);
}

void FaultyFileManager::replaceItem(const fs::path& destination, const fs::path& source) const {
    check(FileOperation::replace, destination);
    behind_->replaceItem(destination, source);
}

std::unique_ptr<File> FaultyFileManager::open(const fs::path& path, OpenMode mode) const {
    const bool forReading = mode == OpenMode::read || mode == OpenMode::update;
    check(forReading ? FileOperation::read : FileOperation::write, path);
    return std::make_unique<FaultyFile>(behind_->open(path, mode), path, plan_);
}

void FaultyFileManager::flushVolume(const fs::path& path) const {
    check(FileOperation::flush, path);
}

} // namespace torvo::test
