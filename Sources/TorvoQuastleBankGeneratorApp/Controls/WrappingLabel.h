#pragma once

#include <QLabel>

namespace torvo::app {

/// Text that wraps between words and, where a path or a name is longer than the line, inside them.
class WrappingLabel final : public QLabel {
    Q_OBJECT

public:
    explicit WrappingLabel(QWidget* parent = nullptr);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace torvo::app
