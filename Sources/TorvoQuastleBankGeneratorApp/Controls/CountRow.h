#pragma once

#include <QWidget>

class QLabel;

namespace torvo::app {

class ElidedLabel;

/// One counted kind of sample: its label at the left, the number at the right.
class CountRow final : public QWidget {
    Q_OBJECT

public:
    /// Whether banks can be made with that many.
    enum class Standing {
        enough,
        filledIn, ///< percussion plays instead: an outline and a note say so
        absent,   ///< percussion would play instead, but there is too little of it
        blocking, ///< no bank can be made: a red badge
    };

    static constexpr int height = 26;

    explicit CountRow(const QString& label, QWidget* parent = nullptr);

    void setCount(qsizetype count, Standing standing);
    Standing standing() const { return standing_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const QString label_;
    ElidedLabel* note_;
    QLabel* count_;
    Standing standing_ = Standing::enough;
};

} // namespace torvo::app
