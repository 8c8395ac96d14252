#include "Controls/PanelIcons.h"
#include "MarloTheme.h"
#include "QtPanels.h"
#include "Support/ModalWatcher.h"
#include "TemporaryFolder.h"

#include <QAbstractFileIconProvider>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QImage>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <QTreeView>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <vector>

using namespace torvo;
using namespace torvo::app;
using namespace torvo::test;

namespace {

const QStringList jsonOnly{QStringLiteral("JSON (*.json)")};

/// Inspects a panel and cancels it.
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
                    // Only the program asks, about the completed name.
                    EXPECT_TRUE(panel.testOption(QFileDialog::DontConfirmOverwrite));
                    EXPECT_EQ(panel.defaultSuffix(), QString());
                    EXPECT_EQ(panel.findChild<QLineEdit*>()->text(),
                              QStringLiteral("KitA001.json"));
                });
}

/// Enters a name in the save panel, gives the answers in turn, and cancels the panel after the last
/// one.
class SavePanelUser {
public:
    SavePanelUser(std::string name, std::vector<QString> answers)
        : name_(std::move(name)), answers_(std::move(answers)) {
        QObject::connect(&timer_, &QTimer::timeout, [this] { act(); });
        timer_.start();
    }

    /// The questions, in order.
    const std::vector<QString>& questions() const { return questions_; }
    /// The file name shown when the panel came back.
    const std::vector<QString>& namesKept() const { return namesKept_; }

private:
    void act() {
        QWidget* const modal = QApplication::activeModalWidget();
        if (auto* question = qobject_cast<QMessageBox*>(modal))
            answer(*question);
        else if (auto* panel = qobject_cast<QFileDialog*>(modal); panel && !isClosing_)
            use(*panel);
    }

    void answer(QMessageBox& question) {
        EXPECT_EQ(question.windowTitle(), QStringLiteral("Replace File"));
        EXPECT_EQ(question.textFormat(), Qt::PlainText);
        EXPECT_EQ(question.defaultButton(), question.button(QMessageBox::Cancel));
        EXPECT_EQ(question.escapeButton(), question.button(QMessageBox::Cancel));
        questions_.push_back(question.text());
        const QString wanted = answers_.empty() ? QStringLiteral("Cancel") : answers_.front();
        if (!answers_.empty())
            answers_.erase(answers_.begin());
        for (QAbstractButton* button : question.buttons())
            if (button->text().remove(QLatin1Char('&')) == wanted) {
                button->click();
                return;
            }
        ADD_FAILURE() << "no button " << wanted.toStdString();
        question.reject();
    }

    void use(QFileDialog& panel) {
        auto* field = panel.findChild<QLineEdit*>();
        const bool isFirst = questions_.empty();
        if (isFirst)
            field->setText(QString::fromStdString(name_));
        else
            namesKept_.push_back(field->text());
        isClosing_ = true;
        const bool accepts = isFirst || !answers_.empty();
        // Deferred, because a panel that asks by itself does so before this returns, and no timer
        // runs meanwhile.
        QMetaObject::invokeMethod(
            &panel,
            [this, &panel, accepts] {
                if (accepts)
                    static_cast<QDialog&>(panel).accept();
                else
                    panel.reject();
                isClosing_ = false;
            },
            Qt::QueuedConnection);
    }

    QTimer timer_;
    std::string name_;
    std::vector<QString> answers_;
    std::vector<QString> questions_;
    std::vector<QString> namesKept_;
    bool isClosing_ = false;
};

const QString replaceAnswer = QStringLiteral("Replace");
const QString cancelAnswer = QStringLiteral("Cancel");

QString questionAbout(const char* name) {
    return QStringLiteral("\"%1\" already exists. Do you want to replace it?")
        .arg(QString::fromUtf8(name));
}

TEST(QtPanels, savesUnderNamesOfJSONFilesOnly) {
    const TemporaryFolder folder;
    folder.write("old.json", "{}");
    folder.write("old 1.2.json", "{}");
    folder.write("<b>old.json", "{}");
    folder.createFolder("folder.json");
    std::filesystem::create_symlink("old.json", folder / "link.json");
    std::filesystem::create_symlink("nothing", folder / "dead.json");
    struct Row {
        const char* typed;
        const char* saved;
        bool isReplaced;
    };
    for (const Row& row :
         {Row{"kit", "kit.json", false}, Row{"kit.json", "kit.json", false},
          Row{"kit.JSON", "kit.JSON", false}, Row{"kit 1.2", "kit 1.2.json", false},
          Row{"kit.txt", "kit.txt.json", false}, Row{"old 1.2", "old 1.2.json", true},
          Row{"old", "old.json", true}, Row{"old.json", "old.json", true},
          Row{"<b>old", "<b>old.json", true}, Row{"link", "link.json", true},
          Row{"dead", "dead.json", false}, Row{"folder", "folder.json", false}}) {
        SCOPED_TRACE(row.typed);
        QtPanels panels;
        const SavePanelUser user((folder / row.typed).string(), {replaceAnswer});
        const auto picked = panels.saveJSONPanel("KitA001.json");
        ASSERT_TRUE(picked);
        EXPECT_EQ(picked->path(), folder / row.saved);
        const std::vector<QString> questions{questionAbout(row.saved)};
        EXPECT_EQ(user.questions(), row.isReplaced ? questions : std::vector<QString>());
    }
}

