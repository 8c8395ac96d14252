#include "ContentView.h"
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
#include "Support/AppFixture.h"
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
#include <QTest>
#include <QUrl>
#include <gtest/gtest.h>

using namespace torvo;
using namespace torvo::app;
using namespace torvo::test;

namespace {

const QString hint = QStringLiteral("Choose an output folder above!");

class ContentViewTest : public testing::Test, protected AppFixture {
protected:
    ContentView view{model};

    ContentViewTest() {
        view.resize(880, 1200);
        view.show();
    }

    template <typename Widget>
    std::vector<Widget*> showing() const {
        std::vector<Widget*> found;
        for (auto* widget : view.findChildren<Widget*>())
            if (widget->isVisible())
                found.push_back(widget);
        return found;
    }
    /// The label that shows exactly this text, or none.
    QLabel* label(const QString& text) const {
        for (auto* label : showing<QLabel>())
            if (label->text() == text)
                return label;
        return nullptr;
    }
    bool shows(const char* text) const { return label(QString::fromUtf8(text)) != nullptr; }
    QAbstractButton* button(const char* text) const {
        for (auto* button : showing<QAbstractButton>())
            if (button->text() == QString::fromUtf8(text))
                return button;
        return nullptr;
    }
    QAbstractButton* sourceButton() const {
        return view.findChild<QAbstractButton*>(QStringLiteral("chooseSourceFolder"));
    }
    QAbstractButton* outputButton() const {
        return view.findChild<QAbstractButton*>(QStringLiteral("chooseExportFolder"));
    }
    QAbstractButton* mainButton() const {
        return view.findChild<QAbstractButton*>(QStringLiteral("mainButton"));
    }
    /// Presses and lets what was queued happen.
    void press(QAbstractButton* button) {
        ASSERT_TRUE(button);
        QTest::mouseClick(button, Qt::LeftButton);
        QApplication::processEvents();
    }
    DisclosureSection* section(const char* name) const {
        return view.findChild<DisclosureSection*>(QString::fromLatin1(name));
    }
    QColor colorOf(const char* text) const {
        const QLabel* found = label(QString::fromUtf8(text));
        return found ? found->palette().color(QPalette::WindowText) : QColor();
    }
    /// What the zone answers to a drop of these.
    bool drop(const QList<QUrl>& urls) {
        QMimeData data;
        data.setUrls(urls);
        auto* zone = view.findChild<DropZone*>();
        QDragEnterEvent enter({9, 9}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(zone, &enter);
        EXPECT_EQ(zone->isTargeted(), enter.isAccepted());
        QDropEvent drop({9, 9}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        drop.ignore();
        QApplication::sendEvent(zone, &drop);
        EXPECT_FALSE(zone->isTargeted());
        return drop.isAccepted();
    }
    static QUrl url(const std::filesystem::path& path) {
        return QUrl::fromLocalFile(QString::fromStdString(path.string()));
    }
    FileURL deviceFolder() const { return FileURL::directory(folder.createFolder("QZT508")); }
};

} // namespace

TEST_F(ContentViewTest, namesItselfInTheHeader) {
    const QLabel* title = label(QStringLiteral("TORVO QUASTLE BANK GENERATOR"));
    ASSERT_TRUE(title);
    EXPECT_EQ(title->font().pixelSize(), 30);
    EXPECT_EQ(title->font().weight(), QFont::Bold);
    EXPECT_TRUE(button("Halvorine"));
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

TEST_F(ContentViewTest, countsDrumsInTheDevicesOrder) {
    drumKit("Kit A", 3);
    folder.write("Kit A/Clap/more.wav", wavFile(WavFormat{}, 8));
    scan(FileURL::directory(folder / "Kit A"));
    std::vector<std::string> texts;
    for (const auto* row : showing<CountRow>())
        for (const auto* label : row->findChildren<QLabel*>())
            texts.push_back(label->text().toStdString());
    EXPECT_EQ(texts,
              (std::vector<std::string>{"CH1 KICK", "3", "CH2 CLAP", "4", "CH3 CLOSED HAT", "3",
                                        "CH4 OPEN HAT", "3", "CH5 SNARE", "3", "CH6-8 PERC", "3"}));
    EXPECT_TRUE(shows("CHANNELS"));
}

TEST_F(ContentViewTest, countsLoopsAndStabsAsOne) {
    model.setGenerationMode(GenerationMode::stabs);
    scan(loops("Stabs", 11));
    EXPECT_TRUE(shows("STABS"));
    EXPECT_TRUE(shows("11"));
    EXPECT_FALSE(shows("CH1 KICK"));
    EXPECT_FALSE(shows("LOOPS"));
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

TEST_F(ContentViewTest, saysSoWhenSelectionsAreApplied) {
    model.setSourceFolder(deviceFolder());
    press(mainButton());
    // The folder is empty: the run may be over, but its result has not arrived before this line.
    EXPECT_TRUE(shows("Applying selections..") || shows("Metadata applied to 0 WAVs"));
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

TEST_F(ContentViewTest, everyControlIsReachedByTab) {
    model.setExportFolder(outputFolder());
    model.setMetadataOptions({16, TorvoPlaybackRate::rate44, TorvoFilterType::off, true, {}});
    scan(drumKit());
    std::set<QWidget*> expected;
    for (auto* widget : showing<QWidget>())
        if ((widget->focusPolicy() & Qt::TabFocus) != 0 && widget->isEnabled())
            expected.insert(widget);
    EXPECT_GE(expected.size(), 19U);
    std::set<QWidget*> reached;
    auto* const ring = view.findChild<FocusRing*>();
    view.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
    for (std::size_t step = 0; step < expected.size() + 4; ++step) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        reached.insert(QApplication::focusWidget());
        EXPECT_EQ(ring->ringed(), QApplication::focusWidget());
    }
    const auto names = [](const std::set<QWidget*>& widgets) {
        std::multiset<std::string> found;
        for (const auto* widget : widgets)
            found.insert(widget->metaObject()->className() +
                         (" " + widget->accessibleName().toStdString()));
        return found;
    };
    EXPECT_EQ(names(reached), names(expected));
}

TEST_F(ContentViewTest, aClickShowsNoRing) {
    view.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
    auto* const ring = view.findChild<FocusRing*>();
    EXPECT_EQ(ring->ringed(), nullptr);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_NE(ring->ringed(), nullptr);
    press(button("Stabs"));
    EXPECT_EQ(ring->ringed(), nullptr);
}
