#include "Controls/CountRow.h"
#include "Controls/DisclosureHeader.h"
#include "Controls/DisclosureSection.h"
#include "Controls/ProgressBar.h"
#include "Controls/StatusIcon.h"
#include "MarloTheme.h"
#include "Support/ContentViewFixture.h"
#include "Support/Pixels.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QLabel>
#include <QListView>
#include <QMenu>
#include <QScrollBar>
#include <QStandardItemModel>
#include <QStyleOptionViewItem>
#include <QTest>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <map>
#include <set>
#include <utility>

using namespace torvo;
using namespace torvo::app;
using namespace torvo::test;

namespace {

class ChannelsCardTest : public testing::Test, protected ContentViewFixture {
protected:
    enum class Entry { absent, disabled, enabled };
    const char* showInFolder = "Show in Folder";

    QListView* openList(const char* name) {
        section(name)->setExpanded(true);
        settle();
        return section(name)->list();
    }
    static void select(QListView* list, std::initializer_list<int> rows) {
        list->clearSelection();
        for (const int row : rows)
            list->selectionModel()->select(list->model()->index(row, 0),
                                           QItemSelectionModel::Select);
    }
    static QAction* entry(const QMenu& menu, const char* text) {
        for (QAction* action : menu.actions())
            if (action->text() == QString::fromLatin1(text))
                return action;
        return nullptr;
    }
    /// Opens the menu of the list, calls `look` and closes it.
    static void withMenu(QListView* list, QContextMenuEvent::Reason reason,
                         const std::function<void(QMenu&)>& look) {
        QMetaObject::invokeMethod(
            list,
            [&look] {
                auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
                ASSERT_TRUE(menu);
                look(*menu);
                menu->close();
            },
            Qt::QueuedConnection);
        QContextMenuEvent event(reason, {9, 9}, list->mapToGlobal(QPoint(9, 9)));
        QApplication::sendEvent(list->viewport(), &event);
    }
    /// Chooses an entry of the menu once all that it asked for has been answered.
    Entry choose(QListView* list, const char* text,
                 QContextMenuEvent::Reason reason = QContextMenuEvent::Mouse) {
        Entry found = Entry::absent;
        withMenu(list, reason, [&](QMenu& menu) {
            waitForWork();
            if (QAction* const action = entry(menu, text)) {
                found = action->isEnabled() ? Entry::enabled : Entry::disabled;
                action->trigger();
            }
        });
        return found;
    }
    std::vector<std::string> shown(const char* path) const {
        return {"show: " + (folder / path).string()};
    }
};

} // namespace

TEST_F(ChannelsCardTest, asksForASourceFirst) {
    EXPECT_EQ(colorOf("Choose or drop a source folder to scan."), MarloTheme::muted);
}

TEST_F(ChannelsCardTest, showsAScanInProgress) {
    const auto gate = inspector->hold("Kit A");
    model.setSourceFolder(drumKit());
    EXPECT_TRUE(shows("SCANNING FILES…"));
    ASSERT_EQ(showing<ProgressBar>().size(), 1U);
    EXPECT_TRUE(showing<ProgressBar>().front()->isIndeterminate());
    gate->open();
    waitForWork();
    EXPECT_TRUE(showing<ProgressBar>().empty());
}

TEST_F(ChannelsCardTest, showsWhyAScanFailed) {
    scan(FileURL::directory("/nowhere"));
    EXPECT_EQ(colorOf("Unable to read /nowhere."), MarloTheme::danger);
    EXPECT_FALSE(section("ignoredFiles")->isVisible());
}

