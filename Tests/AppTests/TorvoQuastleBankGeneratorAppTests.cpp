#include "MarloTheme.h"
#include "Support/ModalWatcher.h"
#include "TorvoQuastleBankGeneratorApp.h"

#include <QAction>
#include <QDragEnterEvent>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QRegularExpression>
#include <QScreen>
#include <QTest>
#include <QUrl>
#include <gtest/gtest.h>

#include <set>

using namespace torvo;
using namespace torvo::app;
using namespace torvo::test;

namespace {

const QString name = QStringLiteral("Torvo Quastle Bank Generator");

class AppTest : public testing::Test {
protected:
    TorvoQuastleBankGeneratorApp app;

    void SetUp() override { app.showWindow(); }
    QList<QAction*> menu(int index) {
        return app.window().menuBar()->actions().at(index)->menu()->actions();
    }
    void waitForWork() {
        ASSERT_TRUE(waitUntil([this] { return !app.model().isBusy(); }));
    }
};

} // namespace

TEST_F(AppTest, titlesItsWindow) {
    EXPECT_EQ(app.window().windowTitle(), name);
}

TEST_F(AppTest, isNoHigherThanAScreenOf1080Lines) {
    EXPECT_LE(app.window().sizeHint().height(), 980);
    EXPECT_EQ(app.window().sizeHint().width(), 880);
}

TEST_F(AppTest, hasTheMinimumSizeOfItsContentOrTheScreen) {
    const auto& window = static_cast<MainWindow&>(app.window());
    const QSize room = window.contentRoom();
    EXPECT_EQ(room, window.contentRoom(window.screen()->availableSize()));
    EXPECT_EQ(window.centralWidget()->minimumSize(), QSize(880, 760).boundedTo(room));
    EXPECT_LE(window.height(), window.screen()->availableSize().height());
    // Less the window frame and the menu bar.
    EXPECT_LT(window.contentRoom({1366, 768}).height(), 768);
    EXPECT_LE(window.contentRoom({1366, 768}).width(), 1366);
}

// Qt reports the whole screen on Wayland: the message strip was under the panel of a small one.
TEST_F(AppTest, leavesRoomForAPanelThatTheDesktopDoesNotReport) {
    const QSize screen(1366, 768);
    EXPECT_EQ(MainWindow::freeArea(screen, QStringLiteral("xcb")), screen);
    for (const char* platform : {"wayland", "wayland-egl"}) {
        const QSize free = MainWindow::freeArea(screen, QString::fromLatin1(platform));
        EXPECT_EQ(free.width(), screen.width());
        EXPECT_LE(free.height(), screen.height() - 40);
        EXPECT_GE(free.height(), screen.height() - 60);
    }
}

TEST_F(AppTest, takesDropsOnTheMenuBarToo) {
    const AppFixture fixture;
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(
        QString::fromStdString(fixture.folder.createFolder("QZT508").string()))});
    QDragEnterEvent enter({9, 9}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(app.window().menuBar(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop({9, 9}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(app.window().menuBar(), &drop);
    EXPECT_TRUE(app.model().isUpdatingExistingBank());
}

TEST_F(AppTest, opensItsMenusByKeyboard) {
    app.window().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&app.window()));
    auto* const file = app.window().menuBar()->actions().front()->menu();
    QTest::keyClick(&app.window(), Qt::Key_F10);
    EXPECT_TRUE(waitUntil([file] { return file->isVisible(); }));
    file->close();
    QTest::keyClick(&app.window(), Qt::Key_F, Qt::AltModifier);
    EXPECT_TRUE(waitUntil([file] { return file->isVisible(); }));
    file->close();
}

TEST_F(AppTest, showsTooltipsWithoutAWindowManager) {
    EXPECT_TRUE(app.window().testAttribute(Qt::WA_AlwaysShowToolTips));
}

TEST_F(AppTest, offersItsCommandsInTheMenus) {
    const auto texts = [](const QList<QAction*>& actions) {
        QStringList found;
        for (const QAction* action : actions) {
            found.append(action->isSeparator() ? QStringLiteral("-") : action->text());
            EXPECT_TRUE(action->shortcuts().isEmpty()) << action->text().toStdString();
        }
        return found.join(QLatin1Char('|')).toStdString();
    };
    EXPECT_EQ(texts(app.window().menuBar()->actions()), "&File|&Help");
    EXPECT_EQ(texts(menu(0)), "Import JSON…|Export JSON…|-|Quit");
    EXPECT_EQ(texts(menu(1)), "About Torvo Quastle Bank Generator");
    EXPECT_TRUE(menu(0)[0]->isEnabled());
    EXPECT_TRUE(menu(1)[0]->isEnabled());
}

TEST_F(AppTest, exportsWhileThereIsADocument) {
    const AppFixture fixture;
    QAction* const exportJSON = menu(0)[1];
    EXPECT_FALSE(exportJSON->isEnabled());
    app.model().setExportFolder(fixture.outputFolder());
    app.model().setSourceFolder(fixture.drumKit());
    waitForWork();
    EXPECT_FALSE(exportJSON->isEnabled());
    app.model().generateBanks();
    waitForWork();
    EXPECT_TRUE(exportJSON->isEnabled());
    app.model().clearSource();
    EXPECT_FALSE(exportJSON->isEnabled());
}

TEST_F(AppTest, showsNameVersionAndMakerInAbout) {
    const QRegularExpression details(
        QStringLiteral("^Version \\d+\\.\\d+\\.\\d+\nMade by Halvorine$"));
    EXPECT_TRUE(
        lookedAtDialog<QMessageBox>([this] { menu(1)[0]->trigger(); },
                                    [&](QMessageBox& box) {
                                        EXPECT_EQ(box.text(), name);
                                        EXPECT_TRUE(box.windowTitle().contains(name));
                                        EXPECT_TRUE(details.match(box.informativeText()).hasMatch())
                                            << box.informativeText().toStdString();
                                    }));
}

// An image of 128 pixels is blurred when a panel scales it down.
TEST(ApplicationIcon, isDrawnOnWholePixelsInSmallSizes) {
    const std::set<QRgb> palette{MarloTheme::surface.rgb(), MarloTheme::ink.rgb(),
                                 MarloTheme::accent.rgb(), MarloTheme::success.rgb(),
                                 MarloTheme::danger.rgb()};
    for (const int side : {16, 22, 24}) {
        SCOPED_TRACE(side);
        const QImage picture = QApplication::windowIcon().pixmap(side).toImage();
        ASSERT_EQ(picture.size(), QSize(side, side));
        std::set<QRgb> colors;
        const int corner = side / 6;
        for (int y = corner; y < side - corner; ++y)
            for (int x = corner; x < side - corner; ++x)
                colors.insert(picture.pixel(x, y));
        EXPECT_EQ(colors, palette);
    }
    for (const int side : {32, 48, 64, 128})
        EXPECT_TRUE(QApplication::windowIcon().availableSizes().contains(QSize(side, side)));
}
