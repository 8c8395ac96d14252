#include "TemporaryFolder.h"
#include "TorvoQuastleBankGeneratorApp.h"

#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    // Also needed when the build lists the tests.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    // Qt's file panel saves its last folder in the settings. Without a runtime folder, Qt creates
    // one in the temporary folder and does not remove it.
    const torvo::test::TemporaryFolder folder;
    for (const char* variable : {"XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"})
        qputenv(variable, QByteArray::fromStdString(folder.path().string()));
    QApplication application(argc, argv);
    torvo::app::installTheme();
    return RUN_ALL_TESTS();
}
