#pragma once

#include "Controls/IgnoredItemsModel.h"

#include <QWidget>

class QLabel;
class QListView;

namespace torvo::app {

class DisclosureHeader;

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
    QListView* list() const { return list_; }

private:
    void showContent();

    IgnoredItemsModel model_;
    DisclosureHeader* header_;
    QLabel* none_;
    QListView* list_;
    bool isExpanded_ = false;
};

} // namespace torvo::app
