#pragma once

#include "Platform/FileURL.h"

#include <QDBusConnection>
#include <QObject>

#include <optional>
#include <vector>

class QDropEvent;
class QMimeData;
class QWidget;

namespace torvo::app {

/// The first of the dropped URLs that denotes a folder: its path ends in "/", or a folder exists
/// there.
std::optional<FileURL> firstFolder(const std::vector<FileURL>& urls);

/// The file URLs of a drag.
std::vector<FileURL> fileURLs(const QMimeData& data);

/// Accepts folders dropped on the watched widgets, from the URLs of the drag or through the file
/// transfer portal of a sandboxed desktop.
class FolderDrops final : public QObject {
    Q_OBJECT

public:
    /// `bus` is the bus of the portal. Without it, the first drop connects to the session bus.
    explicit FolderDrops(QObject* parent = nullptr, std::optional<QDBusConnection> bus = {});

    void watch(QWidget& area);
    /// Whether a drag that contains files is over one of the widgets.
    bool isTargeted() const { return isTargeted_; }

Q_SIGNALS:
    void targetedChanged(bool isTargeted);
    void folderDropped(const torvo::FileURL& folder);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void setTargeted(bool targeted);
    void takeDrop(QDropEvent& drop);

    std::optional<QDBusConnection> bus_;
    bool isTargeted_ = false;
};

} // namespace torvo::app
