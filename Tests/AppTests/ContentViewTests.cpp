#include "ContentView.h"
#include "Controls/Card.h"
#include "Controls/ChannelToggleButton.h"
#include "Controls/CountRow.h"
#include "Controls/DisclosureHeader.h"
#include "Controls/DisclosureSection.h"
#include "Controls/DropZone.h"
#include "Controls/ElidedPathLabel.h"
#include "Controls/FocusRing.h"
#include "Controls/MarloButton.h"
#include "Controls/ProgressBar.h"
#include "Controls/StatusIcon.h"
#include "Controls/ThreeWayModeToggle.h"
#include "MarloTheme.h"
#include "Support/ContentViewFixture.h"
#include "Support/Pixels.h"
#include "Support/UrlReceiver.h"
#include "Text.h"
#include "WavFixture.h"

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLabel>
#include <QListView>
#include <QMimeData>
#include <QScrollArea>
#include <QStyleOptionViewItem>
#include <QTest>
#include <QTextDocument>
#include <QUrl>
#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

using namespace torvo;
using namespace torvo::app;
using namespace torvo::test;

namespace {

const QString hint = QStringLiteral("Choose an output folder above!");

class ContentViewTest : public testing::Test, protected ContentViewFixture {};

} // namespace

TEST_F(ContentViewTest, namesItselfInTheHeader) {
    const QLabel* title = label(QStringLiteral("TORVO QUASTLE BANK GENERATOR"));
    ASSERT_TRUE(title);
    EXPECT_EQ(title->font().pixelSize(), 30);
    EXPECT_EQ(title->font().weight(), QFont::Bold);
    EXPECT_TRUE(button("Halvorine"));
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
        QApplication::processEvents();
        for (auto* card : showing<Card>()) {
            const int left = card->mapTo(&view, QPoint(0, 0)).x();
            EXPECT_LE(card->width(), 880) << width;
            EXPECT_LE(std::abs(left - (width - left - card->width())), 1) << width;
        }
    }
}

