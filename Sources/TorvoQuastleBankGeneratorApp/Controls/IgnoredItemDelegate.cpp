#include "Controls/IgnoredItemDelegate.h"

#include "Controls/IgnoredItemsModel.h"
#include "Controls/Painting.h"
#include "MarloTheme.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStyleOptionViewItem>

namespace torvo::app {

namespace {

constexpr double cornerRadius = 5;
constexpr int padding = 8;
constexpr int gap = 16;
constexpr int flags = Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine;

} // namespace

void IgnoredItemDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                const QModelIndex& index) const {
    const bool isSelected = (option.state & QStyle::State_Selected) != 0;
    if (isSelected)
        paintRoundedRect(*painter, option.rect, cornerRadius,
                         MarloTheme::withOpacity(MarloTheme::accent, 0.4), Qt::transparent);
    else if ((option.state & QStyle::State_MouseOver) != 0)
        paintRoundedRect(*painter, option.rect, cornerRadius, MarloTheme::line, Qt::transparent);
    if ((option.state & QStyle::State_HasFocus) != 0)
        paintFocusRing(*painter, option.rect, cornerRadius);

    const QRect row = option.rect.adjusted(padding, 0, -padding, 0);
    const QFont font = MarloTheme::font(12, MarloTheme::FontCut::regular);
    const QFontMetrics metrics(font);
    const QString reason = index.data(IgnoredItemsModel::reasonRole).toString();
    const int reasonWidth = std::min(metrics.horizontalAdvance(reason) + 1, row.width() / 2);
    const int pathWidth = row.width() - reasonWidth - gap;
    painter->setFont(font);
    painter->setPen(MarloTheme::ink);
    painter->drawText(
        QRect(row.left(), row.top(), pathWidth, row.height()), flags,
        metrics.elidedText(index.data(Qt::DisplayRole).toString(), Qt::ElideMiddle, pathWidth));
    painter->setPen(isSelected ? MarloTheme::ink : MarloTheme::muted);
    painter->drawText(QRect(row.right() + 1 - reasonWidth, row.top(), reasonWidth, row.height()),
                      flags, metrics.elidedText(reason, Qt::ElideRight, reasonWidth));
}

QSize IgnoredItemDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const {
    return {0, rowHeight};
}

} // namespace torvo::app
