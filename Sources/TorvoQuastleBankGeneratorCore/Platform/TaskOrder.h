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

inline void beforeStarting() {
    __tsan_release(&started);
}
inline void afterWaiting() {
    __tsan_acquire(&ended);
}

/// Stands in a task from its beginning to its end.
class InTask {
public:
    InTask() { __tsan_acquire(&started); }
    ~InTask() { __tsan_release(&ended); }
    InTask(const InTask&) = delete;
    InTask& operator=(const InTask&) = delete;
};

#else

inline void beforeStarting() {}
inline void afterWaiting() {}

class InTask {};

#endif

} // namespace torvo::taskOrder