TEST_F(ContentViewTest, hasOneProminentButton) {
    model.setExportFolder(outputFolder());
    scan(drumKit());
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

TEST_F(ContentViewTest, tellsTheTwoFolderButtonsApart) {
    EXPECT_EQ(sourceButton()->text(), outputButton()->text());
    EXPECT_EQ(sourceButton()->accessibleDescription(), QStringLiteral("Source folder"));
    EXPECT_EQ(outputButton()->accessibleDescription(), QStringLiteral("Output folder"));
}

TEST_F(ContentViewTest, speaksOfTheSelectedMode) {
    struct Row {
        GenerationMode mode;
        const char* tagline;
        const char* sourceHint;
    };
    const std::array<Row, 3> rows{
        {{GenerationMode::loops,
          "Drop in a folder of loops. It scatters everything into playable random banks and "
          "outputs "
          "QZT508-ready sets.",
          "Drag a raw loop library.\nThe samples will be jumbled at random until 99 banks are "
          "created."},
         {GenerationMode::stabs,
          "Drop in a folder of one-shots. It scatters everything into playable random banks and "
          "outputs QZT508-ready sets.",
          "Drag a raw stab library.\nThe samples will be jumbled at random until 99 banks are "
          "created."},
         {GenerationMode::drums,
          "Drop in a folder of drum chaos. It finds the drums, jumbles them into playable random "
          "banks, and outputs QZT508-ready sets.",
          "Drag a raw sample library with samples separated in folders by drum type.\nThe samples "
          "will be jumbled at random until 99 banks are created."}}};
    auto* modes = view.findChild<ThreeWayModeToggle*>();
    for (const Row& row : rows) {
        QTest::mouseClick(modes->segments()[static_cast<std::size_t>(row.mode)], Qt::LeftButton);
        EXPECT_EQ(model.generationMode(), row.mode);
        EXPECT_EQ(modes->selection(), row.mode);
        EXPECT_TRUE(shows(row.tagline)) << row.tagline;
        EXPECT_TRUE(shows(row.sourceHint)) << row.sourceHint;
    }
    EXPECT_TRUE(shows("DROP SOURCE FOLDER"));
    EXPECT_TRUE(shows("Drop a folder here or choose one from Finder."));
}

TEST_F(ContentViewTest, choosingAModeScansAgain) {
    scan(drumKit());
    QTest::mouseClick(button("Loops"), Qt::LeftButton);
    EXPECT_TRUE(shows("SCANNING FILES…"));
    waitForWork();
    EXPECT_TRUE(shows("LOOPS"));
}

TEST_F(ContentViewTest, clearsTheSourceWhenThereIsOne) {
    EXPECT_FALSE(button("CLEAR")->isEnabled());
    scan(drumKit());
    EXPECT_TRUE(button("CLEAR")->isEnabled());
    press(button("CLEAR"));
    EXPECT_FALSE(model.sourceFolder());
    EXPECT_FALSE(button("CLEAR")->isEnabled());
    EXPECT_TRUE(shows("Choose or drop a source folder to scan."));
}

TEST_F(ContentViewTest, choosesTheSourceInAPanelAfterThePressReturned) {
    panels->folder = drumKit();
    QTest::mouseClick(sourceButton(), Qt::LeftButton);
    EXPECT_TRUE(panels->asked.empty());
    QApplication::processEvents();
    EXPECT_EQ(panels->asked, std::vector<std::string>{"folder: Choose a source sample folder"});
    EXPECT_EQ(model.sourceFolder(), panels->folder);
    waitForWork();
}

TEST_F(ContentViewTest, theDropZoneOpensThePanelOnEnter) {
    auto* zone = view.findChild<DropZone*>();
    EXPECT_TRUE((zone->focusPolicy() & Qt::TabFocus) != 0);
    QTest::keyClick(zone, Qt::Key_Return);
    QApplication::processEvents();
    EXPECT_EQ(panels->asked, std::vector<std::string>{"folder: Choose a source sample folder"});
}

// The two folder panels differ on purpose: cancelling the source's keeps the source, cancelling the
// output's clears the output.
TEST_F(ContentViewTest, aCancelledSourcePanelChangesNothing) {
    const FileURL kit = drumKit();
    scan(kit);
    const auto state = model.scanState();
    press(sourceButton());
    EXPECT_EQ(model.sourceFolder(), kit);
    EXPECT_TRUE(model.scanState() == state);
}

TEST_F(ContentViewTest, aCancelledOutputPanelClearsTheOutput) {
    scan(drumKit());
    panels->folder = outputFolder();
    press(outputButton());
    EXPECT_EQ(panels->asked.back(), "folder: Choose an export destination folder");
    EXPECT_EQ(model.exportFolder(), panels->folder);
    EXPECT_TRUE(mainButton()->isEnabled());
    panels->folder = std::nullopt;
    press(outputButton());
    EXPECT_FALSE(model.exportFolder());
    EXPECT_TRUE(shows("Choose output folder."));
    EXPECT_FALSE(mainButton()->isEnabled());
}

TEST_F(ContentViewTest, refusesADroppedFile) {
    const auto file = folder.write("loose.wav", wavFile(WavFormat{}, 8));
    EXPECT_FALSE(drop({url(file)}));
    EXPECT_FALSE(model.sourceFolder());
    EXPECT_FALSE(drop({QUrl(QStringLiteral("https://halvorine.example/Kit/"))}));
    EXPECT_FALSE(model.sourceFolder());
}

TEST_F(ContentViewTest, takesTheFirstFolderOfADrop) {
    const auto file = folder.write("loose.wav", wavFile(WavFormat{}, 8));
    drumKit("Kit #1 ü");
    const auto kit = folder / "Kit #1 ü";
    EXPECT_TRUE(drop({url(file), url(kit), url(folder.path())}));
    EXPECT_EQ(model.sourceFolder(), FileURL::directory(kit));
    waitForWork();
}

TEST_F(ContentViewTest, aTrailingSlashDenotesAFolder) {
    EXPECT_TRUE(drop({QUrl(QStringLiteral("file:///nowhere/Kit/"))}));
    EXPECT_EQ(model.sourceFolder(), FileURL::directory("/nowhere/Kit"));
    waitForWork();
}

TEST_F(ContentViewTest, highlightsTheZoneWhileADragIsOverIt) {
    auto* zone = view.findChild<DropZone*>();
    QMimeData data;
    data.setUrls({url(folder.path())});
    QDragEnterEvent enter({9, 9}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    const QImage before = zone->grab().toImage();
    QApplication::sendEvent(zone, &enter);
    EXPECT_TRUE(zone->isTargeted());
    EXPECT_NE(zone->grab().toImage(), before);
    QDragLeaveEvent leave;
    QApplication::sendEvent(zone, &leave);
    EXPECT_FALSE(zone->isTargeted());
    EXPECT_EQ(zone->grab().toImage(), before);
}

TEST_F(ContentViewTest, aDroppedDeviceFolderIsStampedNotScanned) {
    const FileURL device = deviceFolder();
    EXPECT_TRUE(drop({url(device.path())}));
    EXPECT_TRUE(shows("Existing QZT508 folder selected."));
    EXPECT_TRUE(shows("Set metadata below, then apply it to the selected QZT508 folder."));
    EXPECT_FALSE(outputButton()->isVisible());
    EXPECT_EQ(mainButton()->text(), QStringLiteral("APPLY"));
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

TEST_F(ContentViewTest, asksForASourceFirst) {
    EXPECT_EQ(colorOf("Choose or drop a source folder to scan."), MarloTheme::muted);
}

TEST_F(ContentViewTest, showsAScanInProgress) {
    const auto gate = inspector->hold("Kit A");
    model.setSourceFolder(drumKit());
    EXPECT_TRUE(shows("SCANNING FILES…"));
    ASSERT_EQ(showing<ProgressBar>().size(), 1U);
    EXPECT_TRUE(showing<ProgressBar>().front()->isIndeterminate());
    gate->open();
    waitForWork();
    EXPECT_TRUE(showing<ProgressBar>().empty());
}

TEST_F(ContentViewTest, showsWhyAScanFailed) {
    scan(FileURL::directory("/nowhere"));
    EXPECT_EQ(colorOf("Unable to read /nowhere."), MarloTheme::danger);
    EXPECT_FALSE(section("ignoredFiles")->isVisible());
}

TEST_F(ContentViewTest, aFailedScanHasAnIconAndATextToCopy) {
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

TEST_F(ContentViewTest, nothingMovesWhenAScanEnds) {
    const auto place = [this] {
        QApplication::processEvents();
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

TEST_F(ContentViewTest, theSourceCardKeepsItsHeight) {
    const auto* zone = view.findChild<DropZone*>();
    const int before = zone->height();
    model.setSourceFolder(deviceFolder());
    QApplication::processEvents();
    EXPECT_EQ(zone->height(), before);
    EXPECT_TRUE(shows("QZT508"));
}

TEST_F(ContentViewTest, aKindWithoutSamplesStandsOut) {
    CountRow row(QStringLiteral("CH2 CLAP"));
    row.resize(300, row.sizeHint().height());
    row.show();
    const auto hasBadge = [&row] {
        QApplication::processEvents();
        const QImage image = row.grab().toImage();
        for (int x = 0; x < image.width(); ++x)
            if (image.pixelColor(x, image.height() / 2) == MarloTheme::danger)
                return true;
        return false;
    };
    row.setCount(0);
    EXPECT_TRUE(hasBadge());
    row.setCount(1);
    EXPECT_FALSE(hasBadge());
}

TEST_F(ContentViewTest, theMainButtonIsAsWideAsItsLabelAndPadding) {
    QApplication::processEvents();
    EXPECT_EQ(mainButton()->size(), MarloButtonStyle::size(QStringLiteral("GENERATE")));
    model.setSourceFolder(deviceFolder());
    QApplication::processEvents();
    EXPECT_EQ(mainButton()->size(), MarloButtonStyle::size(QStringLiteral("APPLY")));
}

TEST_F(ContentViewTest, countsDrumsInTheDevicesOrder) {
    int samples = 1;
    for (const std::string role : {"Percussion", "Snare", "Open Hat", "Closed Hat", "Clap", "Kick"})
        loops("Kit A/" + role, samples++);
    scan(FileURL::directory(folder / "Kit A"));
    QApplication::processEvents();
    // As they are read: down the first column, then down the next.
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
            texts.push_back(label->text().toStdString());
        EXPECT_EQ(row->accessibleName().toStdString(),
                  texts[texts.size() - 2] + " " + texts.back());
    }
    EXPECT_EQ(texts,
              (std::vector<std::string>{"CH1 KICK", "6", "CH2 CLAP", "5", "CH3 CLOSED HAT", "4",
                                        "CH4 OPEN HAT", "3", "CH5 SNARE", "2", "CH6-8 PERC", "1"}));
    EXPECT_TRUE(shows("CHANNELS"));
}

TEST_F(ContentViewTest, countsLoopsAndStabsAsOne) {
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

TEST_F(ContentViewTest, listsWhatWasIgnored) {
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

TEST_F(ContentViewTest, anEmptyListSaysNone) {
    scan(drumKit());
    auto* folders = section("ignoredFolders");
    EXPECT_EQ(folders->header()->text(), QStringLiteral("IGNORED FOLDERS"));
    EXPECT_EQ(folders->header()->count(), 0);
    EXPECT_FALSE(shows("NONE"));
    press(folders->header());
    EXPECT_TRUE(shows("NONE"));
    EXPECT_FALSE(folders->list()->isVisible());
}

TEST_F(ContentViewTest, listsStayOpenAcrossScans) {
    scan(drumKit());
    section("ignoredFolders")->setExpanded(true);
    scan(loops());
    EXPECT_TRUE(section("ignoredFolders")->isExpanded());
    EXPECT_TRUE(shows("NONE"));
    EXPECT_FALSE(section("ignoredFiles")->isExpanded());
}

TEST_F(ContentViewTest, offersTheSettingsOfTheDevice) {
    for (const char* text :
         {"METADATA", "Globally Applied Metadata", "BITS", "RATE", "FILTER", "Per-Channel Metadata",
          "CV1: Filter Cutoff, CV2: Filter Resonance, CV3: Speed"})
        EXPECT_TRUE(shows(text)) << text;
    const auto boxes = showing<QComboBox>();
    ASSERT_EQ(boxes.size(), 3U);
    const auto options = [](const QComboBox& box) {
        QStringList texts;
        for (int index = 0; index < box.count(); ++index)
            texts.append(box.itemText(index));
        return texts.join(QLatin1Char(' ')).toStdString();
    };
    EXPECT_EQ(options(*boxes[0]), "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16");
    EXPECT_EQ(options(*boxes[1]), "4 6 7 9 11 14 22 44");
    EXPECT_EQ(options(*boxes[2]), "Off LP BP NT HP");
    EXPECT_EQ(boxes[0]->currentText(), QStringLiteral("16"));
    EXPECT_EQ(boxes[1]->currentText(), QStringLiteral("44"));
    EXPECT_EQ(boxes[2]->currentText(), QStringLiteral("Off"));
    EXPECT_EQ(boxes[0]->accessibleName(), QStringLiteral("Bits"));
    EXPECT_EQ(boxes[1]->accessibleName(), QStringLiteral("Rate"));
    EXPECT_EQ(boxes[2]->accessibleName(), QStringLiteral("Filter"));
    // A box is named by its choice; what it is about, its label says.
    for (std::size_t index = 0; const char* caption : {"BITS", "RATE", "FILTER"}) {
        QAccessibleInterface* box = QAccessible::queryAccessibleInterface(boxes[index++]);
        const auto labels = box->relations(QAccessible::Label);
        ASSERT_EQ(labels.size(), 1) << caption;
        EXPECT_EQ(labels[0].first->text(QAccessible::Name).toStdString(), caption);
    }
}

TEST_F(ContentViewTest, writesTheChosenSettings) {
    const auto boxes = showing<QComboBox>();
    QTest::keyClick(boxes[0], Qt::Key_Up);
    QTest::keyClick(boxes[1], Qt::Key_Home);
    QTest::keyClick(boxes[2], Qt::Key_End);
    EXPECT_EQ(model.metadataOptions(), TorvoMetadataOptions(15, TorvoPlaybackRate::rate4,
                                                            TorvoFilterType::highPass, false, {}));
    model.setMetadataOptions({1, TorvoPlaybackRate::rate9, TorvoFilterType::notch, true, {2}});
    EXPECT_EQ(boxes[0]->currentText(), QStringLiteral("1"));
    EXPECT_EQ(boxes[1]->currentText(), QStringLiteral("9"));
    EXPECT_EQ(boxes[2]->currentText(), QStringLiteral("NT"));
    EXPECT_TRUE(showing<QCheckBox>().front()->isChecked());
    EXPECT_TRUE(button("2")->isChecked());
}

TEST_F(ContentViewTest, togglesEachChannel) {
    const auto buttons = showing<ChannelToggleButton>();
    ASSERT_EQ(buttons.size(), 8U);
    EXPECT_FALSE(buttons[0]->isEnabled());
    auto* enable = showing<QCheckBox>().front();
    EXPECT_EQ(enable->text(), QStringLiteral("ENABLE CV ASSIGNMENTS"));
    QTest::keyClick(enable, Qt::Key_Space);
    EXPECT_TRUE(model.metadataOptions().cvAssignmentsEnabled);
    for (int channel = 1; channel <= 8; ++channel) {
        auto* toggle = buttons[static_cast<std::size_t>(channel) - 1];
        EXPECT_EQ(toggle->text(), QString::number(channel));
        press(toggle);
        EXPECT_TRUE(toggle->isChecked());
        EXPECT_EQ(model.metadataOptions().cvAssignedChannels, std::set<std::int64_t>{channel});
        press(toggle);
        EXPECT_FALSE(toggle->isChecked());
        EXPECT_TRUE(model.metadataOptions().cvAssignedChannels.empty());
    }
}

TEST_F(ContentViewTest, namesTheTarget) {
    auto* target = view.findChildren<ElidedPathLabel*>()[1];
    const auto text = [&] { return target->path().toStdString(); };
    EXPECT_EQ(text(), "Choose output folder.");
    model.setExportFolder(FileURL::directory("/out put"));
    EXPECT_EQ(text(), "/out put");
    model.setSourceFolder(FileURL::directory("/nowhere/Kit A"));
    EXPECT_EQ(text(), "/out put/Kit A/QZT508");
    waitForWork();
}

TEST_F(ContentViewTest, theDisabledApplyGivesNoHint) {
    model.setSourceFolder(FileURL::directory("/nowhere/QZT508"));
    EXPECT_EQ(mainButton()->text(), QStringLiteral("APPLY"));
    EXPECT_FALSE(mainButton()->isEnabled());
    EXPECT_TRUE(mainButton()->toolTip().isEmpty());
}

// One hint for every reason, on purpose.
TEST_F(ContentViewTest, theDisabledButtonGivesOneHint) {
    EXPECT_EQ(mainButton()->text(), QStringLiteral("GENERATE"));
    EXPECT_FALSE(mainButton()->isEnabled());
    EXPECT_EQ(mainButton()->toolTip(), hint);
    scan(drumKit());
    EXPECT_FALSE(mainButton()->isEnabled());
    EXPECT_EQ(mainButton()->toolTip(), hint);
    model.setExportFolder(outputFolder());
    EXPECT_TRUE(mainButton()->isEnabled());
    EXPECT_TRUE(mainButton()->toolTip().isEmpty());
    model.setGenerationMode(GenerationMode::loops);
    waitForWork();
    scan(loops("Few", 2));
    EXPECT_FALSE(mainButton()->isEnabled());
    EXPECT_EQ(mainButton()->toolTip(), hint);
}

TEST_F(ContentViewTest, followsARunFromThePressToTheEnd) {
    model.setExportFolder(outputFolder());
    scan(drumKit());
    const auto first = preparer->holdBank(1);
    press(mainButton());
    EXPECT_TRUE(shows("PREPARING EXPORT…"));
    ASSERT_EQ(showing<ProgressBar>().size(), 1U);
    ProgressBar* bar = showing<ProgressBar>().front();
    EXPECT_TRUE(bar->isIndeterminate());
    EXPECT_FALSE(mainButton()->isEnabled());
    EXPECT_EQ(mainButton()->toolTip(), hint);

    const auto later = preparer->holdBank(8);
    first->open();
    ASSERT_TRUE(waitUntil([&] { return shows("WRITING KitA007  7/99"); }));
    EXPECT_FALSE(bar->isIndeterminate());
    EXPECT_EQ(bar->value(), 7);
    EXPECT_EQ(bar->maximum(), 99);
    later->open();
    waitForWork();

    ASSERT_TRUE(shows("Random banks created"));
    EXPECT_EQ(label(QStringLiteral("Random banks created"))->font().pixelSize(), 15);
    EXPECT_EQ(showing<StatusIcon>().size(), 1U);
    EXPECT_TRUE(showing<ProgressBar>().empty());
    const auto* finished = std::get_if<AppModel::Finished>(&model.runState());
    ASSERT_TRUE(finished);
    const std::string counts = "99 banks · 1584 files copied · 0 converted · " +
                               std::to_string(finished->completedExport.summary.reusedBankCount) +
                               " banks with reused samples";
    EXPECT_TRUE(shows(counts.c_str())) << counts;
    EXPECT_TRUE(mainButton()->isEnabled());
}

TEST_F(ContentViewTest, offersNoRunWhileOneIsCarriedOut) {
    model.setExportFolder(outputFolder());
    scan(drumKit());
    const auto gate = preparer->holdBank(1);
    press(mainButton());
    model.setSourceFolder(drumKit("Kit B"));
    EXPECT_TRUE(waitUntil([this] { return model.canGenerate(); }));
    EXPECT_FALSE(model.isRunning());
    EXPECT_FALSE(mainButton()->isEnabled());
    gate->open();
    waitForWork();
    EXPECT_TRUE(mainButton()->isEnabled());
}

TEST_F(ContentViewTest, showsTheRunThatIsWrittenAfterAnother) {
    loops("card/QZT508/Bank 1/3", 1);
    model.setExportFolder(outputFolder());
    scan(drumKit());
    model.generateBanks();
    waitForWork();
    panels->saveTarget = panels->document = FileURL(folder / "saved.json");
    model.exportJSON();
    const auto gate = preparer->holdBank(1);
    model.setSourceFolder(FileURL::directory(folder / "card/QZT508"));
    model.applyMetadataToExistingBank();
    model.importJSON();
    bool stampedFirst = false;
    QObject::connect(&model, &AppModel::runStateChanged, &model, [&] {
        if (std::holds_alternative<AppModel::FinishedMessage>(model.runState())) {
            stampedFirst = true;
            EXPECT_FALSE(mainButton()->isEnabled());
        }
    });
    EXPECT_TRUE(waitUntil([&] { return stampedFirst && shows("PREPARING EXPORT…"); }));
    EXPECT_FALSE(mainButton()->isEnabled());
    gate->open();
    waitForWork();
    EXPECT_TRUE(shows("Random banks created"));
}

TEST_F(ContentViewTest, saysSoWhenSelectionsAreApplied) {
    model.setSourceFolder(deviceFolder());
    QTest::mouseClick(mainButton(), Qt::LeftButton);
    // The folder is empty and the run may be over; its result arrives with the next event.
    EXPECT_TRUE(shows("Applying selections.."));
    waitForWork();
    EXPECT_EQ(label(QStringLiteral("Metadata applied to 0 WAVs"))->font().pixelSize(), 15);
}

TEST_F(ContentViewTest, showsWhyARunFailed) {
    model.setExportFolder(outputFolder());
    scan(drumKit("Thin", 2));
    model.generateBanks();
    waitForWork();
    const char* text = "At least 3 percussion samples are required for channels 6-8, but only 2 "
                       "usable files were found.";
    EXPECT_EQ(colorOf(text), MarloTheme::danger);
    EXPECT_EQ(label(QString::fromLatin1(text))->font().pixelSize(), 15);
    EXPECT_EQ(showing<StatusIcon>().size(), 1U);
}

TEST_F(ContentViewTest, showsTheSavedMappingFile) {
    model.setExportFolder(outputFolder());
    scan(drumKit());
    EXPECT_FALSE(shows("JSON"));
    model.generateBanks();
    waitForWork();
    panels->saveTarget = FileURL(folder / "saved.json");
    model.exportJSON();
    EXPECT_TRUE(shows("JSON"));
    EXPECT_EQ(view.findChildren<ElidedPathLabel*>()[2]->path(), shownPath(*panels->saveTarget));
}

TEST_F(ContentViewTest, keepsLongPathsWholeInTooltipAndClipboard) {
    const std::string longName(220, 'n');
    model.setExportFolder(FileURL::directory("/start/" + longName + "/end"));
    QApplication::processEvents();
    auto* target = view.findChildren<ElidedPathLabel*>()[1];
    EXPECT_LT(target->text().size(), target->path().size());
    EXPECT_TRUE(target->text().startsWith(QStringLiteral("/start")));
    EXPECT_TRUE(target->text().endsWith(QStringLiteral("/end")));
    EXPECT_EQ(target->toolTip(), target->path());
    target->setSelection(0, static_cast<int>(target->text().size()));
    QTest::keyClick(target, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), target->path());
}

TEST_F(ContentViewTest, takesNoNameForMarkup) {
    const QString name = QStringLiteral("<b>kick.txt");
    folder.write("Kit A/Kick/<b>kick.txt", "notes");
    drumKit();
    scan(FileURL::directory(folder / "Kit A"));
    const QString row =
        section("ignoredFiles")->list()->model()->index(0, 0).data(Qt::ToolTipRole).toString();
    model.setExportFolder(FileURL::directory("/" + name.toStdString() + std::string(300, 'n')));
    QApplication::processEvents();
    const QString path = view.findChildren<ElidedPathLabel*>()[1]->toolTip();
    for (const QString& toolTip : {row, path}) {
        ASSERT_TRUE(Qt::mightBeRichText(toolTip)) << toolTip.toStdString();
        QTextDocument shown;
        shown.setHtml(toolTip);
        EXPECT_TRUE(shown.toPlainText().contains(name)) << toolTip.toStdString();
    }
}

TEST_F(ContentViewTest, marksTheRowWithTheFocus) {
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

TEST_F(ContentViewTest, clipsNothingAtItsSmallestSize) {
    EXPECT_EQ(view.minimumSize(), QSize(880, 760));
    view.resize(view.minimumSize());
    const std::string longName(220, 'n');
    model.setExportFolder(FileURL::directory("/" + longName));
    scan(drumKit(longName));
    for (auto* open : view.findChildren<DisclosureSection*>())
        open->setExpanded(true);
    QApplication::processEvents();
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
