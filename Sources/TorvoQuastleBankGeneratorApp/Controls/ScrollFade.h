#pragma once

#include <QWidget>

class QScrollArea;

namespace torvo::app {

/// Fades out the lower edge of an area while there is more below it, so that what is cut there does
/// not look finished.
class ScrollFade final : public QWidget {
    Q_OBJECT

public:
    explicit ScrollFade(QScrollArea& area);

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow();

    QScrollArea& area_;
};

} // namespace torvo::app
