#include "Controls/FolderDrops.h"
#include "Support/PrivateBus.h"
#include "TemporaryFolder.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusError>
#include <QDBusMessage>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>
#include <QVariantMap>
#include <QWidget>
#include <gtest/gtest.h>

using namespace torvo;
using namespace torvo::app;
using namespace torvo::test;

namespace {

/// A fake file transfer portal that answers on demand.
class StandInPortal final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.FileTransfer")

public:
    explicit StandInPortal(PrivateBus& bus) {
        bus.serve(*this, "org.freedesktop.portal.Documents", "/org/freedesktop/portal/documents");
    }

    void answer(const QStringList& paths) { connection_->send(asked_.createReply(paths)); }
    void refuse() {
        connection_->send(asked_.createErrorReply(QDBusError::AccessDenied, QStringLiteral("No.")));
    }

    QStringList keys;

public Q_SLOTS:
    QStringList RetrieveFiles(const QString& key, const QVariantMap&) {
        setDelayedReply(true);
        asked_ = message();
        connection_ = connection();
        keys << key;
        return {};
    }

private:
    QDBusMessage asked_;
    std::optional<QDBusConnection> connection_;
};

/// Drops a portal key as a sandboxed program would. Returns whether the drop was accepted.
bool dropTransfer(QWidget& area, const QByteArray& key) {
    QMimeData data;
    data.setData(QStringLiteral("application/vnd.portal.filetransfer"), key);
    QDragEnterEvent enter({9, 9}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&area, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop({9, 9}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&area, &drop);
    return drop.isAccepted();
}

struct Offer {
    const char* name;
    Qt::DropActions possible;
    Qt::DropAction answer;
};

} // namespace

// A drag source deletes its files after a move.
TEST(FolderDrops, neverAcceptsAMove) {
    const TemporaryFolder folder;
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(folder.path().string()))});
    QWidget area;
    FolderDrops drops;
    drops.watch(area);
    area.show();
    QSignalSpy dropped(&drops, &FolderDrops::folderDropped);
    // With Shift, the source proposes a move.
    for (const Offer& offer :
         {Offer{"copy or move", Qt::CopyAction | Qt::MoveAction, Qt::CopyAction},
          Offer{"all", Qt::CopyAction | Qt::MoveAction | Qt::LinkAction, Qt::CopyAction},
          Offer{"move only", Qt::MoveAction, Qt::IgnoreAction}}) {
        SCOPED_TRACE(offer.name);
        dropped.clear();
        QDragEnterEvent enter({9, 9}, offer.possible, &data, Qt::LeftButton, Qt::ShiftModifier);
        ASSERT_EQ(enter.proposedAction(), Qt::MoveAction);
        QApplication::sendEvent(&area, &enter);
        EXPECT_TRUE(enter.isAccepted());
        EXPECT_EQ(enter.dropAction(), offer.answer);
        QDragMoveEvent move({9, 9}, offer.possible, &data, Qt::LeftButton, Qt::ShiftModifier);
        QApplication::sendEvent(&area, &move);
        EXPECT_TRUE(move.isAccepted());
        EXPECT_EQ(move.dropAction(), offer.answer);
        QDropEvent drop({9, 9}, offer.possible, &data, Qt::LeftButton, Qt::ShiftModifier);
        QApplication::sendEvent(&area, &drop);
        EXPECT_TRUE(drop.isAccepted());
        EXPECT_EQ(drop.dropAction(), offer.answer);
        ASSERT_EQ(dropped.size(), 1);
        EXPECT_EQ(dropped[0][0].value<FileURL>(), FileURL::directory(folder.path()));
    }
}

TEST(FolderDrops, retrievesFoldersFromThePortal) {
    const TemporaryFolder folder;
    const auto path = QString::fromStdString(folder.path().string());
    PrivateBus bus;
    StandInPortal portal(bus);
    QWidget area;
    FolderDrops drops(nullptr, bus.connect("program"));
    drops.watch(area);
    QSignalSpy dropped(&drops, &FolderDrops::folderDropped);

    // GTK ends the key with a null byte.
    ASSERT_TRUE(dropTransfer(area, QByteArray("the key", 8)));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !portal.keys.empty(); }));
    EXPECT_EQ(portal.keys, QStringList(QStringLiteral("the key")));
    // The drop does not wait for the portal.
    EXPECT_TRUE(dropped.empty());
    portal.answer({path + QStringLiteral("/missing.wav"), path});
    ASSERT_TRUE(QTest::qWaitFor([&] { return !dropped.empty(); }));
    EXPECT_EQ(dropped[0][0].value<FileURL>(), FileURL::directory(folder.path()));
}

TEST(FolderDrops, ignoresADropThatThePortalRefuses) {
    const TemporaryFolder folder;
    PrivateBus bus;
    StandInPortal portal(bus);
    QWidget area;
    FolderDrops drops(nullptr, bus.connect("program"));
    drops.watch(area);
    QSignalSpy dropped(&drops, &FolderDrops::folderDropped);

    ASSERT_TRUE(dropTransfer(area, "refused"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return portal.keys.size() == 1; }));
    portal.refuse();
    // The answers arrive in the order of the requests.
    ASSERT_TRUE(dropTransfer(area, "granted"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return portal.keys.size() == 2; }));
    portal.answer({QString::fromStdString(folder.path().string())});
    ASSERT_TRUE(QTest::qWaitFor([&] { return !dropped.empty(); }));
    EXPECT_EQ(dropped.size(), 1);

    EXPECT_FALSE(dropTransfer(area, ""));
}

#include "FolderDropsTests.moc"
