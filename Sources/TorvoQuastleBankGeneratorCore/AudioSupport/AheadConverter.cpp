#include "AudioSupport/AheadConverter.h"

#include "AudioSupport/ConvertedFileWriter.h"
#include "Platform/TaskOrder.h"

#include <tbb/global_control.h>
#include <tbb/task_arena.h>

#include <algorithm>
#include <array>
#include <utility>

namespace torvo {

namespace {

// Every recording of up to 47 seconds can be held, however many threads share the budget.
constexpr std::size_t leastShare = std::size_t{4} * 1024 * 1024; // bytes

int availableThreads() {
    const auto allowed =
        tbb::global_control::active_value(tbb::global_control::max_allowed_parallelism);
    return std::min(tbb::this_task_arena::max_concurrency(), static_cast<int>(allowed));
}

} // namespace

AheadConverter::AheadConverter(std::shared_ptr<const FileManager> fileManager,
                               std::vector<FileURL> sources, std::size_t memoryBudget)
    : fileManager_(std::move(fileManager)),
      memoryBudget_(memoryBudget),
      longestResult_(
          std::max(leastShare, memoryBudget / static_cast<std::size_t>(2 * availableThreads()))),
      taskLimit_(availableThreads() - 1) {
    items_.reserve(sources.size());
    for (FileURL& source : sources)
        items_.push_back({.source = std::move(source)});
    const Lock lock(mutex_);
    startTasks();
}

AheadConverter::~AheadConverter() noexcept {
    isStopping_ = true;
    [[maybe_unused]] const taskOrder::Waiting waiting;
    tasks_.wait();
}

std::shared_ptr<const ConvertedBytes> AheadConverter::take(std::size_t index) {
    Lock lock(mutex_);
    Item& item = items_.at(index);
    while (item.state == State::waiting || item.state == State::running) {
        if (item.state == State::waiting) {
            convert(index, lock);
        } else if (const auto next = nextToConvert()) {
            convert(*next, lock);
        } else {
            // Whoever runs it holds a thread of its own, so this ends.
            changed_.wait(lock);
        }
    }
    if (item.failure)
        std::rethrow_exception(item.failure);
    return item.result;
}

void AheadConverter::release(std::size_t index) {
    const Lock lock(mutex_);
    Item& item = items_.at(index);
    if (item.result) {
        heldBytes_ -= item.result->file.size();
        item.result.reset();
    }
    item.state = State::unavailable;
    startTasks();
}

std::optional<std::size_t> AheadConverter::nextToConvert() {
    while (nextIndex_ < items_.size() && items_[nextIndex_].state != State::waiting)
        ++nextIndex_;
    if (!mayConvertAnother())
        return std::nullopt;
    return nextIndex_;
}

bool AheadConverter::mayConvertAnother() {
    return nextIndex_ < items_.size() && !isStopping_ &&
           heldBytes_ + (runningCount_ + 1) * longestResult_ <= memoryBudget_;
}

void AheadConverter::convert(std::size_t index, Lock& lock) {
    Item& item = items_[index];
    item.state = State::running;
    ++runningCount_;
    lock.unlock();
    std::shared_ptr<const ConvertedBytes> result;
    std::exception_ptr failure;
    try {
        result = converted(item.source);
    } catch (...) {
        failure = std::current_exception();
    }
    lock.lock();
    --runningCount_;
    item.state = result || failure ? State::finished : State::unavailable;
    item.failure = failure;
    if (result)
        heldBytes_ += result->file.size();
    item.result = std::move(result);
    changed_.notify_all();
}

std::shared_ptr<const ConvertedBytes> AheadConverter::converted(const FileURL& source) const {
    ConversionSource input(*fileManager_, source);
    input.configure();
    const auto expected = input.expectedDataSize();
    if (expected && *expected > longestResult_ - convertedHeaderSize)
        return nullptr;
    auto result = std::make_shared<ConvertedBytes>();
    std::vector<std::byte>& file = result->file;
    file.reserve(convertedHeaderSize + static_cast<std::size_t>(expected.value_or(0)));
    file.resize(convertedHeaderSize);
    std::array<std::byte, conversionBlockFrames * sizeof(std::int16_t)> block;
    while (const std::size_t count = input.read(block)) {
        if (isStopping_ || count > longestResult_ - file.size())
            return nullptr;
        file.insert(file.end(), block.begin(), block.begin() + static_cast<std::ptrdiff_t>(count));
    }
    const auto audio = std::span(file).subspan(convertedHeaderSize);
    result->audio.dataSize = audio.size();
    result->audio.fingerprint.add(audio);
    std::ranges::copy(convertedHeader(static_cast<std::uint32_t>(audio.size())), file.begin());
    return result;
}

void AheadConverter::startTasks() {
    std::size_t waiting = items_.size() - std::min(items_.size(), nextIndex_);
    while (taskCount_ < taskLimit_ && waiting > 0 && mayConvertAnother()) {
        ++taskCount_;
        --waiting;
        tasks_.run([this, handed = taskOrder::HandedOver()] {
            [[maybe_unused]] const taskOrder::InTask task(handed);
            work();
        });
    }
}

void AheadConverter::work() {
    Lock lock(mutex_);
    while (const auto next = nextToConvert())
        convert(*next, lock);
    --taskCount_;
}

} // namespace torvo
