#pragma once
// The history editor: the items of one search-history combo box as a list to
// reorder, edit and delete. It keeps nothing; the caller applies the result.
#include "gui/window/XDialog.h"

#include <QStringList>
#include <optional>

class QListView;

namespace tav {
class XComboBox;
}

namespace tavFinder {

class ListModelHistory;

class DiaHistory : public tav::XDialog {
    Q_OBJECT
public:
    explicit DiaHistory(QWidget* parent = nullptr);

    // Runs the editor on 'list'; the edited list on OK, no value on Cancel.
    static std::optional<QStringList> edit_history(QWidget* parent, const QStringList& list);
    // "Edit History" of a combo box: edits its items and keeps its text selected
    // when the text is still among them.
    static void edit_combo_history(QWidget* parent, tav::XComboBox* combo);

    void setup(const QStringList& list);

    QListView* listView() const { return listView_; }
    ListModelHistory* model() const;
    int selectedRow() const;
    void selectRow(int row);

    void on_up();
    void on_down();
    void on_edit();
    void on_delete();
    void on_delete_all();

private:
    QListView* listView_ = nullptr;
};

} // namespace tavFinder
