#include "Controls/FocusRing.h"
#include "Support/ContentViewFixture.h"

#include <QComboBox>
#include <QListView>
#include <QMainWindow>
#include <QMenuBar>
#include <QScrollArea>
#include <QScrollBar>
#include <QWheelEvent>
#include <QtTest/qtestspontaneevent.h>

using namespace torvo;
using namespace torvo::app;
using namespace torvo::test;

namespace {

class FocusTest : public testing::Test, protected ContentViewFixture {
protected:
    void SetUp() override {
        view.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
    }
    QWidget* ringed() const { return view.findChild<FocusRing*>()->ringed(); }
    /// Starts a run that waits at its first bank.
    std::shared_ptr<Gate> readyToRun() {
        prepareRun();
        return preparer->holdBank(1);
    }
};

} // namespace

TEST_F(FocusTest, everyControlIsReachedByTab) {
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

TEST_F(FocusTest, aClickShowsNoRing) {
    view.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
    auto* const ring = view.findChild<FocusRing*>();
    EXPECT_EQ(ring->ringed(), nullptr);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_NE(ring->ringed(), nullptr);
    press(button("Stabs"));
    EXPECT_EQ(ring->ringed(), nullptr);
}

// If the focus of a disabled button moved, the next key press would press another control.
TEST_F(FocusTest, waitsForTheMainButtonWhileARunIsWritten) {
    const auto gate = readyToRun();
    mainButton()->setFocus(Qt::TabFocusReason);
    QTest::keyClick(mainButton(), Qt::Key_Return);
    ASSERT_FALSE(mainButton()->isEnabled());
    EXPECT_EQ(QApplication::focusWidget(), nullptr);
    EXPECT_EQ(ringed(), nullptr);
    gate->open();
    waitForWork();
    EXPECT_EQ(QApplication::focusWidget(), mainButton());
    EXPECT_EQ(ringed(), mainButton());
}

TEST_F(FocusTest, comesBackWithoutARingAfterAClick) {
    const auto gate = readyToRun();
    press(mainButton());
    gate->open();
    waitForWork();
    EXPECT_EQ(QApplication::focusWidget(), mainButton());
    EXPECT_EQ(ringed(), nullptr);
}

TEST_F(FocusTest, staysWhereItWasMovedDuringARun) {
    const auto gate = readyToRun();
    press(mainButton());
    auto* const elsewhere = view.findChild<QComboBox*>();
    elsewhere->setFocus(Qt::TabFocusReason);
    gate->open();
    waitForWork();
    EXPECT_EQ(QApplication::focusWidget(), elsewhere);
}

TEST_F(FocusTest, doesNotJumpFromClear) {
    scan(drumKit());
    auto* const clear = button("CLEAR");
    clear->setFocus(Qt::TabFocusReason);
    QTest::keyClick(clear, Qt::Key_Space);
    ASSERT_FALSE(clear->isEnabled());
    EXPECT_EQ(QApplication::focusWidget(), nullptr);
    scan(drumKit());
    EXPECT_EQ(QApplication::focusWidget(), clear);
}

// The next control is APPLY: a key press would stamp the folder that was just dropped.
TEST_F(FocusTest, doesNotJumpFromTheHiddenFolderButton) {
    outputButton()->setFocus(Qt::MouseFocusReason);
    scan(deviceFolder());
    ASSERT_FALSE(outputButton()->isVisible());
    ASSERT_TRUE(mainButton()->isEnabled());
    EXPECT_EQ(QApplication::focusWidget(), nullptr);
    model.clearSource();
    EXPECT_EQ(QApplication::focusWidget(), outputButton());
    EXPECT_EQ(ringed(), nullptr);
}

// After a click into the list, the next scan moved the focus ring to APPLY or scrolled the page.
TEST_F(FocusTest, waitsForTheListWhileItsFolderIsScanned) {
    for (int index = 0; index < 20; ++index)
        folder.write("Kit A/Kick/notes " + std::to_string(index) + ".txt", "notes");
    scan(drumKit());
    view.resize(view.minimumSize());
    auto* const list = section("ignoredFiles")->list();
    auto* const bar = view.findChild<QScrollArea*>()->verticalScrollBar();
    for (const auto reason : {Qt::MouseFocusReason, Qt::TabFocusReason}) {
        section("ignoredFiles")->setExpanded(true);
        settle();
        list->clearFocus();
        list->setFocus(reason);
        QWidget* const ringedBefore = ringed();
        EXPECT_EQ(ringedBefore, reason == Qt::TabFocusReason ? list : nullptr);
        bar->setValue(bar->maximum() / 2);
        const int scrolled = bar->value();
        const auto gate = inspector->hold("Kit A");
        model.setSourceFolder(drumKit());
        settle();
        ASSERT_FALSE(list->isVisible());
        EXPECT_EQ(QApplication::focusWidget(), nullptr);
        EXPECT_EQ(ringed(), nullptr);
        EXPECT_EQ(bar->value(), scrolled);
        gate->open();
        waitForWork();
        settle();
        EXPECT_EQ(QApplication::focusWidget(), list);
        EXPECT_EQ(ringed(), ringedBefore);
        EXPECT_EQ(bar->value(), scrolled);
    }
}

TEST_F(FocusTest, scrollsItsControlIntoView) {
    view.resize(view.minimumSize());
    scan(drumKit());
    settle();
    auto* const viewport = view.findChild<QScrollArea*>()->viewport();
    outputButton()->setFocus(Qt::TabFocusReason);
    std::set<QWidget*> seen;
    while (seen.insert(QApplication::focusWidget()).second) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ShiftModifier);
        const QWidget* const control = QApplication::focusWidget();
        if (!viewport->isAncestorOf(control))
            continue;
        const QRect place(control->mapTo(viewport, QPoint(0, 0)), control->size());
        EXPECT_TRUE(viewport->rect().contains(place))
            << control->metaObject()->className() << ' ' << control->accessibleName().toStdString()
            << " from " << place.top() << " to " << place.bottom();
    }
    EXPECT_GT(seen.size(), 10U);
}

