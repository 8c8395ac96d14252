#include "About.h"

#include "Maker.h"
#include "MarloTheme.h"

#include <QGridLayout>
#include <QLabel>
#include <QMessageBox>

namespace torvo::app {

namespace {

/// Leaves room for the title beside the buttons of the window frame.
constexpr int minWidth = 440;
constexpr int iconSide = 64;

} // namespace

void showAbout(QWidget* window, const QString& title, const QString& applicationName) {
    QMessageBox box(window);
    box.setWindowTitle(title);
    box.setText(applicationName);
    box.setInformativeText(QMessageBox::tr("Version %1\nMade by %2")
                               .arg(QStringLiteral(TORVO_VERSION), QString::fromLatin1(makerName)));
    box.setIconPixmap(window->windowIcon().pixmap(iconSide));
    box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"))
        ->setFont(MarloTheme::font(16, MarloTheme::FontCut::bold));
    // QMessageBox fixes its size to that of its content.
    auto* grid = static_cast<QGridLayout*>(box.layout());
    grid->addItem(new QSpacerItem(minWidth, 0), grid->rowCount(), 0, 1, grid->columnCount());
    box.exec();
}

} // namespace torvo::app
