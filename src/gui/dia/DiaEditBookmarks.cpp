#include "src/gui/dia/DiaEditBookmarks.h"

#include "base/log/Logger.h"
#include "gui/panel/XPanel.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XBox.h"
#include "src/gui/dia/DiaBookmark.h"
#include "src/gui/dia/ListModelBookmarks.h"

#include <QItemSelectionModel>
#include <QListView>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace tavFinder {

using tav::log;
using tav::xt;

DiaEditBookmarks::DiaEditBookmarks(QWidget* parent) : tav::XDialog(parent) {}

void DiaEditBookmarks::setup() {
    if (listView_) return;
    const QList<Bookmark> list = Bookmarks::from_tree(Bookmarks::get_tree());

    auto* layout = new QVBoxLayout(this);
    auto* panel = new tav::XPanel(this, tav::XPanel::VERTICAL);
    layout->addWidget(panel);
    listView_ = panel->add(new QListView(panel), 1);
    listView_->setMinimumWidth(480);
    listView_->setModel(new ListModelBookmarks(list, listView_));

    tav::XPanel* rowTools = panel->createPanel(tav::XPanel::HORIZONTAL);
    auto button = [rowTools](const char* icon, const char* tip, const char* name, std::function<void()> f) {
        QToolButton* b = rowTools->createImageButton(tav::XTools::getIcon(QString::fromLatin1(icon)), xt(tip), std::move(f));
        b->setObjectName(QString::fromLatin1(name));
    };
    button("ar_up.svg", "Move Bookmark up", "buttonUp", [this]() { on_up(); });
    button("ar_down.svg", "Move Bookmark down", "buttonDown", [this]() { on_down(); });
    button("edit.svg", "Edit Bookmark", "buttonEdit", [this]() { on_edit_bookmark(); });
    button("delete.svg", "Delete Bookmark", "buttonDelete", [this]() { on_delete(); });
    rowTools->addSpacer();
    button("delete_all.svg", "Delete all Bookmark", "buttonDeleteAll", [this]() { on_delete_all(); });

    tav::XPanel* rowButtons = panel->createPanel(tav::XPanel::HORIZONTAL);
    rowButtons->createButton(xt("OK"), [this]() { on_accept(); }, QIcon(QStringLiteral(":/res/icons/apply-ok.svg")))
        ->setObjectName(QStringLiteral("buttonOK"));
    rowButtons->createButton(xt("Cancel"), [this]() { reject(); }, QIcon(QStringLiteral(":/res/icons/apply-cancel.svg")))
        ->setObjectName(QStringLiteral("buttonCancel"));
    rowButtons->addSpacer();
}

ListModelBookmarks* DiaEditBookmarks::model() const {
    return listView_ ? qobject_cast<ListModelBookmarks*>(listView_->model()) : nullptr;
}

int DiaEditBookmarks::selectedRow() const {
    QItemSelectionModel* sel = listView_ ? listView_->selectionModel() : nullptr;
    if (!sel) return -1;
    const QModelIndex current = sel->currentIndex();
    return current.isValid() ? current.row() : -1;
}

void DiaEditBookmarks::selectRow(int row) {
    ListModelBookmarks* m = model();
    if (!m) return;
    // An invalid row clears the selection.
    listView_->setCurrentIndex(m->index(row, 0));
}

void DiaEditBookmarks::on_up() {
    ListModelBookmarks* m = model();
    if (!m || m->rowCount() < 2) return;
    const int row = selectedRow();
    log(tav::LOG_TRACE, "DiaEditBookmarks::setup, up, row:$", row);
    if (row < 0) return;
    m->swap(row, row - 1);
    selectRow(row - 1);
}

void DiaEditBookmarks::on_down() {
    ListModelBookmarks* m = model();
    if (!m || m->rowCount() < 2) return;
    const int row = selectedRow();
    if (row < 0) return;
    // On the last row the swap is refused and the selection goes, as for up on the first row.
    m->swap(row, row + 1);
    selectRow(row + 1);
}

void DiaEditBookmarks::on_edit_bookmark() {
    ListModelBookmarks* m = model();
    if (!X_ASSERT_MSG(m, "model == NULL")) return;
    const int row = selectedRow();
    if (row < 0) return;
    const Bookmark old = m->bmark_at(row);
    DiaBookmark dia(this);
    dia.setWindowTitle(xt("Bookmark"));
    dia.set_bookmark(old);
    if (!dia.isExecOK(true)) return;
    const Bookmark bm = dia.get_bookmark();
    log(tav::LOG_TRACE, "WinFinder::DiaEditBookmarks::on_edit_bookmark");
    log(tav::LOG_TRACE, "bm:$", Bookmarks::to_string(bm));
    // A blank title keeps the old one.
    if (bm.title.trimmed().isEmpty()) return;
    log(tav::LOG_TRACE, "DiaEditBookmarks::on_edit_bookmark, got bm <$>", Bookmarks::to_string(bm));
    m->set_bmark_at(row, bm);
    selectRow(row);
}

void DiaEditBookmarks::on_delete() {
    QItemSelectionModel* sel = listView_ ? listView_->selectionModel() : nullptr;
    if (!X_ASSERT_MSG(sel, "selModel == NULL")) return;
    ListModelBookmarks* m = model();
    if (!X_ASSERT_MSG(m, "model == NULL")) return;
    const int row = sel->currentIndex().isValid() ? sel->currentIndex().row() : -1;
    const int count = m->rowCount();
    if (row < 0 || row >= count) return;
    const int next = row == count - 1 ? count - 2 : row;
    log(tav::LOG_TRACE, "DiaEditBookmarks::delete_row, row:$", row);
    m->delete_row(row);
    selectRow(next);
    log(tav::LOG_TRACE, "DiaEditBookmarks::setup, delete row:$", next);
}

void DiaEditBookmarks::on_delete_all() {
    if (!tav::XBox::ask_yes_no(this, xt("Delete Bookmarks"), xt("Do you really want to delete\nall Bookmarks ?"))) return;
    log(tav::LOG_TRACE, "delete all bookmarks");
    log(tav::LOG_TRACE, "DiaEditBookmarks::delete_all");
    if (ListModelBookmarks* m = model()) m->delete_all();
}

void DiaEditBookmarks::on_accept() {
    log(tav::LOG_TRACE, "DiaEditBookmarks::on_accept");
    ListModelBookmarks* m = model();
    if (!X_ASSERT_MSG(m, "model == NULL")) return;
    Bookmarks::to_tree(Bookmarks::get_tree(), m->bookmarks());
    Bookmarks::save(Bookmarks::get_tree());
    accept();
}

} // namespace tavFinder
