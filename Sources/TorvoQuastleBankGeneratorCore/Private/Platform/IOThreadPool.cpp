#include "Platform/IOThreadPool.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <iterator>
#include <mutex>
#include <sys/resource.h>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace torvo {

namespace {

using Task = std::function<void()>;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds adjustmentInterval{1};
// Threads take several tasks at a time from a long queue, because locking for each task costs as
// much as a tenth of opening a file in the page cache.
constexpr std::size_t maxTasksAtOnce = 8;
// Waking a thread costs as much as opening two files in the page cache.
constexpr std::size_t minTasksToWakeThread = 16;
// Keeps every thread busy while the caller runs a few tasks itself.
constexpr std::size_t maxQueuedTasks = 4096;

std::size_t coreCount() {
    return std::max(1U, std::thread::hardware_concurrency());
}

/// Returns after the exception has been handled, so that the thread that rethrows it is the last
/// one to refer to it.
std::exception_ptr exceptionOf(const Task& task) noexcept {
    try {
        task();
        return nullptr;
    } catch (...) {
        return std::current_exception();
    }
}

/// How often threads of the process have waited for something other than a processor. Time without
/// progress would not tell a slow disk from a busy machine.
std::int64_t waitsOfProcess() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_nvcsw;
}

} // namespace

class IOThreadPool::Job {
public:
    explicit Job(Task task) : task_(std::move(task)) {}

private:
    friend Threads;
    enum class State { queued, running, finished };

    Task task_;
    State state_ = State::queued;
    std::exception_ptr failure_;
};

class IOThreadPool::Threads {
public:
    explicit Threads(std::size_t maxThreads) : maxThreads_(maxThreads) {}

    ~Threads() {
        std::deque<Task> discarded;
        {
            const std::scoped_lock lock(mutex_);
            isStopping_ = true;
            discarded.swap(tasks_);
        }
        added_.notify_all();
    }

    Threads(const Threads&) = delete;
    Threads& operator=(const Threads&) = delete;

    void add(Task task) {
        std::unique_lock lock(mutex_);
        if (isStopping_)
            return;
        tasks_.push_back(std::move(task));
        provideThreads(minTasksToWakeThread);
        if (tasks_.size() > maxQueuedTasks)
            runTasks(lock);
    }

    void addFirst(std::shared_ptr<Job> job) {
        const std::scoped_lock lock(mutex_);
        jobs_.push_back(std::move(job));
        provideThreads(minTasksToWakeThread);
    }

    void wait() {
        std::unique_lock lock(mutex_);
        provideThreads(1);
        while (maxThreads_ == 0 && !tasks_.empty())
            runTasks(lock);
        waitUntil(lock, [this] { return tasks_.empty() && busyThreads_ == 0; });
        if (failure_)
            std::rethrow_exception(failure_);
    }

    void wait(Job& job) {
        std::unique_lock lock(mutex_);
        waitUntil(lock, [&] {
            return job.state_ == Job::State::finished ||
                   (job.state_ == Job::State::queued && mayCallerRunJobs());
        });
        if (job.state_ == Job::State::queued) {
            std::erase_if(jobs_, [&](const auto& each) { return each.get() == &job; });
            runJob(job, lock);
        }
        if (job.failure_)
            std::rethrow_exception(std::exchange(job.failure_, nullptr));
    }

private:
    template <typename Condition>
    void waitUntil(std::unique_lock<std::mutex>& lock, Condition condition) {
        while (!condition()) {
            provideThreads(1);
            ++sleeps_;
            finished_.wait_for(lock, adjustmentInterval);
        }
    }

    /// While the threads wait for a slow disk, the caller would wait, too, and could not queue
    /// tasks.
    bool mayCallerRunJobs() const { return isStopping_ || !areWaiting_; }

    std::size_t awakeThreads() const { return threads_.size() - idleThreads_; }

    /// Wakes or starts threads so that each has at most this many queued tasks.
    void provideThreads(std::size_t tasksPerThread) {
        if (isStopping_)
            return;
        adjustLimit();
        // Threads that wait will not take more tasks soon.
        const auto wanted =
            std::min(limit_, areWaiting_ ? awakeThreads() + jobs_.size() + tasks_.size()
                                         : jobs_.size() + tasks_.size() / tasksPerThread);
        while (awakeThreads() < wanted) {
            if (idleThreads_ > 0) {
                --idleThreads_;
                ++wakeups_;
                added_.notify_one();
            } else if (!start()) {
                return;
            }
        }
    }

