#include "BackgroundTasks.h"

#include <sys/resource.h>
#include <utility>

namespace torvo::app {

namespace {

/// Lets the main thread run first without slowing the work down much beside other programs. On
/// Linux, the priority belongs to the calling thread and the threads that it starts.
void lowerThreadPriority() {
    constexpr int niceness = 4;
    if (getpriority(PRIO_PROCESS, 0) < niceness)
        setpriority(PRIO_PROCESS, 0, niceness); // an error is harmless
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
        // Free what the work holds, such as the report of a large library, here and not on the main
        // thread.
        work = nullptr;
        mainThread_.post([this, slot, ended = std::move(ended)] {
            slot->join();
            threads_.erase(slot);
            ended();
        });
    });
}

} // namespace torvo::app
