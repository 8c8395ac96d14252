#pragma once

#include <QLabel>

namespace torvo::app {

/// A name on one line. One that is too long loses its middle on the screen only: the tooltip and a
/// screen reader get the whole of it.
class ElidedLabel final : public QLabel {
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace torvo::app
