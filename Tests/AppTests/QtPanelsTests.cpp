#include "QtPanels.h"
#include "Support/ModalWatcher.h"
#include "TemporaryFolder.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
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

/// Types a name, and says yes when the panel asks whether to replace what has it.
class SavePanelUser {
public:
    explicit SavePanelUser(std::string name) : name_(std::move(name)) {
        QObject::connect(&timer_, &QTimer::timeout, [this] { act(); });
        timer_.start();
    }
    int questions() const { return questions_; }

private:
    void act() {
        QWidget* const modal = QApplication::activeModalWidget();
        if (auto* question = qobject_cast<QMessageBox*>(modal)) {
            ++questions_;
            question->button(QMessageBox::Yes)->click();
        } else if (auto* panel = qobject_cast<QFileDialog*>(modal); panel && !isAccepting_) {
            if (!std::exchange(hasTyped_, true))
                panel->findChild<QLineEdit*>()->setText(QString::fromStdString(name_));
            isAccepting_ = true;
            // Not in here: the timer rests until this returns, and the question is asked before.
            QMetaObject::invokeMethod(
                panel,
                [this, panel] {
                    static_cast<QDialog*>(panel)->accept();
                    isAccepting_ = false;
                },
                Qt::QueuedConnection);
        }
    }

    QTimer timer_;
    std::string name_;
    bool hasTyped_ = false;
    bool isAccepting_ = false;
    int questions_ = 0;
};

TEST(QtPanels, savesUnderNamesOfJSONFilesOnly) {
    const TemporaryFolder folder;
    folder.write("old 1.2.json", "{}");
    struct Row {
        const char* typed;
        const char* saved;
        int questions;
    };
    for (const Row& row : {Row{"kit", "kit.json", 0}, Row{"kit.json", "kit.json", 0},
                           Row{"kit.JSON", "kit.JSON", 0}, Row{"kit 1.2", "kit 1.2.json", 0},
                           Row{"kit.txt", "kit.txt.json", 0}, Row{"old 1.2", "old 1.2.json", 1}}) {
        QtPanels panels;
        const SavePanelUser user((folder / row.typed).string());
        const auto picked = panels.saveJSONPanel("KitA001.json");
        ASSERT_TRUE(picked) << row.typed;
        EXPECT_EQ(picked->path(), folder / row.saved);
        EXPECT_EQ(user.questions(), row.questions) << row.typed;
    }
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
