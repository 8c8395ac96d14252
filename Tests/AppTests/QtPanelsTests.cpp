#include "QtPanels.h"
#include "Support/ModalWatcher.h"

#include <QFileDialog>
#include <QLineEdit>
#include <gtest/gtest.h>

using namespace torvo;
using namespace torvo::app;
using namespace torvo::test;

namespace {

const QStringList jsonOnly{QStringLiteral("JSON (*.json)")};

/// Looks at a panel and cancels it.
template <typename Pick, typename Look>
void lookAtPanel(Pick pick, Look look) {
    QtPanels panels;
    std::optional<FileURL> picked = FileURL("/anything");
    EXPECT_TRUE(lookedAtDialog<QFileDialog>([&] { picked = pick(panels); }, look));
    EXPECT_FALSE(picked);
}

} // namespace

TEST(QtPanels, picksOneFolder) {
    lookAtPanel([](QtPanels& panels) { return panels.pickFolder("Choose a source sample folder"); },
                [](QFileDialog& panel) {
                    EXPECT_EQ(panel.windowTitle(), QStringLiteral("Choose a source sample folder"));
                    EXPECT_EQ(panel.fileMode(), QFileDialog::Directory);
                    EXPECT_TRUE(panel.testOption(QFileDialog::ShowDirsOnly));
                    EXPECT_FALSE(
                        panel.testOption(QFileDialog::ReadOnly)); // new folders may be made
                    EXPECT_EQ(panel.acceptMode(), QFileDialog::AcceptOpen);
                });
}

TEST(QtPanels, savesJSONUnderASuggestedName) {
    lookAtPanel([](QtPanels& panels) { return panels.saveJSONPanel("KitA001.json"); },
                [](QFileDialog& panel) {
                    EXPECT_EQ(panel.windowTitle(), QStringLiteral("Export bank mapping JSON"));
                    EXPECT_EQ(panel.acceptMode(), QFileDialog::AcceptSave);
                    EXPECT_EQ(panel.fileMode(), QFileDialog::AnyFile);
                    EXPECT_EQ(panel.nameFilters(), jsonOnly);
                    EXPECT_EQ(panel.defaultSuffix(), QStringLiteral("json"));
                    EXPECT_EQ(panel.findChild<QLineEdit*>()->text(),
                              QStringLiteral("KitA001.json"));
                });
}

TEST(QtPanels, opensOneJSONFile) {
    lookAtPanel([](QtPanels& panels) { return panels.pickJSONFile(); },
                [](QFileDialog& panel) {
                    EXPECT_EQ(panel.windowTitle(), QStringLiteral("Import bank mapping JSON"));
                    EXPECT_EQ(panel.acceptMode(), QFileDialog::AcceptOpen);
                    EXPECT_EQ(panel.fileMode(), QFileDialog::ExistingFile);
                    EXPECT_EQ(panel.nameFilters(), jsonOnly);
                });
}