TEST_F(ChannelsCardTest, aFailedScanHasAnIconAndATextToCopy) {
    scan(FileURL::directory("/nowhere"));
    EXPECT_EQ(showing<StatusIcon>().size(), 1U);
    QLabel* message = label(QStringLiteral("Unable to read /nowhere."));
    ASSERT_TRUE(message);
    EXPECT_EQ(message->font().pixelSize(), 15);
    EXPECT_EQ(message->focusPolicy(), Qt::StrongFocus);
    QTest::keyClick(message, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), message->text());
    // From the left of the first letter to the third.
    const int letter = message->fontMetrics().horizontalAdvance(QLatin1Char('U'));
    const QImage before = message->grab().toImage();
    QTest::mousePress(message, Qt::LeftButton, {}, {1, 8});
    QMouseEvent drag(QEvent::MouseMove, QPointF(3 * letter + 1, 8), QPointF(3 * letter + 1, 8),
                     Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(message, &drag);
    QTest::mouseRelease(message, Qt::LeftButton, {}, {3 * letter + 1, 8});
    EXPECT_NE(message->grab().toImage(), before);
    QTest::keyClick(message, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("Una"));
    QTest::keyClick(message, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(message, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), message->text());
    model.clearSource();
    EXPECT_EQ(message->focusPolicy(), Qt::NoFocus);
}

TEST_F(ChannelsCardTest, nothingMovesWhenAScanEnds) {
    const auto place = [this] {
        settle();
        return label(QStringLiteral("METADATA"))->mapTo(&view, QPoint()).y();
    };
    const auto expectStill = [&](const FileURL& source, const char* held) {
        const auto gate = inspector->hold(held);
        model.setSourceFolder(source);
        EXPECT_TRUE(shows("SCANNING FILES…"));
        const int during = place();
        gate->open();
        waitForWork();
        EXPECT_FALSE(shows("SCANNING FILES…"));
        EXPECT_EQ(place(), during) << held;
    };
    const int idle = place();
    expectStill(drumKit(), "Kit A");
    EXPECT_EQ(place(), idle);
    folder.write("Kit A/Kick/notes.txt", "notes");
    scan(FileURL::directory(folder / "Kit A"));
    section("ignoredFiles")->setExpanded(true);
    EXPECT_GT(place(), idle);
    expectStill(FileURL::directory(folder / "Kit A"), "Kit A");
    section("ignoredFiles")->setExpanded(false);
    model.setGenerationMode(GenerationMode::loops);
    waitForWork();
    expectStill(loops("Loops", 3), "Loops");
}

TEST_F(ChannelsCardTest, highlightsWhatPreventsARun) {
    CountRow row(QStringLiteral("CH2 CLAP"));
    row.resize(300, row.sizeHint().height());
    row.show();
    const auto hasBadge = [&row] {
        settle();
        const QImage image = row.grab().toImage();
        for (int x = 0; x < image.width(); ++x)
            if (image.pixelColor(x, image.height() / 2) == MarloTheme::danger)
                return true;
        return false;
    };
    row.setCount(0, CountRow::Standing::blocking, 1);
    EXPECT_TRUE(hasBadge());
    for (const auto standing :
         {CountRow::Standing::enough, CountRow::Standing::filledIn, CountRow::Standing::absent}) {
        row.setCount(0, standing, 1);
        EXPECT_FALSE(hasBadge());
    }
}

TEST_F(ChannelsCardTest, showsWhatIsMissingAndWhatPercussionReplaces) {
    const QString note = QStringLiteral("percussion plays on this channel");
    const auto standings = [this] {
        std::map<std::string, CountRow::Standing> found;
        for (const auto* row : showing<CountRow>())
            found[row->accessibleName().section(QLatin1Char(' '), 0, 0).toStdString()] =
                row->standing();
        return found;
    };
    using Standing = CountRow::Standing;
    folder.createFolder("Kit");
    loops("Kit/Percussion", 3);
    loops("Kit/Snare", 1);
    scan(FileURL::directory(folder / "Kit"));
    EXPECT_EQ(standings(), (std::map<std::string, Standing>{{"CH1", Standing::blocking},
                                                            {"CH2", Standing::filledIn},
                                                            {"CH3", Standing::filledIn},
                                                            {"CH4", Standing::filledIn},
                                                            {"CH5", Standing::enough},
                                                            {"CH6-8", Standing::enough}}));
    EXPECT_EQ(showing<CountRow>()[1]->accessibleName(), QStringLiteral("CH2 CLAP 0, ") + note);
    EXPECT_TRUE(label(note));
    std::filesystem::remove(folder / "Kit/Percussion/sample 1.wav");
    scan(FileURL::directory(folder / "Kit"));
    EXPECT_EQ(standings()["CH2"], Standing::absent);
    EXPECT_EQ(standings()["CH6-8"], Standing::blocking);
    EXPECT_FALSE(label(note));
    EXPECT_TRUE(shows("at least 1 needed")); // kick
    EXPECT_TRUE(shows("at least 3 needed"));
    EXPECT_EQ(showing<CountRow>()[5]->accessibleName(),
              QStringLiteral("CH6-8 PERC 2, at least 3 needed"));
    model.setGenerationMode(GenerationMode::loops);
    waitForWork();
    scan(loops("Few", 7));
    EXPECT_EQ(standings()["LOOPS"], Standing::blocking);
    EXPECT_TRUE(shows("at least 8 needed"));
    scan(loops("Enough", 8));
    EXPECT_EQ(standings()["LOOPS"], Standing::enough);
    EXPECT_FALSE(shows("at least 8 needed"));
}

