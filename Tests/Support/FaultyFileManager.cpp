#include "FaultyFileManager.h"

#include "Platform/FileOperations.h"

#include <utility>

namespace torvo::test {

namespace fs = std::filesystem;

namespace {

class FaultyFile final : public ForwardingFile {
public:
    FaultyFile(std::unique_ptr<File> behind, const fs::path& path, const FileHook& hook,
               std::shared_ptr<FaultPlan> plan)
        : ForwardingFile(std::move(behind), path, hook), plan_(std::move(plan)) {}

    void write(std::uint64_t offset, std::span<const std::byte> bytes) override {
        if (plan_->countsAndFails(FileOperation::write, path())) {
            behind().write(offset, bytes.first(bytes.size() / 2));
            throw FileError(FileOperation::write, path(), plan_->errorNumber());
        }
        behind().write(offset, bytes);
    }

    void flush() override { plan_->check(FileOperation::flush, path()); }

private:
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
                                     const std::shared_ptr<FaultPlan>& plan)
    : ForwardingFileManager(
          std::move(behind),
          [plan](const FileCall& call) { plan->check(call.operation, call.path); }),
      plan_(plan) {}

void FaultyFileManager::copyItem(const fs::path& source, const fs::path& destination) const {
    if (plan_->countsAndFails(FileOperation::copy, destination)) {
        copyFirstHalf(behind(), source, destination);
        throw FileError(FileOperation::copy, destination, plan_->errorNumber());
    }
    behind().copyItem(source, destination);
}

std::unique_ptr<File> FaultyFileManager::wrapped(std::unique_ptr<File> file,
                                                 const fs::path& path) const {
    return std::make_unique<FaultyFile>(std::move(file), path, hook(), plan_);
}

bool FaultyFileManager::flushDirectory(const fs::path& path) const {
    plan_->check(FileOperation::flush, path);
    return true;
}

void FaultyFileManager::flushVolume(const fs::path& path) const {
    plan_->check(FileOperation::flush, path);
}

std::optional<std::uint64_t> FaultyFileManager::availableSpace(const fs::path& folder) const {
    return behind().availableSpace(folder);
}

} // namespace torvo::test
