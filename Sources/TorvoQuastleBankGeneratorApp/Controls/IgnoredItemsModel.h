#pragma once

#include "Models/SampleRecords.h"

#include <QAbstractListModel>

#include <memory>
#include <vector>

namespace torvo::app {

/// A list of ignored items for a view. Nothing is copied: rows are read where the scan put them.
class IgnoredItemsModel final : public QAbstractListModel {
    Q_OBJECT

public:
    using Items = std::shared_ptr<const std::vector<IgnoredItem>>;
    enum Role { reasonRole = Qt::UserRole };

    /// False when it is the list that is shown already.
    bool setItems(Items items);

    int rowCount(const QModelIndex& parent = {}) const override;
    /// The path; the reason; both for tooltips and screen readers.
    QVariant data(const QModelIndex& index, int role) const override;

private:
    Items items_;
};

} // namespace torvo::app
