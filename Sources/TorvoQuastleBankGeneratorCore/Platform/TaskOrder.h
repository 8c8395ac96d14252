#pragma once

#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

/// Tells the thread sanitizer what it cannot see, as the task library is not instrumented: that a
/// task begins after what was done before it was started, and that waiting comes after its end. In
/// every other build these are nothing.
namespace torvo::taskOrder {

#if defined(__SANITIZE_THREAD__)

// One for all tasks: a task that needed more order than this would still be found.
inline char started;
inline char ended;

/// The last capture of a task's lambda. The library gets a copy of the lambda: what the task reads,
/// its captures included, was written before.
class HandedOver {
public:
    HandedOver() = default;
    HandedOver(const HandedOver&) { __tsan_release(&started); }
    HandedOver& operator=(const HandedOver&) = delete;
    ~HandedOver() = default;
};

/// Stands in a task from its beginning to its end.
class InTask {
public:
    explicit InTask(const HandedOver&) { __tsan_acquire(&started); }
    ~InTask() { __tsan_release(&ended); }
    InTask(const InTask&) = delete;
    InTask& operator=(const InTask&) = delete;
};

/// Stands around waiting for tasks, however the waiting ends.
class Waiting {
public:
    Waiting() = default;
    ~Waiting() { __tsan_acquire(&ended); }
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;
};

#else

class HandedOver {};
class InTask {
public:
    explicit InTask(const HandedOver&) {}
};
class Waiting {};

#endif

} // namespace torvo::taskOrder
