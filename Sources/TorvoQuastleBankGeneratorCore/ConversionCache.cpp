#include "ConversionCache.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <new>
#include <utility>

namespace torvo {

namespace {

// Allows files of up to 47 seconds, regardless of the number of threads that share the budget.
constexpr std::size_t minFileShare = std::size_t{4} * 1024 * 1024; // bytes
constexpr std::size_t never = std::numeric_limits<std::size_t>::max();

bool needsConversion(const SampleCandidate& sample) {
    return std::holds_alternative<RequiresConversion>(sample.compatibility);
}

} // namespace

ConversionCache::ConversionCache(std::shared_ptr<const AudioFilePreparing> preparer,
                                 const std::vector<const SampleCandidate*>& uses,
                                 std::size_t memoryBudget)
    : preparer_(std::move(preparer)),
      memoryBudget_(memoryBudget),
      // Conversions in progress reserve at most half of the budget.
      maxFileSize_(std::max(
          minFileShare, memoryBudget / static_cast<std::size_t>(2 * TaskGroup::maxConcurrency()))),
      maxTasks_(TaskGroup::maxConcurrency() - 1) {
    std::map<std::filesystem::path, std::size_t> indexByPath;
    for (std::size_t use = 0; use < uses.size(); ++use) {
        if (!needsConversion(*uses[use]))
            continue;
        const auto [found, isNew] =
            indexByPath.try_emplace(uses[use]->sourceURL.path(), entries_.size());
        if (isNew)
            entries_.push_back({.sample = uses[use]});
        entries_[found->second].uses.push_back(use);
    }
    entriesByUse_.resize(uses.size());
    for (Entry& entry : entries_) {
        for (const std::size_t use : entry.uses)
            entriesByUse_[use] = &entry;
    }
    const Lock lock(mutex_); // the first task may begin before the last one is started
    startTasks();
}

ConversionCache::~ConversionCache() {
    stop_.request_stop();
    tasks_.wait();
}

std::shared_ptr<const ConvertedFile> ConversionCache::take(std::size_t use) {
    Lock lock(mutex_);
    advance(use);
    Entry* const entry = entriesByUse_.at(use);
    if (entry == nullptr)
        return nullptr;
    while (entry->state == State::pending || entry->state == State::running) {
        if (entry->state == State::pending)
            convert(*entry, lock);
        else if (Entry* const next = nextToConvert())
            convert(*next, lock);
        else
            converted_.wait(lock); // another thread is converting it
    }
    if (entry->failure)
        std::rethrow_exception(entry->failure);
    return entry->file;
}

void ConversionCache::advance(std::size_t use) {
    if (use == position_)
        return;
    const auto first = entriesByUse_.begin() + static_cast<std::ptrdiff_t>(position_);
    const auto last = entriesByUse_.begin() + static_cast<std::ptrdiff_t>(use);
    position_ = use;
    std::for_each(first, last, [this](Entry* entry) {
        if (entry != nullptr && entry->file && nextUse(*entry) == never) {
            heldBytes_ -= entry->file->size();
            entry->file.reset();
        }
    });
    while (heldBytes_ > memoryBudget_ && evictNeededAfter(position_)) {
    }
    startTasks();
}

std::size_t ConversionCache::nextUse(const Entry& entry) const {
    const auto next = std::ranges::lower_bound(entry.uses, position_);
    return next == entry.uses.end() ? never : *next;
}

ConversionCache::Entry* ConversionCache::nextToConvert() {
    for (std::size_t use = position_; use < entriesByUse_.size() && !stop_.stop_requested();
         ++use) {
        Entry* const entry = entriesByUse_[use];
        if (entry != nullptr && entry->state == State::pending)
            return makeRoom(use) ? entry : nullptr;
    }
    return nullptr;
}

bool ConversionCache::makeRoom(std::size_t use) {
    while (heldBytes_ + (runningConversions_ + 1) * maxFileSize_ > memoryBudget_) {
        if (!evictNeededAfter(use))
            return false;
    }
    return true;
}

bool ConversionCache::evictNeededAfter(std::size_t use) {
    Entry* last = nullptr;
    std::size_t lastUse = use;
    for (Entry& entry : entries_) {
        if (entry.file && nextUse(entry) > lastUse) {
            last = &entry;
            lastUse = nextUse(entry);
        }
    }
    if (last == nullptr)
        return false;
    heldBytes_ -= last->file->size();
    last->file.reset();
    last->state = State::pending;
    return true;
}

void ConversionCache::convert(Entry& entry, Lock& lock) {
    entry.state = State::running;
    ++runningConversions_;
    lock.unlock();
    std::shared_ptr<const ConvertedFile> file;
    std::exception_ptr failure;
    try {
        file = preparer_->convertedFile(*entry.sample, maxFileSize_, stop_.get_token());
    } catch (const std::bad_alloc&) {
        // Out of memory: the preparer writes the sample block by block instead.
    } catch (...) {
        failure = std::current_exception();
    }
    lock.lock();
    --runningConversions_;
    entry.state = file || failure ? State::finished : State::notHeld;
    entry.failure = failure;
    if (file)
        heldBytes_ += file->size();
    entry.file = std::move(file);
    converted_.notify_all();
}

void ConversionCache::startTasks() {
    const auto pending = std::ranges::count(entries_, State::pending, &Entry::state);
    const auto wanted = std::min<std::ptrdiff_t>(maxTasks_, pending);
    for (; taskCount_ < wanted; ++taskCount_)
        tasks_.run([this] { convertAhead(); });
}

void ConversionCache::convertAhead() {
    Lock lock(mutex_);
    while (Entry* const entry = nextToConvert())
        convert(*entry, lock);
    --taskCount_;
}

} // namespace torvo
