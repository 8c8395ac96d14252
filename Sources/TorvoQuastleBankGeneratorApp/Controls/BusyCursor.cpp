#include "Controls/BusyCursor.h"

#include <QCursor>
#include <QGuiApplication>

#include <chrono>
#include <utility>

namespace torvo::app {

namespace {

constexpr std::chrono::milliseconds moment{200};

} // namespace

BusyCursor::BusyCursor() {
    delay_.setSingleShot(true);
    delay_.setInterval(moment);
    delay_.callOnTimeout([this] { show(); });
}

BusyCursor::~BusyCursor() {
    setBusy(false);
}

void BusyCursor::setBusy(bool busy) {
    if (!busy) {
        delay_.stop();
        if (std::exchange(isShown_, false))
            QGuiApplication::restoreOverrideCursor();
    } else if (!isShown_ && !delay_.isActive()) {
        delay_.start();
    }
}

void BusyCursor::show() {
    isShown_ = true;
    QGuiApplication::setOverrideCursor(Qt::BusyCursor);
}

} // namespace torvo::app
