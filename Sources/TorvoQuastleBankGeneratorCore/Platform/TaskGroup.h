#pragma once

#include <functional>
#include <memory>

namespace torvo {

/// Runs tasks on the threads of the caller's oneTBB arena. Call `wait` before destruction.
class TaskGroup {
public:
    TaskGroup();
    ~TaskGroup();
    TaskGroup(const TaskGroup&) = delete;
    TaskGroup& operator=(const TaskGroup&) = delete;

    /// Starts a task. Call it from the thread that owns the group.
    void run(std::function<void()> task);
    /// Waits for all tasks; the calling thread runs some of them. Rethrows the first exception
    /// thrown by a task; tasks that have not started by then are discarded.
    void wait();
    /// Discards the tasks that have not started yet.
    void cancel();

    /// The maximum number of threads that run tasks concurrently, including the calling thread.
    static int maxConcurrency();

private:
    struct Tasks;
    std::unique_ptr<Tasks> tasks_;
};

} // namespace torvo
