#pragma once

#include <QListView>

class QAction;

namespace torvo::app {

/// Shows the rows of an `IgnoredItemsModel`. The user can select rows and copy them as lines of
/// path, tab and reason. Its size hint is its minimum size; a layout gives it the height that is
/// left.
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
    /// Copies the selected rows, from top to bottom.
    void copy() const;
};

} // namespace torvo::app
