#include "Controls/ThreeWayModeToggle.h"

#include "Controls/Painting.h"
#include "MarloTheme.h"
#include "Text.h"

#include <QKeyEvent>
#include <QPainter>

#include <algorithm>
#include <chrono>

namespace torvo::app {

namespace {

constexpr std::chrono::milliseconds slideDuration{160};

} // namespace

QSizeF ModeToggleGeometry::size(std::size_t modeCount) const {
    return {segmentWidth * static_cast<double>(modeCount), height};
}

QRectF ModeToggleGeometry::segment(std::size_t index) const {
    return {segmentWidth * static_cast<double>(index), 0, segmentWidth, height};
}

QRectF ModeToggleGeometry::highlight(double position) const {
    return QRectF(segmentWidth * position, 0, segmentWidth, height)
        .adjusted(highlightInset, highlightInset, -highlightInset, -highlightInset);
}

void paintModeToggle(QPainter& painter, const ModeToggleGeometry& geometry, std::size_t modeCount,
                     double highlightPosition) {
    paintRoundedRect(painter, QRectF({0, 0}, geometry.size(modeCount)),
                     ModeToggleGeometry::cornerRadius, MarloTheme::panelRaised, MarloTheme::line);
    painter.setPen(Qt::NoPen);
    painter.setBrush(MarloTheme::ink);
    painter.drawRoundedRect(geometry.highlight(highlightPosition),
                            ModeToggleGeometry::highlightRadius,
                            ModeToggleGeometry::highlightRadius);
}

ModeSegment::ModeSegment(const QString& title, QSize size, QWidget* parent)
    : PaintedButton(title, parent), size_(size) {
    setCheckable(true);
    setAutoExclusive(true);
}

void ModeSegment::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setFont(MarloTheme::font(15, MarloTheme::FontCut::semiBold));
    // Muted at rest, brighter under the pointer, because it can be pressed.
    painter.setPen(isChecked()   ? MarloTheme::surface
                   : isHovered() ? MarloTheme::ink
                                 : MarloTheme::muted);
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
}

ThreeWayModeToggle::ThreeWayModeToggle(std::vector<GenerationMode> modes, double segmentWidth,
                                       double height, QWidget* parent)
    : QWidget(parent), modes_(std::move(modes)), geometry_{segmentWidth, height} {
    setAccessibleName(tr("Generation mode"));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    for (std::size_t index = 0; index < modes_.size(); ++index) {
        const QRect frame = geometry_.segment(index).toRect();
        auto* segment = new ModeSegment(toQString(displayName(modes_[index])), frame.size(), this);
        segment->setGeometry(frame);
        segment->installEventFilter(this);
        connect(segment, &QAbstractButton::clicked, this,
                [this, index] { Q_EMIT modeChosen(modes_[index]); });
        segments_.push_back(segment);
    }
    markSelected();
    slide_.setDuration(static_cast<int>(slideDuration.count()));
    slide_.setEasingCurve(QEasingCurve::InOutQuad);
    connect(&slide_, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& value) { moveHighlight(value.toDouble()); });
}

void ThreeWayModeToggle::setSelection(GenerationMode mode) {
    const auto found = std::find(modes_.begin(), modes_.end(), mode);
    const auto index = static_cast<std::size_t>(found - modes_.begin());
    if (found == modes_.end() || index == selectedIndex_)
        return;
    const bool hadFocus = segments_[selectedIndex_]->hasFocus();
    selectedIndex_ = index;
    markSelected();
    if (hadFocus)
        segments_[index]->setFocus(Qt::OtherFocusReason);
    slide_.stop();
    slide_.setStartValue(highlightPosition_);
    slide_.setEndValue(static_cast<double>(index));
    if (isVisible())
        slide_.start();
    else
        moveHighlight(static_cast<double>(index));
}

void ThreeWayModeToggle::markSelected() {
    segments_[selectedIndex_]->setChecked(true);
    // Only the selected segment is a tab stop.
    for (std::size_t index = 0; index < segments_.size(); ++index)
        segments_[index]->setFocusPolicy(index == selectedIndex_ ? Qt::StrongFocus
                                                                 : Qt::ClickFocus);
}

void ThreeWayModeToggle::moveHighlight(double position) {
    highlightPosition_ = position;
    update();
}

QSize ThreeWayModeToggle::sizeHint() const {
    return geometry_.size(modes_.size()).toSize();
}

void ThreeWayModeToggle::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintModeToggle(painter, geometry_, modes_.size(), highlightPosition_);
}

bool ThreeWayModeToggle::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Left:
    case Qt::Key_Up:
        chooseByKeyboard(selectedIndex_ == 0 ? 0 : selectedIndex_ - 1);
        return true;
    case Qt::Key_Right:
    case Qt::Key_Down:
        chooseByKeyboard(std::min(selectedIndex_ + 1, modes_.size() - 1));
        return true;
    case Qt::Key_Home:
        chooseByKeyboard(0);
        return true;
    case Qt::Key_End:
        chooseByKeyboard(modes_.size() - 1);
        return true;
    default:
        return QWidget::eventFilter(watched, event);
    }
}

void ThreeWayModeToggle::chooseByKeyboard(std::size_t index) {
    if (index != selectedIndex_)
        Q_EMIT modeChosen(modes_[index]);
}

} // namespace torvo::app
