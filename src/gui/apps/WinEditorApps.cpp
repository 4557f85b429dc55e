#include "src/gui/apps/WinEditorApps.h"

#include "base/log/Logger.h"
#include "base/process/XProcess.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/panel/XPanel.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XBox.h"
#include "src/gui/apps/ListModelPrograms.h"
#include "src/gui/apps/PanelProgram.h"
#include "src/gui/apps/XAppManager.h"
#include "src/gui/apps/XAppRunner.h"
#include "src/gui/apps/XType_App.h"

#include <QCheckBox>
#include <QFrame>
#include <QItemSelectionModel>
#include <QListView>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace tavFinder {

using tav::log;
using tav::xt;

namespace {
bool gOpen = false;
}

WinEditorApps::WinEditorApps() {
    gOpen = true;
    setWindowIcon(QIcon(QStringLiteral(":/tf/icons/app.svg")));
    setXName(QStringLiteral("Apps"));
}

WinEditorApps::~WinEditorApps() {
    log(tav::LOG_TRACE, "WinPrograms::~WinPrograms");
    gOpen = false;
}

bool WinEditorApps::isOpen() { return gOpen; }

void WinEditorApps::setup(const tav::XTree& apps) {
    if (listView_) return;
    // The editor works on a copy: OK takes it over, Cancel drops it.
    const tav::XTypeSupporter& types = XType_App::forEditor();
    copyAtOpen_ = apps.create_copy(types);
    setWindowTitle(xt("Edit Applications"));
    if (tav::KernelGUI* k = tav::KernelGUI::instanceGui())
        if (tav::XNode* nApp = k->getCreateNodeApplication())
            setNodeWin(nApp->getCreateNode(QStringLiteral("GUI"))->getCreateNode(QStringLiteral("Apps")));
    addHotKeyMethod(QKeySequence(Qt::Key_Escape), [this]() { close(); });

    auto* central = new tav::XPanel(this, tav::XPanel::VERTICAL, QStringLiteral("central"));
    setCentralWidget(central);
    tav::XPanel* top = central->createPanel(tav::XPanel::HORIZONTAL);

    // The list of applications.
    listView_ = top->add(new QListView(top));
    model_ = new ListModelPrograms(apps, &types, listView_);
    listView_->setModel(model_);
    connect(listView_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current) { on_row_selected(current.isValid() ? current.row() : -1); });

    // The buttons beside the list: move, add, copy, delete.
    auto* frame = top->add(new QFrame(top));
    frame->setFrameStyle(QFrame::Panel | QFrame::Sunken);
    auto* frameLayout = new QVBoxLayout(frame);
    frameLayout->setContentsMargins(2, 2, 2, 2);
    auto* tools = new tav::XPanel(frame, tav::XPanel::VERTICAL);
    frameLayout->addWidget(tools);
    auto button = [tools](const char* icon, const char* tip, const char* name, std::function<void()> f) {
        tools->createImageButton(tav::XTools::getIcon(QString::fromLatin1(icon)), xt(tip), std::move(f))
            ->setObjectName(QString::fromLatin1(name));
    };
    button("ar_up.svg", "Move Application up", "buttonUp", [this]() { on_move_up(); });
    button("ar_down.svg", "Move Application down", "buttonDown", [this]() { on_move_down(); });
    button("new.svg", "New Application", "buttonNew", [this]() { on_new_app(); });
    button("copy.svg", "Copy Application", "buttonCopy", [this]() { on_copy_app(); });
    button("delete.svg", "Delete Application", "buttonDelete", [this]() { on_delete_app(); });
    button("r.svg", "Reset Application List", "buttonReset", [this]() { on_reset(); });
    tools->addSpacer();
    button("delete_all.svg", "Delete all Applications", "buttonDeleteAll", [this]() { on_delete_all(); });

    // The form of the selected application.
    tav::XPanel* right = top->createPanel(tav::XPanel::VERTICAL);
    form_ = right->add(new PanelProgram(right));
    form_->from_app(model_->app_at(0));
    right->addSpacer();
    tav::XPanel* rowApply = right->createPanel(tav::XPanel::HORIZONTAL);
    QPushButton* apply = rowApply->createButton(xt("Apply"), [this]() { on_apply(); });
    apply->setObjectName(QStringLiteral("buttonApply"));
    apply->setMinimumHeight(50);
    QPushButton* test = rowApply->createButton(xt("Test/Execute"), [this]() { on_test_exec(); },
                                               tav::XTools::getIcon(QStringLiteral("app.svg")));
    test->setObjectName(QStringLiteral("buttonTest"));
    test->setMinimumHeight(50);
    rowApply->addSpacer();
    checkEnabled_ = rowApply->add(new QCheckBox(xt("Enabled"), rowApply));
    checkEnabled_->setChecked(true);
    checkEnabled_->setMinimumHeight(50);

    // OK and Cancel.
    tav::XPanel* rowOk = central->createPanel(tav::XPanel::HORIZONTAL);
    rowOk->createButton(xt("OK"), [this]() { on_ok(); }, QIcon(QStringLiteral(":/res/icons/apply-ok.svg")))
        ->setObjectName(QStringLiteral("buttonOK"));
    rowOk->createButton(xt("Cancel"), [this]() { on_Cancel(); }, QIcon(QStringLiteral(":/res/icons/apply-cancel.svg")))
        ->setObjectName(QStringLiteral("buttonCancel"));
    rowOk->addSpacer();
}

