#pragma once

#include "Controls/PaintedButton.h"

#include <QColor>
#include <QRectF>

class QPainter;

namespace torvo::app {

/// The appearance of a push button.
struct MarloButtonStyle {
    bool prominent = false; ///< the one main action of a card
    bool enabled = true;
    bool pressed = false;
    bool hovered = false;

    static constexpr double cornerRadius = 10;
    static constexpr int horizontalPadding = 14;
    static constexpr int verticalPadding = 10;

    static QFont labelFont();
    static QSize size(const QString& label);

    QColor backgroundColor() const;
    QColor labelColor() const;
    QColor borderColor() const;
    /// Of the whole button.
    double opacity() const;

    void paint(QPainter& painter, const QRectF& rect, const QString& label) const;
};

class MarloButton final : public PaintedButton {
    Q_OBJECT

public:
    enum class Kind { ordinary, prominent };

    MarloButton(const QString& text, Kind kind, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    double cornerRadius() const override { return MarloButtonStyle::cornerRadius; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Kind kind_;
};

} // namespace torvo::app
