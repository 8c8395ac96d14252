#pragma once

#include <condition_variable>
#include <mutex>

namespace torvo::test {

/// Holds threads back until it is opened.
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
        opened_.wait(lock, [this] { return isOpen_; });
    }

private:
    mutable std::mutex mutex_;
    mutable std::condition_variable opened_;
    bool isOpen_ = false;
};

} // namespace torvo::test
