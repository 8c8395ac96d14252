#include "Controls/ElidedPathLabel.h"
#include "Controls/ProgressBar.h"
#include "Controls/StatusIcon.h"
#include "MarloTheme.h"
#include "Support/ContentViewFixture.h"
#include "Support/Paints.h"
#include "Text.h"

#include <QTest>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

using namespace torvo;
using namespace torvo::app;
using namespace torvo::test;

namespace {

const QString hint = QStringLiteral("Choose an output folder above!");

class RunMessageTest : public testing::Test, protected ContentViewFixture {
protected:
    /// Whether the one bar on the screen is painted again and again, each time in another way.
    bool isAlive() {
        auto* bar = showing<ProgressBar>().at(0);
        const Paints paints(*bar);
        const auto moves = [&, before = bar->grab().toImage(), painted = paints.count()] {
            return paints.count() > painted + 1 && bar->grab().toImage() != before;
        };
        return waitUntil(moves) && waitUntil(moves);
    }
};

} // namespace

TEST_F(RunMessageTest, followsARunFromStartToEnd) {
    prepareRun();
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
    const QString explanation = label(QString::fromStdString(counts))->toolTip();
    for (const char* word : {"copied: ", "converted: ", "reused: "})
        EXPECT_TRUE(explanation.contains(QString::fromLatin1(word))) << word;
    EXPECT_TRUE(mainButton()->isEnabled());
}

