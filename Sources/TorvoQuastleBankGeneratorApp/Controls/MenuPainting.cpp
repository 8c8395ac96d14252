#include "Controls/MenuPainting.h"

#include "Controls/Painting.h"
#include "Controls/PopupPainting.h"
#include "MarloTheme.h"

#include <QFontMetrics>
#include <QPolygonF>
#include <QStyleOptionMenuItem>

#include <algorithm>

namespace torvo::app {

namespace {

constexpr int minWidth = 160;
constexpr int inset = 10;
constexpr int markWidth = Popup::markSide + 6;
constexpr int shortcutGap = 32;
constexpr int separatorHeight = 9;
constexpr int titleInset = 2;
constexpr double titleRadius = 6;

bool isAtPointer(const QStyleOptionMenuItem& item) {
    return item.state.testFlag(QStyle::State_Selected) &&
           item.state.testFlag(QStyle::State_Enabled);
}

/// The text before the tab; the shortcut follows it.
QString label(const QStyleOptionMenuItem& item) {
    return item.text.section(QLatin1Char('\t'), 0, 0);
}

QString shortcut(const QStyleOptionMenuItem& item) {
    return item.text.section(QLatin1Char('\t'), 1, 1);
}

int flags(const QStyleOptionMenuItem& item) {
    const bool showsKeys = item.state.testFlag(QStyle::State_HasFocus) ||
                           item.state.testFlag(QStyle::State_KeyboardFocusChange);
    return Qt::AlignVCenter | Qt::TextSingleLine |
           (showsKeys ? Qt::TextShowMnemonic : Qt::TextHideMnemonic);
}

} // namespace

QSize menuItemSize(const QStyleOptionMenuItem& item) {
    if (item.menuItemType == QStyleOptionMenuItem::Separator)
        return {minWidth, separatorHeight};
    const QFontMetrics metrics(item.font);
    int width = metrics.size(Qt::TextShowMnemonic, label(item)).width() + 2 * inset;
    if (item.menuHasCheckableItems)
        width += markWidth;
    if (const QString keys = shortcut(item); !keys.isEmpty())
        width += shortcutGap + metrics.horizontalAdvance(keys);
    if (item.menuItemType == QStyleOptionMenuItem::SubMenu)
        width += markWidth;
    return {std::max(width, minWidth), Popup::rowHeight};
}

void paintMenuItem(QPainter& painter, const QStyleOptionMenuItem& item) {
    const QRectF rect = item.rect;
    if (item.menuItemType == QStyleOptionMenuItem::Separator) {
        constexpr int middle = separatorHeight / 2;
        painter.fillRect(QRectF(rect.left(), rect.top() + middle, rect.width(), 1),
                         MarloTheme::line);
        return;
    }
    const bool enabled = item.state.testFlag(QStyle::State_Enabled);
    const QColor color = !enabled            ? MarloTheme::muted
                         : isAtPointer(item) ? MarloTheme::surface
                                             : MarloTheme::ink;
    if (isAtPointer(item))
        paintPopupHighlight(painter, rect);
    QRectF row = rect.adjusted(inset, 0, -inset, 0);
    if (item.menuHasCheckableItems) {
        if (item.checked)
            paintPopupMark(painter, {row.left() + Popup::markSide / 2.0, row.center().y()}, color);
        row.setLeft(row.left() + markWidth);
    }
    painter.setFont(item.font);
    painter.setPen(color);
    painter.drawText(row, flags(item) | Qt::AlignLeft, label(item));
    painter.drawText(row, flags(item) | Qt::AlignRight, shortcut(item));
    if (item.menuItemType == QStyleOptionMenuItem::SubMenu) {
        const QPointF tip(row.right(), row.center().y());
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(color, 1.75, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(QPolygonF{tip + QPointF(-4, -4), tip, tip + QPointF(-4, 4)});
    }
}

void paintMenuTitle(QPainter& painter, const QStyleOptionMenuItem& title) {
    painter.fillRect(title.rect, MarloTheme::surface);
    const bool isOpen = title.state.testFlag(QStyle::State_Sunken);
    if (isOpen || isAtPointer(title))
        paintRoundedRect(painter, QRectF(title.rect).adjusted(0, titleInset, 0, -titleInset),
                         titleRadius, isOpen ? MarloTheme::panelRaised : MarloTheme::panel,
                         MarloTheme::line);
    painter.setFont(title.font);
    painter.setPen(MarloTheme::ink);
    painter.drawText(title.rect, flags(title) | Qt::AlignCenter, title.text);
}

} // namespace torvo::app
