#pragma once

#include "Controls/PaintedButton.h"

class QLayout;

namespace torvo::app {

/// A link: one tab stop with the same focus ring as every other control. It can be clicked a little
/// above and below its line, too.
class LinkButton final : public PaintedButton {
    Q_OBJECT

public:
    explicit LinkButton(const QString& text, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    /// A layout that contains the link and is only as high as its line.
    QLayout* inLine();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QSize lineSize() const;
    /// The height of the area above the line and of that below it.
    int overhang() const;
};

} // namespace torvo::app