int WinEditorApps::selectedRow() const {
    QItemSelectionModel* sel = listView_ ? listView_->selectionModel() : nullptr;
    if (!sel || !sel->currentIndex().isValid()) return -1;
    return sel->currentIndex().row();
}

void WinEditorApps::selectRow(int row) {
    if (model_) listView_->setCurrentIndex(model_->index(row, 0));
}

void WinEditorApps::on_row_selected(int row) {
    if (row < 0 || row >= model_->rowCount()) return;
    const XApp app = model_->app_at(row);
    checkEnabled_->setChecked(app.is_flag_enabled());
    form_->from_app(app);
}

void WinEditorApps::on_move_up() {
    log(tav::LOG_TRACE, "WinEditorApps::on_move_up");
    const int row = selectedRow();
    if (model_->rowCount() < 2 || row < 0) return;
    model_->swap(row, row - 1);
    selectRow(row - 1);
}

void WinEditorApps::on_move_down() {
    log(tav::LOG_TRACE, "WinEditorApps::on_move_down");
    const int row = selectedRow();
    if (model_->rowCount() < 2 || row < 0) return;
    model_->swap(row, row + 1);
    selectRow(row + 1);
}

void WinEditorApps::on_new_app() {
    log(tav::LOG_TRACE, "button NEW pressed");
    log(tav::LOG_TRACE, "WinEditorApps::on_new_app");
    const int row = selectedRow();
    model_->newApp(row);
    selectRow(row < 0 ? 0 : row);
}

void WinEditorApps::on_copy_app() {
    const int row = selectedRow();
    if (model_->rowCount() < 1 || row < 0) return;
    model_->copyApp(row);
    selectRow(row);
}

void WinEditorApps::on_delete_app() {
    QItemSelectionModel* sel = listView_->selectionModel();
    if (!X_ASSERT_MSG(sel, "selModel == NULL")) return;
    const int row = sel->currentIndex().isValid() ? sel->currentIndex().row() : -1;
    const int count = model_->rowCount();
    if (row < 0 || row >= count) return;
    const QString name = model_->app_at(row).get_name(false);
    if (!tav::XBox::ask_yes_no(this, xt("Remove Applications"),
                               tav::fill(xt("Do you really want to remove Application '$' ?"), name)))
        return;
    const int next = row == count - 1 ? row - 1 : row;
    model_->delete_row(row);
    selectRow(next);
    log(tav::LOG_TRACE, "WinEditorApps::setup, delete row:$", next);
}

void WinEditorApps::on_reset() {
    log(tav::LOG_TRACE, "WinEditorApps::setup, reset app list");
    if (!tav::XBox::ask_yes_no(this, xt("Reset Applications"), xt("Do you really want to reset Application List ?"))) return;
    model_->from_tree(copyAtOpen_);
    if (model_->rowCount() > 0) selectRow(0);
}

void WinEditorApps::on_delete_all() {
    if (!tav::XBox::ask_yes_no(this, xt("Remove Applications"), xt("Do you really want to remove all Applications?"))) return;
    model_->delete_all();
}

void WinEditorApps::on_apply() {
    const int row = selectedRow();
    if (row < 0) return;
    XApp app = form_->to_app();
    app.set_flag_enabled(checkEnabled_->isChecked());
    model_->set_app_at(row, std::move(app));
    selectRow(row);
    XAppManager::tree() = model_->to_tree();
}

void WinEditorApps::on_test_exec() {
    const XApp app = form_->to_app();
    log(tav::LOG_TRACE, "WinEditorApps::on_test_exec");
    app.show(32);
    // Stays on for the rest of the run: the test is meant to be watched in the log.
    tav::XProcess::atomicFlagDebug = true;
    XAppRunner::start_program(app);
}

void WinEditorApps::on_ok() {
    log(tav::LOG_TRACE, "WinEditorApps::on_ok");
    XAppManager::tree() = model_->to_tree();
    XAppManager::tree().show(XAppManager::types(), 0, QString(), false, -1);
    XAppManager::save();
    close();
}

void WinEditorApps::on_Cancel() {
    log(tav::LOG_TRACE, "WinEditorApps::on_Cancel");
    // Also undoes every Apply, and the file gets the list of the opening again.
    XAppManager::tree() = copyAtOpen_.create_copy(XType_App::forEditor());
    XAppManager::save();
    close();
}

} // namespace tavFinder
