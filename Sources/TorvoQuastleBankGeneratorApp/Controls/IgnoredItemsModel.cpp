#include "Controls/IgnoredItemsModel.h"

#include "Text.h"

namespace torvo::app {

bool IgnoredItemsModel::setItems(Items items) {
    if (items == items_)
        return false;
    beginResetModel();
    items_ = std::move(items);
    endResetModel();
    return true;
}

int IgnoredItemsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() || !items_ ? 0 : static_cast<int>(items_->size());
}

QVariant IgnoredItemsModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const IgnoredItem& item = (*items_)[static_cast<std::size_t>(index.row())];
    switch (role) {
    case Qt::DisplayRole:
        return toQString(item.path);
    case reasonRole:
        return toQString(item.reason);
    case Qt::ToolTipRole:
        return plainToolTip(toQString(item.path + "\n" + item.reason));
    case Qt::AccessibleTextRole:
        return toQString(item.path + ": " + item.reason);
    default:
        return {};
    }
}

} // namespace torvo::app
