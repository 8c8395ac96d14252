#include "Platform/TaskGroup.h"

#include <tbb/global_control.h>
#include <tbb/task_arena.h>
#include <tbb/task_group.h>

#include <algorithm>
#include <utility>

#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

namespace torvo {

namespace {

// ThreadSanitizer cannot see the synchronisation inside oneTBB, which is not instrumented. These
// functions tell it that run() happens before the task, and the task happens before wait() returns.
// Without ThreadSanitizer they do nothing.
#if defined(__SANITIZE_THREAD__)
char taskStart; // shared by all groups; races between tasks are still reported
char taskEnd;
void publish(char& event) {
    __tsan_release(&event);
}
void observe(char& event) {
    __tsan_acquire(&event);
}
#else
constexpr char taskStart = 0;
constexpr char taskEnd = 0;
void publish(char /*event*/) {}
void observe(char /*event*/) {}
#endif

/// Must be the last member of a task: oneTBB copies the task, and this member is copied after all
/// others.
class PublishedOnCopy {
public:
    PublishedOnCopy() = default;
    PublishedOnCopy(const PublishedOnCopy&) { publish(taskStart); }
    PublishedOnCopy& operator=(const PublishedOnCopy&) = delete;
    ~PublishedOnCopy() = default;
};

class Task {
public:
    explicit Task(std::function<void()> work)
        : work_(std::make_shared<const std::function<void()>>(std::move(work))) {}

    void operator()() const {
        observe(taskStart);
        const EndOfTask end;
        (*work_)();
    }

private:
    struct EndOfTask {
        EndOfTask() = default;
        ~EndOfTask() { publish(taskEnd); }
        EndOfTask(const EndOfTask&) = delete;
        EndOfTask& operator=(const EndOfTask&) = delete;
    };

    std::shared_ptr<const std::function<void()>> work_;
    PublishedOnCopy published_;
};

} // namespace

struct TaskGroup::Tasks {
    tbb::task_group group;
};

TaskGroup::TaskGroup() : tasks_(std::make_unique<Tasks>()) {}

TaskGroup::~TaskGroup() = default;

void TaskGroup::run(std::function<void()> task) {
    const Task wrapped(std::move(task));
    tasks_->group.run(wrapped);
}

void TaskGroup::wait() {
    struct Observer {
        Observer() = default;
        ~Observer() { observe(taskEnd); }
        Observer(const Observer&) = delete;
        Observer& operator=(const Observer&) = delete;
    };
    const Observer observer;
    tasks_->group.wait();
}

void TaskGroup::cancel() {
    tasks_->group.cancel();
}

int TaskGroup::maxConcurrency() {
    const auto allowed =
        tbb::global_control::active_value(tbb::global_control::max_allowed_parallelism);
    return std::min(tbb::this_task_arena::max_concurrency(), static_cast<int>(allowed));
}

} // namespace torvo
