#pragma once

#include "Platform/FileURL.h"

#include <QObject>

#include <optional>
#include <vector>

class QDropEvent;
class QMimeData;
class QWidget;

namespace torvo::app {

/// The first of the dropped URLs that denotes a folder, in their order: by its form (a path that
/// ends in "/") or because a folder stands there.
std::optional<FileURL> firstFolder(const std::vector<FileURL>& urls);

/// The file URLs of a drag.
std::vector<FileURL> fileURLs(const QMimeData& data);

/// Takes a folder that is dropped anywhere on the widgets it watches.
class FolderDrops final : public QObject {
    Q_OBJECT

public:
    explicit FolderDrops(QObject* parent = nullptr);

    void watch(QWidget& area);
    /// A drag that holds files is over one of the widgets.
    bool isTargeted() const { return isTargeted_; }

Q_SIGNALS:
    void targetedChanged(bool isTargeted);
    void folderDropped(const torvo::FileURL& folder);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void setTargeted(bool targeted);
    void takeDrop(QDropEvent& drop);

    bool isTargeted_ = false;
};

} // namespace torvo::app
