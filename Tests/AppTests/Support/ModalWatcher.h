#pragma once

#include "Support/AppFixture.h"

#include <QApplication>
#include <QDialog>
#include <QTimer>

#include <functional>

namespace torvo::test {

/// Runs `act`, inspects the first modal dialog that it opens and cancels it.
template <typename Dialog>
bool lookedAtDialog(const std::function<void()>& act, const std::function<void(Dialog&)>& look) {
    bool seen = false;
    QTimer watcher;
    QObject::connect(&watcher, &QTimer::timeout, [&] {
        if (auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget())) {
            watcher.stop();
            seen = true;
            look(*dialog);
            dialog->reject();
        }
    });
    watcher.start();
    act();
    return waitUntil([&] { return seen && !QApplication::activeModalWidget(); });
}

} // namespace torvo::test
