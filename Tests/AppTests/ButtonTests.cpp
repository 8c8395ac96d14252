#include "Controls/ChannelToggleButton.h"
#include "Controls/MarloButton.h"
#include "MarloTheme.h"
#include "Support/Pixels.h"

#include <QApplication>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

using namespace torvo::app;
using namespace torvo::test;
using MarloTheme::withOpacity;

namespace {

/// The column is far from the label: it contains only background and border.
constexpr QSize canvas{200, 40};

QImage drawn(const MarloButtonStyle& style) {
    return painted(canvas, MarloTheme::panel, [&](QPainter& painter) {
        style.paint(painter, QRectF({0, 0}, canvas), QStringLiteral("GO"));
    });
}

QImage drawn(const ChannelToggleButtonStyle& style) {
    return painted(ChannelToggleButtonStyle::size, MarloTheme::panel, [&](QPainter& painter) {
        style.paint(painter, QRectF({0, 0}, ChannelToggleButtonStyle::size), QStringLiteral("8"));
    });
}

/// The image that the widget paints.
QImage drawn(QWidget& widget) {
    widget.resize(widget.sizeHint());
    return painted(widget.size(), MarloTheme::panel, [&](QPainter& painter) {
        widget.render(&painter, {}, {}, QWidget::RenderFlags());
    });
}

/// The smallest colour distance between a pixel of the label and `color`.
int distanceOfLabel(const QImage& image, const QRect& around, const QColor& expected) {
    int best = 255 * 3;
    for (int y = around.top(); y <= around.bottom(); ++y) {
        for (int x = around.left(); x <= around.right(); ++x) {
            const QColor seen = image.pixelColor(x, y);
            best = std::min(best, std::abs(seen.red() - expected.red()) +
                                      std::abs(seen.green() - expected.green()) +
                                      std::abs(seen.blue() - expected.blue()));
        }
    }
    return best;
}

} // namespace

TEST(MarloButton, hasTheLabelsSizeAndPadding) {
    const QFontMetrics metrics(MarloButtonStyle::labelFont());
    EXPECT_EQ(MarloButtonStyle::labelFont().pixelSize(), 14);
    EXPECT_EQ(MarloButtonStyle::labelFont().weight(), QFont::DemiBold);
    EXPECT_EQ(
        MarloButtonStyle::size(QStringLiteral("CLEAR")),
        QSize(metrics.horizontalAdvance(QStringLiteral("CLEAR")) + 28, metrics.height() + 20));
}

TEST(MarloButton, paintsEachStateInItsColours) {
    struct Row {
        const char* name;
        MarloButtonStyle style;
        QColor background;
        QColor border;
        QColor label;
        double opacity;
    };
    const QColor accent = MarloTheme::accent;
    const QColor raised = MarloTheme::panelRaised;
    const std::vector<Row> rows{
        {"prominent",
         {.prominent = true},
         accent,
         withOpacity(accent, 0.35),
         MarloTheme::surface,
         1},
        {"prominent pressed",
         {.prominent = true, .pressed = true},
         withOpacity(accent, 0.82),
         withOpacity(accent, 0.35),
         MarloTheme::surface,
         1},
        {"prominent disabled",
         {.prominent = true, .enabled = false},
         withOpacity(accent, 0.38),
         withOpacity(accent, 0.16),
         MarloTheme::surface,
         0.65},
        {"ordinary", {}, raised, MarloTheme::line, MarloTheme::ink, 1},
        {"ordinary pressed",
         {.pressed = true},
         withOpacity(raised, 0.75),
         MarloTheme::line,
         MarloTheme::ink,
         1},
        {"ordinary disabled",
         {.enabled = false},
         withOpacity(raised, 0.7),
         MarloTheme::line,
         withOpacity(MarloTheme::ink, 0.55),
         0.65},
        {"disabled while pressed",
         {.enabled = false, .pressed = true},
         withOpacity(raised, 0.7),
         MarloTheme::line,
         withOpacity(MarloTheme::ink, 0.55),
         0.65},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.style.backgroundColor(), row.background);
        EXPECT_EQ(row.style.borderColor(), row.border);
        EXPECT_EQ(row.style.labelColor(), row.label);
        EXPECT_EQ(row.style.opacity(), row.opacity);

        // The button is one layer: its parts are combined first, then blended once.
        const QColor under = MarloTheme::panel;
        const QImage image = drawn(row.style);
        const QColor fill = blended(row.background, under);
        const QColor edge = blended(row.border, fill);
        EXPECT_PIXEL(image, 30, 20, blended(fill, under, row.opacity));
        EXPECT_PIXEL(image, 30, 0, blended(edge, under, row.opacity));
        EXPECT_PIXEL(image, 0, 0, under);
        const QColor text = blended(blended(row.label, fill), under, row.opacity);
        EXPECT_LE(distanceOfLabel(image, QRect(85, 10, 30, 20), text), 12);
    }
}

