#include "Controls/Card.h"
#include "Controls/DisclosureHeader.h"
#include "Controls/DisclosureSection.h"
#include "Controls/ElidedPathLabel.h"
#include "Controls/MarloButton.h"
#include "Controls/ProgressBar.h"
#include "Controls/StatusIcon.h"
#include "MarloTheme.h"
#include "Support/ContentViewFixture.h"
#include "Support/Pixels.h"
#include "Support/UrlReceiver.h"
#include "Text.h"

#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QListView>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <QTextDocument>
#include <QUrl>
#include <gtest/gtest.h>

#include <algorithm>

using namespace torvo;
using namespace torvo::app;
using namespace torvo::test;

namespace {

class ContentViewTest : public testing::Test, protected ContentViewFixture {};

} // namespace

TEST_F(ContentViewTest, namesItselfInTheHeader) {
    const QLabel* title = label(QStringLiteral("TORVO QUASTLE BANK GENERATOR"));
    ASSERT_TRUE(title);
    EXPECT_EQ(title->font().pixelSize(), 30);
    EXPECT_EQ(title->font().weight(), QFont::Bold);
    EXPECT_TRUE(button("Halvorine"));
    const QLabel* tagline = label(
        QStringLiteral("Drop in a folder of drum chaos. It finds the drums, jumbles them into "
                       "playable random banks, and outputs QZT508-ready sets."));
    ASSERT_TRUE(tagline);
    EXPECT_EQ(tagline->font().weight(), QFont::Normal);
}

TEST_F(ContentViewTest, headsItsCards) {
    for (const char* heading : {"SOURCE", "CHANNELS", "METADATA", "OUTPUT"}) {
        const QLabel* found = label(QString::fromLatin1(heading));
        ASSERT_TRUE(found) << heading;
        EXPECT_TRUE(qobject_cast<Card*>(found->parentWidget())) << heading;
    }
    EXPECT_TRUE(shows("TARGET"));
}

TEST_F(ContentViewTest, keepsItsColumnNarrow) {
    for (const int width : {880, 1400, 2001}) {
        view.resize(width, 1200);
        settle();
        for (auto* card : showing<Card>()) {
            const int left = card->mapTo(&view, QPoint(0, 0)).x();
            EXPECT_LE(card->width(), 880) << width;
            EXPECT_LE(std::abs(left - (width - left - card->width())), 1) << width;
        }
    }
}

TEST_F(ContentViewTest, hasOneProminentButton) {
    prepareRun();
    int prominent = 0;
    for (auto* button : showing<MarloButton>()) {
        const QColor fill = button == mainButton() ? MarloTheme::accent : MarloTheme::panelRaised;
        EXPECT_PIXEL(button->grab().toImage(), 4, button->height() / 2, fill);
        prominent += fill == MarloTheme::accent ? 1 : 0;
    }
    EXPECT_EQ(showing<MarloButton>().size(), 4U);
    EXPECT_EQ(prominent, 1);
}

TEST_F(ContentViewTest, opensTheMakersPage) {
    UrlReceiver receiver("https");
    press(button("Halvorine"));
    EXPECT_EQ(receiver.opened, QList<QUrl>{QUrl(QStringLiteral("https://halvorine.example/"))});
}

TEST_F(ContentViewTest, distinguishesTheTwoFolderButtonsForScreenReaders) {
    EXPECT_EQ(sourceButton()->text(), outputButton()->text());
    EXPECT_EQ(sourceButton()->accessibleDescription(), QStringLiteral("Source folder"));
    EXPECT_EQ(outputButton()->accessibleDescription(), QStringLiteral("Output folder"));
}

TEST_F(ContentViewTest, choosingAModeScansAgain) {
    scan(drumKit());
    QTest::mouseClick(button("Loops"), Qt::LeftButton);
    EXPECT_TRUE(shows("SCANNING FILES…"));
    waitForWork();
    EXPECT_TRUE(shows("LOOPS"));
}

TEST_F(ContentViewTest, aDroppedDeviceFolderIsStampedNotScanned) {
    const FileURL device = deviceFolder();
    EXPECT_TRUE(drop({url(device.path())}));
    EXPECT_TRUE(shows("Existing QZT508 folder selected."));
    EXPECT_TRUE(shows("Set metadata below, then apply it to the selected QZT508 folder."));
    EXPECT_FALSE(outputButton()->isVisible());
    EXPECT_EQ(mainButton()->text(), QStringLiteral("APPLY"));
    waitForWork();
    EXPECT_TRUE(mainButton()->isEnabled());
    EXPECT_TRUE(mainButton()->toolTip().isEmpty());
    std::size_t shown = 0;
    for (const auto* path : showing<ElidedPathLabel>())
        shown += path->path() == shownPath(device) ? 1U : 0U;
    EXPECT_EQ(shown, 2U); // as source and as target

    press(mainButton());
    waitForWork();
    EXPECT_TRUE(shows("Metadata applied to 0 WAVs"));
}

TEST_F(ContentViewTest, showsNamesThatLookLikeMarkup) {
    const QString name = QStringLiteral("<b>kick.txt");
    folder.write("Kit A/Kick/<b>kick.txt", "notes");
    drumKit();
    scan(FileURL::directory(folder / "Kit A"));
    const QString row =
        section("ignoredFiles")->list()->model()->index(0, 0).data(Qt::ToolTipRole).toString();
    model.setExportFolder(FileURL::directory("/" + name.toStdString() + std::string(300, 'n')));
    settle();
    const QString path = view.findChild<ElidedPathLabel*>(QStringLiteral("targetPath"))->toolTip();
    for (const QString& toolTip : {row, path}) {
        ASSERT_TRUE(Qt::mightBeRichText(toolTip)) << toolTip.toStdString();
        QTextDocument shown;
        shown.setHtml(toolTip);
        EXPECT_TRUE(shown.toPlainText().contains(name)) << toolTip.toStdString();
    }
}

