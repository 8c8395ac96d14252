#pragma once

#include <QTimer>

namespace torvo::app {

/// Shows the busy cursor in all windows of the program while something takes longer than a moment.
class BusyCursor final {
public:
    BusyCursor();
    ~BusyCursor();
    BusyCursor(const BusyCursor&) = delete;
    BusyCursor& operator=(const BusyCursor&) = delete;

    void setBusy(bool busy);

private:
    void show();

    QTimer delay_;
    bool isShown_ = false;
};

} // namespace torvo::app
