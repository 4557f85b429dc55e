#include "src/gui/dia/ListModelBookmarks.h"

#include "base/log/Logger.h"
#include "gui/tools/XTools.h"

#include <QApplication>
#include <QPalette>

namespace tavFinder {

using tav::log;

ListModelBookmarks::ListModelBookmarks(const QList<Bookmark>& list, QObject* parent)
    : QAbstractListModel(parent), list_(list) {}

int ListModelBookmarks::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : list_.size(); }

QVariant ListModelBookmarks::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || !isValidRow(index.row())) return QVariant();
    const Bookmark& bm = list_.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        // Two bookmarks may share a title: the path under it tells them apart.
        return bm.path.isEmpty() || bm.path == bm.title ? bm.title : bm.title + QLatin1Char('\n') + bm.path;
    case Qt::ToolTipRole:
        return bm.path;
    case Qt::DecorationRole:
        return tav::XTools::get_file_icon_association(QFileInfo(bm.path));
    case Qt::BackgroundRole:
        // The dark style draws its own rows.
        if (tav::XTools::isTavStyleDark()) return QVariant();
        return index.row() % 2 == 0 ? QApplication::palette().brush(QPalette::Current, QPalette::AlternateBase)
                                    : QApplication::palette().brush(QPalette::Current, QPalette::Base);
    default:
        return QVariant();
    }
}

Bookmark ListModelBookmarks::bmark_at(int row) const {
    if (!isValidRow(row)) {
        log(tav::LOG_TRACE, "ListModelBookmarks::bmark_at, row:$, range problems 0...$", row, list_.size());
        return Bookmark();
    }
    return list_.at(row);
}

void ListModelBookmarks::set_bmark_at(int row, const Bookmark& bm) {
    if (!isValidRow(row)) {
        log(tav::LOG_TRACE, "ListModelBookmarks::set_bmark_at, row:$, range problems 0...$", row, list_.size());
        return;
    }
    beginResetModel();
    list_[row] = bm;
    endResetModel();
}

void ListModelBookmarks::swap(int a, int b) {
    if (!isValidRow(a) || !isValidRow(b) || a == b) return;
    log(tav::LOG_TRACE, "ListModelBookmarks::swap");
    beginResetModel();
    list_.swapItemsAt(a, b);
    endResetModel();
}

bool ListModelBookmarks::delete_row(int row) {
    if (!isValidRow(row)) {
        log(tav::LOG_TRACE, "DiaEditBookmarks::delete_row, bounds ?");
        return false;
    }
    beginResetModel();
    list_.removeAt(row);
    endResetModel();
    return true;
}

void ListModelBookmarks::delete_all() {
    beginResetModel();
    list_.clear();
    endResetModel();
}

} // namespace tavFinder
