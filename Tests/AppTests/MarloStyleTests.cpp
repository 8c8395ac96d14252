#include "Controls/ComboItemDelegate.h"
#include "Controls/MarloButton.h"
#include "Controls/PopupPainting.h"
#include "Controls/ToolTipPlace.h"
#include "MarloTheme.h"
#include "Support/AppFixture.h"
#include "Support/Pixels.h"

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QListView>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTest>
#include <QToolTip>
#include <gtest/gtest.h>

using namespace torvo::app;
using namespace torvo::test;

namespace {

int count(const QImage& image, const QColor& color) {
    int found = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            found += isClose(image.pixelColor(x, y), color) ? 1 : 0;
    return found;
}

} // namespace

TEST(MarloStyle, listsTheChoicesOfAComboBoxBelowItsText) {
    QComboBox box;
    box.addItems({QStringLiteral("Off"), QStringLiteral("LP"), QStringLiteral("BP")});
    box.setCurrentIndex(1);
    box.resize(200, 34);
    box.show();
    box.showPopup();
    QWidget* popup = box.view()->window();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(popup));
    EXPECT_EQ(popup->width(), box.width());
    EXPECT_EQ(box.view()->visualRect(box.model()->index(0, 0)).height(), Popup::rowHeight);
    EXPECT_FALSE(popup->mask().contains(QPoint(0, 0)));
    EXPECT_TRUE(popup->mask().contains(popup->rect().center()));

    const QImage image = popup->grab().toImage();
    const QColor label[] = {MarloTheme::ink, MarloTheme::surface};
    for (int index = 0; index < box.count(); ++index) {
        const QRect row = box.view()
                              ->visualRect(box.model()->index(index, 0))
                              .translated(box.view()->mapTo(popup, QPoint()));
        const bool isChosen = index == box.currentIndex();
        EXPECT_PIXEL(image, row.center().x(), row.top() + 4,
                     isChosen ? MarloTheme::accent : MarloTheme::panelRaised);
        const QRect words(ComboItemDelegate::textMargin, row.top() + 4, 24, row.height() - 8);
        EXPECT_TRUE(count(image.copy(words), label[isChosen ? 1 : 0]) > 0) << index;
        const QRect mark(row.right() - 30, row.top() + 4, 26, row.height() - 8);
        EXPECT_EQ(count(image.copy(mark), MarloTheme::surface) > 0, isChosen) << index;
    }
    box.hidePopup();
}

TEST(MarloStyle, aComboBoxIsNotHighlightedAfterItsListClosed) {
    QComboBox box;
    box.addItems({QStringLiteral("Off"), QStringLiteral("LP"), QStringLiteral("BP")});
    box.setGeometry(50, 50, 200, 34);
    box.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&box));
    for (const bool staysOnTheBox : {false, true}) {
        QCursor::setPos(box.mapToGlobal(box.rect().center()));
        ASSERT_TRUE(waitUntil([&] { return box.underMouse(); }));
        box.showPopup();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(box.view()->window()));
        if (!staysOnTheBox)
            QCursor::setPos(box.mapToGlobal(box.rect().bottomRight() + QPoint(60, 60)));
        QApplication::processEvents();
        box.hidePopup();
        EXPECT_EQ(box.underMouse(), staysOnTheBox);
    }
}

TEST(MarloStyle, menusAreRaisedPanels) {
    QMenu menu;
    QAction* first = menu.addAction(QStringLiteral("Import"));
    QAction* second = menu.addAction(QStringLiteral("Export"));
    menu.addSeparator();
    second->setEnabled(false);
    menu.popup({0, 0});
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&menu));
    menu.setActiveAction(first);
    const QImage image = menu.grab().toImage();
    const auto right = [&menu](QAction* action) {
        return menu.actionGeometry(action).center() + QPoint(menu.width() / 4, 0);
    };
    EXPECT_PIXEL(image, right(first).x(), right(first).y(), MarloTheme::accent);
    EXPECT_PIXEL(image, right(second).x(), right(second).y(), MarloTheme::panelRaised);
    EXPECT_FALSE(menu.mask().contains(QPoint(0, 0)));
    EXPECT_EQ(menu.actionGeometry(first).height(), Popup::rowHeight);
}

// As on a screen whose windows cannot be translucent: what is not painted there is black.
TEST(MarloStyle, popupsHaveNoBlackCorners) {
    constexpr QRect popup{0, 0, 60, 40};
    const double darkest = MarloTheme::surface.lightnessF();
    for (const double radius : {Popup::cornerRadius, Popup::toolTipRadius}) {
        const QImage image = painted(popup.size(), Qt::black, [&](QPainter& painter) {
            paintPopupPanel(painter, popup, radius);
        });
        const QRegion mask = popupMask(popup, radius);
        EXPECT_FALSE(mask.contains(QPoint(0, 0)));
        for (const QRect& part : mask)
            for (int y = part.top(); y <= part.bottom(); ++y)
                for (int x = part.left(); x <= part.right(); ++x)
                    EXPECT_GE(image.pixelColor(x, y).lightnessF(), darkest) << x << ' ' << y;
    }
}

