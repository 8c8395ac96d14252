#pragma once

#include "PaintedButton.h"

#include <QRectF>

class QPainter;

namespace torvo::app {

/// The row that opens and closes a section: a chevron, the title, the number of items.
struct DisclosureHeaderStyle {
    bool expanded = false;
    bool hovered = false;

    static constexpr int height = 28;

    void paint(QPainter& painter, const QRectF& rect, const QString& title,
               const QString& count) const;
};

/// A press toggles `isChecked`: checked is open.
class DisclosureHeader final : public PaintedButton {
    Q_OBJECT

public:
    explicit DisclosureHeader(const QString& title, QWidget* parent = nullptr);

    void setCount(qsizetype count);
    qsizetype count() const { return count_; }
    QSize sizeHint() const override { return {0, DisclosureHeaderStyle::height}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    qsizetype count_ = 0;
};

} // namespace torvo::app
