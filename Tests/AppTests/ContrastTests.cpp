#include "Controls/ChannelToggleButton.h"
#include "Controls/DisclosureHeader.h"
#include "Controls/MarloButton.h"
#include "Controls/Painting.h"
#include "Controls/ProgressBar.h"
#include "Controls/ScrollShadow.h"
#include "Controls/ThreeWayModeToggle.h"
#include "MarloTheme.h"
#include "Support/Pixels.h"
#include "Support/WindowStates.h"

#include <QCheckBox>
#include <QComboBox>
#include <QListView>
#include <QMenu>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyleOption>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

using namespace torvo;
using namespace torvo::app;
using namespace torvo::test;

namespace {

constexpr double textRatio = 4.5;
constexpr double shapeRatio = 3;

/// The relative luminance of WCAG.
double luminance(const QColor& color) {
    const auto linear = [](double value) {
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

double contrast(const QColor& one, const QColor& other) {
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor backgroundOf(const QImage& image) {
    std::map<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            ++counts[image.pixel(x, y)];
    return QColor::fromRgb(std::ranges::max_element(counts, {}, [](const auto& entry) {
                               return entry.second;
                           })->first);
}

/// Of the pixel that differs most from the background.
double strongestContrast(const QImage& image) {
    const QColor background = backgroundOf(image);
    double strongest = 1;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            strongest = std::max(strongest, contrast(image.pixelColor(x, y), background));
    return strongest;
}

class ContrastTest : public testing::Test, protected WindowStates {
protected:
    /// The highlight of the mode selector has arrived behind the selected mode.
    bool isModeAtRest() {
        const auto* modes = view.findChild<ThreeWayModeToggle*>();
        const auto position = static_cast<std::size_t>(modes->highlightPosition());
        return modes->highlightPosition() == static_cast<double>(position) &&
               modes->segments()[position]->isChecked();
    }
    /// What is on the window in the place of a widget.
    QImage seen(const QWidget* widget) {
        return view.grab({widget->mapTo(&view, QPoint()), widget->size()}).toImage();
    }
    /// Nothing is scrolled out of sight or lies in the shadow at the lower edge.
    void SetUp() override { view.resize(880, 1600); }
};

} // namespace

TEST_F(ContrastTest, everyTextCanBeReadInEveryState) {
    std::size_t texts = 0;
    for (const bool opened : {false, true}) {
        for (const char* name : {"ignoredFolders", "ignoredFiles"})
            section(name)->setExpanded(opened);
        inEveryState([&](const std::string& state) {
            ASSERT_TRUE(waitUntil([this] { return isModeAtRest(); }));
            for (const auto* label : showing<QLabel>()) {
                if (label->text().isEmpty())
                    continue;
                ++texts;
                const QColor color = label->palette().color(QPalette::WindowText);
                EXPECT_GE(contrast(color, backgroundOf(seen(label))), textRatio)
                    << label->text().toStdString() << " when " << state;
            }
            for (auto* control : showing<QWidget>()) {
                const bool hasText =
                    qobject_cast<QAbstractButton*>(control) || qobject_cast<QComboBox*>(control);
                // The look of a disabled button is fixed by the design.
                if (!hasText || !control->isEnabled())
                    continue;
                ++texts;
                EXPECT_GE(strongestContrast(seen(control)), textRatio)
                    << control->metaObject()->className() << ' '
                    << control->accessibleName().toStdString() << " when " << state;
            }
        });
    }
    EXPECT_GT(texts, 1000U);
}

TEST_F(ContrastTest, textsInTheShadowAtTheLowerEdgeCanBeRead) {
    scan(drumKit());
    view.setMinimumSize(1, 1); // as on a small screen
    view.resize(880, 500);
    settle();
    const auto* area = view.findChild<QScrollArea*>();
    auto* bar = area->verticalScrollBar();
    const QRect shadow(0, area->height() - ScrollShadow::shadowHeight, area->width(),
                       ScrollShadow::shadowHeight);
    int texts = 0;
    for (int position = 0; position < bar->maximum(); position += 3) {
        bar->setValue(position);
        for (auto* widget : area->findChildren<QWidget*>()) {
            const QRect place(widget->mapTo(area, QPoint()), widget->size());
            const auto* label = qobject_cast<QLabel*>(widget);
            const bool hasText =
                (label && !label->text().isEmpty()) || qobject_cast<DisclosureHeader*>(widget);
            if (!hasText || !widget->isVisible() || !area->rect().contains(place) ||
                !shadow.intersects(place))
                continue;
            ++texts;
            EXPECT_GE(strongestContrast(seen(widget)), textRatio)
                << widget->accessibleName().toStdString()
                << (label ? label->text().toStdString() : std::string()) << " at " << position;
        }
    }
    EXPECT_GT(texts, 40);
}

TEST_F(ContrastTest, buttonsCanBeReadUnlessTheDesignFixesTheirColours) {
    struct Row {
        const char* name;
        QColor text;
        QColor background;
        double opacity;
        bool isFixed;
    };
    std::vector<Row> rows;
    for (const bool prominent : {false, true}) {
        for (const bool pressed : {false, true}) {
            const MarloButtonStyle style{.prominent = prominent, .pressed = pressed};
            rows.push_back({prominent ? "prominent" : "ordinary", style.labelColor(),
                            style.backgroundColor(), style.opacity(), prominent && pressed});
        }
        const MarloButtonStyle disabled{.prominent = prominent, .enabled = false};
        rows.push_back({"disabled", disabled.labelColor(), disabled.backgroundColor(),
                        disabled.opacity(), true});
    }
    for (const bool selected : {false, true}) {
        for (const bool pressed : {false, true}) {
            const ChannelToggleButtonStyle style{
                .selected = selected, .enabled = true, .pressed = pressed};
            rows.push_back(
                {"channel", style.labelColor(), style.backgroundColor(), 1, selected && pressed});
        }
        const ChannelToggleButtonStyle disabled{.selected = selected, .enabled = false};
        rows.push_back(
            {"disabled channel", disabled.labelColor(), disabled.backgroundColor(), 1, true});
    }
    rows.push_back({"selected mode", MarloTheme::surface, MarloTheme::ink, 1, false});
    rows.push_back({"other mode", MarloTheme::muted, MarloTheme::panelRaised, 1, false});
    for (const Row& row : rows) {
        const QColor fill = blended(row.background, MarloTheme::panel);
        const QColor background = blended(fill, MarloTheme::panel, row.opacity);
        const QColor text = blended(blended(row.text, fill), MarloTheme::panel, row.opacity);
        // A fixed pair that could be read needs no exception.
        EXPECT_EQ(contrast(text, background) >= textRatio, !row.isFixed)
            << row.name << ' ' << contrast(text, background);
    }
}

TEST_F(ContrastTest, aDisabledMainButtonHasAnEdge) {
    const auto edge = [this] {
        const QRect place(mainButton()->mapTo(&view, QPoint()), mainButton()->size());
        const QImage around = view.grab(place.adjusted(-3, -3, 3, 3)).toImage();
        const int middle = around.height() / 2;
        EXPECT_PIXEL(around, 1, middle, MarloTheme::panel);
        return around.pixelColor(2, middle);
    };
    ASSERT_FALSE(mainButton()->isEnabled());
    EXPECT_GE(contrast(edge(), MarloTheme::panel), shapeRatio);
    prepareRun();
    ASSERT_TRUE(mainButton()->isEnabled());
    EXPECT_EQ(edge(), MarloTheme::panel);
}

TEST_F(ContrastTest, everyRowOfAMenuCanBeRead) {
    QMenu menu;
    menu.addAction(QStringLiteral("Import JSON…"));
    menu.addAction(QStringLiteral("Export JSON…"))->setEnabled(false);
    menu.popup({0, 0});
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&menu));
    menu.setActiveAction(menu.actions().front());
    for (QAction* action : menu.actions())
        EXPECT_GE(strongestContrast(menu.grab(menu.actionGeometry(action)).toImage()), textRatio)
            << action->text().toStdString();
}

TEST_F(ContrastTest, everyIgnoredRowCanBeRead) {
    folder.write("Kit A/Kick/notes.txt", "notes");
    scan(drumKit());
    auto* const list = section("ignoredFiles")->list();
    section("ignoredFiles")->setExpanded(true);
    settle();
    const QRect row = list->visualRect(list->model()->index(0, 0));
    const QRect reason(row.center().x(), row.top() + 4, row.width() / 2 - 8, row.height() - 8);
    const auto ratio = [&] { return strongestContrast(list->viewport()->grab(reason).toImage()); };
    EXPECT_GE(ratio(), textRatio);
    list->selectAll();
    EXPECT_GE(ratio(), textRatio);
}

TEST_F(ContrastTest, whatHasNoTextCanBeFound) {
    for (const QColor& background :
         {MarloTheme::surface, MarloTheme::panel, MarloTheme::panelRaised})
        EXPECT_GE(contrast(outlineColor, background), shapeRatio);
    for (const bool quiet : {false, true}) {
        for (const bool hovered : {false, true}) {
            const DropZoneStyle zone{.quiet = quiet, .hovered = hovered};
            EXPECT_GE(contrast(zone.borderColor(), MarloTheme::panel), shapeRatio);
            EXPECT_GE(contrast(zone.borderColor(), zone.backgroundColor()), shapeRatio);
        }
    }
    // The edge of an unticked box and of an empty track, and the thumb of a scroll bar.
    QCheckBox box;
    QStyleOptionButton unticked;
    unticked.rect = QRect(0, 0, 18, 18);
    unticked.state = QStyle::State_Enabled | QStyle::State_Off;
    const QImage indicator = painted({18, 18}, MarloTheme::panel, [&](QPainter& painter) {
        box.style()->drawPrimitive(QStyle::PE_IndicatorCheckBox, &unticked, &painter, &box);
    });
    EXPECT_GE(contrast(indicator.pixelColor(9, 0), MarloTheme::panel), shapeRatio);
    const QImage track = painted({120, 6}, MarloTheme::panel, [](QPainter& painter) {
        paintProgress(painter, QRectF(0, 0, 120, 6), QRectF());
    });
    EXPECT_GE(contrast(track.pixelColor(60, 0), MarloTheme::panel), shapeRatio);
    for (const auto state :
         {QStyle::State(QStyle::State_Enabled), QStyle::State_Enabled | QStyle::State_Sunken}) {
        QScrollBar bar;
        QStyleOptionSlider option;
        option.rect = QRect(0, 0, 12, 200);
        option.orientation = Qt::Vertical;
        option.maximum = option.pageStep = 100;
        option.state = state;
        const QImage thumb = painted({12, 200}, MarloTheme::surface, [&](QPainter& painter) {
            bar.style()->drawComplexControl(QStyle::CC_ScrollBar, &option, &painter, &bar);
        });
        EXPECT_GE(contrast(thumb.pixelColor(6, 50), MarloTheme::surface), shapeRatio);
    }
}
