#pragma once

#include <QObject>

#include <deque>
#include <functional>
#include <mutex>

namespace torvo::app {

/// Runs jobs from any thread on the thread of this object, in the order in which they were posted,
/// each in an event of its own. It has its own lock, because ThreadSanitizer does not see those of
/// Qt: with QMetaObject::invokeMethod() it would report every result as a race.
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
