#include "Card.h"

#include "Labels.h"
#include "MarloTheme.h"
#include "Painting.h"

#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

namespace torvo::app {

namespace {

constexpr double cornerRadius = 14;

} // namespace

Card::Card(const QString& heading, QWidget* parent)
    : QWidget(parent), column_(new QVBoxLayout(this)), headerRow_(new QHBoxLayout) {
    setAccessibleName(heading);
    column_->setContentsMargins(20, 14, 20, 16);
    column_->setSpacing(12);
    headerRow_->setSpacing(MarloTheme::grid);
    headerRow_->addWidget(makeCardHeading(heading));
    column_->addLayout(headerRow_);
}

void Card::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintRoundedRect(painter, rect(), cornerRadius, MarloTheme::panel, MarloTheme::line);
}

} // namespace torvo::app
