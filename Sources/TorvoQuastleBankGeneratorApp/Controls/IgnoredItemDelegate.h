#pragma once

#include <QAbstractItemDelegate>

namespace torvo::app {

/// Paints an ignored item: its path, and the reason at the right edge.
class IgnoredItemDelegate final : public QAbstractItemDelegate {
    Q_OBJECT

public:
    static constexpr int rowHeight = 26;

    using QAbstractItemDelegate::QAbstractItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

} // namespace torvo::app
