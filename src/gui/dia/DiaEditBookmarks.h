#pragma once
// The bookmark editor: the whole list to reorder, retitle and delete. All edits
// stay in the model until OK writes them into the store and saves it.
#include "gui/window/XDialog.h"

class QListView;

namespace tavFinder {

class ListModelBookmarks;

class DiaEditBookmarks : public tav::XDialog {
    Q_OBJECT
public:
    explicit DiaEditBookmarks(QWidget* parent = nullptr);

    // Builds the content over a copy of the store's list.
    void setup();

    QListView* listView() const { return listView_; }
    ListModelBookmarks* model() const;
    // The selected row, -1 without a selection.
    int selectedRow() const;
    void selectRow(int row);

    void on_up();
    void on_down();
    void on_edit_bookmark();
    void on_delete();
    void on_delete_all();
    void on_accept();

private:
    QListView* listView_ = nullptr;
};

} // namespace tavFinder
