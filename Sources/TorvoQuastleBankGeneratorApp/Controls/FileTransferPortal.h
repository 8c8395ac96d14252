#pragma once

#include <QDBusConnection>
#include <QStringList>

#include <functional>
#include <optional>

class QMimeData;
class QObject;

namespace torvo::app {

/// The key under which a desktop's portal keeps the dropped files, when the drag offers one. A
/// sandboxed program cannot open the paths that text/uri-list names.
std::optional<QString> fileTransferKey(const QMimeData& data);
bool hasFileTransfer(const QMimeData& data);

/// Asks the portal for the paths behind `key` with RetrieveFiles and passes them to `received`
/// later, on the thread of `context`; never when the portal refuses or `context` is gone.
void retrieveFiles(const QDBusConnection& bus, const QString& key, QObject* context,
                   std::function<void(const QStringList& paths)> received);

} // namespace torvo::app
