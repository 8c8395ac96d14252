#pragma once

#include <QWidget>

class QHBoxLayout;
class QVBoxLayout;

namespace torvo::app {

/// The base of the cards: a raised panel with a heading; for screen readers, a group with that
/// name.
class Card : public QWidget {
    Q_OBJECT

public:
    static constexpr int horizontalPadding = 20;
    static constexpr int spacing = 10; ///< between the widgets of the column

protected:
    explicit Card(const QString& heading, QWidget* parent = nullptr);

    /// The row of the heading, for controls at its right end.
    QHBoxLayout* headerRow() const { return headerRow_; }
    QVBoxLayout* column() const { return column_; }

    void paintEvent(QPaintEvent* event) override;

private:
    QVBoxLayout* column_;
    QHBoxLayout* headerRow_;
};

} // namespace torvo::app
