#include "CountRow.h"

#include "Labels.h"
#include "MarloTheme.h"
#include "Painting.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

namespace torvo::app {

namespace {

constexpr int rowHeight = 28;
constexpr int badgeHeight = 20;
constexpr int badgePadding = 8;

} // namespace

CountRow::CountRow(const QString& label, QWidget* parent)
    : QWidget(parent),
      label_(label),
      count_(makeLabel({}, 15, MarloTheme::FontCut::semiBold, MarloTheme::ink)) {
    setFixedHeight(rowHeight);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(makeLabel(label, 13, MarloTheme::FontCut::medium, MarloTheme::muted));
    row->addStretch();
    row->addWidget(count_);
}

void CountRow::setCount(qsizetype count) {
    count_->setText(QString::number(count));
    setAccessibleName(label_ + QLatin1Char(' ') + count_->text());
    isMissing_ = count == 0;
    const int margin = isMissing_ ? badgePadding : 0;
    count_->setContentsMargins(margin, 0, margin, 0);
    update();
}

void CountRow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(0, height() - 1, width(), 1, MarloTheme::line);
    // A kind without a single sample is the one to notice.
    if (isMissing_) {
        QRectF badge = count_->geometry();
        badge.setTop(badge.center().y() - badgeHeight / 2.0);
        badge.setHeight(badgeHeight);
        paintRoundedRect(painter, badge, badgeHeight / 2.0, MarloTheme::danger, Qt::transparent);
    }
}

} // namespace torvo::app
