#include "Platform/FreedMemory.h"
#include "TorvoQuastleBankGeneratorApp.h"

#include <QApplication>

#include <cstdlib>
#include <iostream>

namespace {

bool hasDisplay() {
    return qEnvironmentVariableIsSet("QT_QPA_PLATFORM") ||
           !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

void reportMissingDisplay() {
    std::cerr << "Torvo Quastle Bank Generator needs a graphical display, and none could be opened."
              << std::endl;
}

/// Qt aborts with a core dump if the display does not answer or its platform plugin is missing. It
/// reports both with this category.
void reportMissingDisplayInsteadOfAborting(QtMsgType type, const QMessageLogContext&,
                                           const QString& message) {
    if (type != QtFatalMsg)
        return;
    if (message.contains(QStringLiteral("no Qt platform plugin could be initialized"))) {
        reportMissingDisplay();
        std::_Exit(EXIT_FAILURE);
    }
    std::cerr << message.toStdString() << std::endl;
}

} // namespace

int main(int argc, char** argv) {
    torvo::alwaysReturnLargeBlocks();
    if (!hasDisplay()) {
        reportMissingDisplay();
        return EXIT_FAILURE;
    }
    const QtMessageHandler standardHandler =
        qInstallMessageHandler(reportMissingDisplayInsteadOfAborting);
    QApplication application(argc, argv);
    qInstallMessageHandler(standardHandler);
    QApplication::setApplicationName(QString::fromLatin1(torvo::app::applicationName));
    QApplication::setDesktopFileName(QStringLiteral("io.github.torvo_quastle.bank_generator"));
    torvo::app::installTheme();
    torvo::app::TorvoQuastleBankGeneratorApp app;
    app.showWindow();
    const int status = QApplication::exec();
    // Background work cannot be cancelled; its threads end with the process.
    if (app.model().isBusy())
        std::_Exit(status);
    return status;
}
