#include "MainWindow.h"

#include "ContentView.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QMenuBar>
#include <QScreen>
#include <QWindow>

namespace torvo::app {

namespace {

/// What a window manager puts around a window before it has said so.
constexpr QSize usualFrame{0, 48};

} // namespace

MainWindow::MainWindow(QWidget* parent) : QMainWindow(parent) {
    // A tooltip on a disabled button needs this where no window manager activates the window.
    setAttribute(Qt::WA_AlwaysShowToolTips);
}

QSize MainWindow::contentRoom(QSize freeArea) const {
    const QSize frame = frameGeometry().size() - geometry().size();
    return freeArea - (frame.isNull() ? usualFrame : frame) -
           QSize(0, menuBar()->sizeHint().height());
}

void MainWindow::fitToScreen() {
    const QSize room = contentRoom(screen()->availableSize());
    centralWidget()->setMinimumSize(ContentView::usualMinSize.boundedTo(room));
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
    // Qt's own end of the process, after the last window, is forgotten when another one opens: the
    // panel whose button was pressed just before. After this its loop ends as soon as it begins.
    if (event->isAccepted())
        QCoreApplication::exit(0);
}

} // namespace torvo::app
