#pragma once

#include <cstddef>
#include <functional>
#include <memory>

namespace torvo {

/// Runs tasks that wait for a disk or a network, such as opening a file, on its own threads. Begins
/// with one thread per core; while tasks are queued and the threads wait, it starts more. All
/// functions are for the thread that owns the pool.
class IOThreadPool {
public:
    /// A single task that can be waited for.
    class Job;

    /// Enough requests to hide the latency of a network file system, and for a disk to order them.
    static constexpr std::size_t minThreadLimit = 16;
    /// `minThreadLimit`, or the number of cores if there are more.
    static std::size_t defaultThreadLimit();

    explicit IOThreadPool(std::size_t maxThreads = defaultThreadLimit());
    /// Discards the tasks that have not started and waits for the others.
    ~IOThreadPool();
    IOThreadPool(const IOThreadPool&) = delete;
    IOThreadPool& operator=(const IOThreadPool&) = delete;

    /// Queues a task. Tasks start in the order in which they were queued. If thousands are queued,
    /// some of them run on the calling thread, so that a queue takes little memory.
    void run(std::function<void()> task);
    /// Waits for all tasks of `run`. Rethrows the first exception thrown by a task; tasks that have
    /// not started by then are discarded.
    void wait();

    /// Queues a task that starts before all tasks of `run`.
    std::shared_ptr<Job> runFirst(std::function<void()> task);
    /// Waits for one task, which runs on the calling thread if it has not started. Rethrows its
    /// exception.
    void wait(Job& job);

private:
    class Threads;
    std::unique_ptr<Threads> threads_;
};

} // namespace torvo
