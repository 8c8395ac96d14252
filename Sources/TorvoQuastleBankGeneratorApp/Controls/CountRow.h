#pragma once

#include <QWidget>

class QLabel;

namespace torvo::app {

class ElidedLabel;

/// The label and the number of one kind of sample.
class CountRow final : public QWidget {
    Q_OBJECT

public:
    /// Whether banks can be generated from that number.
    enum class Standing {
        enough,
        filledIn, ///< percussion plays instead; shown as an outline and a note
        absent,   ///< percussion would play instead, but there is too little of it
        blocking, ///< no bank can be generated; shown as a red badge and a note
    };

    static constexpr int height = 26;

    explicit CountRow(const QString& label, QWidget* parent = nullptr);

    /// `minCount` is shown when there are too few.
    void setCount(qsizetype count, Standing standing, qsizetype minCount);
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
