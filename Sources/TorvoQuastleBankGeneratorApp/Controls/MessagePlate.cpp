#include "Controls/MessagePlate.h"

#include "Controls/Painting.h"
#include "MarloTheme.h"

#include <QPainter>

namespace torvo::app {

namespace {

constexpr double cornerRadius = 10;

} // namespace

MessagePlate::MessagePlate(QWidget* parent) : QWidget(parent) {}

void MessagePlate::setFailed(bool failed) {
    isFailed_ = failed;
    update();
}

void MessagePlate::paintEvent(QPaintEvent*) {
    if (!isFailed_)
        return;
    QPainter painter(this);
    paintRoundedRect(painter, rect(), cornerRadius, MarloTheme::ink, Qt::transparent);
}

} // namespace torvo::app
