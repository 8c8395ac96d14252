#pragma once

#include "MarloTheme.h"

#include <QWidget>

class QScrollArea;

namespace torvo::app {

/// Fades out the lower edge of a scroll area while there is more content below.
class ScrollFade final : public QWidget {
    Q_OBJECT

public:
    static constexpr int fadeHeight = 4 * MarloTheme::grid;

    explicit ScrollFade(QScrollArea& area);

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow();

    QScrollArea& area_;
};

} // namespace torvo::app
