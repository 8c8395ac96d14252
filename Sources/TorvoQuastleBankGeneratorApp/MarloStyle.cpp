#include "MarloStyle.h"

#include "Controls/ComboItemDelegate.h"
#include "Controls/DialogPainting.h"
#include "Controls/FocusRing.h"
#include "Controls/IgnoredItemsList.h"
#include "Controls/MarloButton.h"
#include "Controls/MenuPainting.h"
#include "Controls/PaintedButton.h"
#include "Controls/Painting.h"
#include "Controls/PanelIcons.h"
#include "Controls/PopupPainting.h"
#include "Controls/ToolTipPlace.h"
#include "MarloTheme.h"

#include <QComboBox>
#include <QCursor>
#include <QDialog>
#include <QEvent>
#include <QFocusFrame>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPolygonF>
#include <QPushButton>
#include <QStyleOption>

#include <algorithm>

namespace torvo::app {

using MarloTheme::withOpacity;

namespace {

constexpr int comboArrowWidth = 32;
constexpr int popupGap = 4; ///< between a combo box and its list
constexpr int indicatorSide = 18;
constexpr int scrollBarExtent = 12;
constexpr int scrollHandleLength = 32;
constexpr int listFrameWidth = 4;
constexpr int toolTipPadding = 5;

/// The corner radius of a control, for its frame and focus ring.
double cornerRadius(const QWidget* widget) {
    if (const auto* button = qobject_cast<const PaintedButton*>(widget))
        return button->cornerRadius();
    if (qobject_cast<const QPushButton*>(widget))
        return MarloButtonStyle::cornerRadius;
    if (qobject_cast<const QLineEdit*>(widget) || qobject_cast<const QComboBox*>(widget))
        return fieldRadius;
    if (qobject_cast<const IgnoredItemsList*>(widget))
        return IgnoredItemsList::cornerRadius;
    return plainCornerRadius;
}

/// Whether the widget is the popup window of a combo box, whose class is private to Qt.
bool isComboPopup(const QObject* object) {
    return object && object->inherits("QComboBoxPrivateContainer");
}

/// A combo box receives no event if the pointer leaves it while its list is open.
void endHover(QWidget& box) {
    box.setAttribute(Qt::WA_UnderMouse, box.rect().contains(box.mapFromGlobal(QCursor::pos())));
    box.update();
}

void paintCheckIndicator(QPainter& painter, const QStyleOption& option) {
    const QRectF box = option.rect;
    const bool checked = hasState(option, QStyle::State_On);
    const bool hovered = hasState(option, QStyle::State_MouseOver);
    const double strength = hasState(option, QStyle::State_Sunken) ? 0.82 : 1.0;
    paintRoundedRect(painter, box, 5,
                     withOpacity(checked ? MarloTheme::accent : MarloTheme::panelRaised, strength),
                     hovered   ? MarloTheme::muted
                     : checked ? MarloTheme::accent
                               : outlineColor);
    if (!checked)
        return;
    painter.setPen(QPen(MarloTheme::surface, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QPolygonF{box.topLeft() + QPointF(4.6, 9.3),
                                   box.topLeft() + QPointF(7.7, 12.4),
                                   box.topLeft() + QPointF(13.4, 5.9)});
}

void paintCombo(QPainter& painter, const QStyleOption& option) {
    paintRoundedRect(painter, option.rect, fieldRadius, MarloTheme::panelRaised,
                     hasState(option, QStyle::State_MouseOver)
                         ? withOpacity(MarloTheme::accent, 0.6)
                         : MarloTheme::line);
    const QPointF center(option.rect.right() - comboArrowWidth / 2.0 + 1,
                         QRectF(option.rect).center().y());
    painter.setPen(QPen(MarloTheme::muted, 1.75, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(
        QPolygonF{center + QPointF(-4, -2), center + QPointF(0, 2), center + QPointF(4, -2)});
}

void paintComboLabel(QPainter& painter, const QStyleOptionComboBox& option) {
    painter.setFont(MarloTheme::font(14, MarloTheme::FontCut::medium));
    painter.setPen(MarloTheme::ink);
    painter.drawText(option.rect.adjusted(ComboItemDelegate::textMargin, 0, -comboArrowWidth, 0),
                     Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine, option.currentText);
}

QRect scrollHandle(const QStyleOptionSlider& bar) {
    const bool vertical = bar.orientation == Qt::Vertical;
    const int groove = vertical ? bar.rect.height() : bar.rect.width();
    const qint64 range = static_cast<qint64>(bar.maximum) - bar.minimum;
    const qint64 whole = range + bar.pageStep;
    const int wanted = whole > 0 ? static_cast<int>(qint64{groove} * bar.pageStep / whole) : groove;
    const int length = std::clamp(wanted, std::min(scrollHandleLength, groove), groove);
    const int start = QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition,
                                                      groove - length, bar.upsideDown);
    return vertical ? QRect(bar.rect.left(), bar.rect.top() + start, bar.rect.width(), length)
                    : QRect(bar.rect.left() + start, bar.rect.top(), length, bar.rect.height());
}

void paintScrollBar(QPainter& painter, const QStyleOptionSlider& bar) {
    if (bar.maximum <= bar.minimum)
        return;
    const bool active =
        hasState(bar, QStyle::State_MouseOver) || hasState(bar, QStyle::State_Sunken);
    const QRectF handle = QRectF(scrollHandle(bar)).adjusted(3, 3, -3, -3);
    const double radius = std::min(handle.width(), handle.height()) / 2;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(active ? MarloTheme::muted : outlineColor);
    painter.drawRoundedRect(handle, radius, radius);
}

} // namespace

MarloStyle::MarloStyle() : QProxyStyle(QStringLiteral("fusion")) {}

QPalette MarloStyle::standardPalette() const {
    QPalette palette(MarloTheme::ink, MarloTheme::panelRaised, MarloTheme::accent,
                     MarloTheme::surface, MarloTheme::panel, MarloTheme::ink, MarloTheme::ink,
                     MarloTheme::surface, MarloTheme::surface);
    palette.setColor(QPalette::Highlight, MarloTheme::accent);
    palette.setColor(QPalette::HighlightedText, MarloTheme::surface);
    palette.setColor(QPalette::AlternateBase, MarloTheme::panel);
    palette.setColor(QPalette::ToolTipBase, MarloTheme::panelRaised);
    palette.setColor(QPalette::ToolTipText, MarloTheme::ink);
    palette.setColor(QPalette::PlaceholderText, MarloTheme::muted);
    palette.setColor(QPalette::Link, MarloTheme::ink);
    palette.setColor(QPalette::LinkVisited, MarloTheme::muted);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, MarloTheme::muted);
    return palette;
}

void MarloStyle::polish(QWidget* widget) {
    QProxyStyle::polish(widget);
    if (auto* dialog = qobject_cast<QDialog*>(widget)) {
        if (!dialog->findChild<FocusRing*>())
            new FocusRing(*dialog);
    } else if (qobject_cast<QMenu*>(widget) || widget->inherits("QTipLabel")) {
        widget->setAttribute(Qt::WA_TranslucentBackground);
        widget->installEventFilter(this);
    } else if (auto* box = qobject_cast<QComboBox*>(widget)) {
        box->setItemDelegate(new ComboItemDelegate(box));
        // Must happen before the popup's native window exists, which cannot become translucent
        // later.
        QWidget* popup = box->view()->parentWidget();
        box->view()->viewport()->setAutoFillBackground(false);
        popup->setAttribute(Qt::WA_TranslucentBackground);
        popup->installEventFilter(this);
    }
}

bool MarloStyle::eventFilter(QObject* watched, QEvent* event) {
    if (isComboPopup(watched)) {
        auto* popup = static_cast<QWidget*>(watched);
        // Qt resets the mask when the popup is resized.
        if (event->type() == QEvent::Show)
            popup->setMask(popupMask(popup->rect()));
        else if (event->type() == QEvent::Hide)
            endHover(*popup->parentWidget());
    } else if (watched->inherits("QTipLabel")) {
        auto* toolTip = static_cast<QWidget*>(watched);
        if (event->type() == QEvent::Show)
            placeToolTip(*toolTip);
        else if (event->type() == QEvent::Move)
            followMove(*toolTip);
    }
    return QProxyStyle::eventFilter(watched, event);
}

QIcon MarloStyle::standardIcon(StandardPixmap picture, const QStyleOption* option,
                               const QWidget* widget) const {
    const QIcon own = panelIcon(picture);
    return own.isNull() ? QProxyStyle::standardIcon(picture, option, widget) : own;
}

void MarloStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                               QPainter* painter, const QWidget* widget) const {
    switch (element) {
    case PE_IndicatorCheckBox:
        paintCheckIndicator(*painter, *option);
        return;
    case PE_FrameFocusRect:
        return; // the ring is drawn outside the control
    case PE_PanelTipLabel:
        paintPopupPanel(*painter, option->rect, Popup::toolTipRadius);
        return;
    case PE_Frame:
        if (isComboPopup(widget))
            paintPopupPanel(*painter, option->rect);
        else
            paintRoundedRect(*painter, option->rect, cornerRadius(widget), MarloTheme::surface,
                             MarloTheme::line);
        return;
    case PE_PanelMenu:
        paintPopupPanel(*painter, option->rect);
        return;
    case PE_PanelLineEdit:
        if (const auto* field = qstyleoption_cast<const QStyleOptionFrame*>(option)) {
            paintField(*painter, *field);
            return;
        }
        break;
    case PE_PanelButtonTool:
        paintToolButton(*painter, *option);
        return;
    default:
        break;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void MarloStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                             const QWidget* widget) const {
    switch (element) {
    case CE_ComboBoxLabel:
        if (const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option)) {
            paintComboLabel(*painter, *combo);
            return;
        }
        break;
    case CE_PushButton:
        if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option)) {
            paintPushButton(*painter, *button);
            return;
        }
        break;
    case CE_MenuItem:
        if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option)) {
            paintMenuItem(*painter, *item);
            return;
        }
        break;
    case CE_MenuBarItem:
        if (const auto* title = qstyleoption_cast<const QStyleOptionMenuItem*>(option)) {
            paintMenuTitle(*painter, *title);
            // The selected menu title, until its menu opens.
            if (widget && widget->hasFocus() && hasState(*option, State_Selected) &&
                !hasState(*option, State_Sunken))
                paintFocusRing(*painter, option->rect, plainCornerRadius);
            return;
        }
        break;
    case CE_MenuBarEmptyArea:
        painter->fillRect(option->rect, MarloTheme::surface);
        return;
    case CE_MenuEmptyArea:
        return; // the panel is painted already
    case CE_HeaderSection:
    case CE_HeaderEmptyArea:
        paintColumnHead(*painter, *option);
        return;
    case CE_Splitter:
        return; // the frames on its sides show its position
    case CE_FocusFrame:
        if (const auto* frame = qobject_cast<const QFocusFrame*>(widget)) {
            paintFocusRing(*painter, option->rect,
                           cornerRadius(frame->widget()) + focusRingMargin - focusRingWidth / 2);
            return;
        }
        break;
    default:
        break;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

void MarloStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                    QPainter* painter, const QWidget* widget) const {
    if (control == CC_ComboBox) {
        paintCombo(*painter, *option);
        return;
    }
    if (const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
        bar && control == CC_ScrollBar) {
        paintScrollBar(*painter, *bar);
        return;
    }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

QRect MarloStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                 SubControl subControl, const QWidget* widget) const {
    if (control == CC_ComboBox && subControl == SC_ComboBoxListBoxPopup)
        return option->rect.adjusted(0, -popupGap, 0, popupGap);
    if (const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
        bar && control == CC_ScrollBar) {
        const QRect handle = scrollHandle(*bar);
        const bool vertical = bar->orientation == Qt::Vertical;
        switch (subControl) {
        case SC_ScrollBarSlider:
            return handle;
        case SC_ScrollBarGroove:
            return bar->rect;
        case SC_ScrollBarSubPage:
            return vertical ? QRect(bar->rect.topLeft(), handle.topRight() - QPoint(0, 1))
                            : QRect(bar->rect.topLeft(), handle.bottomLeft() - QPoint(1, 0));
        case SC_ScrollBarAddPage:
            return vertical ? QRect(handle.bottomLeft() + QPoint(0, 1), bar->rect.bottomRight())
                            : QRect(handle.topRight() + QPoint(1, 0), bar->rect.bottomRight());
        default:
            return {}; // no buttons at the ends
        }
    }
    return QProxyStyle::subControlRect(control, option, subControl, widget);
}

