#pragma once

#include "Controls/IgnoredItemsModel.h"

#include <QWidget>

class QLabel;
class QListView;

namespace torvo::app {

class DisclosureHeader;

/// A titled list of ignored items that opens and closes. Whether it is open survives new items.
class DisclosureSection final : public QWidget {
    Q_OBJECT

public:
    explicit DisclosureSection(const QString& title, QWidget* parent = nullptr);

    /// Keeps the list alive; the same list again changes nothing.
    void setItems(IgnoredItemsModel::Items items);
    bool isExpanded() const { return isExpanded_; }
    void setExpanded(bool expanded);

    /// What the open list could take beyond its usual height until all rows are shown, in logical
    /// pixels.
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