TEST_F(ChannelsCardTest, digitsStayAlignedWithABadge) {
    CountRow row(QStringLiteral("CH2 CLAP"));
    row.resize(378, CountRow::height);
    row.show();
    std::set<int> rightEdges;
    for (const auto standing : {CountRow::Standing::enough, CountRow::Standing::filledIn,
                                CountRow::Standing::absent, CountRow::Standing::blocking}) {
        row.setCount(0, standing, 1);
        settle();
        for (const auto* label : row.findChildren<QLabel*>())
            if (label->text() == QLatin1String("0"))
                rightEdges.insert(label->geometry().right() - label->contentsMargins().right());
    }
    EXPECT_EQ(rightEdges.size(), 1U);
}

TEST_F(ChannelsCardTest, sumsUpTheReasons) {
    for (int index = 0; index < 3; ++index)
        folder.write("Kit A/Kick/notes " + std::to_string(index) + ".txt", "notes");
    folder.write("Kit A/odd.wav", "odd");
    folder.write("Kit A/.hidden", "");
    scan(drumKit());
    const auto* header = section("ignoredFiles")->header();
    EXPECT_EQ(header->kinds().toStdString(),
              "3 unsupported · 1 hidden or sidecar · 1 unclassified");
    EXPECT_EQ(header->accessibleDescription(), header->kinds());
    EXPECT_TRUE(section("ignoredFolders")->header()->kinds().isEmpty());
}

TEST_F(ChannelsCardTest, aNewReportStartsAtItsTop) {
    for (int index = 0; index < 40; ++index)
        folder.write("Kit A/Kick/notes " + std::to_string(index) + ".txt", "notes");
    const FileURL kit = drumKit();
    scan(kit);
    section("ignoredFiles")->setExpanded(true);
    settle();
    auto* bar = section("ignoredFiles")->list()->verticalScrollBar();
    ASSERT_GT(bar->maximum(), 0);
    bar->setValue(bar->maximum());
    scan(kit);
    settle();
    EXPECT_EQ(bar->value(), 0);
}

