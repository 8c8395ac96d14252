#pragma once

#include "MainThreadJobs.h"

#include <deque>
#include <functional>
#include <list>
#include <thread>

namespace torvo::app {

/// The long work of the program, each task on a thread of its own. Everything here is called on the
/// main thread; the destructor waits for the tasks that were started and drops those that were not.
class BackgroundTasks {
public:
    using Work = std::function<void()>;

    BackgroundTasks() = default;
    ~BackgroundTasks();
    BackgroundTasks(const BackgroundTasks&) = delete;
    BackgroundTasks& operator=(const BackgroundTasks&) = delete;

    /// Starts at once, beside whatever is running. `work` must not throw.
    void start(Work work);
    /// Starts when all work that was given to this function before has ended.
    void startInTurn(Work work);

    bool isBusy() const { return !threads_.empty(); }
    /// Runs `job` on the main thread; may be called from any thread.
    void postToMainThread(MainThreadJobs::Job job) { mainThread_.post(std::move(job)); }

private:
    void launch(Work work, std::function<void()> ended);
    void launchNextInTurn();

    MainThreadJobs mainThread_;
    std::list<std::thread> threads_;
    std::deque<Work> waiting_; ///< the front one is running, its place is kept until it ends
};

} // namespace torvo::app