TEST_F(ContentViewTest, clipsNothingAtItsMinimumSize) {
    EXPECT_EQ(view.minimumSize(), QSize(880, 760));
    view.resize(view.minimumSize());
    const std::string longName(220, 'n');
    model.setExportFolder(FileURL::directory("/" + longName));
    scan(drumKit(longName));
    for (auto* open : view.findChildren<DisclosureSection*>())
        open->setExpanded(true);
    settle();
    for (const auto* label : showing<QLabel>()) {
        const QString name = label->text().left(40);
        EXPECT_GE(label->height(), label->minimumSizeHint().height()) << name.toStdString();
        EXPECT_GE(label->width(), label->minimumSizeHint().width()) << name.toStdString();
        EXPECT_TRUE(label->parentWidget()->rect().contains(label->geometry()))
            << name.toStdString();
    }
    auto* area = view.findChild<QScrollArea*>();
    EXPECT_LE(area->widget()->width(), area->viewport()->width());
}

TEST_F(ContentViewTest, everyShowingControlHasAName) {
    model.setExportFolder(outputFolder());
    drumKit();
    folder.write("Kit A/Kick/notes.txt", "notes");
    scan(FileURL::directory(folder / "Kit A"));
    for (auto* open : view.findChildren<DisclosureSection*>())
        open->setExpanded(true);
    model.generateBanks();
    waitForWork();
    std::vector<std::string> nameless;
    for (auto* widget : showing<QWidget>()) {
        const bool isControl = widget->focusPolicy() != Qt::NoFocus ||
                               qobject_cast<QLabel*>(widget) || qobject_cast<StatusIcon*>(widget) ||
                               qobject_cast<ProgressBar*>(widget);
        QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(widget);
        if (isControl && interface && interface->isValid() &&
            interface->text(QAccessible::Name).isEmpty() &&
            interface->text(QAccessible::Value).isEmpty())
            nameless.emplace_back(widget->metaObject()->className());
    }
    EXPECT_EQ(nameless, std::vector<std::string>());
}

TEST_F(ContentViewTest, scrollsToAListThatTheUserOpens) {
    for (int index = 0; index < 40; ++index)
        folder.write("Kit A/Kick/notes " + std::to_string(index) + ".txt", "notes");
    scan(drumKit());
    const auto* area = view.findChild<QScrollArea*>();
    auto* bar = area->verticalScrollBar();
    auto* files = section("ignoredFiles");
    view.setMinimumSize(1, 1); // as on a small screen
    const auto resize = [this](int height) {
        view.resize(1366, height);
        settle();
    };
    const auto isInView = [&](const QWidget* widget, int height) {
        const int top = widget->mapTo(area->viewport(), QPoint()).y();
        return top >= 0 && top + height <= area->viewport()->height();
    };
    resize(696); // 768 less the frame and the menu bar
    ASSERT_EQ(bar->value(), 0);
    QTest::mouseClick(files->header(), Qt::LeftButton);
    settle();
    EXPECT_GT(bar->value(), 0);
    EXPECT_TRUE(isInView(files->header(), files->header()->height()));
    EXPECT_TRUE(isInView(files->list(), files->list()->height()));
    // Neither closing the list nor a new scan scrolls.
    resize(360);
    bar->setValue(90);
    press(files->header());
    settle();
    EXPECT_EQ(bar->value(), 90);
    // By keyboard, with less room than the list needs.
    bar->setValue(bar->maximum());
    QTest::keyClick(files->header(), Qt::Key_Space);
    settle();
    EXPECT_LT(area->viewport()->height(), files->height());
    EXPECT_TRUE(isInView(files->header(), files->header()->height() + 3 * 26));
    bar->setValue(0);
    scan(FileURL::directory(folder / "Kit A"));
    settle();
    EXPECT_EQ(bar->value(), 0);
}

TEST_F(ContentViewTest, showsAChosenSourceFromItsTop) {
    const auto* area = view.findChild<QScrollArea*>();
    auto* bar = area->verticalScrollBar();
    const auto* heading = label(QStringLiteral("SOURCE"));
    view.setMinimumSize(1, 1); // as on a small screen
    view.resize(1366, 500);
    settle();
    bar->setValue(bar->maximum());
    ASSERT_LT(heading->mapTo(area->viewport(), QPoint()).y(), 0);
    EXPECT_TRUE(drop({url(drumKit().path())}));
    waitForWork();
    settle();
    const auto* card = heading->parentWidget();
    const int top = card->mapTo(area->viewport(), QPoint()).y();
    EXPECT_GE(top, 0);
    EXPECT_GT(bar->value(), 0); // the header is of less interest
    EXPECT_TRUE(area->viewport()->rect().contains(QRect({card->x(), top}, card->size())));
    // The same folder is not shown again.
    bar->setValue(bar->maximum());
    scan(drumKit());
    settle();
    EXPECT_EQ(bar->value(), bar->maximum());
    // It does not scroll while the card is in sight.
    bar->setValue(9);
    scan(drumKit("Kit B"));
    settle();
    EXPECT_EQ(bar->value(), 9);
}