TEST_F(RunMessageTest, showsARunThatWaitedForAnother) {
    loops("card/QZT508/Bank 1/3", 1);
    prepareRun();
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

TEST_F(RunMessageTest, showsThatSettingsAreApplied) {
    scan(deviceFolder());
    QTest::mouseClick(mainButton(), Qt::LeftButton);
    // The folder is empty, so the run may have ended already; its result arrives with the next
    // event.
    EXPECT_TRUE(shows("Applying selections.."));
    waitForWork();
    EXPECT_EQ(label(QStringLiteral("Metadata applied to 0 WAVs"))->font().pixelSize(), 15);
}

TEST_F(RunMessageTest, showsWhichFileCouldNotBeStamped) {
    const auto* file = view.findChild<ElidedPathLabel*>(QStringLiteral("runFile"));
    const auto broken = folder.write("QZT508/Bank 7/3/<b>Kick-02.wav", "no sound");
    scan(FileURL::directory(folder / "QZT508"));
    EXPECT_FALSE(file->isVisible());
    press(mainButton());
    waitForWork();
    EXPECT_EQ(colorOf("Not a RIFF/WAVE file."), MarloTheme::danger);
    const char* line = "Bank 7/3/<b>Kick-02.wav";
    ASSERT_TRUE(shows(line));
    EXPECT_EQ(label(QString::fromLatin1(line)), file);
    EXPECT_EQ(colorOf(line), MarloTheme::panelRaised);
    EXPECT_EQ(file->font().pixelSize(), 12);
    settle();
    const auto* message = label(QStringLiteral("Not a RIFF/WAVE file."));
    EXPECT_GE(file->mapTo(&view, QPoint()).y(),
              message->mapTo(&view, QPoint(0, message->height())).y());
    // The tooltip, the accessible name and the clipboard have the whole path.
    const QString path = QString::fromStdString(broken.string());
    EXPECT_EQ(file->toolTip(), plainToolTip(path));
    EXPECT_EQ(file->accessibleName(), path);
    EXPECT_EQ(file->focusPolicy(), Qt::StrongFocus);
    press(button("CLEAR"));
    EXPECT_FALSE(file->isVisible());
    EXPECT_TRUE(file->accessibleName().isEmpty());
}

TEST_F(RunMessageTest, showsWhyARunFailed) {
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

TEST_F(RunMessageTest, offersToShowWhatARunWrote) {
    const char* next = "Copy QZT508 to the top of your card";
    const char* link = "Show folder";
    prepareRun();
    EXPECT_FALSE(button(link));
    {
        const auto gate = preparer->holdBank(1);
        model.generateBanks();
        EXPECT_FALSE(button(link));
        gate->open();
    }
    waitForWork();
    EXPECT_TRUE(shows(next));
    EXPECT_EQ(colorOf(next), MarloTheme::ink);
    ASSERT_TRUE(button(link));
    EXPECT_EQ(button(link)->toolTip(),
              QString::fromStdString((folder / "out/Kit A/QZT508").string()));
    press(button(link));
    EXPECT_EQ(panels->asked.back(), "show: " + (folder / "out/Kit A/QZT508").string());
    // By keyboard, too.
    panels->asked.clear();
    EXPECT_EQ(button(link)->focusPolicy(), Qt::StrongFocus);
    QTest::keyClick(button(link), Qt::Key_Return);
    EXPECT_EQ(panels->asked.size(), 1U);
    model.clearSource();
    EXPECT_FALSE(button(link));
    EXPECT_FALSE(shows(next));
    EXPECT_FALSE(model.writtenFolder());
}

TEST_F(RunMessageTest, asksForNoCopyOfWhatIsOnTopOfACard) {
    const char* next = "Copy QZT508 to the top of your card";
    const auto generate = [this] {
        model.generateBanks();
        waitForWork();
        ASSERT_TRUE(shows("Random banks created"));
        EXPECT_TRUE(button("Show folder"));
    };
    prepareRun();
    fileManager->mount(folder / "out");
    generate();
    EXPECT_TRUE(shows(next)); // the device folder is one level too deep
    fileManager->mount(folder / "out/Kit A");
    generate();
    EXPECT_FALSE(shows(next));
    // A subvolume of Btrfs is no card.
    fileManager->mount(folder.createFolder("card"));
    fileManager->makeSubvolume(folder / "out/Kit A");
    generate();
    EXPECT_TRUE(shows(next));
    // The folder of the run may be a link to the card.
    fileManager->mount(folder.createFolder("card"));
    generate();
    EXPECT_TRUE(shows(next));
    std::filesystem::remove_all(folder / "out/Kit A");
    std::filesystem::create_directory_symlink(folder / "card", folder / "out/Kit A");
    generate();
    EXPECT_FALSE(shows(next));
    // So it is after an import.
    panels->saveTarget = panels->document = FileURL(folder / "saved.json");
    model.exportJSON();
    model.importJSON();
    waitForWork();
    ASSERT_TRUE(shows("Random banks created"));
    EXPECT_FALSE(shows(next));
}

TEST_F(RunMessageTest, showsTheFolderThatWasStamped) {
    const FileURL device = deviceFolder();
    model.setSourceFolder(device);
    model.applyMetadataToExistingBank();
    EXPECT_FALSE(button("Show folder"));
    waitForWork();
    press(button("Show folder"));
    EXPECT_EQ(panels->asked, std::vector<std::string>{"show: " + device.shownPath()});
    // It is on the card already, as far as anybody knows.
    EXPECT_FALSE(shows("Copy QZT508 to the top of your card"));
}

TEST_F(RunMessageTest, showsNoFolderOfARunThatFailed) {
    model.setExportFolder(outputFolder());
    scan(drumKit("Thin", 2));
    model.generateBanks();
    waitForWork();
    ASSERT_TRUE(std::holds_alternative<AppModel::Failed>(model.runState()));
    EXPECT_FALSE(button("Show folder"));
    model.showWrittenFolder();
    EXPECT_TRUE(panels->asked.empty());
}

TEST_F(RunMessageTest, theLinesOfAResultDoNotTouch) {
    savedRun();
    settle();
    const char* lines[] = {"Random banks created", "Copy QZT508 to the top of your card"};
    int bottom = 0;
    for (const char* line : lines) {
        const auto* found = label(QString::fromUtf8(line));
        ASSERT_TRUE(found);
        EXPECT_GE(found->geometry().top(), bottom) << line;
        EXPECT_GE(found->height(), found->fontMetrics().height()) << line;
        bottom = found->geometry().bottom();
    }
    const auto* counts = view.findChild<QLabel*>(QStringLiteral("runCounts"));
    EXPECT_GE(counts->geometry().top(), bottom);
    EXPECT_GE(counts->height(), counts->fontMetrics().height());
    EXPECT_LE(button("Show folder")->geometry().bottom(), counts->geometry().top());
}

TEST_F(RunMessageTest, theLinkHasTheBaselineOfTheMessage) {
    const auto expectOneBaseline = [this](const char* message) {
        settle();
        const auto* words = label(QString::fromUtf8(message));
        ASSERT_TRUE(words) << message;
        const auto* link = button("Show folder");
        const QFontMetrics small(MarloTheme::font(13, MarloTheme::FontCut::medium));
        const int above = (link->height() - small.height()) / 2;
        EXPECT_NEAR(words->mapTo(&view, QPoint()).y() + words->fontMetrics().ascent(),
                    link->mapTo(&view, QPoint()).y() + above + small.ascent(), 1)
            << message;
    };
    savedRun();
    expectOneBaseline("Random banks created");
    model.setSourceFolder(deviceFolder());
    model.applyMetadataToExistingBank();
    waitForWork();
    expectOneBaseline("Metadata applied to 0 WAVs");
}

TEST_F(RunMessageTest, theLinkMovesNoMessage) {
    model.setSourceFolder(deviceFolder());
    model.applyMetadataToExistingBank();
    waitForWork();
    settle();
    ASSERT_TRUE(button("Show folder"));
    const auto* words = label(QStringLiteral("Metadata applied to 0 WAVs"));
    ASSERT_TRUE(words);
    const int above = words->y();
    const int below = words->parentWidget()->height() - above - words->fontMetrics().height();
    EXPECT_LE(std::abs(above - below), 2);
}

// A slow card takes long to forget the banks that were there, and to keep the last ones.
TEST_F(RunMessageTest, movesWhileACardIsSlow) {
    const auto target = folder.createFolder("out/Kit A/QZT508");
    const auto removal = fileManager->holdRemoval(target);
    const auto flush = fileManager->holdFlush(target.parent_path());
    prepareRun();
    model.generateBanks();
    ASSERT_TRUE(waitUntil([&] { return removal->isReached(); }));
    EXPECT_TRUE(shows("PREPARING EXPORT…"));
    EXPECT_TRUE(showing<ProgressBar>().at(0)->isIndeterminate());
    EXPECT_TRUE(isAlive());
    removal->open();
    ASSERT_TRUE(waitUntil([&] { return flush->isReached() && shows("WRITING KitA099  99/99"); }));
    EXPECT_EQ(showing<ProgressBar>().at(0)->value(), 99);
    EXPECT_TRUE(isAlive());
    flush->open();
    waitForWork();
    EXPECT_TRUE(shows("Random banks created"));
}
