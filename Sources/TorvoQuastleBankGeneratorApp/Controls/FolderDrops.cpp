#include "Controls/FolderDrops.h"

#include "Controls/FileTransferPortal.h"
#include "Platform/SystemFileManager.h"

#include <QDragEnterEvent>
#include <QFile>
#include <QMimeData>
#include <QUrl>
#include <QWidget>

#include <utility>

namespace torvo::app {

namespace {

bool denotesFolder(const FileURL& url) {
    if (url.hasDirectoryPath())
        return true;
    try {
        const auto status = systemFileManager()->status(url.path());
        return status && status->kind == FileKind::directory;
    } catch (const FileError&) {
        return false;
    }
}

/// Always answers with a copy, or ignores the drop: a drag source deletes its files after a move.
void acceptWithoutMoving(QDropEvent& event) {
    event.setDropAction(event.possibleActions().testFlag(Qt::CopyAction) ? Qt::CopyAction
                                                                         : Qt::IgnoreAction);
    event.accept();
}

} // namespace

std::optional<FileURL> firstFolder(const std::vector<FileURL>& urls) {
    for (const FileURL& url : urls)
        if (denotesFolder(url))
            return FileURL::directory(url.path());
    return std::nullopt;
}

std::vector<FileURL> fileURLs(const QMimeData& data) {
    std::vector<FileURL> urls;
    for (const QUrl& url : data.urls())
        if (auto fileURL = FileURL::parse(url.toEncoded().toStdString()))
            urls.push_back(std::move(*fileURL));
    return urls;
}

FolderDrops::FolderDrops(QObject* parent, std::optional<QDBusConnection> bus)
    : QObject(parent), bus_(std::move(bus)) {}

void FolderDrops::watch(QWidget& area) {
    area.setAcceptDrops(true);
    area.installEventFilter(this);
}

bool FolderDrops::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::DragEnter: {
        auto& drag = static_cast<QDragEnterEvent&>(*event);
        if (fileURLs(*drag.mimeData()).empty() && !hasFileTransfer(*drag.mimeData())) {
            drag.ignore();
            return true;
        }
        acceptWithoutMoving(drag);
        setTargeted(true);
        return true;
    }
    case QEvent::DragMove:
        acceptWithoutMoving(static_cast<QDropEvent&>(*event));
        return true;
    case QEvent::DragLeave:
        setTargeted(false);
        return true;
    case QEvent::Drop:
        setTargeted(false);
        takeDrop(static_cast<QDropEvent&>(*event));
        return true;
    default:
        return QObject::eventFilter(watched, event);
    }
}

void FolderDrops::takeDrop(QDropEvent& drop) {
    const auto folder = firstFolder(fileURLs(*drop.mimeData()));
    const auto key = fileTransferKey(*drop.mimeData());
    if (!folder && !key) {
        drop.ignore();
        return;
    }
    acceptWithoutMoving(drop);
    if (folder) {
        Q_EMIT folderDropped(*folder);
        return;
    }
    retrieveFiles(bus_ ? *bus_ : QDBusConnection::sessionBus(), *key, this,
                  [this](const QStringList& paths) {
                      std::vector<FileURL> urls;
                      for (const QString& path : paths)
                          urls.emplace_back(QFile::encodeName(path).toStdString());
                      if (const auto retrieved = firstFolder(urls))
                          Q_EMIT folderDropped(*retrieved);
                  });
}

void FolderDrops::setTargeted(bool targeted) {
    if (std::exchange(isTargeted_, targeted) != targeted)
        Q_EMIT targetedChanged(targeted);
}

} // namespace torvo::app
