#include "TemporaryFolder.h"
#include "TorvoQuastleBankGeneratorApp.h"

#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    // Also while the build asks for the list of tests.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    // Without a runtime folder Qt makes one in the temporary folder and leaves it there.
    const torvo::test::TemporaryFolder runtimeFolder;
    qputenv("XDG_RUNTIME_DIR", QByteArray::fromStdString(runtimeFolder.path().string()));
    QApplication application(argc, argv);
    torvo::app::installTheme();
    return RUN_ALL_TESTS();
}
