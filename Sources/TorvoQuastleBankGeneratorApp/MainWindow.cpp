#include "MainWindow.h"

#include "ContentView.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QMenuBar>
#include <QScreen>
#include <QWindow>

namespace torvo::app {

namespace {

/// An estimate of the window frame, used until the window manager reports its size.
constexpr QSize usualFrame{0, 48};

constexpr int usualPanelHeight = 48;

} // namespace

MainWindow::MainWindow(QWidget* parent) : QMainWindow(parent) {
    // Without an active window, disabled buttons would show no tooltips.
    setAttribute(Qt::WA_AlwaysShowToolTips);
}

QSize MainWindow::freeArea(QSize availableSize, const QString& platform) {
    const bool isWayland = platform.startsWith(QLatin1String("wayland"));
    return availableSize - QSize(0, isWayland ? usualPanelHeight : 0);
}

QSize MainWindow::roomInFrame(QSize freeArea) {
    return freeArea - usualFrame;
}

QSize MainWindow::contentRoom(QSize freeArea) const {
    const QSize frame = frameGeometry().size() - geometry().size();
    const QSize room = frame.isNull() ? roomInFrame(freeArea) : freeArea - frame;
    return room - QSize(0, menuBar()->sizeHint().height());
}

QSize MainWindow::contentRoom() const {
    return contentRoom(freeArea(screen()->availableSize(), QGuiApplication::platformName()));
}

void MainWindow::fitToScreen() {
    centralWidget()->setMinimumSize(ContentView::usualMinSize.boundedTo(contentRoom()));
}

void MainWindow::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    if (screenArea_)
        return;
    connect(windowHandle(), &QWindow::screenChanged, this, &MainWindow::followScreen);
    followScreen(screen());
}

void MainWindow::followScreen(QScreen* screen) {
    disconnect(screenArea_);
    screenArea_ =
        connect(screen, &QScreen::availableGeometryChanged, this, &MainWindow::fitToScreen);
    fitToScreen();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    QMainWindow::closeEvent(event);
    // Qt does not quit after the last window if a panel opens that was requested just before. After
    // exit(), the panel's event loop ends as soon as it starts.
    if (event->isAccepted())
        QCoreApplication::exit(0);
}

} // namespace torvo::app
