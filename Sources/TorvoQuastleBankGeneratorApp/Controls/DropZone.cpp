#include "Controls/DropZone.h"

#include "Controls/Labels.h"
#include "Controls/Painting.h"
#include "MarloTheme.h"

#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

namespace torvo::app {

using MarloTheme::withOpacity;

QColor DropZoneStyle::backgroundColor() const {
    if (targeted)
        return withOpacity(MarloTheme::accent, 0.12);
    if (pressed)
        return withOpacity(MarloTheme::surface, 0.7);
    return MarloTheme::surface;
}

QColor DropZoneStyle::borderColor() const {
    if (targeted)
        return MarloTheme::ink;
    if (hovered)
        return MarloTheme::muted;
    return quiet ? outlineColor : MarloTheme::accent;
}

void DropZoneStyle::paint(QPainter& painter, const QRectF& rect) const {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(backgroundColor());
    painter.drawRoundedRect(rect, cornerRadius, cornerRadius);
    QPen pen(borderColor(), 1);
    if (!targeted) {
        pen.setDashPattern({5, 4});
        pen.setCapStyle(Qt::FlatCap);
    }
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(rect.adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius - 0.5,
                            cornerRadius - 0.5);
}

DropZone::DropZone(QWidget* parent) : PaintedButton(tr("DROP SOURCE FOLDER"), parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setCursor(Qt::PointingHandCursor);

    caption_ = makeLabel(text(), 14, MarloTheme::FontCut::semiBold, MarloTheme::ink);
    hint_ = makeLabel({}, 13, MarloTheme::FontCut::regular, MarloTheme::muted);
    // A one-line hint is as high as a two-line hint, so that nothing below moves.
    hint_->setText(QStringLiteral("\n"));
    hint_->setMinimumHeight(hint_->sizeHint().height());
    choose_ = makeLabel(tr("Drop a folder here or choose one from Finder."), 13,
                        MarloTheme::FontCut::medium, MarloTheme::accent);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(MarloTheme::grid, 8, MarloTheme::grid, 8);
    column->setSpacing(4);
    for (QLabel* label : {caption_, hint_, choose_}) {
        label->setAlignment(Qt::AlignCenter);
        label->setAttribute(Qt::WA_TransparentForMouseEvents);
        column->addWidget(label);
    }
}

void DropZone::setQuiet(bool quiet) {
    isQuiet_ = quiet;
    colorTexts();
}

void DropZone::colorTexts() {
    // The accent colour has too little contrast on the highlighted zone.
    setTextColor(*caption_, isQuiet_ && !isTargeted_ ? MarloTheme::muted : MarloTheme::ink);
    setTextColor(*hint_, isTargeted_ ? MarloTheme::ink : MarloTheme::muted);
    setTextColor(*choose_, isTargeted_ ? MarloTheme::ink : MarloTheme::accent);
    update();
}

void DropZone::setHint(const QString& hint) {
    hint_->setText(hint);
    setAccessibleDescription(hint);
}

QSize DropZone::sizeHint() const {
    return layout()->sizeHint();
}

void DropZone::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const DropZoneStyle style{
        .targeted = isTargeted_, .quiet = isQuiet_, .pressed = isDown(), .hovered = isHovered()};
    style.paint(painter, rect());
}

void DropZone::setTargeted(bool targeted) {
    isTargeted_ = targeted;
    colorTexts();
}

} // namespace torvo::app
