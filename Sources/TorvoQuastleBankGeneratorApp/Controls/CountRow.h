#pragma once

#include <QWidget>

class QLabel;

namespace torvo::app {

/// One counted kind of sample: its label at the left, the number at the right, as a badge when it
/// is zero.
class CountRow final : public QWidget {
    Q_OBJECT

public:
    explicit CountRow(const QString& label, QWidget* parent = nullptr);

    void setCount(qsizetype count);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const QString label_;
    QLabel* count_;
    bool isMissing_ = false;
};

} // namespace torvo::app
