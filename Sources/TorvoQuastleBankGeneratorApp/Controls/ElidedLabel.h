#pragma once

#include <QLabel>

namespace torvo::app {

/// A name on one line, elided in the middle if it is too long. The tooltip and the accessible name
/// contain the whole name.
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
