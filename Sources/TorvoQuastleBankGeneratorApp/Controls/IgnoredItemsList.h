#pragma once

#include <QListView>

class QAction;

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

Q_SIGNALS:
    /// The menu of the row with this path opens. `show` is disabled: enable and connect it where
    /// the item can be shown in its folder. It is destroyed when the menu closes.
    void rowMenuOpening(const QString& path, QAction* show);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    /// The selected rows, from top to bottom.
    void copy() const;
};

} // namespace torvo::app
