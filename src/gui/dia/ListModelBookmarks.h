#pragma once
// The bookmark editor's list: a working copy of the bookmarks, shown by title
// with the file-type icon of the path. Every change resets the whole model.
#include "src/gui/Bookmarks.h"

#include <QAbstractListModel>
#include <QList>

namespace tavFinder {

class ListModelBookmarks : public QAbstractListModel {
    Q_OBJECT
public:
    explicit ListModelBookmarks(const QList<Bookmark>& list, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;

    // A copy; two empty strings outside the range.
    Bookmark bmark_at(int row) const;
    // Outside the range only logged; nothing is written.
    void set_bmark_at(int row, const Bookmark& bm);
    // Exchanges two valid, different rows; anything else changes nothing.
    void swap(int a, int b);
    // False (and a log line) when the row is out of range.
    bool delete_row(int row);
    void delete_all();

    const QList<Bookmark>& bookmarks() const { return list_; }

private:
    bool isValidRow(int row) const { return row >= 0 && row < list_.size(); }
    QList<Bookmark> list_;
};

} // namespace tavFinder
