#pragma once

class QString;
class QWidget;

namespace torvo::app {

/// Tells what the program is called, which version it is and who made it. Returns when it is
/// closed.
void showAbout(QWidget* window, const QString& title, const QString& applicationName);

} // namespace torvo::app
