#include "Controls/ComboItemDelegate.h"

#include "Controls/PopupPainting.h"
#include "MarloTheme.h"

#include <QComboBox>
#include <QFontMetrics>
#include <QPainter>
#include <QStyleOptionViewItem>

namespace torvo::app {

namespace {

constexpr int inset = ComboItemDelegate::textMargin - Popup::padding;

} // namespace

ComboItemDelegate::ComboItemDelegate(QComboBox* box) : QAbstractItemDelegate(box), box_(box) {}

void ComboItemDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const {
    const bool isCurrent = (option.state & QStyle::State_Selected) != 0;
    const QColor color = isCurrent ? MarloTheme::surface : MarloTheme::ink;
    if (isCurrent)
        paintPopupHighlight(*painter, option.rect);
    QRect row = option.rect.adjusted(inset, 0, -inset, 0);
    if (index.row() == box_->currentIndex())
        paintPopupMark(*painter,
                       {row.right() + 1 - Popup::markSide / 2.0, QRectF(row).center().y()}, color);
    row.setRight(row.right() - Popup::markSide - inset);
    painter->setFont(box_->font());
    painter->setPen(color);
    painter->drawText(
        row, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
        QFontMetrics(box_->font())
            .elidedText(index.data(Qt::DisplayRole).toString(), Qt::ElideMiddle, row.width()));
}

QSize ComboItemDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex& index) const {
    const int text =
        QFontMetrics(box_->font()).horizontalAdvance(index.data(Qt::DisplayRole).toString());
    return {text + 3 * inset + Popup::markSide, Popup::rowHeight};
}

} // namespace torvo::app