TEST_F(FocusTest, theWheelScrollsThePageNotTheSettings) {
    view.resize(view.minimumSize());
    scan(drumKit());
    settle();
    auto* const bar = view.findChild<QScrollArea*>()->verticalScrollBar();
    ASSERT_GT(bar->maximum(), 0);
    for (auto* box : showing<QComboBox>()) {
        bar->setValue(bar->minimum());
        const QString before = box->currentText();
        const QPointF place = QRectF(box->rect()).center();
        QWheelEvent wheel(place, box->mapToGlobal(place), {}, {0, -120}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        // Only a wheel movement that started outside the list scrolls the page.
        QSpontaneKeyEvent::setSpontaneous(&wheel);
        qApp->notify(box, &wheel);
        EXPECT_EQ(box->currentText(), before);
        EXPECT_GT(bar->value(), bar->minimum());
    }
    EXPECT_EQ(model.metadataOptions(), TorvoMetadataOptions());
}

TEST(FocusRing, returnsAfterTheMenuBarHadTheFocus) {
    QMainWindow window;
    auto* const content = new QWidget;
    auto* const button = new QComboBox(content);
    window.setCentralWidget(content);
    window.menuBar()->addMenu(QStringLiteral("File"))->addAction(QStringLiteral("Quit"));
    FocusRing ring(*content);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    button->clearFocus();
    button->setFocus(Qt::TabFocusReason);
    ASSERT_EQ(ring.ringed(), button);
    QTest::keyClick(button, Qt::Key_Alt);
    ASSERT_EQ(QApplication::focusWidget(), window.menuBar());
    EXPECT_EQ(ring.ringed(), nullptr);
    QTest::keyClick(window.menuBar(), Qt::Key_Escape);
    ASSERT_EQ(QApplication::focusWidget(), button);
    EXPECT_EQ(ring.ringed(), button);
}

TEST(FocusRing, survivesTheDestructionOfItsControl) {
    QWidget window;
    FocusRing ring(window);
    auto* const passing = new QWidget(&window);
    auto* const first = new QComboBox(passing);
    auto* const second = new QComboBox(&window);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    first->clearFocus();
    first->setFocus(Qt::TabFocusReason);
    ASSERT_EQ(ring.ringed(), first);
    delete passing;
    EXPECT_EQ(ring.ringed(), nullptr);
    second->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(ring.ringed(), second);
}