// Opening must not take time for each row.
TEST_F(ChannelsCardTest, opensALongListBeforeItsLastRowsHaveAPlace) {
    auto items = std::make_shared<std::vector<IgnoredItem>>();
    for (int index = 0; index < 50'000; ++index)
        items->push_back({"notes " + std::to_string(index) + ".txt", "Unclassified sample"});
    DisclosureSection files(QStringLiteral("IGNORED FILES"));
    files.resize(400, 400);
    files.setItems(items);
    files.show();
    files.setExpanded(true);
    const QListView& list = *files.list();
    const QModelIndex last = list.model()->index(list.model()->rowCount() - 1, 0);
    EXPECT_TRUE(list.isVisible());
    EXPECT_TRUE(list.visualRect(list.model()->index(0, 0)).isValid());
    EXPECT_FALSE(list.visualRect(last).isValid());
    EXPECT_TRUE(waitUntil([&] { return list.visualRect(last).isValid(); }));
    settle();
    const int rowHeight = list.visualRect(last).height();
    EXPECT_EQ(list.verticalScrollBar()->maximum() + list.viewport()->height(),
              list.model()->rowCount() * rowHeight);
}

TEST_F(ChannelsCardTest, anOpenListTakesSurplusHeight) {
    for (int index = 0; index < 60; ++index)
        folder.write("Kit A/Kick/notes " + std::to_string(index) + ".txt", "notes");
    scan(drumKit());
    section("ignoredFiles")->setExpanded(true);
    auto* list = section("ignoredFiles")->list();
    const auto heightAt = [&](int height) {
        view.resize(880, height);
        settle();
        return list->height();
    };
    const int usual = heightAt(980);
    const int higher = heightAt(1500);
    EXPECT_EQ(heightAt(1700), higher + 200);
    EXPECT_GT(list->height(), usual);
    // The list is not higher than all its rows.
    EXPECT_EQ(heightAt(3600), heightAt(4000));
    EXPECT_EQ(list->verticalScrollBar()->maximum(), 0);
    EXPECT_EQ(heightAt(980), usual);
}

TEST_F(ChannelsCardTest, countsDrumsInTheDevicesOrder) {
    int samples = 3; // as much percussion as is needed
    for (const std::string role : {"Percussion", "Snare", "Open Hat", "Closed Hat", "Clap", "Kick"})
        loops("Kit A/" + role, samples++);
    scan(FileURL::directory(folder / "Kit A"));
    settle();
    // In reading order: down the first column, then down the second.
    auto rows = showing<CountRow>();
    std::ranges::sort(rows, {}, [this](const CountRow* row) {
        const QPoint place = row->mapTo(&view, QPoint(0, 0));
        return std::pair(place.x(), place.y());
    });
    std::vector<std::string> texts;
    for (const auto* row : rows) {
        auto labels = row->findChildren<QLabel*>();
        std::ranges::sort(labels, {}, &QWidget::x);
        for (const auto* label : labels)
            if (label->isVisible())
                texts.push_back(label->text().toStdString());
        EXPECT_EQ(row->accessibleName().toStdString(),
                  texts[texts.size() - 2] + " " + texts.back());
    }
    EXPECT_EQ(texts,
              (std::vector<std::string>{"CH1 KICK", "8", "CH2 CLAP", "7", "CH3 CLOSED HAT", "6",
                                        "CH4 OPEN HAT", "5", "CH5 SNARE", "4", "CH6-8 PERC", "3"}));
    EXPECT_TRUE(shows("CHANNELS"));
}

TEST_F(ChannelsCardTest, countsLoopsAndStabsAsOne) {
    model.setGenerationMode(GenerationMode::stabs);
    scan(loops("Stabs", 11));
    EXPECT_TRUE(shows("STABS"));
    EXPECT_TRUE(shows("11"));
    EXPECT_FALSE(shows("CH1 KICK"));
    EXPECT_FALSE(shows("LOOPS"));
    model.setGenerationMode(GenerationMode::loops);
    waitForWork();
    scan(loops("Loops", 13));
    EXPECT_TRUE(shows("LOOPS"));
    EXPECT_TRUE(shows("13"));
    EXPECT_FALSE(shows("STABS"));
}

// An import changes the mode but not the report.
TEST_F(ChannelsCardTest, countsWhatTheReportCounted) {
    model.setGenerationMode(GenerationMode::loops);
    model.setExportFolder(outputFolder());
    scan(loops());
    model.generateBanks();
    waitForWork();
    panels->saveTarget = panels->document = FileURL(folder / "loops.json");
    model.exportJSON();
    model.setGenerationMode(GenerationMode::drums);
    scan(drumKit());
    ASSERT_TRUE(shows("CH1 KICK"));
    model.importJSON();
    waitForWork();
    ASSERT_EQ(model.generationMode(), GenerationMode::loops);
    EXPECT_TRUE(shows("CH1 KICK"));
    EXPECT_FALSE(shows("LOOPS"));
}

TEST_F(ChannelsCardTest, listsWhatWasIgnored) {
    drumKit();
    folder.write("Kit A/Kick/notes.txt", "notes");
    scan(FileURL::directory(folder / "Kit A"));
    auto* files = section("ignoredFiles");
    EXPECT_EQ(files->header()->text(), QStringLiteral("IGNORED FILES"));
    EXPECT_EQ(files->header()->count(), 1);
    EXPECT_FALSE(files->list()->isVisible());
    press(files->header());
    EXPECT_TRUE(files->isExpanded());
    ASSERT_TRUE(files->list()->isVisible());
    const QModelIndex row = files->list()->model()->index(0, 0);
    EXPECT_EQ(row.data().toString(), QStringLiteral("Kick/notes.txt"));
    EXPECT_EQ(row.data(IgnoredItemsModel::reasonRole).toString(),
              QStringLiteral("Unsupported audio file"));
    EXPECT_TRUE(row.data(Qt::ToolTipRole).toString().contains(row.data().toString()));
    press(files->header());
    EXPECT_FALSE(files->list()->isVisible());
}

TEST_F(ChannelsCardTest, anEmptyListSaysNone) {
    scan(drumKit());
    auto* folders = section("ignoredFolders");
    EXPECT_EQ(folders->header()->text(), QStringLiteral("IGNORED FOLDERS"));
    EXPECT_EQ(folders->header()->count(), 0);
    EXPECT_FALSE(shows("NONE"));
    press(folders->header());
    EXPECT_TRUE(shows("NONE"));
    EXPECT_FALSE(folders->list()->isVisible());
}

TEST_F(ChannelsCardTest, listsStayOpenAcrossScans) {
    scan(drumKit());
    section("ignoredFolders")->setExpanded(true);
    scan(loops());
    EXPECT_TRUE(section("ignoredFolders")->isExpanded());
    EXPECT_TRUE(shows("NONE"));
    EXPECT_FALSE(section("ignoredFiles")->isExpanded());
}

TEST_F(ChannelsCardTest, rowsHaveTheirPathAndReasonAsTextAndAccessibleText) {
    folder.write("Kit A/Kick/notes.txt", "notes");
    scan(drumKit());
    const auto* list = section("ignoredFiles")->list();
    EXPECT_EQ(list->model()->index(0, 0).data(Qt::AccessibleTextRole).toString(),
              QStringLiteral("Kick/notes.txt: Unsupported audio file"));
    QStyleOptionViewItem option;
    option.rect = QRect(0, 0, 400, 26);
    const auto drawn = [&](const char* path, const char* reason) {
        QStandardItemModel rows(1, 1);
        rows.setData(rows.index(0, 0), QString::fromLatin1(path), Qt::DisplayRole);
        rows.setData(rows.index(0, 0), QString::fromLatin1(reason), IgnoredItemsModel::reasonRole);
        return painted(option.rect.size(), MarloTheme::surface, [&](QPainter& painter) {
            list->itemDelegate()->paint(&painter, option, rows.index(0, 0));
        });
    };
    const QRect left(0, 0, 100, 26);
    const QRect right(300, 0, 100, 26);
    const QImage nothing = drawn("", "");
    const QImage path = drawn("Kick", "");
    EXPECT_NE(path.copy(left), nothing.copy(left));
    EXPECT_EQ(path.copy(right), nothing.copy(right));
    const QImage both = drawn("Kick", "Unsupported");
    EXPECT_EQ(both.copy(left), path.copy(left));
    EXPECT_NE(both.copy(right), nothing.copy(right));
}

TEST_F(ChannelsCardTest, copiesTheSelectedRows) {
    for (const char* name : {"a.txt", "b.txt", "c.txt"})
        folder.write(std::string("Kit A/Kick/") + name, "notes");
    scan(drumKit());
    section("ignoredFiles")->setExpanded(true);
    settle();
    auto* list = section("ignoredFiles")->list();
    const auto place = [list](int row) {
        return list->visualRect(list->model()->index(row, 0)).center();
    };
    const auto line = [](const char* name) {
        return "Kick/" + std::string(name) + "\tUnsupported audio file";
    };
    const auto copied = [list] {
        QTest::keyClick(list, Qt::Key_C, Qt::ControlModifier);
        return QApplication::clipboard()->text().toStdString();
    };
    QApplication::clipboard()->setText(QStringLiteral("earlier"));
    EXPECT_EQ(copied(), "earlier");
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place(2));
    EXPECT_EQ(copied(), line("c.txt"));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::ControlModifier, place(0));
    EXPECT_EQ(copied(), line("a.txt") + "\n" + line("c.txt"));
    QTest::keyClick(list, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(copied(), line("a.txt") + "\n" + line("b.txt") + "\n" + line("c.txt"));
}

