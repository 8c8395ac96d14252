#include "CountRow.h"

#include "Labels.h"
#include "MarloTheme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

namespace torvo::app {

namespace {

constexpr int rowHeight = 28;

} // namespace

CountRow::CountRow(const QString& label, QWidget* parent)
    : QWidget(parent), count_(makeLabel({}, 15, MarloTheme::FontCut::semiBold, MarloTheme::ink)) {
    setAccessibleName(label);
    setFixedHeight(rowHeight);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(makeLabel(label, 13, MarloTheme::FontCut::medium, MarloTheme::muted));
    row->addStretch();
    row->addWidget(count_);
}

void CountRow::setCount(qsizetype count) {
    count_->setText(QString::number(count));
    // A number without a sample is the one to notice.
    setTextColor(*count_, count == 0 ? MarloTheme::accent : MarloTheme::ink);
}

void CountRow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(0, height() - 1, width(), 1, MarloTheme::line);
}

} // namespace torvo::app