TEST(MarloButton, paintsItsOwnState) {
    for (const bool prominent : {true, false}) {
        MarloButton button(QStringLiteral("GO"),
                           prominent ? MarloButton::Kind::prominent : MarloButton::Kind::ordinary);
        const auto expected = [&](const MarloButtonStyle& style) {
            return painted(button.sizeHint(), MarloTheme::panel, [&](QPainter& painter) {
                style.paint(painter, QRectF({0, 0}, button.sizeHint()), button.text());
            });
        };
        EXPECT_EQ(drawn(button), expected({.prominent = prominent}));
        button.setDown(true);
        EXPECT_EQ(drawn(button), expected({.prominent = prominent, .pressed = true}));
        button.setDown(false);
        button.setEnabled(false);
        EXPECT_EQ(drawn(button), expected({.prominent = prominent, .enabled = false}));
    }
}

TEST(MarloButton, hasRoundCornersAndAThinBorder) {
    const QImage image = painted(canvas, Qt::black, [](QPainter& painter) {
        MarloButtonStyle{.prominent = true}.paint(painter, QRectF({0, 0}, canvas), QString());
    });
    EXPECT_NEAR(cornerRadius(image, Qt::black, MarloTheme::accent), 10, 0.6);
    const QImage ordinary = drawn(MarloButtonStyle{});
    EXPECT_PIXEL(ordinary, 30, 0, blended(MarloTheme::line, MarloTheme::panelRaised));
    EXPECT_PIXEL(ordinary, 30, 1, MarloTheme::panelRaised);
}

TEST(MarloButton, isPressedByMouseSpaceAndEnter) {
    MarloButton button(QStringLiteral("GO"), MarloButton::Kind::ordinary);
    button.show();
    QSignalSpy clicks(&button, &QAbstractButton::clicked);
    QTest::mouseClick(&button, Qt::LeftButton);
    QTest::keyClick(&button, Qt::Key_Space);
    QTest::keyClick(&button, Qt::Key_Return);
    QTest::keyClick(&button, Qt::Key_Enter);
    EXPECT_EQ(clicks.size(), 4);
    button.setEnabled(false);
    QTest::mouseClick(&button, Qt::LeftButton);
    QTest::keyClick(&button, Qt::Key_Return);
    EXPECT_EQ(clicks.size(), 4);
}

TEST(MarloButton, isPressedOnceHoweverLongEnterIsHeld) {
    MarloButton button(QStringLiteral("GO"), MarloButton::Kind::ordinary);
    button.show();
    QSignalSpy clicks(&button, &QAbstractButton::clicked);
    for (const bool repeated : {false, true, true}) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, {}, repeated);
        QApplication::sendEvent(&button, &press);
    }
    EXPECT_EQ(clicks.size(), 1);
}

TEST(MarloButton, showsAHoverOverlay) {
    const QImage still = drawn(MarloButtonStyle{});
    EXPECT_NE(drawn(MarloButtonStyle{.hovered = true}), still);
    EXPECT_EQ(drawn(MarloButtonStyle{.enabled = false, .hovered = true}),
              drawn(MarloButtonStyle{.enabled = false}));
}

