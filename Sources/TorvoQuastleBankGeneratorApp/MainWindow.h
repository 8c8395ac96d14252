#pragma once

#include <QMainWindow>

class QScreen;

namespace torvo::app {

/// The one window. The process ends with it, whatever else is open or about to open. On a screen
/// whose free area is smaller than the content's smallest size, that area is the smallest size.
class MainWindow final : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);

    /// The room for the content on a screen with this free area, in logical pixels.
    QSize contentRoom(QSize freeArea) const;
    /// Bounds the content's smallest size by the screen that the window is on.
    void fitToScreen();

protected:
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void followScreen(QScreen* screen);

    QMetaObject::Connection screenArea_;
};

} // namespace torvo::app
