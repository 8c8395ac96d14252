#include "Controls/ScrollFade.h"

#include <QEvent>
#include <QLinearGradient>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>

namespace torvo::app {

ScrollFade::ScrollFade(QScrollArea& area) : QWidget(&area), area_(area) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    area.viewport()->installEventFilter(this);
    connect(area.verticalScrollBar(), &QScrollBar::valueChanged, this, &ScrollFade::follow);
    connect(area.verticalScrollBar(), &QScrollBar::rangeChanged, this, &ScrollFade::follow);
    follow();
}

void ScrollFade::follow() {
    const QRect shown = area_.viewport()->geometry();
    setGeometry(shown.left(), shown.bottom() + 1 - fadeHeight, shown.width(), fadeHeight);
    setVisible(area_.verticalScrollBar()->value() < area_.verticalScrollBar()->maximum());
}

bool ScrollFade::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize)
        follow();
    return QWidget::eventFilter(watched, event);
}

void ScrollFade::paintEvent(QPaintEvent*) {
    QLinearGradient gradient(0, 0, 0, height());
    gradient.setColorAt(0, MarloTheme::withOpacity(MarloTheme::surface, 0));
    gradient.setColorAt(1, MarloTheme::surface);
    QPainter painter(this);
    painter.fillRect(rect(), gradient);
}

} // namespace torvo::app