TEST_F(ChannelsCardTest, offersToCopyRowsInAMenu) {
    folder.write("Kit A/Kick/notes.txt", "notes");
    scan(drumKit());
    auto* list = openList("ignoredFiles");
    EXPECT_EQ(choose(list, "Copy"), Entry::disabled);
    EXPECT_EQ(choose(list, "Select All"), Entry::enabled);
    EXPECT_EQ(choose(list, "Copy"), Entry::enabled);
    EXPECT_EQ(QApplication::clipboard()->text(),
              QStringLiteral("Kick/notes.txt\tUnsupported audio file"));
}

TEST_F(ChannelsCardTest, showsTheItemOfARowInItsFolder) {
    const FileURL kit = drumKit();
    folder.write("Kit A/Kick/<b>notes #1.txt", "notes");
    loops("Kit A/Ride", 1);
    std::filesystem::create_symlink("nowhere", folder / "Kit A/Kick/zz dead.wav");
    scan(kit);
    auto* files = openList("ignoredFiles");
    ASSERT_EQ(files->model()->rowCount(), 2);
    select(files, {0});
    for (const auto reason : {QContextMenuEvent::Mouse, QContextMenuEvent::Keyboard}) {
        EXPECT_EQ(choose(files, showInFolder, reason), Entry::enabled);
        EXPECT_EQ(panels->asked, shown("Kit A/Kick/<b>notes #1.txt"));
        panels->asked.clear();
    }
    // The link itself is there.
    select(files, {1});
    EXPECT_EQ(choose(files, showInFolder), Entry::enabled);
    EXPECT_EQ(panels->asked, shown("Kit A/Kick/zz dead.wav"));
    panels->asked.clear();
    auto* folders = openList("ignoredFolders");
    select(folders, {0});
    EXPECT_EQ(choose(folders, showInFolder), Entry::enabled);
    EXPECT_EQ(panels->asked, shown("Kit A/Ride"));
}

