#include "QtPanels.h"
#include "Support/AppFixture.h"
#include "Support/PrivateBus.h"
#include "Support/UrlReceiver.h"

#include <QDBusContext>
#include <QDBusError>
#include <QDBusMessage>
#include <QObject>
#include <QUrl>
#include <gtest/gtest.h>

using namespace torvo;
using namespace torvo::app;
using namespace torvo::test;

namespace {

/// Stands in for the desktop's file browser.
class StandInFileBrowser final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    explicit StandInFileBrowser(PrivateBus& bus) {
        bus.serve(*this, "org.freedesktop.FileManager1", "/org/freedesktop/FileManager1");
    }

    bool refuses = false;
    QStringList shown;

public Q_SLOTS:
    void ShowItems(const QStringList& items, const QString&) {
        shown << items;
        if (refuses)
            sendErrorReply(QDBusError::Failed, QStringLiteral("No."));
    }
};

const FileURL device = FileURL::directory("/media/ada/Torvo card/Kit #1/QZT508");
const QString deviceURL = QStringLiteral("file:///media/ada/Torvo%20card/Kit%20%231/QZT508/");
const QUrl runFolder(QStringLiteral("file:///media/ada/Torvo%20card/Kit%20%231/"));

} // namespace

TEST(FileBrowser, selectsTheItemInItsFolder) {
    PrivateBus bus;
    StandInFileBrowser browser(bus);
    const UrlReceiver opener("file");
    QtPanels(bus.connect("program")).showInFileBrowser(device);
    // The call returned while the browser was silent.
    EXPECT_TRUE(browser.shown.empty());
    ASSERT_TRUE(waitUntil([&] { return !browser.shown.empty(); }));
    EXPECT_EQ(browser.shown, QStringList(deviceURL));
    EXPECT_TRUE(opener.opened.empty());
}

TEST(FileBrowser, namesBytesThatAreNoText) {
    PrivateBus bus;
    StandInFileBrowser browser(bus);
    QtPanels(bus.connect("program")).showInFileBrowser(FileURL::directory("/card/\xff/QZT508"));
    ASSERT_TRUE(waitUntil([&] { return !browser.shown.empty(); }));
    EXPECT_EQ(browser.shown, QStringList(QStringLiteral("file:///card/%FF/QZT508/")));
}

TEST(FileBrowser, opensTheFolderWhereNoBrowserIs) {
    PrivateBus bus;
    const UrlReceiver opener("file");
    QtPanels(bus.connect("program")).showInFileBrowser(device);
    ASSERT_TRUE(waitUntil([&] { return !opener.opened.empty(); }));
    EXPECT_EQ(opener.opened, QList<QUrl>{runFolder});
}

TEST(FileBrowser, opensTheFolderWhenTheBrowserRefuses) {
    PrivateBus bus;
    StandInFileBrowser browser(bus);
    browser.refuses = true;
    const UrlReceiver opener("file");
    QtPanels(bus.connect("program")).showInFileBrowser(device);
    ASSERT_TRUE(waitUntil([&] { return !opener.opened.empty(); }));
    EXPECT_EQ(opener.opened, QList<QUrl>{runFolder});
}

TEST(FileBrowser, opensTheFolderWithoutABus) {
    const UrlReceiver opener("file");
    QtPanels(QDBusConnection(QStringLiteral("none"))).showInFileBrowser(device);
    EXPECT_EQ(opener.opened, QList<QUrl>{runFolder});
}

#include "FileBrowserTests.moc"
