#pragma once

#include <QIcon>
#include <QPalette>
#include <QProxyStyle>

namespace torvo::app {

/// Paints Qt's own controls: combo boxes, check boxes, scroll bars, menus, dialogs, tooltips, list
/// frames and the focus ring.
class MarloStyle final : public QProxyStyle {
    Q_OBJECT

public:
    MarloStyle();

    /// The distance between the focus ring and its control.
    static constexpr int focusRingMargin = 3;

    using QProxyStyle::polish;
    /// Gives dialogs a focus ring like that of the window.
    void polish(QWidget* widget) override;
    QPalette standardPalette() const override;
    QIcon standardIcon(StandardPixmap picture, const QStyleOption* option,
                       const QWidget* widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                         SubControl subControl, const QWidget* widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returnData) const override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace torvo::app
