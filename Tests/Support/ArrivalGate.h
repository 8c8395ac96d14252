#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>

namespace torvo::test {

/// Holds threads until a number of them have arrived.
class ArrivalGate {
public:
    explicit ArrivalGate(std::size_t width) : width_(width) {}

    /// Waits until the gate is open. Returns false when it has not opened after a minute, so that a
    /// test that fails still ends.
    bool pass() {
        std::unique_lock lock(mutex_);
        ++arrived_;
        changed_.notify_all();
        return changed_.wait_for(lock, std::chrono::minutes(1),
                                 [this] { return isOpen_ || arrived_ >= width_; });
    }

    /// Waits until so many threads have arrived, without counting as one of them.
    bool waitForArrivals(std::size_t count) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::minutes(1),
                                 [this, count] { return arrived_ >= count; });
    }

    void open() {
        const std::scoped_lock lock(mutex_);
        isOpen_ = true;
        changed_.notify_all();
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::size_t width_;
    std::size_t arrived_ = 0;
    bool isOpen_ = false;
};

} // namespace torvo::test
