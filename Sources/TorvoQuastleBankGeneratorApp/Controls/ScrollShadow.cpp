#include "Controls/ScrollShadow.h"

#include <QEvent>
#include <QLinearGradient>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>

namespace torvo::app {

ScrollShadow::ScrollShadow(QScrollArea& area) : QWidget(&area), area_(area) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    stackUnder(area.verticalScrollBar()->parentWidget());
    area.installEventFilter(this);
    connect(area.verticalScrollBar(), &QScrollBar::valueChanged, this, &ScrollShadow::follow);
    connect(area.verticalScrollBar(), &QScrollBar::rangeChanged, this, &ScrollShadow::follow);
    follow();
}

void ScrollShadow::follow() {
    setGeometry(0, area_.height() - shadowHeight, area_.width(), shadowHeight);
    setVisible(area_.verticalScrollBar()->value() < area_.verticalScrollBar()->maximum());
}

bool ScrollShadow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize)
        follow();
    return QWidget::eventFilter(watched, event);
}

void ScrollShadow::paintEvent(QPaintEvent*) {
    QLinearGradient gradient(0, 0, 0, height());
    // Texts in it can still be read.
    gradient.setColorAt(0, QColor(0, 0, 0, 0));
    gradient.setColorAt(0.5, QColor(0, 0, 0, 20));
    gradient.setColorAt(1, QColor(0, 0, 0, 90));
    QPainter painter(this);
    painter.fillRect(rect(), gradient);
}

} // namespace torvo::app
