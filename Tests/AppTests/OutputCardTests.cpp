#include "Controls/ElidedPathLabel.h"
#include "Controls/MarloButton.h"
#include "MarloTheme.h"
#include "Support/ContentViewFixture.h"
#include "Support/Paints.h"
#include "Text.h"

#include <QApplication>
#include <QClipboard>
#include <QTest>
#include <QToolTip>
#include <gtest/gtest.h>

#include <filesystem>

using namespace torvo;
using namespace torvo::app;
using namespace torvo::test;

namespace {

const QString hint = QStringLiteral("Choose an output folder above!");

class OutputCardTest : public testing::Test, protected ContentViewFixture {
protected:
    const char* note = "exists, will be replaced";

    /// The device folder of Kit A in the output folder.
    std::filesystem::path target(const std::string& output = "out") const {
        return folder / output / "Kit A/QZT508";
    }
    /// Activates the window, as after a visit to another one.
    void reactivate() {
        QWidget other;
        other.show();
        other.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
        view.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
    }
};

} // namespace

TEST_F(OutputCardTest, aCancelledOutputPanelClearsTheOutput) {
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

TEST_F(OutputCardTest, applyHasThePlaceOfGenerate) {
    settle();
    const auto place = [this] {
        return QRect(mainButton()->mapTo(&view, QPoint()), mainButton()->size());
    };
    const QRect generate = place();
    EXPECT_GE(generate.width(), outputButton()->width());
    EXPECT_EQ(generate.height(), MarloButtonStyle::size(QStringLiteral("GENERATE")).height());
    model.setSourceFolder(deviceFolder());
    settle();
    EXPECT_EQ(mainButton()->text(), QStringLiteral("APPLY"));
    EXPECT_EQ(place(), generate);
}

TEST_F(OutputCardTest, doesNotApplyToAFolderThatWasRemoved) {
    const FileURL device = deviceFolder();
    scan(device);
    ASSERT_TRUE(mainButton()->isEnabled());
    std::filesystem::remove_all(device.path());
    press(mainButton());
    waitForWork();
    EXPECT_FALSE(mainButton()->isEnabled());
    EXPECT_TRUE(std::holds_alternative<AppModel::Idle>(model.runState()));
    EXPECT_FALSE(shows("Metadata applied to 0 WAVs"));
}

TEST_F(OutputCardTest, applyDoesNotWaitForASlowFolder) {
    const FileURL device = deviceFolder();
    scan(device);
    const auto gate = fileManager->holdInspection(device.path());
    press(mainButton());
    EXPECT_TRUE(waitUntil([&] { return gate->isReached(); }));
    EXPECT_TRUE(shows("Applying selections.."));
    EXPECT_FALSE(mainButton()->isEnabled());
    gate->open();
    waitForWork();
    EXPECT_TRUE(shows("Metadata applied to 0 WAVs"));
}

TEST_F(OutputCardTest, inspectsTheFolderAgainWhenTheWindowIsActivated) {
    const FileURL device = deviceFolder();
    scan(device);
    std::filesystem::remove_all(device.path());
    ASSERT_TRUE(mainButton()->isEnabled());
    reactivate();
    waitForWork();
    EXPECT_FALSE(mainButton()->isEnabled());
    std::filesystem::create_directory(device.path());
    reactivate();
    waitForWork();
    EXPECT_TRUE(mainButton()->isEnabled());
    // A link is as good as its target.
    std::filesystem::remove(device.path());
    std::filesystem::create_symlink("nowhere", device.path());
    reactivate();
    waitForWork();
    EXPECT_FALSE(mainButton()->isEnabled());
    folder.createFolder("nowhere");
    reactivate();
    waitForWork();
    EXPECT_TRUE(mainButton()->isEnabled());
}

TEST_F(OutputCardTest, aSlowDeviceFolderBlocksNothing) {
    const FileURL device = deviceFolder();
    const auto first = fileManager->holdInspection(device.path());
    model.setSourceFolder(device);
    EXPECT_TRUE(waitUntil([&] { return first->isReached(); }));
    EXPECT_FALSE(mainButton()->isEnabled());
    first->open();
    waitForWork();
    EXPECT_TRUE(mainButton()->isEnabled());
    // The button keeps its state until the answer arrives.
    const auto second = fileManager->holdInspection(device.path());
    reactivate();
    EXPECT_TRUE(waitUntil([&] { return second->isReached(); }));
    EXPECT_TRUE(mainButton()->isEnabled());
    // What exists here does not exist there.
    const FileURL absent = FileURL::directory(folder / "card/QZT508");
    const auto third = fileManager->holdInspection(absent.path());
    model.setSourceFolder(absent);
    EXPECT_FALSE(mainButton()->isEnabled());
    second->open();
    EXPECT_TRUE(waitUntil([&] { return third->isReached(); }));
    EXPECT_FALSE(mainButton()->isEnabled());
    third->open();
    waitForWork();
    EXPECT_FALSE(mainButton()->isEnabled());
}

TEST_F(OutputCardTest, namesTheTarget) {
    auto* target = view.findChild<ElidedPathLabel*>(QStringLiteral("targetPath"));
    const auto text = [&] { return target->path().toStdString(); };
    EXPECT_EQ(text(), "Choose output folder.");
    model.setExportFolder(FileURL::directory("/out put"));
    EXPECT_EQ(text(), "/out put");
    model.setSourceFolder(FileURL::directory("/nowhere/Kit A"));
    EXPECT_EQ(text(), "/out put/Kit A/QZT508");
    waitForWork();
}

TEST_F(OutputCardTest, theDisabledApplyGivesNoHint) {
    scan(FileURL::directory("/nowhere/QZT508"));
    EXPECT_EQ(mainButton()->text(), QStringLiteral("APPLY"));
    EXPECT_FALSE(mainButton()->isEnabled());
    EXPECT_TRUE(mainButton()->toolTip().isEmpty());
}

// Intended: the same hint for every reason.
TEST_F(OutputCardTest, theDisabledButtonGivesOneHint) {
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

TEST_F(OutputCardTest, offersNoRunWhileOneIsCarriedOut) {
    prepareRun();
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

TEST_F(OutputCardTest, isNotPaintedForEachBank) {
    prepareRun();
    const auto gate = preparer->holdBank(3);
    press(mainButton());
    ASSERT_TRUE(waitUntil([this] { return shows("WRITING KitA002  2/99"); }));
    settle();
    const Paints paints(*mainButton()->parentWidget());
    const auto later = preparer->holdBank(8);
    gate->open();
    ASSERT_TRUE(waitUntil([this] { return shows("WRITING KitA007  7/99"); }));
    settle();
    EXPECT_EQ(paints.count(), 0);
    later->open();
    waitForWork();
    settle();
    EXPECT_GT(paints.count(), 0);
}

// TARGET shows the folder of the current source; GENERATE must not write anywhere else.
TEST_F(OutputCardTest, generatesOnlyFromTheShownSource) {
    panels->document = savedRun();
    scan(drumKit("Kit B"));
    EXPECT_TRUE(mainButton()->isEnabled());
    model.importJSON();
    waitForWork();
    EXPECT_EQ(model.sourceFolder(), drumKit());
    EXPECT_TRUE(model.canGenerate());
    EXPECT_FALSE(mainButton()->isEnabled());
    EXPECT_EQ(mainButton()->toolTip(), hint);
    scan(drumKit());
    EXPECT_TRUE(mainButton()->isEnabled());
    // The document contains the folder that was scanned.
    model.importJSON();
    waitForWork();
    EXPECT_TRUE(mainButton()->isEnabled());
}

TEST_F(OutputCardTest, doesNotGenerateAfterItsSourceWasCleared) {
    model.setExportFolder(outputFolder());
    const auto first = inspector->hold("Slow");
    model.setSourceFolder(drumKit("Slow"));
    model.setSourceFolder(drumKit("Fast"));
    EXPECT_TRUE(waitUntil([this] { return mainButton()->isEnabled(); }));
    first->open();
    waitForWork();
    EXPECT_TRUE(model.canGenerate());
    EXPECT_FALSE(mainButton()->isEnabled());

    const auto second = inspector->hold("Late");
    model.setSourceFolder(drumKit("Late"));
    model.clearSource();
    second->open();
    waitForWork();
    EXPECT_TRUE(model.canGenerate());
    EXPECT_FALSE(mainButton()->isEnabled());
}

TEST_F(OutputCardTest, generatesFromTheFolderThatALinkLeadsTo) {
    prepareRun();
    std::filesystem::create_directory_symlink("Kit A", folder / "link");
    scan(FileURL::directory(folder / "link"));
    EXPECT_TRUE(mainButton()->isEnabled());
    std::filesystem::remove(folder / "link");
    std::filesystem::create_directory_symlink(drumKit("Kit B").path(), folder / "link");
    reactivate();
    waitForWork();
    EXPECT_FALSE(mainButton()->isEnabled());
}

TEST_F(OutputCardTest, aSlowLinkToTheSourceBlocksNothing) {
    prepareRun();
    const auto link = folder / "link";
    std::filesystem::create_directory_symlink("Kit A", link);
    const auto gate = fileManager->holdInspection(link);
    model.setSourceFolder(FileURL::directory(link));
    EXPECT_TRUE(waitUntil([&] { return gate->isReached() && model.canGenerate(); }));
    EXPECT_FALSE(mainButton()->isEnabled());
    gate->open();
    waitForWork();
    EXPECT_TRUE(mainButton()->isEnabled());
}

TEST_F(OutputCardTest, showsTheSavedMappingFile) {
    prepareRun();
    EXPECT_FALSE(shows("JSON"));
    model.generateBanks();
    waitForWork();
    panels->saveTarget = FileURL(folder / "saved.json");
    model.exportJSON();
    EXPECT_TRUE(shows("JSON"));
    EXPECT_EQ(view.findChild<ElidedPathLabel*>(QStringLiteral("mappingFile"))->path(),
              shownPath(*panels->saveTarget));
}

TEST_F(OutputCardTest, aResetHidesTheMappingFile) {
    savedRun();
    auto* file = view.findChild<ElidedPathLabel*>(QStringLiteral("mappingFile"));
    ASSERT_TRUE(shows("JSON"));
    ASSERT_TRUE(file->isVisible());
    model.clearSource();
    EXPECT_FALSE(shows("JSON"));
    EXPECT_FALSE(file->isVisible());
    EXPECT_TRUE(file->accessibleName().isEmpty());
}

TEST_F(OutputCardTest, keepsLongPathsWholeInTooltipAndClipboard) {
    const std::string longName(220, 'n');
    model.setExportFolder(FileURL::directory("/start/" + longName + "/end"));
    settle();
    auto* target = view.findChild<ElidedPathLabel*>(QStringLiteral("targetPath"));
    EXPECT_LT(target->text().size(), target->path().size());
    EXPECT_TRUE(target->text().startsWith(QStringLiteral("/start")));
    EXPECT_TRUE(target->text().endsWith(QStringLiteral("/end")));
    EXPECT_EQ(target->toolTip(), plainToolTip(target->path()));
    // By keyboard: focus the path, show its tooltip and copy it.
    EXPECT_TRUE((target->focusPolicy() & Qt::TabFocus) != 0);
    target->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(QToolTip::text(), plainToolTip(target->path()));
    target->clearFocus();
    EXPECT_TRUE(waitUntil([] { return !QToolTip::isVisible(); }));
    target->setSelection(0, static_cast<int>(target->text().size()));
    QTest::keyClick(target, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), target->path());
    model.setExportFolder(FileURL::directory("/short"));
    EXPECT_FALSE((target->focusPolicy() & Qt::TabFocus) != 0);
}

TEST_F(OutputCardTest, saysThatTheTargetWillBeReplaced) {
    folder.createFolder("out/Kit A/QZT508");
    scan(drumKit());
    EXPECT_FALSE(shows(note));
    model.setExportFolder(outputFolder("new"));
    waitForWork();
    EXPECT_FALSE(shows(note));
    model.setExportFolder(outputFolder());
    waitForWork();
    ASSERT_TRUE(shows(note));
    EXPECT_EQ(colorOf(note), MarloTheme::muted);
    EXPECT_FALSE(label(QString::fromUtf8(note))->accessibleName().isEmpty());
    // Another source has another target.
    scan(drumKit("Kit B"));
    EXPECT_FALSE(shows(note));
    scan(drumKit());
    EXPECT_TRUE(shows(note));
    model.setExportFolder(std::nullopt);
    EXPECT_FALSE(shows(note));
}

// A run deletes links, including broken ones.
TEST_F(OutputCardTest, saysThatALinkWillBeReplaced) {
    folder.createFolder("out/Kit A");
    std::filesystem::create_symlink("nowhere", target());
    prepareRun();
    EXPECT_TRUE(shows(note));
}

TEST_F(OutputCardTest, replacesNothingWhereSettingsAreApplied) {
    folder.createFolder("out/Kit A/QZT508");
    prepareRun();
    ASSERT_TRUE(shows(note));
    model.setSourceFolder(FileURL::directory(target()));
    waitForWork();
    EXPECT_FALSE(shows(note));
    reactivate();
    waitForWork();
    EXPECT_FALSE(shows(note));
}

TEST_F(OutputCardTest, inspectsTheTargetAgainWhenTheWindowIsActivated) {
    prepareRun();
    folder.createFolder("out/Kit A/QZT508");
    EXPECT_FALSE(shows(note));
    reactivate();
    waitForWork();
    EXPECT_TRUE(shows(note));
    std::filesystem::remove_all(target());
    reactivate();
    waitForWork();
    EXPECT_FALSE(shows(note));
}

TEST_F(OutputCardTest, saysAfterARunThatTheNextOneReplacesIt) {
    prepareRun();
    const auto gate = preparer->holdBank(1);
    model.generateBanks();
    EXPECT_TRUE(waitUntil([&] { return std::filesystem::exists(target()); }));
    // The folder that is being written is not about to be replaced.
    reactivate();
    EXPECT_TRUE(waitUntil([this] { return model.exportRootExists(); }));
    EXPECT_FALSE(shows(note));
    gate->open();
    waitForWork();
    EXPECT_TRUE(shows(note));
}

TEST_F(OutputCardTest, aSlowTargetBlocksNothing) {
    folder.createFolder("slow/Kit A/QZT508");
    const auto slow = fileManager->holdInspection(target("slow"));
    scan(drumKit());
    model.setExportFolder(outputFolder("slow"));
    EXPECT_TRUE(waitUntil([&] { return slow->isReached(); }));
    EXPECT_FALSE(shows(note));
    EXPECT_TRUE(mainButton()->isEnabled());
    // The note does not apply to another folder.
    model.setExportFolder(outputFolder("fast"));
    slow->open();
    waitForWork();
    EXPECT_FALSE(shows(note));

    folder.createFolder("full/Kit A/QZT508");
    const auto empty = fileManager->holdInspection(target("empty"));
    model.setExportFolder(outputFolder("empty"));
    EXPECT_TRUE(waitUntil([&] { return empty->isReached(); }));
    model.setExportFolder(outputFolder("full"));
    EXPECT_TRUE(waitUntil([this] { return shows(note); }));
    empty->open();
    waitForWork();
    EXPECT_TRUE(shows(note));
}

TEST_F(OutputCardTest, inspectsAgainAfterAChangeDuringAnInspection) {
    scan(drumKit());
    const auto gate = fileManager->holdInspection(target());
    model.setExportFolder(outputFolder());
    ASSERT_TRUE(waitUntil([&] { return gate->isReached(); }));
    folder.createFolder("out/Kit A/QZT508");
    model.inspectFolders();
    gate->open();
    waitForWork();
    EXPECT_TRUE(shows(note));
}

TEST_F(OutputCardTest, theNoteFollowsThePathAndIsNotElided) {
    for (const std::string& output : {std::string("out"), std::string(200, 'o')}) {
        SCOPED_TRACE(output);
        folder.createFolder(output + "/Kit A/QZT508");
        scan(drumKit());
        model.setExportFolder(outputFolder(output));
        waitForWork();
        settle();
        const auto* path = view.findChild<ElidedPathLabel*>(QStringLiteral("targetPath"));
        const auto* text = label(QString::fromUtf8(note));
        ASSERT_TRUE(text);
        EXPECT_EQ(path->text() == path->path(), output == "out");
        EXPECT_GE(path->width(), path->fontMetrics().horizontalAdvance(path->text()));
        EXPECT_EQ(text->geometry().left(), path->geometry().right() + 1);
        EXPECT_EQ(text->width(), text->sizeHint().width());
        EXPECT_LE(text->geometry().right(), text->parentWidget()->rect().right());
    }
}
