#pragma once
// The applications editor's list: a working copy of the records, one row per
// record, shown by raw name. Every change resets the whole model.
#include "src/gui/apps/XApp.h"

#include <QAbstractListModel>
#include <vector>

namespace tav {
class XTypeSupporter;
}

namespace tavFinder {

class ListModelPrograms : public QAbstractListModel {
    Q_OBJECT
public:
    ListModelPrograms(const tav::XTree& tree, const tav::XTypeSupporter* types, QObject* parent = nullptr);

    void from_tree(const tav::XTree& tree);
    tav::XTree to_tree() const;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;

    // A copy of the row's record; an empty record (no keys) outside the range.
    XApp app_at(int row) const;
    // Outside the range only logged; nothing is written.
    void set_app_at(int row, XApp app);
    // A new default record inserted at 'row' (row 0 when 'row' is not valid).
    void newApp(int row);
    // A copy of the row's record under a new unique name, inserted at 'row'.
    void copyApp(int row);
    void swap(int a, int b);
    void delete_row(int row);
    void delete_all();

private:
    bool isValidRow(int row) const { return row >= 0 && row < int(apps_.size()); }
    bool nameTaken(const QString& name) const;

    std::vector<XApp> apps_;
    const tav::XTypeSupporter* types_;
};

} // namespace tavFinder
