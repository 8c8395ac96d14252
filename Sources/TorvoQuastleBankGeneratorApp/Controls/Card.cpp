#include "Controls/Card.h"

#include "Controls/Labels.h"
#include "Controls/Painting.h"
#include "MarloTheme.h"

#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

namespace torvo::app {

namespace {

constexpr double cornerRadius = 14;
constexpr int verticalPadding = 12;

} // namespace

Card::Card(const QString& heading, QWidget* parent)
    : QWidget(parent), column_(new QVBoxLayout), headerRow_(new QHBoxLayout) {
    setAccessibleName(heading);
    column_->setSpacing(spacing);
    headerRow_->setSpacing(MarloTheme::grid);
    headerRow_->addWidget(makeCardHeading(heading));
    column_->addLayout(headerRow_);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(horizontalPadding, verticalPadding, horizontalPadding, verticalPadding);
    row->addLayout(column_, 1);
}

void Card::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintRoundedRect(painter, rect(), cornerRadius, MarloTheme::panel, MarloTheme::line);
}

} // namespace torvo::app
