#include "Controls/Card.h"
#include "Controls/ChannelToggleButton.h"
#include "Controls/CountRow.h"
#include "Controls/LinkButton.h"
#include "MarloTheme.h"
#include "Support/WindowStates.h"
#include "Views/RunMessage.h"

#include <QComboBox>
#include <QScrollArea>
#include <QScrollBar>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

using namespace torvo;
using namespace torvo::app;
using namespace torvo::test;

namespace {

/// The free areas of common screens at scale factors of 1, 1.25, 1.5 and 2, less a window frame and
/// the menu bar.
std::vector<QSize> contentSizes() {
    constexpr QSize outside{0, 72};
    std::vector<QSize> sizes;
    for (const QSize screen : {QSize(1366, 768), QSize(1920, 1080), QSize(2560, 1440)})
        for (const double scale : {1.0, 1.25, 1.5, 2.0})
            sizes.push_back((QSizeF(screen) / scale).toSize() - outside);
    sizes.emplace_back(880, 760);
    sizes.emplace_back(1365, 900);
    return sizes;
}

std::string text(QSize size) {
    return std::to_string(size.width()) + "x" + std::to_string(size.height());
}

class GeometryTest : public testing::Test, protected WindowStates {
protected:
    QRect place(const QWidget* widget) const {
        return {widget->mapTo(&view, QPoint()), widget->size()};
    }
    std::map<std::string, QRect> cards() const {
        std::map<std::string, QRect> found;
        for (const auto* card : showing<Card>())
            found[card->accessibleName().toStdString()] = place(card);
        found["GENERATE or APPLY"] = place(mainButton());
        found["message"] = place(view.findChild<RunMessage*>());
        return found;
    }
};

} // namespace

TEST_F(GeometryTest, nothingMovesBetweenTheStates) {
    for (const QSize size : {QSize(880, 956), QSize(1920, 1008)}) {
        view.resize(size);
        std::map<std::string, QRect> first;
        inEveryState([&](const std::string& state) {
            if (first.empty())
                first = cards();
            EXPECT_EQ(cards(), first) << state << " at " << text(size);
        });
    }
}

TEST_F(GeometryTest, everythingIsOnTheScreenInEveryState) {
    view.setMinimumSize(1, 1);
    inEveryState([&](const std::string& state) {
        for (const QSize& room : contentSizes()) {
            SCOPED_TRACE(state + " at " + text(room));
            view.resize(room);
            settle();
            EXPECT_EQ(view.size(), room);
            EXPECT_TRUE(view.rect().contains(place(mainButton())));
            EXPECT_TRUE(view.rect().contains(place(view.findChild<RunMessage*>())));
            for (const auto* label : showing<QLabel>()) {
                const std::string name = label->text().left(40).toStdString();
                EXPECT_GE(label->height(), label->minimumSizeHint().height()) << name;
                EXPECT_GE(label->width(), label->minimumSizeHint().width()) << name;
                EXPECT_TRUE(label->parentWidget()->rect().contains(label->geometry())) << name;
            }
            for (const auto* button : showing<QAbstractButton>())
                EXPECT_TRUE(button->parentWidget()->rect().contains(button->geometry()))
                    << button->accessibleName().toStdString();
        }
    });
}

TEST_F(GeometryTest, everyLinkIsHighEnoughToBeHit) {
    view.resize(880, 956);
    std::set<std::string> links;
    inEveryState([&](const std::string& state) {
        for (const auto* link : showing<LinkButton>()) {
            links.insert(link->text().toStdString());
            const QRect area = place(link);
            EXPECT_GE(area.height(), 24) << state;
            for (const int y : {area.top(), area.bottom()})
                EXPECT_EQ(view.childAt(area.center().x(), y), link) << state;
        }
    });
    EXPECT_EQ(links, (std::set<std::string>{"Halvorine", "Show folder"}));
}

TEST_F(GeometryTest, theNaturalHeightShowsEverythingInEveryState) {
    const int natural = view.sizeHint().height();
    view.resize(880, natural);
    auto* area = view.findChild<QScrollArea*>();
    inEveryState([&](const std::string& state) {
        EXPECT_EQ(area->verticalScrollBar()->maximum(), 0) << state;
        EXPECT_EQ(area->horizontalScrollBar()->maximum(), 0) << state;
        EXPECT_EQ(view.sizeHint().height(), natural) << state;
    });
}

TEST_F(GeometryTest, cardsHaveOneGridOfWholePixels) {
    scan(drumKit());
    for (const int width : {880, 1365, 1366, 1920, 2560}) {
        view.resize(width, 1000);
        settle();
        SCOPED_TRACE(width);
        std::set<std::pair<int, int>> edges;
        for (const auto* card : showing<Card>()) {
            EXPECT_EQ(card->width(), MarloTheme::cardWidth);
            edges.emplace(place(card).left(), place(card).right());
        }
        EXPECT_EQ(edges.size(), 1U);
        const int left = edges.begin()->first + Card::horizontalPadding;
        const int right = edges.begin()->second - Card::horizontalPadding;
        const auto expectColumns = [&](auto widgets, std::size_t count) {
            std::vector<QRect> places;
            for (const auto* widget : widgets)
                places.push_back(place(widget));
            std::ranges::sort(places, {}, &QRect::left);
            const auto last = std::ranges::unique(places, {}, &QRect::left);
            places.erase(last.begin(), last.end());
            ASSERT_EQ(places.size(), count);
            EXPECT_EQ(places.front().left(), left);
            EXPECT_EQ(places.back().right(), right);
            for (std::size_t index = 1; index < places.size(); ++index) {
                EXPECT_EQ(places[index].width(), places[0].width());
                EXPECT_EQ(places[index].left() - places[index - 1].right() - 1,
                          MarloTheme::columnGap);
            }
        };
        expectColumns(showing<CountRow>(), 2);
        expectColumns(showing<QComboBox>(), 3);
        expectColumns(showing<ChannelToggleButton>(), 8);
        EXPECT_EQ(place(button("Halvorine")).right(), edges.begin()->second);
    }
}

TEST_F(GeometryTest, theSingleCountHasThePlaceOfTheFirstDrum) {
    scan(drumKit());
    settle();
    const QRect kick = place(showing<CountRow>().front());
    for (const auto mode : {GenerationMode::loops, GenerationMode::stabs}) {
        model.setGenerationMode(mode);
        waitForWork();
        settle();
        ASSERT_EQ(showing<CountRow>().size(), 1U);
        EXPECT_EQ(place(showing<CountRow>().front()), kick);
    }
}

TEST_F(GeometryTest, rowsDoNotFloatInATallWindow) {
    scan(drumKit());
    const auto firstRow = [this](int height) {
        view.resize(880, height);
        settle();
        return place(showing<CountRow>().front()).top() -
               place(label(QStringLiteral("CHANNELS"))).bottom();
    };
    const int usual = firstRow(956);
    EXPECT_LE(usual, 12);
    EXPECT_EQ(firstRow(1400), usual);
    EXPECT_EQ(firstRow(2400), usual);
}

TEST_F(GeometryTest, theMainButtonIsWiderThanTheOthersAndTheModesAreNot) {
    settle();
    for (const auto* other : showing<QAbstractButton>()) {
        if (other->parentWidget() == mainButton()->parentWidget() && other != mainButton()) {
            EXPECT_GT(mainButton()->width(), other->width());
        }
    }
    const int segment = button("Drums")->width();
    EXPECT_GE(segment, 120);
    EXPECT_LE(segment, 140);
}
