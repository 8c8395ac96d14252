#pragma once

#include <QWidget>

class QHBoxLayout;
class QVBoxLayout;

namespace torvo::app {

/// A raised panel with a heading; for screen readers, a group with that name.
class Card final : public QWidget {
    Q_OBJECT

public:
    explicit Card(const QString& heading, QWidget* parent = nullptr);

    static constexpr int horizontalPadding = 20;
    static constexpr int spacing = 10; ///< between the widgets of the column

    /// The row of the heading, for controls at its right end.
    QHBoxLayout* headerRow() const { return headerRow_; }
    QVBoxLayout* column() const { return column_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QVBoxLayout* column_;
    QHBoxLayout* headerRow_;
};

} // namespace torvo::app