TEST(QtPanels, returnsToThePanelWhenAFileIsNotToBeReplaced) {
    const TemporaryFolder folder;
    folder.write("old.json", "{}");
    {
        QtPanels panels;
        const SavePanelUser user((folder / "old").string(), {cancelAnswer});
        EXPECT_FALSE(panels.saveJSONPanel("KitA001.json"));
        EXPECT_EQ(user.questions(), std::vector{questionAbout("old.json")});
        EXPECT_EQ(user.namesKept(), std::vector{QStringLiteral("old.json")});
    }
    QtPanels panels;
    const SavePanelUser user((folder / "old").string(), {cancelAnswer, replaceAnswer});
    const auto picked = panels.saveJSONPanel("KitA001.json");
    ASSERT_TRUE(picked);
    EXPECT_EQ(picked->path(), folder / "old.json");
    EXPECT_EQ(user.questions(),
              (std::vector{questionAbout("old.json"), questionAbout("old.json")}));
}

TEST(QtPanels, areNoLargerThanTheScreen) {
    EXPECT_EQ(panelSize({600, 400}, {1920, 1080}), QSize(880, 560));
    EXPECT_EQ(panelSize({900, 400}, {1920, 1080}), QSize(900, 560));
    EXPECT_EQ(panelSize({600, 400}, {960, 492}), QSize(880, 444));
    EXPECT_EQ(panelSize({600, 400}, {800, 600}), QSize(800, 552));
    lookAtPanel([](QtPanels& panels) { return panels.pickJSONFile(); },
                [](QFileDialog& panel) {
                    EXPECT_EQ(panel.size().boundedTo(panel.screen()->availableSize()),
                              panel.size());
                });
}

TEST(QtPanels, picturesOfSelectedRowsHaveTheColourOfTheirTexts) {
    for (const auto picture : {QStyle::SP_DirIcon, QStyle::SP_FileIcon, QStyle::SP_DriveHDIcon}) {
        const QImage shown = panelIcon(picture).pixmap(QSize(16, 16), QIcon::Selected).toImage();
        int opaque = 0;
        for (int y = 0; y < shown.height(); ++y) {
            for (int x = 0; x < shown.width(); ++x) {
                if (shown.pixelColor(x, y).alpha() < 255)
                    continue;
                ++opaque;
                EXPECT_EQ(shown.pixelColor(x, y), MarloTheme::surface);
            }
        }
        EXPECT_GT(opaque, 0);
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

TEST(QtPanels, showsFilesWithoutLookingIntoThem) {
    const TemporaryFolder folder;
    // By its content Qt would call it a picture.
    const auto file = folder.write("sound", "\x89PNG\r\n\x1a\n");
    lookAtPanel([](QtPanels& panels) { return panels.pickJSONFile(); },
                [&](QFileDialog& panel) {
                    const auto* icons = panel.iconProvider();
                    ASSERT_TRUE(icons);
                    EXPECT_EQ(icons->type(QFileInfo(file)), QStringLiteral("File"));
                    EXPECT_EQ(icons->type(QFileInfo(folder.path())), QStringLiteral("Folder"));
                    const auto picture = [&](const std::filesystem::path& path) {
                        return icons->icon(QFileInfo(path)).pixmap(16).toImage();
                    };
                    EXPECT_EQ(picture(file), panelIcon(QStyle::SP_FileIcon).pixmap(16).toImage());
                    EXPECT_EQ(picture(folder.path()),
                              panelIcon(QStyle::SP_DirIcon).pixmap(16).toImage());
                });
}

TEST(QtPanels, hasRoomForNames) {
    lookAtPanel([](QtPanels& panels) { return panels.pickFolder("Choose a source sample folder"); },
                [](QFileDialog& panel) {
                    const auto* files = panel.findChild<QTreeView*>(QStringLiteral("treeView"));
                    ASSERT_TRUE(files);
                    EXPECT_EQ(files->header()->sectionResizeMode(0), QHeaderView::Stretch);
                    EXPECT_EQ(panel.width(),
                              std::min(880, panel.screen()->availableSize().width()));
                    const auto* places = panel.findChild<QListView*>(QStringLiteral("sidebar"));
                    EXPECT_GE(places->width(), places->sizeHintForColumn(0));
                });
}
