#pragma once

#include <QEvent>
#include <QWidget>

namespace torvo::test {

/// Counts how often a widget is painted.
class Paints final : public QObject {
public:
    explicit Paints(QWidget& widget) { widget.installEventFilter(this); }
    int count() const { return count_; }

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        count_ += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }

private:
    int count_ = 0;
};

} // namespace torvo::test
