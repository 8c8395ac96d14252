#include "Controls/FileTransferPortal.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QMimeData>
#include <QVariantMap>

#include <utility>

namespace torvo::app {

namespace {

QString mimeType() {
    return QStringLiteral("application/vnd.portal.filetransfer");
}

} // namespace

bool hasFileTransfer(const QMimeData& data) {
    return data.hasFormat(mimeType());
}

std::optional<QString> fileTransferKey(const QMimeData& data) {
    QByteArray key = data.data(mimeType());
    // GTK sends the terminating null byte as well.
    if (const auto end = key.indexOf('\0'); end >= 0)
        key.truncate(end);
    return key.isEmpty() ? std::nullopt : std::optional(QString::fromUtf8(key));
}

void retrieveFiles(const QDBusConnection& bus, const QString& key, QObject* context,
                   std::function<void(const QStringList& paths)> received) {
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.portal.Documents"),
        QStringLiteral("/org/freedesktop/portal/documents"),
        QStringLiteral("org.freedesktop.portal.FileTransfer"), QStringLiteral("RetrieveFiles"));
    call << key << QVariantMap();
    auto* const watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
                     [received = std::move(received)](QDBusPendingCallWatcher* finished) {
                         finished->deleteLater();
                         const QDBusPendingReply<QStringList> reply = *finished;
                         if (!reply.isError())
                             received(reply.value());
                     });
}

} // namespace torvo::app
