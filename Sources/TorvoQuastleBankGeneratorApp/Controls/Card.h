#pragma once

#include <QWidget>

class QHBoxLayout;
class QVBoxLayout;

namespace torvo::app {

/// A raised panel with a heading; a screen reader meets it as a group of that name.
class Card final : public QWidget {
    Q_OBJECT

public:
    explicit Card(const QString& heading, QWidget* parent = nullptr);

    static constexpr int horizontalPadding = 20;
    static constexpr int spacing = 10; ///< between what stands in the column

    /// The heading's row, for what stands at its right end.
    QHBoxLayout* headerRow() const { return headerRow_; }
    QVBoxLayout* column() const { return column_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QVBoxLayout* column_;
    QHBoxLayout* headerRow_;
};

} // namespace torvo::app
