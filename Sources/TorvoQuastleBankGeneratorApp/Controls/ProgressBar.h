#pragma once

#include <QElapsedTimer>
#include <QProgressBar>
#include <QRectF>
#include <QTimer>

class QPainter;

namespace torvo::app {

/// The filled part of a determinate bar; `fraction` is 0 to 1.
QRectF progressFill(const QRectF& bar, double fraction);

/// The moving part of an indeterminate bar, `seconds` after its start.
QRectF indeterminateFill(const QRectF& bar, double seconds);

/// The light that runs over a determinate bar, `seconds` after its start: it enters on the left,
/// leaves on the right and starts again.
QRectF lightOnBar(const QRectF& bar, double seconds);

void paintProgress(QPainter& painter, const QRectF& bar, const QRectF& fill);

/// A slim bar: determinate with a range, indeterminate without (`setRange(0, 0)`). Both kinds move
/// while they are visible, because a slow card may not change the value for a long time.
class ProgressBar final : public QProgressBar {
    Q_OBJECT

public:
    explicit ProgressBar(QWidget* parent = nullptr);

    bool isIndeterminate() const { return maximum() == minimum(); }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QElapsedTimer shownFor_;
    QTimer frames_;
};

} // namespace torvo::app
