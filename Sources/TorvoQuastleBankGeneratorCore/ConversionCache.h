#pragma once

#include "AudioSupport.h"
#include "Platform/TaskGroup.h"

#include <condition_variable>
#include <cstddef>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <vector>

namespace torvo {

/// Holds the converted files of one export in memory. Files are converted ahead of their use on the
/// threads of the caller's oneTBB arena and kept while later banks need them. When the memory
/// budget is exhausted, the file whose next use is furthest away is evicted and converted again
/// later. The number of threads and the budget do not affect the contents of the files.
///
/// Not thread-safe: all functions must be called from one thread.
class ConversionCache {
public:
    static constexpr std::size_t defaultMemoryBudget = std::size_t{192} * 1024 * 1024; // bytes

    /// `uses` lists the samples in the order in which the export needs them, with repetitions; the
    /// samples must outlive the cache. `memoryBudget` is in bytes.
    ConversionCache(std::shared_ptr<const AudioFilePreparing> preparer,
                    const std::vector<const SampleCandidate*>& uses, std::size_t memoryBudget);
    /// Stops the conversions in progress and waits for them.
    ~ConversionCache();
    ConversionCache(const ConversionCache&) = delete;
    ConversionCache& operator=(const ConversionCache&) = delete;

    /// Returns the converted file for `uses[use]`. Null when the caller must let the preparer write
    /// the sample, because it is copied or too large for the cache. `use` must not decrease between
    /// calls. Throws the error of the sample's conversion.
    std::shared_ptr<const ConvertedFile> take(std::size_t use);

private:
    enum class State { pending, running, finished, notHeld };
    struct Entry {
        const SampleCandidate* sample = nullptr;
        std::vector<std::size_t> uses = {}; ///< ascending
        State state = State::pending;
        std::shared_ptr<const ConvertedFile> file = nullptr;
        std::exception_ptr failure = nullptr;
    };
    using Lock = std::unique_lock<std::mutex>;

    void advance(std::size_t use);
    std::size_t nextUse(const Entry& entry) const;
    Entry* nextToConvert();
    bool makeRoom(std::size_t use);
    bool evictNeededAfter(std::size_t use);
    void convert(Entry& entry, Lock& lock);
    void startTasks();
    void convertAhead();

    std::shared_ptr<const AudioFilePreparing> preparer_;
    std::size_t memoryBudget_; ///< bytes
    std::size_t maxFileSize_;  ///< maximum bytes of one converted file
    int maxTasks_;
    std::stop_source stop_;
    std::mutex mutex_; ///< guards the members below
    std::condition_variable converted_;
    std::vector<Entry> entries_;       ///< one for each source file to convert
    std::vector<Entry*> entriesByUse_; ///< null for a sample that is copied
    std::size_t position_ = 0;         ///< the current use
    std::size_t heldBytes_ = 0;
    std::size_t runningConversions_ = 0;
    int taskCount_ = 0;
    TaskGroup tasks_;
};

} // namespace torvo
