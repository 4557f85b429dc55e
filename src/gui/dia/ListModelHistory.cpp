#include "src/gui/dia/ListModelHistory.h"

#include "base/log/Logger.h"

#include <QApplication>
#include <QPalette>

namespace tavFinder {

using tav::log;

ListModelHistory::ListModelHistory(const QStringList& list, QObject* parent) : QAbstractListModel(parent), list_(list) {}

int ListModelHistory::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : list_.size(); }

QVariant ListModelHistory::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || !isValidRow(index.row())) return QVariant();
    switch (role) {
    case Qt::DisplayRole:
        return list_.at(index.row());
    case Qt::BackgroundRole:
        // Striped in every style, the dark one included.
        return index.row() % 2 == 0 ? QApplication::palette().brush(QPalette::Current, QPalette::AlternateBase)
                                    : QApplication::palette().brush(QPalette::Current, QPalette::Base);
    default:
        return QVariant();
    }
}

QString ListModelHistory::hist_at(int row) const {
    if (!isValidRow(row)) {
        log(tav::LOG_TRACE, "ListModelHistory::hist_at, row:$, range problems 0...$", row, list_.size());
        return QString();
    }
    return list_.at(row);
}

void ListModelHistory::set_hist_at(int row, const QString& text) {
    if (!isValidRow(row)) {
        log(tav::LOG_TRACE, "ListModelHistory::set_hist_at, row:$, range problems 0...$", row, list_.size());
        return;
    }
    beginResetModel();
    list_[row] = text;
    endResetModel();
}

void ListModelHistory::swap(int a, int b) {
    if (!isValidRow(a) || !isValidRow(b) || a == b) return;
    log(tav::LOG_TRACE, "ListModelBookmarks::swap");
    beginResetModel();
    list_.swapItemsAt(a, b);
    endResetModel();
}

bool ListModelHistory::delete_row(int row) {
    if (!isValidRow(row)) {
        log(tav::LOG_TRACE, "ListModelBookmarks::delete_row, bounds ?");
        return false;
    }
    beginResetModel();
    list_.removeAt(row);
    endResetModel();
    return true;
}

void ListModelHistory::delete_all() {
    beginResetModel();
    list_.clear();
    endResetModel();
}

} // namespace tavFinder
