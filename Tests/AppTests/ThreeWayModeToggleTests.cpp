#include "Controls/ThreeWayModeToggle.h"
#include "MarloTheme.h"
#include "Support/AppFixture.h"
#include "Support/Pixels.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

using namespace torvo;
using namespace torvo::app;
using namespace torvo::test;

namespace {

constexpr ModeToggleGeometry geometry{100, 40};
const std::vector<GenerationMode> threeModes{allGenerationModes.begin(), allGenerationModes.end()};

} // namespace

TEST(ThreeWayModeToggle, computesItsGeometry) {
    EXPECT_EQ(geometry.size(3), QSizeF(300, 40));
    EXPECT_EQ(geometry.segment(2), QRectF(200, 0, 100, 40));
    EXPECT_EQ(geometry.highlight(0), QRectF(3, 3, 94, 34));
    EXPECT_EQ(geometry.highlight(1), QRectF(103, 3, 94, 34));
    EXPECT_EQ(geometry.highlight(1.5), QRectF(153, 3, 94, 34));
}

TEST(ThreeWayModeToggle, paintsBackgroundAndHighlight) {
    const QImage image = painted({300, 40}, MarloTheme::surface, [](QPainter& painter) {
        paintModeToggle(painter, geometry, 3, 1);
    });
    const QColor background = MarloTheme::panelRaised;
    EXPECT_PIXEL(image, 50, 20, background);
    EXPECT_PIXEL(image, 50, 0, blended(MarloTheme::line, background));
    EXPECT_PIXEL(image, 0, 0, MarloTheme::surface);
    EXPECT_PIXEL(image, 150, 20, MarloTheme::ink);
    EXPECT_PIXEL(image, 150, 3, MarloTheme::ink);
    EXPECT_PIXEL(image, 150, 2, background);
    EXPECT_PIXEL(image, 103, 20, MarloTheme::ink);
    EXPECT_PIXEL(image, 102, 20, background);
    EXPECT_PIXEL(image, 196, 20, MarloTheme::ink);
    EXPECT_PIXEL(image, 197, 20, background);
}

TEST(ThreeWayModeToggle, emitsTheSegmentThatIsClicked) {
    ThreeWayModeToggle toggle(threeModes, 100, 40);
    toggle.show();
    QSignalSpy chosen(&toggle, &ThreeWayModeToggle::modeChosen);
    QTest::mouseClick(toggle.segments()[2], Qt::LeftButton, {}, {2, 2});
    ASSERT_EQ(chosen.size(), 1);
    EXPECT_EQ(chosen[0][0].value<GenerationMode>(), GenerationMode::stabs);
    EXPECT_EQ(toggle.selection(), GenerationMode::drums);
}

TEST(ThreeWayModeToggle, slidesToTheSelection) {
    ThreeWayModeToggle toggle(threeModes, 100, 40);
    toggle.show();
    toggle.setSelection(GenerationMode::stabs);
    EXPECT_EQ(toggle.selection(), GenerationMode::stabs);
    EXPECT_LT(toggle.highlightPosition(), 2);
    EXPECT_TRUE(waitUntil([&] { return toggle.highlightPosition() == 2; }));
    EXPECT_TRUE(toggle.segments()[2]->isChecked());
    EXPECT_FALSE(toggle.segments()[0]->isChecked());
}

TEST(ThreeWayModeToggle, slidesForASixthOfASecondEasingInAndOut) {
    ThreeWayModeToggle toggle(threeModes, 100, 40);
    const auto* slide = toggle.findChild<QVariantAnimation*>();
    ASSERT_TRUE(slide);
    EXPECT_EQ(slide->duration(), 160);
    EXPECT_EQ(slide->easingCurve().type(), QEasingCurve::InOutQuad);
}

TEST(ThreeWayModeToggle, paintsItsLabelsInTheColoursOfTheirSegments) {
    ThreeWayModeToggle toggle(threeModes, 100, 40);
    const QImage expected = painted({300, 40}, MarloTheme::panel, [](QPainter& painter) {
        paintModeToggle(painter, geometry, 3, 0);
        painter.setFont(MarloTheme::font(15, MarloTheme::FontCut::semiBold));
        for (int index = 0; const char* title : {"Drums", "Loops", "Stabs"}) {
            painter.setPen(index == 0 ? MarloTheme::surface : MarloTheme::muted);
            painter.drawText(QRect(100 * index, 0, 100, 40), Qt::AlignCenter,
                             QString::fromLatin1(title));
            ++index;
        }
    });
    const QImage seen = painted({300, 40}, MarloTheme::panel, [&toggle](QPainter& painter) {
        toggle.render(&painter, {}, {}, QWidget::DrawChildren);
    });
    EXPECT_EQ(seen, expected);
}

TEST(ThreeWayModeToggle, hasRoundCorners) {
    const QImage image = painted(
        {300, 40}, Qt::black, [](QPainter& painter) { paintModeToggle(painter, geometry, 3, 1); });
    EXPECT_NEAR(cornerRadius(image, Qt::black, MarloTheme::panelRaised), 10, 0.6);
    EXPECT_PIXEL(image, 50, 1, MarloTheme::panelRaised);
}

TEST(ThreeWayModeToggle, isOneTabStopWithArrowKeysInside) {
    ThreeWayModeToggle toggle(threeModes, 100, 40);
    QObject::connect(&toggle, &ThreeWayModeToggle::modeChosen, &toggle,
                     &ThreeWayModeToggle::setSelection);
    toggle.show();
    const auto tabStops = [&] {
        int count = 0;
        for (const QAbstractButton* segment : toggle.segments())
            count += (segment->focusPolicy() & Qt::TabFocus) != 0 ? 1 : 0;
        return count;
    };
    EXPECT_EQ(tabStops(), 1);
    struct Row {
        Qt::Key key;
        GenerationMode mode;
    };
    using enum GenerationMode;
    for (const Row& row :
         {Row{Qt::Key_Left, drums}, Row{Qt::Key_Right, loops}, Row{Qt::Key_Down, stabs},
          Row{Qt::Key_Right, stabs}, Row{Qt::Key_Up, loops}, Row{Qt::Key_Home, drums},
          Row{Qt::Key_End, stabs}}) {
        QTest::keyClick(toggle.segments()[static_cast<std::size_t>(toggle.selection())], row.key);
        EXPECT_EQ(toggle.selection(), row.mode);
        EXPECT_EQ(tabStops(), 1);
    }
}

TEST(ThreeWayModeToggle, isOneNamedGroupOfThree) {
    ThreeWayModeToggle toggle(threeModes, 100, 40);
    toggle.show();
    QAccessibleInterface* group = QAccessible::queryAccessibleInterface(&toggle);
    EXPECT_EQ(group->text(QAccessible::Name), QStringLiteral("Generation mode"));
    EXPECT_EQ(group->role(), QAccessible::Grouping);
    ASSERT_EQ(group->childCount(), 3);
    const std::array names{"Drums", "Loops", "Stabs"};
    for (int index = 0; index < 3; ++index) {
        QAccessibleInterface* segment = group->child(index);
        EXPECT_EQ(segment->text(QAccessible::Name).toStdString(),
                  names[static_cast<std::size_t>(index)]);
        EXPECT_EQ(segment->role(), QAccessible::RadioButton);
        EXPECT_EQ(segment->state().checked, index == 0);
    }
}
