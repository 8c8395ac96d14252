#pragma once

#include "Controls/PaintedButton.h"

#include <QRectF>

class QPainter;

namespace torvo::app {

/// The row that opens and closes a section: a chevron, the title, the number of items and, muted, a
/// summary of their kinds.
struct DisclosureHeaderStyle {
    bool expanded = false;
    bool hovered = false;

    static constexpr int height = 24;

    void paint(QPainter& painter, const QRectF& rect, const QString& title, const QString& count,
               const QString& kinds) const;
};

/// A click toggles `isChecked`; a checked header is open.
class DisclosureHeader final : public PaintedButton {
    Q_OBJECT

public:
    explicit DisclosureHeader(const QString& title, QWidget* parent = nullptr);

    void setCount(qsizetype count, const QString& kinds);
    qsizetype count() const { return count_; }
    const QString& kinds() const { return kinds_; }
    QSize sizeHint() const override { return {0, DisclosureHeaderStyle::height}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    qsizetype count_ = 0;
    QString kinds_;
};

} // namespace torvo::app
