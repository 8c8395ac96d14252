#pragma once

#include "Models/SampleRecords.h"

#include <QAbstractListModel>

#include <memory>
#include <vector>

namespace torvo::app {

/// A list of ignored items for a view. Reads the rows from the scan report without copying them.
class IgnoredItemsModel final : public QAbstractListModel {
    Q_OBJECT

public:
    using Items = std::shared_ptr<const std::vector<IgnoredItem>>;
    enum Role { reasonRole = Qt::UserRole };

    /// Returns whether the list differs from the current one.
    bool setItems(Items items);

    int rowCount(const QModelIndex& parent = {}) const override;
    /// By role the path, the reason, or both for tooltips and screen readers.
    QVariant data(const QModelIndex& index, int role) const override;

private:
    Items items_;
};

} // namespace torvo::app
