#pragma once

class QString;
class QWidget;

namespace torvo::app {

/// Shows the program's name, version and maker. Returns when the dialog is closed.
void showAbout(QWidget* window, const QString& title, const QString& applicationName);

} // namespace torvo::app
