#pragma once

#include <QAbstractItemDelegate>

class QComboBox;

namespace torvo::app {

/// Paints one row of a combo box's list: its text aligned with the text of the box, and a mark on
/// the current row.
class ComboItemDelegate final : public QAbstractItemDelegate {
    Q_OBJECT

public:
    /// The combo box becomes the delegate's parent.
    explicit ComboItemDelegate(QComboBox* box);

    /// The distance from the edge of the box to its text.
    static constexpr int textMargin = 12;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    const QComboBox* box_;
};

} // namespace torvo::app
