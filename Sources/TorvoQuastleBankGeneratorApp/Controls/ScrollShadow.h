#pragma once

#include "MarloTheme.h"

#include <QWidget>

class QScrollArea;

namespace torvo::app {

/// A shadow on the lower edge of a scroll area while there is more content below.
class ScrollShadow final : public QWidget {
    Q_OBJECT

public:
    static constexpr int shadowHeight = 3 * MarloTheme::grid;

    explicit ScrollShadow(QScrollArea& area);

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow();

    QScrollArea& area_;
};

} // namespace torvo::app
