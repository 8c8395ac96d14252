#include "Controls/FolderDrops.h"
#include "TemporaryFolder.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QSignalSpy>
#include <QUrl>
#include <QWidget>
#include <gtest/gtest.h>

using namespace torvo;
using namespace torvo::app;
using namespace torvo::test;

namespace {

struct Offer {
    const char* name;
    Qt::DropActions possible;
    Qt::DropAction answer;
};

} // namespace

// A source that hears that its files were moved deletes them.
TEST(FolderDrops, neverTakesFilesForMoved) {
    const TemporaryFolder folder;
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(folder.path().string()))});
    QWidget area;
    FolderDrops drops;
    drops.watch(area);
    area.show();
    QSignalSpy dropped(&drops, &FolderDrops::folderDropped);
    // With Shift, a move is what the source proposes.
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
