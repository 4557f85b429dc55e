#include "gui/table/XTableWidget.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <algorithm>

namespace tav {

XTableWidget::XTableWidget(QWidget* parent) : QTableWidget(parent) {
    setMouseTracking(true);
    connect(horizontalHeader(), &QHeaderView::sectionClicked, this, [this](int c) { evHeader_.fire(c); });
    connect(this, &QTableWidget::cellClicked, this, [this](int r, int) { evRow_.fire(r); });
    connect(this, &QTableWidget::cellDoubleClicked, this, [this](int r, int) { evRowDouble_.fire(r); });
}

void XTableWidget::setupRows(int rowHeight) {
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    // The style's minimum (from the font) would otherwise win over a small row height.
    verticalHeader()->setMinimumSectionSize(std::min(rowHeight, verticalHeader()->minimumSectionSize()));
    verticalHeader()->setDefaultSectionSize(rowHeight);
}

void XTableWidget::contextMenuEvent(QContextMenuEvent* e) {
    const int r = rowAt(viewport()->mapFromGlobal(e->globalPos()).y());
    if (r >= 0) evContext_.fire(r);
}

void XTableWidget::mouseMoveEvent(QMouseEvent* e) {
    QTableWidget::mouseMoveEvent(e);
    const int r = rowAt(e->pos().y());
    if (r != hovered_) {
        hovered_ = r;
        if (r >= 0) evHover_.fire(r);
    }
}

void XTableWidget::leaveEvent(QEvent* e) {
    QTableWidget::leaveEvent(e);
    hovered_ = -1;
}

void XTableWidget::keyPressEvent(QKeyEvent* e) {
    if ((e->key() == Qt::Key_Return || e->key() == Qt::Key_Enter) && currentRow() >= 0) {
        evRowDouble_.fire(currentRow());
        return;
    }
    // Moving with the keys selects as a click does.
    const int before = currentRow();
    QTableWidget::keyPressEvent(e);
    if (currentRow() >= 0 && currentRow() != before) evRow_.fire(currentRow());
}

} // namespace tav
