#include "Controls/FileBrowser.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QStringList>
#include <QUrl>

namespace torvo::app {

namespace {

void openFolder(const FileURL& folder) {
    QDesktopServices::openUrl(
        QUrl::fromEncoded(QByteArray::fromStdString(folder.absoluteString())));
}

} // namespace

void showInFileBrowser(const FileURL& item, const QDBusConnection& bus) {
    // Qt reports no error for a call without a bus.
    if (!bus.isConnected()) {
        openFolder(item.deletingLastPathComponent());
        return;
    }
    auto call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.FileManager1"),
                                               QStringLiteral("/org/freedesktop/FileManager1"),
                                               QStringLiteral("org.freedesktop.FileManager1"),
                                               QStringLiteral("ShowItems"));
    const QString startupId;
    call << QStringList(QString::fromStdString(item.absoluteString())) << startupId;
    // The application owns the watcher, because it may end before the browser answers.
    auto* const watcher =
        new QDBusPendingCallWatcher(bus.asyncCall(call), QCoreApplication::instance());
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, item] {
        watcher->deleteLater();
        if (watcher->isError())
            openFolder(item.deletingLastPathComponent());
    });
}

} // namespace torvo::app
