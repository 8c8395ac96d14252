#pragma once

#include <QObject>

#include <deque>
#include <functional>
#include <mutex>

namespace torvo::app {

/// Runs jobs from any thread on the thread of this object, in the order in which they were posted,
/// each in an event of its own.
class MainThreadJobs final : public QObject {
public:
    using Job = std::function<void()>;

    void post(Job job);

protected:
    bool event(QEvent* event) override;

private:
    Job takeFirst();

    std::mutex mutex_;
    std::deque<Job> jobs_;
};

} // namespace torvo::app
