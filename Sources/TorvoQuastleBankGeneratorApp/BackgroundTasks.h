#pragma once

#include "MainThreadJobs.h"

#include <deque>
#include <functional>
#include <list>
#include <thread>

namespace torvo::app {

/// Runs long tasks, each on a thread of its own. Call all functions on the main thread. The
/// destructor waits for tasks that have started and discards the others.
class BackgroundTasks {
public:
    using Work = std::function<void()>;

    BackgroundTasks() = default;
    ~BackgroundTasks();
    BackgroundTasks(const BackgroundTasks&) = delete;
    BackgroundTasks& operator=(const BackgroundTasks&) = delete;

    /// Starts at once, in parallel with other tasks. `work` must not throw.
    void start(Work work);
    /// Starts when all work passed to this function before has ended.
    void startInTurn(Work work);

    bool isBusy() const { return !threads_.empty(); }
    /// Runs `job` on the main thread; may be called from any thread.
    void postToMainThread(MainThreadJobs::Job job) { mainThread_.post(std::move(job)); }

private:
    void launch(Work work, std::function<void()> ended);
    void launchNextInTurn();

    MainThreadJobs mainThread_;
    std::list<std::thread> threads_;
    std::deque<Work> waiting_; ///< the front one is running and is removed when it ends
};

} // namespace torvo::app
