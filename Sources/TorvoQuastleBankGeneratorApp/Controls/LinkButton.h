#pragma once

#include "Controls/PaintedButton.h"

namespace torvo::app {

/// A link: one tab stop with the same focus ring as every other control.
class LinkButton final : public PaintedButton {
    Q_OBJECT

public:
    explicit LinkButton(const QString& text, QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace torvo::app
