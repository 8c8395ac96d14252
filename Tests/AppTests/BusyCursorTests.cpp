#include "Controls/BusyCursor.h"
#include "Support/AppFixture.h"

#include <QApplication>
#include <QCursor>
#include <gtest/gtest.h>

using namespace torvo::app;
using namespace torvo::test;

namespace {

bool isShown() {
    return QApplication::overrideCursor() != nullptr;
}

} // namespace

TEST(BusyCursorTest, isShownAfterAMoment) {
    BusyCursor cursor;
    cursor.setBusy(true);
    EXPECT_FALSE(isShown());
    ASSERT_TRUE(waitUntil(isShown));
    EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::BusyCursor);
    cursor.setBusy(true);
    cursor.setBusy(false);
    EXPECT_FALSE(isShown());
}

TEST(BusyCursorTest, isNotShownWhenTheWaitWasShort) {
    BusyCursor brief;
    brief.setBusy(true);
    brief.setBusy(false);
    // Another one would be shown later.
    BusyCursor later;
    later.setBusy(true);
    ASSERT_TRUE(waitUntil(isShown));
    later.setBusy(false);
    EXPECT_FALSE(isShown());
}

TEST(BusyCursorTest, endsWithItsOwner) {
    {
        BusyCursor cursor;
        cursor.setBusy(true);
        ASSERT_TRUE(waitUntil(isShown));
    }
    EXPECT_FALSE(isShown());
}
