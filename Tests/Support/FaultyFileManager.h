#pragma once

#include "ForwardingFileManager.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace torvo::test {

/// Which operations of a `FaultyFileManager` fail, and what has failed so far. Shared by the
/// manager and every file that it opened.
class FaultPlan {
public:
    enum class Extent {
        once,    ///< the n-th operation alone
        forGood, ///< the n-th and all later ones, like a removed card
    };

    /// Nothing fails; operations are counted.
    FaultPlan() = default;
    /// `failAt` counts from 1.
    FaultPlan(std::uint64_t failAt, int errorNumber, Extent extent)
        : failAt_(failAt), errorNumber_(errorNumber), extent_(extent) {}

    /// Counts one operation. True when it has to fail.
    bool countsAndFails(FileOperation operation, const std::filesystem::path& path);
    /// Counts one operation. Throws its `FileError` when it has to fail.
    void check(FileOperation operation, const std::filesystem::path& path);

    std::uint64_t operationCount() const { return count_; }
    /// The failed operations, in order.
    std::vector<FileError> faults() const;
    int errorNumber() const { return errorNumber_; }

private:
    std::uint64_t failAt_ = 0;
    int errorNumber_ = 0;
    Extent extent_ = Extent::once;
    std::atomic<std::uint64_t> count_ = 0;
    mutable std::mutex mutex_;
    std::vector<FileError> faults_;
};

/// Injects faults between the program and the disk. A failing write or copy has written its first
/// half, and a file is closed even when `close` fails. Flushes are counted and may fail, but do not
/// wait for the medium: no test here covers a power cut, and a sweep flushes thousands of times.
/// Asking for the available space never fails.
class FaultyFileManager final : public ForwardingFileManager {
public:
    FaultyFileManager(std::shared_ptr<const FileManager> behind,
                      const std::shared_ptr<FaultPlan>& plan);

    bool flushDirectory(const std::filesystem::path& path) const override;
    void flushVolume(const std::filesystem::path& path) const override;
    std::optional<std::uint64_t> availableSpace(const std::filesystem::path& folder) const override;

protected:
    std::unique_ptr<File> wrapped(std::unique_ptr<File> file) const override;

private:
    std::shared_ptr<FaultPlan> plan_;
};

} // namespace torvo::test