TEST(MarloButton, keepsItsEdgeSharpAtEveryScale) {
    for (const double scale : {1.0, 1.25, 1.5, 2.0, 3.0}) {
        SCOPED_TRACE(scale);
        QImage image(canvas * scale, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(scale);
        image.fill(MarloTheme::panel);
        {
            QPainter painter(&image);
            MarloButtonStyle{.prominent = true}.paint(painter, QRectF({0, 0}, canvas),
                                                      QStringLiteral("GO"));
        }
        // The fill covers the last row and column completely.
        const int middle = image.height() / 2;
        EXPECT_PIXEL(image, image.width() - 1, middle, MarloTheme::accent);
        EXPECT_PIXEL(image, 30, image.height() - 1, MarloTheme::accent);
    }
}

TEST(ChannelToggleButton, isSeventyTwoByTwentyEight) {
    EXPECT_EQ(ChannelToggleButton(1).sizeHint(), QSize(72, 28));
    EXPECT_EQ(ChannelToggleButtonStyle::labelFont().pixelSize(), 13);
    EXPECT_EQ(ChannelToggleButtonStyle::labelFont().weight(), QFont::DemiBold);
}

TEST(ChannelToggleButton, paintsEachStateInItsColours) {
    struct Row {
        const char* name;
        ChannelToggleButtonStyle style;
        QColor background;
        QColor border;
        QColor label;
    };
    const QColor accent = MarloTheme::accent;
    const QColor raised = MarloTheme::panelRaised;
    const QColor faded = withOpacity(MarloTheme::muted, 0.55);
    const std::vector<Row> rows{
        {"off", {}, raised, MarloTheme::line, MarloTheme::ink},
        {"off pressed",
         {.pressed = true},
         withOpacity(raised, 0.82),
         MarloTheme::line,
         MarloTheme::ink},
        {"on", {.selected = true}, accent, accent, MarloTheme::surface},
        {"on pressed",
         {.selected = true, .pressed = true},
         withOpacity(accent, 0.82),
         accent,
         MarloTheme::surface},
        {"disabled", {.enabled = false}, withOpacity(raised, 0.45), MarloTheme::line, faded},
        {"disabled on",
         {.selected = true, .enabled = false},
         withOpacity(raised, 0.45),
         accent,
         faded},
        {"disabled pressed",
         {.enabled = false, .pressed = true},
         withOpacity(raised, 0.45),
         MarloTheme::line,
         faded},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.style.backgroundColor(), row.background);
        EXPECT_EQ(row.style.borderColor(), row.border);
        EXPECT_EQ(row.style.labelColor(), row.label);
        const QImage image = drawn(row.style);
        const QColor fill = blended(row.background, MarloTheme::panel);
        EXPECT_PIXEL(image, 15, 14, fill);
        EXPECT_PIXEL(image, 15, 0, blended(row.border, fill));
        EXPECT_PIXEL(image, 0, 0, MarloTheme::panel);
        EXPECT_LE(distanceOfLabel(image, QRect(28, 4, 16, 20), blended(row.label, fill)), 40);
    }
}

TEST(ChannelToggleButton, paintsItsOwnState) {
    ChannelToggleButton button(8);
    for (const bool selected : {false, true}) {
        button.setSelected(selected);
        EXPECT_EQ(drawn(button), drawn(ChannelToggleButtonStyle{.selected = selected}));
        button.setDown(true);
        EXPECT_EQ(drawn(button),
                  drawn(ChannelToggleButtonStyle{.selected = selected, .pressed = true}));
        button.setDown(false);
        button.setEnabled(false);
        EXPECT_EQ(drawn(button),
                  drawn(ChannelToggleButtonStyle{.selected = selected, .enabled = false}));
        button.setEnabled(true);
    }
}

TEST(ChannelToggleButton, hasRoundCornersAndAThinBorder) {
    const QSize size = ChannelToggleButtonStyle::size;
    const QImage image = painted(size, Qt::black, [size](QPainter& painter) {
        ChannelToggleButtonStyle{.selected = true}.paint(painter, QRectF({0, 0}, size), QString());
    });
    EXPECT_NEAR(cornerRadius(image, Qt::black, MarloTheme::accent), 8, 0.6);
    const QImage off = drawn(ChannelToggleButtonStyle{});
    EXPECT_PIXEL(off, 15, 0, blended(MarloTheme::line, MarloTheme::panelRaised));
    EXPECT_PIXEL(off, 15, 1, MarloTheme::panelRaised);
}

TEST(ChannelToggleButton, doesNotChangeItsOwnState) {
    ChannelToggleButton button(3);
    button.show();
    QSignalSpy clicks(&button, &QAbstractButton::clicked);
    QTest::mouseClick(&button, Qt::LeftButton);
    EXPECT_EQ(clicks.size(), 1);
    EXPECT_FALSE(button.isChecked());
    button.setSelected(true);
    EXPECT_TRUE(button.isChecked());
}