QSize MarloStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                   const QWidget* widget) const {
    if (type == CT_ComboBox)
        return {size.width() + ComboItemDelegate::textMargin + comboArrowWidth, fieldHeight};
    if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        item && type == CT_MenuItem)
        return menuItemSize(*item);
    if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
        button && type == CT_PushButton)
        return pushButtonSize(*button);
    if (const auto* field = qstyleoption_cast<const QStyleOptionFrame*>(option);
        field && type == CT_LineEdit && field->lineWidth > 0)
        return {size.width(), fieldHeight};
    return QProxyStyle::sizeFromContents(type, option, size, widget);
}

int MarloStyle::pixelMetric(PixelMetric metric, const QStyleOption* option,
                            const QWidget* widget) const {
    switch (metric) {
    case PM_ScrollBarExtent:
        return scrollBarExtent;
    case PM_ScrollBarSliderMin:
        return scrollHandleLength;
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
        return indicatorSide;
    case PM_CheckBoxLabelSpacing:
        return 10;
    case PM_FocusFrameHMargin:
    case PM_FocusFrameVMargin:
        return focusRingMargin;
    case PM_MenuPanelWidth:
        return 0;
    case PM_MenuHMargin:
    case PM_MenuVMargin:
        return Popup::padding;
    case PM_ToolTipLabelFrameWidth:
        return toolTipPadding;
    case PM_DefaultFrameWidth:
        if (isComboPopup(widget))
            return Popup::padding;
        return qobject_cast<const IgnoredItemsList*>(widget)
                   ? listFrameWidth
                   : QProxyStyle::pixelMetric(metric, option, widget);
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int MarloStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                          QStyleHintReturn* returnData) const {
    switch (hint) {
    case SH_Menu_Mask:
        if (auto* mask = qstyleoption_cast<QStyleHintReturnMask*>(returnData); mask && option)
            mask->region = popupMask(option->rect);
        return 1;
    case SH_ToolTip_Mask:
        if (auto* mask = qstyleoption_cast<QStyleHintReturnMask*>(returnData); mask && option)
            mask->region = popupMask(option->rect, Popup::toolTipRadius);
        return 1;
    case SH_FocusFrame_AboveWidget:
        return 1;
    case SH_EtchDisabledText: // a second, shifted text looks bold
    case SH_DialogButtonBox_ButtonsHaveIcons:
    case SH_FocusFrame_Mask:
    case SH_ComboBox_Popup: // a list below the control, not a menu over it
    case SH_ScrollBar_Transient:
        return 0;
    default:
        return QProxyStyle::styleHint(hint, option, widget, returnData);
    }
}

} // namespace torvo::app
