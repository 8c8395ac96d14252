#pragma once

#include <QDBusConnection>
#include <QStringList>

#include <functional>
#include <optional>

class QMimeData;
class QObject;

namespace torvo::app {

/// The key of the dropped files in the file transfer portal, if the drag offers one. A sandboxed
/// program cannot open the paths in text/uri-list.
std::optional<QString> fileTransferKey(const QMimeData& data);
bool hasFileTransfer(const QMimeData& data);

/// Retrieves the paths for `key` from the portal (RetrieveFiles) and passes them to `received`
/// later, on the thread of `context`. `received` is not called if the portal refuses or `context`
/// has been destroyed.
void retrieveFiles(const QDBusConnection& bus, const QString& key, QObject* context,
                   std::function<void(const QStringList& paths)> received);

} // namespace torvo::app
