#include "QtPanels.h"

#include "Controls/FileBrowser.h"
#include "MainWindow.h"
#include "Platform/SystemFileManager.h"
#include "Text.h"

#include <QAbstractFileIconProvider>
#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QHeaderView>
#include <QListView>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QTreeView>

namespace torvo::app {

namespace {

/// Qt's own provider reads every file to find its type and blocks for ever on some files in /proc.
class FileIcons final : public QAbstractFileIconProvider {
public:
    QIcon icon(IconType kind) const override {
        switch (kind) {
        case Computer:
        case Drive:
            return QApplication::style()->standardIcon(QStyle::SP_DriveHDIcon);
        case File:
            return QApplication::style()->standardIcon(QStyle::SP_FileIcon);
        default:
            return QApplication::style()->standardIcon(QStyle::SP_DirIcon);
        }
    }
    QIcon icon(const QFileInfo& info) const override {
        return icon(info.isRoot() ? Drive : info.isDir() ? Folder : File);
    }
    QString type(const QFileInfo& info) const override {
        return info.isDir() ? QFileDialog::tr("Folder") : QFileDialog::tr("File");
    }
};

/// Qt's own panel, used where the desktop has none, is too narrow for its columns.
void makeRoomForNames(QFileDialog& panel) {
    constexpr int minSideBarWidth = 150;
    auto* const files = panel.findChild<QTreeView*>(QStringLiteral("treeView"));
    auto* const sideBar = panel.findChild<QListView*>(QStringLiteral("sidebar"));
    if (!files || !sideBar)
        return;
    panel.resize(panelSize(panel.size(), MainWindow::freeArea(panel.screen()->availableSize(),
                                                              QGuiApplication::platformName())));
    sideBar->setMinimumWidth(minSideBarWidth);
    files->header()->setStretchLastSection(false);
    // Measure only the visible rows: measuring all rows of a large folder takes long.
    files->header()->setResizeContentsPrecision(0);
    files->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    files->header()->setSectionResizeMode(0, QHeaderView::Stretch);
}

/// The chosen path, if there is exactly one.
std::optional<FileURL> run(QFileDialog& panel, FileURL::Kind kind) {
    static FileIcons icons;
    panel.setIconProvider(&icons);
    makeRoomForNames(panel);
    if (panel.exec() != QDialog::Accepted || panel.selectedFiles().isEmpty())
        return std::nullopt;
    return FileURL(QFile::encodeName(panel.selectedFiles().first()).toStdString(), kind);
}

bool isJSON(const FileURL& url) {
    return toQString(url.pathExtension()).compare(QLatin1String("json"), Qt::CaseInsensitive) == 0;
}

/// The URL with ".json" appended unless it already names a JSON file.
FileURL withJSONExtension(const FileURL& url) {
    if (isJSON(url))
        return url;
    return FileURL(url.path().native() + ".json", FileURL::Kind::file);
}

void allowJSONOnly(QFileDialog& panel) {
    panel.setNameFilter(QFileDialog::tr("JSON (*.json)"));
}

/// Whether saving under this name replaces a file. False for a folder and for an item that cannot
/// be inspected: saving then fails with an error.
bool wouldReplaceFile(const FileURL& url) {
    try {
        const auto status = systemFileManager()->status(url.path());
        return status && status->kind != FileKind::directory;
    } catch (const FileError&) {
        return false;
    }
}

bool isReplacementAllowed(QWidget* window, const FileURL& url) {
    QMessageBox question(window);
    question.setWindowTitle(QMessageBox::tr("Replace File"));
    question.setTextFormat(Qt::PlainText);
    question.setText(QMessageBox::tr("\"%1\" already exists. Do you want to replace it?")
                         .arg(toQString(url.lastPathComponent())));
    question.setInformativeText(QMessageBox::tr("Its present content will be lost."));
    const auto* replace = question.addButton(QMessageBox::tr("Replace"), QMessageBox::AcceptRole);
    question.setDefaultButton(question.addButton(QMessageBox::Cancel));
    question.setEscapeButton(QMessageBox::Cancel);
    question.exec();
    return question.clickedButton() == replace;
}

} // namespace

QSize panelSize(QSize size, QSize freeArea) {
    constexpr QSize roomy{880, 560};
    return size.expandedTo(roomy).boundedTo(MainWindow::roomInFrame(freeArea));
}

void QtPanels::startAt(const std::string& title, const std::optional<FileURL>& folder) {
    starts_[title] = folder ? QFile::decodeName(folder->path().c_str()) : QString();
}

std::optional<FileURL> QtPanels::pickFolder(const std::string& title) {
    QFileDialog panel(window_, toQString(title), starts_[title]);
    panel.setFileMode(QFileDialog::Directory);
    panel.setOption(QFileDialog::ShowDirsOnly);
    return run(panel, FileURL::Kind::directory);
}

std::optional<FileURL> QtPanels::saveJSONPanel(const std::string& defaultFileName) {
    QFileDialog panel(window_, QFileDialog::tr("Export bank mapping JSON"));
    panel.setAcceptMode(QFileDialog::AcceptSave);
    panel.setFileMode(QFileDialog::AnyFile);
    allowJSONOnly(panel);
    // Ask here, about the completed name. Panels differ in when they complete a name and when they
    // ask: GTK's asks about "kit" when "kit.json" would be replaced.
    panel.setOption(QFileDialog::DontConfirmOverwrite);
    panel.selectFile(toQString(defaultFileName));
    for (;;) {
        const auto picked = run(panel, FileURL::Kind::file);
        if (!picked)
            return std::nullopt;
        FileURL target = withJSONExtension(*picked);
        if (!wouldReplaceFile(target) || isReplacementAllowed(window_, target))
            return target;
        panel.selectFile(QFile::decodeName(target.path().c_str()));
    }
}

std::optional<FileURL> QtPanels::pickJSONFile() {
    QFileDialog panel(window_, QFileDialog::tr("Import bank mapping JSON"));
    panel.setFileMode(QFileDialog::ExistingFile);
    panel.setDefaultSuffix(QStringLiteral("json"));
    allowJSONOnly(panel);
    return run(panel, FileURL::Kind::file);
}

void QtPanels::showInFileBrowser(const FileURL& item) {
    app::showInFileBrowser(item, bus_ ? *bus_ : QDBusConnection::sessionBus());
}

} // namespace torvo::app
