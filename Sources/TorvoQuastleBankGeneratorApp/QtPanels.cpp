#include "QtPanels.h"

#include "Text.h"

#include <QFile>
#include <QFileDialog>
#include <QFileInfo>

namespace torvo::app {

namespace {

/// The one chosen path, or none.
std::optional<FileURL> run(QFileDialog& panel, FileURL::Kind kind) {
    if (panel.exec() != QDialog::Accepted || panel.selectedFiles().isEmpty())
        return std::nullopt;
    return FileURL(QFile::encodeName(panel.selectedFiles().first()).toStdString(), kind);
}

bool isJSON(const FileURL& url) {
    return toQString(url.pathExtension()).compare(QLatin1String("json"), Qt::CaseInsensitive) == 0;
}

void allowJSONOnly(QFileDialog& panel) {
    panel.setNameFilter(QFileDialog::tr("JSON (*.json)"));
    panel.setDefaultSuffix(QStringLiteral("json"));
}

} // namespace

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
    panel.selectFile(toQString(defaultFileName));
    for (;;) {
        auto picked = run(panel, FileURL::Kind::file);
        if (!picked || isJSON(*picked))
            return picked;
        // The toolkit completes no name that has a dot of its own: "kit 1.2".
        const std::string completed = picked->path().native() + ".json";
        const QString shown = QFile::decodeName(completed.c_str());
        if (!QFileInfo::exists(shown))
            return FileURL(completed, FileURL::Kind::file);
        // Something has that name: the panel asks, as it does for any other.
        panel.selectFile(shown);
    }
}

std::optional<FileURL> QtPanels::pickJSONFile() {
    QFileDialog panel(window_, QFileDialog::tr("Import bank mapping JSON"));
    panel.setFileMode(QFileDialog::ExistingFile);
    allowJSONOnly(panel);
    return run(panel, FileURL::Kind::file);
}

} // namespace torvo::app