TEST_F(ChannelsCardTest, offersToShowOneRowOnly) {
    for (const char* name : {"a.txt", "b.txt"})
        folder.write(std::string("Kit A/Kick/") + name, "notes");
    scan(drumKit());
    auto* list = openList("ignoredFiles");
    EXPECT_EQ(choose(list, showInFolder), Entry::absent);
    select(list, {0, 1});
    EXPECT_EQ(choose(list, showInFolder), Entry::absent);
    select(list, {1});
    EXPECT_EQ(choose(list, showInFolder), Entry::enabled);
    EXPECT_EQ(panels->asked, shown("Kit A/Kick/b.txt"));
}

TEST_F(ChannelsCardTest, offersToShowNothingOutsideTheScannedFolder) {
    folder.write("Kit A Extra/outside.txt", "notes");
    folder.write("Kit A/Kick/gone.txt", "notes");
    folder.write("Kit A/Kick/moved.txt", "notes");
    std::filesystem::create_symlink("../../Kit A Extra/outside.txt",
                                    folder / "Kit A/Kick/link.txt");
    scan(drumKit());
    std::filesystem::remove(folder / "Kit A/Kick/gone.txt");
    std::filesystem::remove(folder / "Kit A/Kick/moved.txt");
    std::filesystem::create_symlink("../../Kit A Extra/outside.txt",
                                    folder / "Kit A/Kick/moved.txt");
    auto* list = openList("ignoredFiles");
    const auto path = [list](int row) { return list->model()->index(row, 0).data().toString(); };
    ASSERT_EQ(list->model()->rowCount(), 3);
    // The target of the link is listed by its name alone.
    EXPECT_EQ(path(2), QStringLiteral("outside.txt"));
    for (const int row : {0, 1, 2}) {
        select(list, {row});
        EXPECT_EQ(choose(list, showInFolder), Entry::disabled) << path(row).toStdString();
    }
    EXPECT_TRUE(panels->asked.empty());
}

