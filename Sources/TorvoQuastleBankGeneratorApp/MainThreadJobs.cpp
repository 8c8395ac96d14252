#include "MainThreadJobs.h"

#include <QCoreApplication>
#include <QEvent>

#include <utility>

namespace torvo::app {

namespace {

const QEvent::Type wakeUp = static_cast<QEvent::Type>(QEvent::registerEventType());

} // namespace

void MainThreadJobs::post(Job job) {
    {
        const std::scoped_lock lock(mutex_);
        jobs_.push_back(std::move(job));
    }
    QCoreApplication::postEvent(this, new QEvent(wakeUp));
}

bool MainThreadJobs::event(QEvent* event) {
    if (event->type() != wakeUp)
        return QObject::event(event);
    takeFirst()();
    return true;
}

MainThreadJobs::Job MainThreadJobs::takeFirst() {
    const std::scoped_lock lock(mutex_);
    Job job = std::move(jobs_.front());
    jobs_.pop_front();
    return job;
}

} // namespace torvo::app
