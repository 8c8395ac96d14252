#pragma once

#include "AudioSupport/Conversion.h"
#include "Platform/FileManager.h"
#include "Platform/FileURL.h"

#include <tbb/task_group.h>

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace torvo {

/// A converted file in memory.
struct ConvertedBytes {
    std::vector<std::byte> file; ///< header and audio
    ConvertedAudio audio;
};

/// Converts a list of files before they are asked for, on the cores that the caller's task arena
/// has to give, and never holds more than its memory budget. What comes out does not depend on how
/// many threads there are, only when.
class AheadConverter {
public:
    /// `sources` in the order in which they will be asked for. `memoryBudget` in bytes.
    AheadConverter(std::shared_ptr<const FileManager> fileManager, std::vector<FileURL> sources,
                   std::size_t memoryBudget);
    /// Stops what is under way and waits for it: no longer than one block takes.
    ~AheadConverter() noexcept;
    AheadConverter(const AheadConverter&) = delete;
    AheadConverter& operator=(const AheadConverter&) = delete;

    /// The converted source, which this thread converts itself when nobody has begun; while another
    /// thread is at it, this one converts what comes next. Null for a recording that is too long to
    /// be held, or that was released. Throws what its conversion threw.
    std::shared_ptr<const ConvertedBytes> take(std::size_t index);
    /// Frees a source's result for good.
    void release(std::size_t index);

private:
    enum class State { waiting, running, finished, unavailable };
    struct Item {
        FileURL source;
        State state = State::waiting;
        std::shared_ptr<const ConvertedBytes> result = nullptr;
        std::exception_ptr failure = nullptr;
    };
    using Lock = std::unique_lock<std::mutex>;

    std::optional<std::size_t> nextToConvert();
    bool mayConvertAnother();
    void convert(std::size_t index, Lock& lock);
    std::shared_ptr<const ConvertedBytes> converted(const FileURL& source) const;
    void startTasks();
    void work();

    std::shared_ptr<const FileManager> fileManager_;
    std::vector<Item> items_;
    std::size_t memoryBudget_;  ///< bytes
    std::size_t longestResult_; ///< bytes that one result may take
    int taskLimit_;
    std::mutex mutex_; ///< guards what follows, and the items but for their sources
    std::condition_variable changed_;
    std::size_t nextIndex_ = 0; ///< all before it are past waiting
    std::size_t heldBytes_ = 0;
    std::size_t runningCount_ = 0;
    int taskCount_ = 0;
    std::atomic<bool> isStopping_ = false;
    tbb::task_group tasks_;
};

} // namespace torvo