TEST(MarloStyle, tooltipsHaveRoundCorners) {
    QToolTip::showText({20, 20}, QStringLiteral("Choose an output folder above!"));
    const auto find = []() -> QWidget* {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->inherits("QTipLabel") && widget->isVisible())
                return widget;
        return nullptr;
    };
    ASSERT_TRUE(waitUntil([&] { return find() != nullptr; }));
    const QWidget& toolTip = *find();
    EXPECT_TRUE(toolTip.testAttribute(Qt::WA_TranslucentBackground));
    EXPECT_EQ(toolTip.mask(), popupMask(toolTip.rect(), Popup::toolTipRadius));
    QToolTip::hideText();
}

TEST(MarloStyle, pushButtonsOfDialogsLookLikeTheProgramsOwn) {
    QDialogButtonBox buttons(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons.show();
    QPushButton* accept = buttons.button(QDialogButtonBox::Ok);
    QPushButton* cancel = buttons.button(QDialogButtonBox::Cancel);
    accept->setDefault(true);
    EXPECT_TRUE(accept->icon().isNull());
    EXPECT_EQ(accept->height(), MarloButtonStyle::size(accept->text()).height());
    EXPECT_PIXEL(accept->grab().toImage(), 12, 12, MarloTheme::accent);
    EXPECT_PIXEL(cancel->grab().toImage(), 12, 12, MarloTheme::panelRaised);
}

TEST(MarloStyle, disabledTextHasNoShadow) {
    EXPECT_EQ(QApplication::style()->styleHint(QStyle::SH_EtchDisabledText), 0);
}

TEST(MarloStyle, marksTheFocusInDialogs) {
    QDialog panel;
    QPushButton first(QString(), &panel);
    QPushButton second(QString(), &panel);
    first.setGeometry(10, 10, 80, 30);
    second.setGeometry(10, 50, 80, 30);
    panel.show();
    panel.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&panel));
    first.setFocus();
    const auto mark = [&panel](const QPushButton& button) {
        const QRect around = button.geometry().adjusted(-4, -4, 4, 4);
        return count(panel.grab(around).toImage(), MarloTheme::ink);
    };
    EXPECT_EQ(mark(first) + mark(second), 0);
    QTest::keyClick(&first, Qt::Key_Tab);
    ASSERT_TRUE(second.hasFocus());
    EXPECT_EQ(mark(first), 0);
    EXPECT_GT(mark(second), 2 * (80 + 30));
}

TEST(MarloStyle, highlightsTheMenuSelectedByKeyboard) {
    QMainWindow window;
    for (const char* title : {"File", "Help"})
        window.menuBar()->addMenu(QString::fromLatin1(title))->addAction(QStringLiteral("Quit"));
    window.resize(300, 100);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QMenuBar& bar = *window.menuBar();
    const auto marked = [&bar](int index) {
        const QImage image = bar.grab(bar.actionGeometry(bar.actions()[index])).toImage();
        return isClose(image.pixelColor(image.width() / 2, 0), MarloTheme::ink) &&
               isClose(image.pixelColor(0, image.height() / 2), MarloTheme::ink);
    };
    EXPECT_FALSE(marked(0));
    QTest::keyClick(&window, Qt::Key_Alt);
    ASSERT_TRUE(bar.hasFocus());
    EXPECT_TRUE(marked(0));
    EXPECT_FALSE(marked(1));
    QTest::keyClick(&bar, Qt::Key_Right);
    EXPECT_FALSE(marked(0));
    EXPECT_TRUE(marked(1));
}

TEST(MarloStyle, toolTipsStayInTheWindow) {
    const QRect window(0, 0, 880, 1000);
    struct Row {
        const char* name;
        QRect toolTip;
        QPoint place;
    };
    for (const Row& row :
         {Row{"in the middle", {300, 400, 200, 60}, {300, 400}},
          Row{"touches the lower edge", {300, 940, 200, 60}, {300, 940}},
          Row{"below", {300, 941, 200, 60}, {300, 857}},
          Row{"right", {700, 400, 200, 60}, {680, 400}}, Row{"left", {-9, 400, 200, 60}, {0, 400}},
          Row{"wider than the window", {300, 400, 900, 60}, {0, 400}},
          Row{"higher than the window", {300, 400, 200, 1200}, {300, 0}}})
        EXPECT_EQ(toolTipPosition(row.toolTip, window), row.place) << row.name;
}
