#include "Controls/DropZone.h"
#include "Controls/ThreeWayModeToggle.h"
#include "MarloTheme.h"
#include "Support/ContentViewFixture.h"
#include "WavFixture.h"

#include <QApplication>
#include <QCursor>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QTest>
#include <QUrl>
#include <gtest/gtest.h>

using namespace torvo;
using namespace torvo::app;
using namespace torvo::test;

namespace {

class SourceCardTest : public testing::Test, protected ContentViewFixture {};

} // namespace

TEST_F(SourceCardTest, showsTheHintOfTheSelectedMode) {
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

TEST_F(SourceCardTest, clearsTheSourceWhenThereIsOne) {
    EXPECT_FALSE(button("CLEAR")->isEnabled());
    scan(drumKit());
    EXPECT_TRUE(button("CLEAR")->isEnabled());
    press(button("CLEAR"));
    EXPECT_FALSE(model.sourceFolder());
    EXPECT_FALSE(button("CLEAR")->isEnabled());
    EXPECT_TRUE(shows("Choose or drop a source folder to scan."));
}

TEST_F(SourceCardTest, clearsTheDocumentWithoutASource) {
    prepareRun();
    const auto gate = preparer->holdBank(1);
    model.generateBanks();
    press(button("CLEAR"));
    EXPECT_FALSE(button("CLEAR")->isEnabled());
    gate->open();
    waitForWork();
    ASSERT_FALSE(model.sourceFolder());
    ASSERT_TRUE(button("CLEAR")->isEnabled());
    press(button("CLEAR"));
    EXPECT_FALSE(model.currentDocument());
    EXPECT_FALSE(button("CLEAR")->isEnabled());
}

TEST_F(SourceCardTest, opensThePanelAfterTheClickHasReturned) {
    panels->folder = drumKit();
    QTest::mouseClick(sourceButton(), Qt::LeftButton);
    EXPECT_TRUE(panels->asked.empty());
    settle();
    EXPECT_EQ(panels->asked, std::vector<std::string>{"folder: Choose a source sample folder"});
    waitForWork();
    EXPECT_EQ(model.sourceFolder(), panels->folder);
}

TEST_F(SourceCardTest, theDropZoneOpensThePanelOnEnter) {
    auto* zone = view.findChild<DropZone*>();
    EXPECT_TRUE((zone->focusPolicy() & Qt::TabFocus) != 0);
    QTest::keyClick(zone, Qt::Key_Return);
    settle();
    EXPECT_EQ(panels->asked, std::vector<std::string>{"folder: Choose a source sample folder"});
}

// Intended: cancelling the source panel keeps the source; cancelling the output panel clears the
// output.
TEST_F(SourceCardTest, aCancelledSourcePanelChangesNothing) {
    const FileURL kit = drumKit();
    scan(kit);
    const auto state = model.scanState();
    press(sourceButton());
    EXPECT_EQ(model.sourceFolder(), kit);
    EXPECT_TRUE(model.scanState() == state);
}

TEST_F(SourceCardTest, refusesADroppedFile) {
    const auto file = folder.write("loose.wav", wavFile(WavFormat{}, 8));
    EXPECT_FALSE(drop({url(file)}));
    EXPECT_FALSE(drop({QUrl(QStringLiteral("https://halvorine.example/Kit/"))}));
    EXPECT_FALSE(model.sourceFolder());
    const FileURL kit = drumKit();
    scan(kit);
    const auto state = model.scanState();
    EXPECT_FALSE(drop({url(file)}));
    EXPECT_EQ(model.sourceFolder(), kit);
    EXPECT_TRUE(model.scanState() == state);
}

TEST_F(SourceCardTest, takesTheFirstFolderOfADrop) {
    const auto file = folder.write("loose.wav", wavFile(WavFormat{}, 8));
    drumKit("Kit #1 ü");
    const auto kit = folder / "Kit #1 ü";
    EXPECT_TRUE(drop({url(file), url(kit), url(folder.path())}));
    waitForWork();
    EXPECT_EQ(model.sourceFolder(), FileURL::directory(kit));
}

// The shown name and the written name are both that of the folder itself.
TEST_F(SourceCardTest, resolvesLinksToFolders) {
    const FileURL kit = drumKit();
    folder.createFolder("links");
    const auto link = folder / "links/Favourite";
    std::filesystem::create_directory_symlink("../Kit A", link);
    EXPECT_TRUE(drop({url(link)}));
    waitForWork();
    EXPECT_EQ(model.sourceFolder(), kit);
    EXPECT_TRUE(shows("Kit A"));
    press(button("CLEAR"));
    panels->folder = FileURL::directory(link);
    press(sourceButton());
    waitForWork();
    EXPECT_EQ(model.sourceFolder(), kit);
    // A link in the middle of the path.
    press(button("CLEAR"));
    std::filesystem::create_directory_symlink(folder.path(), folder / "links/all");
    EXPECT_TRUE(drop({url(folder / "links/all/Kit A")}));
    waitForWork();
    EXPECT_EQ(model.sourceFolder(), kit);
}

TEST_F(SourceCardTest, aSlowShareBlocksNothing) {
    const FileURL kit = drumKit();
    const FileURL other = drumKit("Kit B");
    const auto choose = [this](const FileURL& source) {
        const auto gate = fileManager->holdInspection(source.path());
        panels->folder = source;
        press(sourceButton());
        EXPECT_TRUE(waitUntil([&] { return gate->isReached(); }));
        EXPECT_NE(model.sourceFolder(), source);
        return gate;
    };
    const auto first = choose(kit);
    first->open();
    waitForWork();
    EXPECT_EQ(model.sourceFolder(), kit);
    // What the user does later counts.
    press(button("CLEAR"));
    const auto second = choose(kit);
    const auto third = choose(other);
    third->open();
    EXPECT_TRUE(waitUntil([&] { return model.sourceFolder() == other; }));
    second->open();
    waitForWork();
    EXPECT_EQ(model.sourceFolder(), other);
    const auto fourth = choose(kit);
    press(button("CLEAR"));
    fourth->open();
    waitForWork();
    EXPECT_FALSE(model.sourceFolder());
}

TEST_F(SourceCardTest, aSlowShareMakesTheCursorBusy) {
    const auto isBusy = [] {
        const QCursor* cursor = QApplication::overrideCursor();
        return cursor && cursor->shape() == Qt::BusyCursor;
    };
    const auto choose = [this](const FileURL& source) {
        const auto gate = fileManager->holdInspection(source.path());
        model.chooseSourceFolder(source);
        return gate;
    };
    const auto first = choose(drumKit());
    EXPECT_FALSE(isBusy()); // only after a moment
    EXPECT_TRUE(waitUntil(isBusy));
    // Another choice keeps it busy, and one answer is enough to end it.
    const auto second = choose(drumKit("Kit B"));
    first->open();
    EXPECT_TRUE(isBusy());
    second->open();
    waitForWork();
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    // What the user does meanwhile ends it, too.
    const auto third = choose(drumKit());
    EXPECT_TRUE(waitUntil(isBusy));
    press(button("CLEAR"));
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    third->open();
    waitForWork();
}

// The name decides between stamping and scanning, so it is not resolved.
TEST_F(SourceCardTest, keepsLinksToDeviceFolders) {
    drumKit();
    std::filesystem::create_directory_symlink("Kit A", folder / "qzt508");
    EXPECT_TRUE(drop({url(folder / "qzt508")}));
    EXPECT_EQ(model.sourceFolder(), FileURL::directory(folder / "qzt508"));
    EXPECT_TRUE(model.isUpdatingExistingBank());
    const FileURL device = deviceFolder();
    std::filesystem::create_directory_symlink(device.path(), folder / "Card");
    EXPECT_TRUE(drop({url(folder / "Card")}));
    waitForWork();
    EXPECT_EQ(model.sourceFolder(), FileURL::directory(folder / "Card"));
    EXPECT_FALSE(model.isUpdatingExistingBank());
}

TEST_F(SourceCardTest, keepsPathsThatCannotBeResolved) {
    std::filesystem::create_symlink("loop", folder / "loop");
    panels->folder = FileURL::directory(folder / "loop");
    press(sourceButton());
    waitForWork();
    EXPECT_EQ(model.sourceFolder(), panels->folder);
    EXPECT_TRUE(shows(("Unable to read " + (folder / "loop").string() + ".").c_str()));
}

TEST_F(SourceCardTest, aTrailingSlashDenotesAFolder) {
    EXPECT_TRUE(drop({QUrl(QStringLiteral("file:///nowhere/Kit/"))}));
    waitForWork();
    EXPECT_EQ(model.sourceFolder(), FileURL::directory("/nowhere/Kit"));
}

TEST_F(SourceCardTest, highlightsTheZoneWhileADragIsOverTheWindow) {
    auto* zone = view.findChild<DropZone*>();
    QMimeData data;
    data.setUrls({url(folder.path())});
    QDragEnterEvent enter({9, 9}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    const QImage before = zone->grab().toImage();
    QApplication::sendEvent(button("GENERATE"), &enter);
    EXPECT_TRUE(view.isTargeted());
    EXPECT_NE(zone->grab().toImage(), before);
    QDragLeaveEvent leave;
    QApplication::sendEvent(&view, &leave);
    EXPECT_FALSE(view.isTargeted());
    EXPECT_EQ(zone->grab().toImage(), before);
}

TEST_F(SourceCardTest, isNotHighlightedByADragWithoutFiles) {
    QMimeData data;
    data.setText(QStringLiteral("kick"));
    for (const bool isLink : {false, true}) {
        if (isLink)
            data.setUrls({QUrl(QStringLiteral("https://halvorine.example/Kit/"))});
        QDragEnterEvent enter({9, 9}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&view, &enter);
        EXPECT_FALSE(enter.isAccepted());
        EXPECT_FALSE(view.isTargeted());
    }
}

TEST_F(SourceCardTest, theZoneIsLessProminentOnceAFolderIsChosen) {
    const auto* zone = view.findChild<DropZone*>();
    const auto caption = [this] { return colorOf("DROP SOURCE FOLDER"); };
    EXPECT_EQ(caption(), MarloTheme::ink);
    scan(drumKit());
    EXPECT_EQ(caption(), MarloTheme::muted);
    EXPECT_GT(label(QStringLiteral("Kit A"))->font().pixelSize(),
              label(QStringLiteral("SOURCE"))->font().pixelSize());
    EXPECT_TRUE(zone->isVisible());
    model.clearSource();
    EXPECT_EQ(caption(), MarloTheme::ink);
}

TEST_F(SourceCardTest, theSourceCardKeepsItsHeight) {
    const auto* zone = view.findChild<DropZone*>();
    const int before = zone->height();
    model.setSourceFolder(deviceFolder());
    settle();
    EXPECT_EQ(zone->height(), before);
    EXPECT_TRUE(shows("QZT508"));
}
