#include "Controls/CountRow.h"

#include "Controls/ElidedLabel.h"
#include "Controls/Labels.h"
#include "Controls/Painting.h"
#include "MarloTheme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

namespace torvo::app {

namespace {

constexpr int badgeHeight = 20;
constexpr int badgePadding = 8;

} // namespace

CountRow::CountRow(const QString& label, QWidget* parent)
    : QWidget(parent),
      label_(label),
      note_(new ElidedLabel),
      count_(makeLabel({}, 15, MarloTheme::FontCut::semiBold, MarloTheme::ink)) {
    setFixedHeight(height);
    note_->setFont(MarloTheme::font(12, MarloTheme::FontCut::regular));
    note_->setAlignment(Qt::AlignRight);
    setTextColor(*note_, MarloTheme::muted);
    // The digits are aligned with and without a badge.
    count_->setContentsMargins(badgePadding, 0, badgePadding, 0);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(makeLabel(label, 13, MarloTheme::FontCut::medium, MarloTheme::muted));
    row->addSpacing(MarloTheme::grid);
    row->addWidget(note_, 1);
    row->addStretch();
    row->addSpacing(4);
    row->addWidget(count_);
}

void CountRow::setCount(qsizetype count, Standing standing, qsizetype minCount) {
    standing_ = standing;
    count_->setText(QString::number(count));
    note_->setText(standing == Standing::filledIn   ? tr("percussion plays on this channel")
                   : standing == Standing::blocking ? tr("at least %1 needed").arg(minCount)
                                                    : QString());
    const bool isFaint = standing == Standing::filledIn || standing == Standing::absent;
    setTextColor(*count_, isFaint ? MarloTheme::muted : MarloTheme::ink);
    QString name = label_ + QLatin1Char(' ') + count_->text();
    if (!note_->text().isEmpty())
        name += QStringLiteral(", ") + note_->text();
    setAccessibleName(name);
    note_->setVisible(!note_->text().isEmpty());
    update();
}

void CountRow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(0, QWidget::height() - 1, width(), 1, MarloTheme::line);
    if (standing_ == Standing::enough)
        return;
    QRectF badge = count_->geometry();
    badge.setTop(badge.center().y() - badgeHeight / 2.0);
    badge.setHeight(badgeHeight);
    const bool isBlocking = standing_ == Standing::blocking;
    paintRoundedRect(painter, badge, badgeHeight / 2.0,
                     isBlocking ? MarloTheme::danger : QColor(Qt::transparent),
                     isBlocking ? QColor(Qt::transparent) : MarloTheme::accent);
}

} // namespace torvo::app
