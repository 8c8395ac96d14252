#include "Controls/IgnoredItemsList.h"

#include "Controls/IgnoredItemDelegate.h"
#include "Controls/IgnoredItemsModel.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>

#include <algorithm>

namespace torvo::app {

namespace {

constexpr int rowsPerBatch = 20'000;

} // namespace

IgnoredItemsList::IgnoredItemsList(QWidget* parent) : QListView(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setItemDelegate(new IgnoredItemDelegate(this));
    // Measure one row only, so that long lists open as fast as short ones.
    setUniformItemSizes(true);
    // QListView computes the position of every row: 50 ms for half a million.
    setLayoutMode(Batched);
    setBatchSize(rowsPerBatch);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setFrameShape(QFrame::StyledPanel);
    setMouseTracking(true);
}

void IgnoredItemsList::copy() const {
    QModelIndexList rows = selectionModel()->selectedIndexes();
    if (rows.isEmpty())
        return;
    std::ranges::sort(rows, {}, &QModelIndex::row);
    QStringList lines;
    for (const QModelIndex& row : rows)
        lines.append(row.data().toString() + QLatin1Char('\t') +
                     row.data(IgnoredItemsModel::reasonRole).toString());
    QGuiApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
}

void IgnoredItemsList::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy))
        copy();
    else
        QListView::keyPressEvent(event);
}

void IgnoredItemsList::contextMenuEvent(QContextMenuEvent* event) {
    QMenu menu(this);
    QAction* const copyRows = menu.addAction(tr("Copy"));
    copyRows->setEnabled(selectionModel()->hasSelection());
    connect(copyRows, &QAction::triggered, this, &IgnoredItemsList::copy);
    connect(menu.addAction(tr("Select All")), &QAction::triggered, this, &QListView::selectAll);
    const QModelIndexList rows = selectionModel()->selectedIndexes();
    if (rows.size() == 1) {
        QAction* const show = menu.addAction(tr("Show in Folder"));
        show->setEnabled(false);
        Q_EMIT rowMenuOpening(rows.front().data().toString(), show);
    }
    menu.exec(event->globalPos());
}

} // namespace torvo::app
