#include "src/gui/dia/DiaHistory.h"

#include "base/log/Logger.h"
#include "gui/panel/XPanel.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XBox.h"
#include "gui/widgets/XComboBox.h"
#include "src/gui/dia/ListModelHistory.h"

#include <QItemSelectionModel>
#include <QListView>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace tavFinder {

using tav::log;
using tav::xt;

DiaHistory::DiaHistory(QWidget* parent) : tav::XDialog(parent) {}

std::optional<QStringList> DiaHistory::edit_history(QWidget*, const QStringList& list) {
    // Without a parent widget: the dialog is also opened by a developer command alone.
    DiaHistory dia(nullptr);
    dia.setup(list);
    dia.setWindowTitle(xt("History Editor"));
    if (!dia.isExecOK(true)) return std::nullopt;
    ListModelHistory* m = dia.model();
    if (!X_ASSERT_MSG(m, "model == NULL")) return std::nullopt;
    return m->items();
}

void DiaHistory::edit_combo_history(QWidget* parent, tav::XComboBox* combo) {
    if (!X_ASSERT_MSG(combo, "comboBox == NULL")) return;
    const QString current = combo->currentText();
    const std::optional<QStringList> edited = edit_history(parent, combo->get_string_items());
    if (!edited) return;
    combo->set_data(*edited);
    if (edited->contains(current)) combo->setCurrentText(current);
}

void DiaHistory::setup(const QStringList& list) {
    log(tav::LOG_TRACE, "DiaHistory::setup");
    if (listView_) return;
    auto* layout = new QVBoxLayout(this);
    auto* panel = new tav::XPanel(this, tav::XPanel::VERTICAL);
    layout->addWidget(panel);

    tav::XPanel* content = panel->createPanel(tav::XPanel::HORIZONTAL);
    listView_ = content->add(new QListView(content), 1);
    listView_->setMinimumWidth(480);
    listView_->setModel(new ListModelHistory(list, listView_));

    tav::XPanel* tools = content->createPanel(tav::XPanel::VERTICAL);
    auto button = [tools](const char* icon, const char* tip, const char* name, std::function<void()> f) {
        QToolButton* b = tools->createImageButton(tav::XTools::getIcon(QString::fromLatin1(icon)), xt(tip), std::move(f));
        b->setObjectName(QString::fromLatin1(name));
    };
    button("ar_up.svg", "Move History Item up", "buttonUp", [this]() { on_up(); });
    // The down button shares the up button's tool tip.
    button("ar_down.svg", "Move History Item up", "buttonDown", [this]() { on_down(); });
    button("edit.svg", "Edit History Item", "buttonEdit", [this]() { on_edit(); });
    button("delete.svg", "Delete History Item", "buttonDelete", [this]() { on_delete(); });
    tools->addSpacer();
    button("delete_all.svg", "Delete all History Items", "buttonDeleteAll", [this]() { on_delete_all(); });

    tav::XPanel* rowButtons = panel->createPanel(tav::XPanel::HORIZONTAL);
    rowButtons->createButton(xt("OK"), [this]() { accept(); }, QIcon(QStringLiteral(":/res/icons/apply-ok.svg")))
        ->setObjectName(QStringLiteral("buttonOK"));
    rowButtons->createButton(xt("Cancel"), [this]() { reject(); }, QIcon(QStringLiteral(":/res/icons/apply-cancel.svg")))
        ->setObjectName(QStringLiteral("buttonCancel"));
    rowButtons->addSpacer();
}

ListModelHistory* DiaHistory::model() const {
    return listView_ ? qobject_cast<ListModelHistory*>(listView_->model()) : nullptr;
}

int DiaHistory::selectedRow() const {
    QItemSelectionModel* sel = listView_ ? listView_->selectionModel() : nullptr;
    if (!sel) return -1;
    return sel->currentIndex().isValid() ? sel->currentIndex().row() : -1;
}

void DiaHistory::selectRow(int row) {
    if (ListModelHistory* m = model()) listView_->setCurrentIndex(m->index(row, 0));
}

void DiaHistory::on_up() {
    ListModelHistory* m = model();
    if (!m || m->rowCount() < 2) return;
    const int row = selectedRow();
    log(tav::LOG_TRACE, "DiaEditBookmarks::setup, up, row:$", row);
    if (row < 0) return;
    m->swap(row, row - 1);
    selectRow(row - 1);
}

void DiaHistory::on_down() {
    ListModelHistory* m = model();
    if (!m || m->rowCount() < 2) return;
    const int row = selectedRow();
    if (row < 0) return;
    m->swap(row, row + 1);
    selectRow(row + 1);
}

void DiaHistory::on_edit() {
    ListModelHistory* m = model();
    if (!X_ASSERT_MSG(m, "model == NULL")) return;
    const int row = selectedRow();
    if (row < 0) return;
    const QString old = m->hist_at(row);
    const QString text = tav::XBoxInput::get_text(this, xt("Edit History"), QString(), old);
    // An empty answer keeps the old text.
    if (text.isEmpty()) return;
    m->set_hist_at(row, text);
    selectRow(row);
}

void DiaHistory::on_delete() {
    QItemSelectionModel* sel = listView_ ? listView_->selectionModel() : nullptr;
    if (!X_ASSERT_MSG(sel, "selModel == NULL")) return;
    ListModelHistory* m = model();
    if (!X_ASSERT_MSG(m, "model == NULL")) return;
    const int row = sel->currentIndex().isValid() ? sel->currentIndex().row() : -1;
    const int count = m->rowCount();
    if (row < 0 || row >= count) return;
    const int next = row == count - 1 ? count - 2 : row;
    log(tav::LOG_TRACE, "ListModelBookmarks::delete_row, row:$", row);
    m->delete_row(row);
    selectRow(next);
    log(tav::LOG_TRACE, "DiaEditBookmarks::setup, delete row:$", next);
}

void DiaHistory::on_delete_all() {
    if (!tav::XBox::ask_yes_no(this, xt("Delete History"), xt("Do you really want to delete\nall History Elements ?"))) return;
    log(tav::LOG_TRACE, "delete all bookmarks");
    log(tav::LOG_TRACE, "ListModelBookmarks::delete_all");
    if (ListModelHistory* m = model()) m->delete_all();
}

} // namespace tavFinder
