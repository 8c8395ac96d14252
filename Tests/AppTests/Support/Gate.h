#pragma once

#include <condition_variable>
#include <mutex>

namespace torvo::test {

/// Blocks threads until it is opened.
class Gate {
public:
    void open() {
        {
            const std::scoped_lock lock(mutex_);
            isOpen_ = true;
        }
        opened_.notify_all();
    }
    void pass() const {
        std::unique_lock lock(mutex_);
        ++arrivals_;
        opened_.wait(lock, [this] { return isOpen_; });
    }

    /// Whether a thread has reached the gate, blocked or not.
    bool isReached() const { return arrivals() > 0; }
    /// The number of threads that have reached it.
    int arrivals() const {
        const std::scoped_lock lock(mutex_);
        return arrivals_;
    }

private:
    mutable std::mutex mutex_;
    mutable std::condition_variable opened_;
    bool isOpen_ = false;
    mutable int arrivals_ = 0;
};

} // namespace torvo::test