TEST_F(ChannelsCardTest, aSlowFolderDoesNotHoldTheMenu) {
    const auto path = folder.write("Kit A/Kick/notes.txt", "notes");
    scan(drumKit());
    auto* list = openList("ignoredFiles");
    select(list, {0});
    const auto gate = fileManager->holdInspection(path);
    bool wasEnabled = true;
    withMenu(list, QContextMenuEvent::Mouse, [&](QMenu& menu) {
        EXPECT_TRUE(waitUntil([&] { return gate->isReached(); }));
        wasEnabled = entry(menu, showInFolder)->isEnabled();
    });
    EXPECT_FALSE(wasEnabled);
    // The answer comes when the menu has gone.
    gate->open();
    waitForWork();
    EXPECT_TRUE(panels->asked.empty());
}

TEST_F(ChannelsCardTest, aFolderThatDoesNotAnswerKeepsOneLookUp) {
    const auto path = folder.write("Kit A/Kick/notes.txt", "notes");
    scan(drumKit());
    auto* list = openList("ignoredFiles");
    select(list, {0});
    const auto gate = fileManager->holdInspection(path);
    const auto openMenu = [&](const std::function<void(QMenu&)>& look) {
        withMenu(list, QContextMenuEvent::Mouse, look);
    };
    openMenu([&](QMenu&) { EXPECT_TRUE(waitUntil([&] { return gate->isReached(); })); });
    openMenu([](QMenu&) {});
    openMenu([](QMenu&) {});
    bool isEnabled = false;
    openMenu([&](QMenu& menu) {
        gate->open();
        waitForWork();
        isEnabled = entry(menu, showInFolder)->isEnabled();
    });
    EXPECT_TRUE(isEnabled);
    EXPECT_EQ(gate->arrivals(), 2);
}

// Targets outside the scanned folder are listed by their names alone.
TEST_F(ChannelsCardTest, offersNothingForANameThatMayMeanAnotherItem) {
    const auto addOutside = [this](const std::string& name) {
        folder.write("elsewhere/" + name, "notes");
        std::filesystem::create_symlink("../../elsewhere/" + name, folder / "Kit A/Kick" / name);
    };
    drumKit();
    for (const char* name : {"Kick sample.wav", "readme", "Breaks", "link.txt"})
        addOutside(name);
    const auto kick = folder / "Kit A/Kick/sample 1.wav";
    std::filesystem::copy_file(kick, folder / "Kit A/Kick sample.wav"); // a sample
    folder.write("Kit A/readme", "notes");                              // ignored itself
    folder.createFolder("Kit A/Breaks");
    std::filesystem::create_symlink("Kick/sample 1.wav", folder / "Kit A/link.txt");
    folder.write("Kit A/top.txt", "notes");
    scan(FileURL::directory(folder / "Kit A"));
    auto* list = openList("ignoredFiles");
    std::map<std::string, Entry> offers;
    for (int row = 0; row < list->model()->rowCount(); ++row) {
        select(list, {row});
        offers[list->model()->index(row, 0).data().toString().toStdString()] =
            choose(list, showInFolder);
    }
    EXPECT_EQ(offers, (std::map<std::string, Entry>{{"Breaks", Entry::disabled},
                                                    {"Kick sample.wav", Entry::disabled},
                                                    {"link.txt", Entry::disabled},
                                                    {"readme", Entry::disabled},
                                                    {"top.txt", Entry::enabled}}));
    EXPECT_EQ(panels->asked, shown("Kit A/top.txt"));
}

TEST_F(ChannelsCardTest, marksTheRowWithTheFocus) {
    folder.write("Kit A/Kick/notes.txt", "notes");
    drumKit();
    scan(FileURL::directory(folder / "Kit A"));
    section("ignoredFiles")->setExpanded(true);
    auto* list = section("ignoredFiles")->list();
    QStyleOptionViewItem option;
    option.rect = QRect(0, 0, 300, 26);
    const auto drawn = [&] {
        return painted(option.rect.size(), MarloTheme::surface, [&](QPainter& painter) {
            list->itemDelegate()->paint(&painter, option, list->model()->index(0, 0));
        });
    };
    EXPECT_PIXEL(drawn(), 150, 0, MarloTheme::surface);
    option.state |= QStyle::State_HasFocus;
    EXPECT_PIXEL(drawn(), 150, 0, MarloTheme::ink);
    EXPECT_PIXEL(drawn(), 0, 13, MarloTheme::ink);
}
