#include "FaultyFileManager.h"

#include <utility>

namespace torvo::test {

namespace fs = std::filesystem;

namespace {

class FaultyFile final : public ForwardingFile {
public:
    FaultyFile(std::unique_ptr<File> behind, const FileHook& hook, std::shared_ptr<FaultPlan> plan)
        : ForwardingFile(std::move(behind), hook), plan_(std::move(plan)) {}

    void writeParts(std::uint64_t offset, std::span<const Bytes> parts) override {
        if (plan_->countsAndFails(FileOperation::write, path())) {
            std::vector<std::byte> bytes;
            for (const auto& part : parts)
                bytes.insert(bytes.end(), part.begin(), part.end());
            behind().write(offset, std::span(bytes).first(bytes.size() / 2));
            throw FileError(FileOperation::write, path(), plan_->errorNumber());
        }
        behind().writeParts(offset, parts);
    }

    void copyFrom(const File& source, const FileEdit& edit) override {
        if (plan_->countsAndFails(FileOperation::copy, path())) {
            std::vector<std::byte> firstHalf(source.size() / 2);
            source.read(0, firstHalf);
            behind().write(0, firstHalf);
            throw FileError(FileOperation::copy, path(), plan_->errorNumber());
        }
        behind().copyFrom(source, edit);
    }

    void flush() override { plan_->check(FileOperation::flush, path()); }

private:
    std::shared_ptr<FaultPlan> plan_;
};

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

std::unique_ptr<File> FaultyFileManager::wrapped(std::unique_ptr<File> file) const {
    return std::make_unique<FaultyFile>(std::move(file), hook(), plan_);
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
