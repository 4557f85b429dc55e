#pragma once
// The history editor's list: a copy of the strings of one search-history combo
// box. Every change resets the whole model.
#include <QAbstractListModel>
#include <QStringList>

namespace tavFinder {

class ListModelHistory : public QAbstractListModel {
    Q_OBJECT
public:
    explicit ListModelHistory(const QStringList& list, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;

    // Empty text outside the range.
    QString hist_at(int row) const;
    // Outside the range only logged; nothing is written.
    void set_hist_at(int row, const QString& text);
    void swap(int a, int b);
    bool delete_row(int row);
    void delete_all();

    const QStringList& items() const { return list_; }

private:
    bool isValidRow(int row) const { return row >= 0 && row < list_.size(); }
    QStringList list_;
};

} // namespace tavFinder
