#include "Support/WindowStates.h"

#include <QAccessible>
#include <QComboBox>
#include <QListView>
#include <QProgressBar>
#include <gtest/gtest.h>

using namespace torvo;
using namespace torvo::app;
using namespace torvo::test;

namespace {

class AccessibilityTest : public testing::Test, protected WindowStates {};

bool needsName(QWidget* widget) {
    return widget->focusPolicy() != Qt::NoFocus || qobject_cast<QAbstractButton*>(widget) ||
           qobject_cast<QLabel*>(widget) || qobject_cast<QProgressBar*>(widget);
}

} // namespace

TEST_F(AccessibilityTest, everyControlHasANameInEveryState) {
    std::size_t controls = 0;
    for (const bool opened : {false, true}) {
        for (const char* name : {"ignoredFolders", "ignoredFiles"})
            section(name)->setExpanded(opened);
        inEveryState([&](const std::string& state) {
            for (auto* widget : showing<QWidget>()) {
                if (!needsName(widget))
                    continue;
                ++controls;
                const auto* accessible = QAccessible::queryAccessibleInterface(widget);
                ASSERT_TRUE(accessible);
                EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty())
                    << widget->metaObject()->className() << ' '
                    << widget->objectName().toStdString() << " when " << state;
            }
        });
    }
    EXPECT_GT(controls, 1000U);
}