    /// Allows more threads while they wait more often than they finish tasks, fewer while they
    /// hardly wait.
    void adjustLimit() {
        const auto now = Clock::now();
        if (now < nextAdjustment_)
            return;
        nextAdjustment_ = now + adjustmentInterval;
        const auto total = waitsOfProcess() - sleeps_;
        const auto waits = total - std::exchange(totalWaits_, total);
        const auto finished = std::exchange(finishedTasks_, 0);
        if (waits > 0 && waits >= finished) {
            areWaiting_ = true;
            limit_ = std::min(maxThreads_, 2 * limit_);
        } else if (8 * waits < finished) {
            areWaiting_ = false;
            limit_ = std::max(initialLimit_, limit_ / 2);
        }
    }

    bool start() {
        try {
            threads_.emplace_back([this] { work(); });
            return true;
        } catch (const std::system_error&) {
            // The system allows no more threads.
            limit_ = initialLimit_ = maxThreads_ = threads_.size();
            return false;
        }
    }

    void work() {
        std::unique_lock lock(mutex_);
        while (!isStopping_) {
            if (awakeThreads() > limit_ || (jobs_.empty() && tasks_.empty())) {
                ++idleThreads_;
                ++sleeps_;
                added_.wait(lock, [this] { return isStopping_ || wakeups_ > 0; });
                --wakeups_;
            } else if (jobs_.empty()) {
                runTasks(lock);
            } else {
                const auto job = std::move(jobs_.front());
                jobs_.pop_front();
                runJob(*job, lock);
            }
        }
    }

    void runJob(Job& job, std::unique_lock<std::mutex>& lock) {
        job.state_ = Job::State::running;
        lock.unlock();
        auto failure = exceptionOf(job.task_);
        job.task_ = nullptr;
        lock.lock();
        job.failure_ = std::move(failure);
        job.state_ = Job::State::finished;
        ++finishedTasks_;
        finished_.notify_all();
    }

    void runTasks(std::unique_lock<std::mutex>& lock) {
        const auto count =
            std::clamp<std::size_t>(tasks_.size() / (2 * minThreadLimit), 1, maxTasksAtOnce);
        const auto end = tasks_.begin() + static_cast<std::ptrdiff_t>(count);
        std::vector<Task> tasks(std::move_iterator(tasks_.begin()), std::move_iterator(end));
        tasks_.erase(tasks_.begin(), end);
        ++busyThreads_;
        lock.unlock();
        std::exception_ptr failure;
        for (std::size_t i = 0; i < count && !failure && !isStopping_; ++i)
            failure = exceptionOf(tasks[i]);
        tasks.clear();
        lock.lock();
        --busyThreads_;
        finishedTasks_ += static_cast<std::int64_t>(count);
        if (failure && !failure_) {
            failure_ = std::move(failure);
            isStopping_ = true;
            tasks_.clear();
            added_.notify_all();
        }
        if (tasks_.empty() && busyThreads_ == 0)
            finished_.notify_all();
        provideThreads(minTasksToWakeThread);
    }

    std::mutex mutex_; // guards everything below
    std::size_t maxThreads_;
    std::size_t initialLimit_ = std::min(coreCount(), maxThreads_);
    std::size_t limit_ = initialLimit_; ///< of threads that are awake
    bool areWaiting_ = false;           ///< the threads, for something other than a processor
    std::condition_variable added_;
    std::condition_variable finished_;
    std::deque<std::shared_ptr<Job>> jobs_;
    std::deque<Task> tasks_;
    std::exception_ptr failure_;
    std::size_t idleThreads_ = 0; ///< that sleep and have not been woken
    std::size_t wakeups_ = 0;     ///< threads that have been woken and still have to notice
    std::size_t busyThreads_ = 0; ///< with tasks of `run`
    std::int64_t totalWaits_ = waitsOfProcess();
    std::int64_t sleeps_ = 0; ///< waits for tasks or for their end, which say nothing about disks
    std::int64_t finishedTasks_ = 0; ///< since `totalWaits_` was read
    Clock::time_point nextAdjustment_ = Clock::now() + adjustmentInterval;
    std::atomic<bool> isStopping_ = false;
    std::vector<std::jthread> threads_; // joined before the other members are destroyed
};

std::size_t IOThreadPool::defaultThreadLimit() {
    return std::max(minThreadLimit, coreCount());
}

IOThreadPool::IOThreadPool(std::size_t maxThreads)
    : threads_(std::make_unique<Threads>(maxThreads)) {}

IOThreadPool::~IOThreadPool() = default;

void IOThreadPool::run(Task task) {
    threads_->add(std::move(task));
}

void IOThreadPool::wait() {
    threads_->wait();
}

std::shared_ptr<IOThreadPool::Job> IOThreadPool::runFirst(Task task) {
    auto job = std::make_shared<Job>(std::move(task));
    threads_->addFirst(job);
    return job;
}

void IOThreadPool::wait(Job& job) {
    threads_->wait(job);
}

} // namespace torvo
