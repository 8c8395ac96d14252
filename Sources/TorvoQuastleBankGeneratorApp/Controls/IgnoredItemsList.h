#pragma once

#include <QListView>

namespace torvo::app {

/// The rows of an `IgnoredItemsModel`: selected with the pointer and the keyboard, copied as lines
/// of path, tabulator and reason. It wants no more height than it must have, and takes more where
/// there is room to spare.
class IgnoredItemsList final : public QListView {
    Q_OBJECT

public:
    static constexpr double cornerRadius = 8;

    explicit IgnoredItemsList(QWidget* parent = nullptr);

    QSize sizeHint() const override { return minimumSize(); }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    /// The selected rows, from top to bottom.
    void copy() const;
};

} // namespace torvo::app
