#pragma once
// A table view with whole-row selection whose user events go to listener lists.
#include "base/core/XEventListener.h"

#include <QTableView>
#include <functional>

namespace tav {

class XTableViewClassic : public QTableView {
    Q_OBJECT
public:
    explicit XTableViewClassic(QWidget* parent = nullptr);

    // 'singleSelection' 1: one row at a time; 'stretchLast' 1: the last column stretches.
    void set_args(int singleSelection, int stretchLast);
    // The sort indicator; 'descending' 1 or 0. A click on a section moves the
    // indicator there with the order it showed; eventHeaderClicked decides the rest.
    void setSortColum(int column, int descending);
    int activeColumn() const;
    bool isDescending() const;
    int currentRow() const;
    bool selectRow(int row, bool notify);

    XEventListener<std::function<void(int)>>& eventHeaderClicked() { return eventHeader_; }
    XEventListener<std::function<void(int)>>& eventRowSelected() { return eventRow_; }
    XEventListener<std::function<void(int)>>& eventContextMenu() { return eventContext_; }
    XEventListener<std::function<void(const QModelIndex&)>>& eventDoubleClick() { return eventDouble_; }

protected:
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

private:
    XEventListener<std::function<void(int)>> eventHeader_;
    XEventListener<std::function<void(int)>> eventRow_;
    XEventListener<std::function<void(int)>> eventContext_;
    XEventListener<std::function<void(const QModelIndex&)>> eventDouble_;
    bool silent_ = false;
    Qt::SortOrder orderPressed_ = Qt::AscendingOrder;
};

} // namespace tav
