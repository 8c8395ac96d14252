#pragma once

#include "PaintedButton.h"
#include "Platform/FileURL.h"

#include <QRectF>

#include <optional>
#include <vector>

class QLabel;
class QMimeData;
class QPainter;

namespace torvo::app {

/// The look of the drop zone.
struct DropZoneStyle {
    bool targeted = false; ///< a dragged item is over it
    bool pressed = false;
    bool hovered = false;

    static constexpr double cornerRadius = 10;

    QColor backgroundColor() const;
    QColor borderColor() const;
    void paint(QPainter& painter, const QRectF& rect) const;
};

/// The first of the dropped URLs that denotes a folder, in their order: by its form (a path that
/// ends in "/") or because a folder stands there.
std::optional<FileURL> firstFolder(const std::vector<FileURL>& urls);

/// The file URLs of a drag.
std::vector<FileURL> fileURLs(const QMimeData& data);

/// Where a source folder is dropped. A press (mouse, Enter, Space) asks for the panel instead.
class DropZone final : public PaintedButton {
    Q_OBJECT

public:
    explicit DropZone(QWidget* parent = nullptr);

    void setHint(const QString& hint);
    bool isTargeted() const { return isTargeted_; }
    QSize sizeHint() const override;

Q_SIGNALS:
    void folderDropped(const torvo::FileURL& folder);

protected:
    void paintEvent(QPaintEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void setTargeted(bool targeted);

    QLabel* hint_;
    bool isTargeted_ = false;
};

} // namespace torvo::app
