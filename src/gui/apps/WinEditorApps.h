#pragma once
// The applications editor: the list of custom applications, buttons to order,
// add, copy and delete them, and the form of the selected one. It works on a
// copy: Apply puts the list into the store, OK also saves it, Cancel puts back
// and saves the list as it was when the window opened. One at a time.
#include "base/tree/XTree.h"
#include "src/gui/WindowBase.h"

class QCheckBox;
class QListView;
class QPushButton;

namespace tavFinder {

class ListModelPrograms;
class PanelProgram;

class WinEditorApps : public WindowBase {
    Q_OBJECT
public:
    WinEditorApps();
    ~WinEditorApps() override;

    // An editor exists; while it does, the menu entry and the tool button do nothing.
    static bool isOpen();

    // Builds the window over a copy of 'apps' (the caller passes XAppManager::get_copy()).
    void setup(const tav::XTree& apps);

    QListView* listView() const { return listView_; }
    ListModelPrograms* model() const { return model_; }
    PanelProgram* form() const { return form_; }
    QCheckBox* checkEnabled() const { return checkEnabled_; }
    int selectedRow() const;
    void selectRow(int row);

    void on_move_up();
    void on_move_down();
    void on_new_app();
    void on_copy_app();
    void on_delete_app();
    void on_reset();
    void on_delete_all();
    void on_apply();
    void on_test_exec();
    void on_ok();
    void on_Cancel();

private:
    void on_row_selected(int row);

    QListView* listView_ = nullptr;
    ListModelPrograms* model_ = nullptr;
    PanelProgram* form_ = nullptr;
    QCheckBox* checkEnabled_ = nullptr;
    tav::XTree copyAtOpen_;
};

} // namespace tavFinder
