#pragma once

#include <QMainWindow>

class QScreen;

namespace torvo::app {

/// The main window. The process ends when it is closed, even if a panel is open or about to open.
/// Its minimum size is that of the content or the free area of the screen, whichever is smaller.
class MainWindow final : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);

    /// The size of the area that windows may cover, in logical pixels. Qt reports the whole screen
    /// on Wayland, panels included; the height of a usual panel is subtracted there.
    static QSize freeArea(QSize availableSize, const QString& platform);
    /// The size available in a window frame of the usual size.
    static QSize roomInFrame(QSize freeArea);
    /// The size available for the content on a screen with this free area, in logical pixels.
    QSize contentRoom(QSize freeArea) const;
    /// The same on the window's screen.
    QSize contentRoom() const;
    /// Limits the minimum size of the content to the window's screen.
    void fitToScreen();

protected:
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void followScreen(QScreen* screen);

    QMetaObject::Connection screenArea_;
};

} // namespace torvo::app
