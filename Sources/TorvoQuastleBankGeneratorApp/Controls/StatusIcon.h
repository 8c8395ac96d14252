#pragma once

#include <QRectF>
#include <QWidget>

class QPainter;

namespace torvo::app {

enum class StatusKind { success, failure };

/// A disc with a tick or an exclamation mark.
void paintStatus(QPainter& painter, const QRectF& rect, StatusKind kind);

class StatusIcon final : public QWidget {
    Q_OBJECT

public:
    explicit StatusIcon(QWidget* parent = nullptr);

    void setKind(StatusKind kind);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    StatusKind kind_ = StatusKind::success;
};

} // namespace torvo::app
