#include "gui/widgets/XTableViewClassic.h"

#include <QHeaderView>

namespace tav {

XTableViewClassic::XTableViewClassic(QWidget* parent) : QTableView(parent) {
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setContextMenuPolicy(Qt::CustomContextMenu);
    verticalHeader()->hide();
    // A click makes the section the active column but keeps the order shown before
    // the click (the header would flip it itself); the listener decides the order.
    connect(horizontalHeader(), &QHeaderView::sectionPressed, this,
            [this](int) { orderPressed_ = horizontalHeader()->sortIndicatorOrder(); });
    connect(horizontalHeader(), &QHeaderView::sectionClicked, this, [this](int c) {
        if (horizontalHeader()->isSortIndicatorShown()) horizontalHeader()->setSortIndicator(c, orderPressed_);
        eventHeader_.fire(c);
    });
    connect(this, &QWidget::customContextMenuRequested, this, [this](const QPoint& p) {
        const QModelIndex i = indexAt(p);
        eventContext_.fire(i.isValid() ? i.row() : -1);
    });
    connect(this, &QAbstractItemView::doubleClicked, this, [this](const QModelIndex& i) { eventDouble_.fire(i); });
}

void XTableViewClassic::set_args(int singleSelection, int stretchLast) {
    setSelectionMode(singleSelection ? QAbstractItemView::SingleSelection : QAbstractItemView::ExtendedSelection);
    horizontalHeader()->setStretchLastSection(stretchLast != 0);
}

void XTableViewClassic::setSortColum(int column, int descending) {
    horizontalHeader()->setSortIndicatorShown(true);
    horizontalHeader()->setSortIndicator(column, descending ? Qt::DescendingOrder : Qt::AscendingOrder);
}

int XTableViewClassic::activeColumn() const { return horizontalHeader()->sortIndicatorSection(); }
bool XTableViewClassic::isDescending() const { return horizontalHeader()->sortIndicatorOrder() == Qt::DescendingOrder; }
int XTableViewClassic::currentRow() const { return currentIndex().isValid() ? currentIndex().row() : -1; }

bool XTableViewClassic::selectRow(int row, bool notify) {
    if (!model() || row < 0 || row >= model()->rowCount()) return false;
    silent_ = !notify;
    setCurrentIndex(model()->index(row, 0));
    silent_ = false;
    return true;
}

void XTableViewClassic::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTableView::currentChanged(current, previous);
    if (!silent_ && current.isValid() && current.row() != previous.row()) eventRow_.fire(current.row());
}

} // namespace tav
