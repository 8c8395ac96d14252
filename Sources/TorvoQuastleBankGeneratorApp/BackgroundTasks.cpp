#include "BackgroundTasks.h"

#include <sys/resource.h>
#include <utility>

namespace torvo::app {

namespace {

/// The window answers first; beside other programs, what its user waits for loses little. On Linux
/// this is a matter of the calling thread alone, and of the threads that it starts.
void lowerThreadPriority() {
    constexpr int niceness = 4;
    if (getpriority(PRIO_PROCESS, 0) < niceness)
        setpriority(PRIO_PROCESS, 0, niceness); // refused, it changes nothing but the comfort
}

} // namespace

BackgroundTasks::~BackgroundTasks() {
    for (std::thread& thread : threads_)
        thread.join();
}

void BackgroundTasks::start(Work work) {
    launch(std::move(work), [] {});
}

void BackgroundTasks::startInTurn(Work work) {
    waiting_.push_back(std::move(work));
    if (waiting_.size() == 1)
        launchNextInTurn();
}

void BackgroundTasks::launchNextInTurn() {
    launch(std::move(waiting_.front()), [this] {
        waiting_.pop_front();
        if (!waiting_.empty())
            launchNextInTurn();
    });
}

void BackgroundTasks::launch(Work work, std::function<void()> ended) {
    const auto slot = threads_.emplace(threads_.end());
    *slot = std::thread([this, slot, work = std::move(work), ended = std::move(ended)]() mutable {
        lowerThreadPriority();
        work();
        // What the work holds (a scan of a large library) is freed here, not on the main thread.
        work = nullptr;
        mainThread_.post([this, slot, ended = std::move(ended)] {
            slot->join();
            threads_.erase(slot);
            ended();
        });
    });
}

} // namespace torvo::app
