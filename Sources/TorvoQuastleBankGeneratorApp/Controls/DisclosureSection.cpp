#include "DisclosureSection.h"

#include "DisclosureHeader.h"
#include "IgnoredItemDelegate.h"
#include "Labels.h"
#include "MarloTheme.h"

#include <QLabel>
#include <QListView>
#include <QVBoxLayout>

#include <algorithm>

namespace torvo::app {

namespace {

constexpr int mostRowsShown = 7;
constexpr int listPadding = 4;

} // namespace

DisclosureSection::DisclosureSection(const QString& title, QWidget* parent)
    : QWidget(parent),
      header_(new DisclosureHeader(title)),
      none_(makeLabel(tr("NONE"), 12, MarloTheme::FontCut::regular, MarloTheme::muted)),
      list_(new QListView) {
    setAccessibleName(title);
    none_->setContentsMargins(24, 2, 0, MarloTheme::grid);

    list_->setAccessibleName(title);
    list_->setModel(&model_);
    list_->setItemDelegate(new IgnoredItemDelegate(list_));
    // One measured row stands for all: opening a list does not depend on its length.
    list_->setUniformItemSizes(true);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list_->setFrameShape(QFrame::StyledPanel);
    list_->setMouseTracking(true);
    list_->setProperty("cornerRadius", 8.0);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(header_);
    column->addWidget(none_);
    column->addWidget(list_);
    connect(header_, &QAbstractButton::toggled, this, &DisclosureSection::setExpanded);
    showContent();
}

void DisclosureSection::setItems(IgnoredItemsModel::Items items) {
    if (!model_.setItems(std::move(items)))
        return;
    header_->setCount(model_.rowCount());
    showContent();
}

void DisclosureSection::setExpanded(bool expanded) {
    isExpanded_ = expanded;
    header_->setChecked(expanded);
    showContent();
}

void DisclosureSection::showContent() {
    const int rows = model_.rowCount();
    list_->setFixedHeight(std::clamp(rows, 1, mostRowsShown) * IgnoredItemDelegate::rowHeight +
                          2 * listPadding);
    none_->setVisible(isExpanded_ && rows == 0);
    list_->setVisible(isExpanded_ && rows > 0);
}

} // namespace torvo::app
