#include "MainWindow.h"

#include <QCloseEvent>
#include <QCoreApplication>

namespace torvo::app {

MainWindow::MainWindow(QWidget* parent) : QMainWindow(parent) {
    // A tooltip on a disabled button needs this where no window manager activates the window.
    setAttribute(Qt::WA_AlwaysShowToolTips);
}

void MainWindow::closeEvent(QCloseEvent* event) {
    QMainWindow::closeEvent(event);
    // Qt's own end of the process, after the last window, is forgotten when another one opens: the
    // panel whose button was pressed just before. After this its loop ends as soon as it begins.
    if (event->isAccepted())
        QCoreApplication::exit(0);
}

} // namespace torvo::app
