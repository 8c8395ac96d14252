#pragma once

#include "Controls/IgnoredItemsModel.h"

#include <QWidget>

class QAction;
class QLabel;
class QListView;

namespace torvo::app {

class DisclosureHeader;
class IgnoredItemsList;

/// A titled list of ignored items that opens and closes. It stays open when the items change.
class DisclosureSection final : public QWidget {
    Q_OBJECT

public:
    explicit DisclosureSection(const QString& title, QWidget* parent = nullptr);

    /// Shares ownership of the list. Setting the same list again has no effect.
    void setItems(IgnoredItemsModel::Items items);
    bool isExpanded() const { return isExpanded_; }
    void setExpanded(bool expanded);

    /// The additional height at which the open list would show all its rows, in logical pixels.
    int maxExtraHeight() const;

    DisclosureHeader* header() const { return header_; }
    QListView* list() const;

Q_SIGNALS:
    /// The user has opened the section.
    void opened();
    /// As in `IgnoredItemsList`.
    void rowMenuOpening(const QString& path, QAction* show);

private:
    void showContent();

    IgnoredItemsModel model_;
    DisclosureHeader* header_;
    QLabel* none_;
    IgnoredItemsList* list_;
    bool isExpanded_ = false;
};

} // namespace torvo::app
