// Navigation of the main window: history, parent, root, path field,
// refresh and thumbnail sizes.
#include "base/log/Logger.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XMenu.h"
#include "gui/widgets/XTreeViewFiles.h"
#include "src/dir/ContextPreviews.h"
#include "gui/previews/Preview.h"
#include "src/dir/PreviewDir.h"
#include "src/dir/XContainerPreviews.h"
#include "src/gui/PanelThumbs.h"
#include "src/gui/NavigationBar.h"
#include "src/gui/WinFinder.h"

#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QToolButton>

namespace tavFinder {

using tav::log;

void WinFinder::on_navi_root() {
    log(tav::LOG_NAVIGATION, "WinFinder::on_navi_root");
    if (!treeView_) return;
    treeView_->selectFile(QFileInfo(QDir::rootPath()).absoluteFilePath(), false);
    treeView_->collapseAll();
}

void WinFinder::on_navi_back() {
    const QFileInfo fi = history_.get_prev();
    if (!fi.exists() || !treeView_) return;
    flagAddToHistory = false;
    treeView_->selectFile(fi.absoluteFilePath(), false);
    flagAddToHistory = true;
}

void WinFinder::on_navi_forward() {
    if (!history_.hasNext()) return;
    const QFileInfo fi = history_.get_next();
    if (!fi.exists() || !treeView_) return;
    flagAddToHistory = false;
    treeView_->selectFile(fi.absoluteFilePath(), false);
    flagAddToHistory = true;
}

void WinFinder::on_navi_parent() {
    if (!treeView_) return;
    const QFileInfo fi = treeView_->selectedFile();
    if (!fi.exists()) return;
    const QFileInfo parent(fi.absolutePath());
    // Deliberately never climbs onto a root.
    if (QDir(parent.absoluteFilePath()).isRoot() || !parent.exists()) return;
    treeView_->selectFile(parent.absoluteFilePath(), true);
}

void WinFinder::on_refresh() {
    log(tav::LOG_NAVIGATION, "WinFinder::on_refresh");
    tav::Preview* p = ContextPreviews::currentPreview();
    if (!p) return;
    log(tav::LOG_TRACE, "WinFinder::on_refresh, prevCurr@$", p->name());
    p->refresh();
}

void WinFinder::on_key_return() {
    const QString text = naviBar_ ? naviBar_->editPath()->text().trimmed() : QString();
    log(tav::LOG_TRACE, "WinFinder_navigate::on_key_return <$>", text);
    if (!naviBar_ || !treeView_) return;
    QLineEdit* edit = naviBar_->editPath();
    const QString path = text.startsWith(QLatin1String("~/")) || text == QLatin1String("~") ? QDir::homePath() + text.mid(1) : text;
    if (path.isEmpty()) return;
    if (!QFileInfo::exists(path)) {
        tav::XTools::show_input_error(edit, tav::fill(tav::xt("'$' does not exist."), text));
        return;
    }
    tav::XTools::clear_input_error(edit);
    treeView_->selectFile(path, true);
}

unsigned WinFinder::thumb_size_step(unsigned current, bool bigger) {
    const std::vector<unsigned>& sizes = thumbSizes();
    if (bigger) {
        for (unsigned s : sizes)
            if (s > current) return s;
    } else {
        for (auto it = sizes.rbegin(); it != sizes.rend(); ++it)
            if (*it < current) return *it;
    }
    return current;
}

void WinFinder::on_thumb_size(bool bigger) {
    auto* dir = container_preview_ ? dynamic_cast<PreviewDir*>(container_preview_->existingPreviewDirectory()) : nullptr;
    PanelThumbs* thumbs = dir ? dir->thumbPanel() : nullptr;
    if (!thumbs) return;
    const unsigned sz = thumbs->thumbSize();
    log(tav::LOG_TRACE, "WinFinder_navigate::on_thumb_size, flagBigger:$, sz:$", bigger, sz);
    const unsigned now = thumb_size_step(sz, bigger);
    log(tav::LOG_TRACE, "WinFinder_navigate::on_thumb_size, sz now:$", now);
    thumbs->set_thumb_size(now);
}

void WinFinder::on_hist_state_change() {
    log(tav::LOG_TRACE, "WinFinder::on_hist_state_change, hist:$", history_.stateToString());
    if (!naviBar_) return;
    naviBar_->buttonBack()->setEnabled(history_.hasPrev());
    naviBar_->buttonForward()->setEnabled(history_.hasNext());
}

void WinFinder::on_history_select(uint32_t index) {
    if (index >= history_.count() || !treeView_) return;
    history_.setIndex(index);
    flagAddToHistory = false;
    treeView_->selectFile(history_.files()[index].absoluteFilePath(), false);
    flagAddToHistory = true;
    history_.updateState();
}

void WinFinder::on_clear_history() {
    history_.reset();
    if (treeView_) history_.addFile(treeView_->selectedFile());
}

void WinFinder::on_history_menu(const QPoint& globalPos) {
    tav::XMenu menu(this, true);
    const std::vector<QFileInfo>& files = history_.files();
    for (uint32_t i = 0; i < files.size(); ++i) {
        const QFileInfo& fi = files[i];
        const QString name = fi.fileName().isEmpty() ? fi.absoluteFilePath() : fi.fileName();
        menu.createAction(i == history_.getIndex() ? tav::fill("*** $ ***", name) : name,
                          [this, i]() { on_history_select(i); }, tav::XTools::get_file_icon_association(fi),
                          fi.absoluteFilePath());
    }
    if (!files.empty()) menu.addSeparator();
    menu.createAction(tav::xt("Clear History"), [this]() { on_clear_history(); }, WindowBase::icon(QStringLiteral("delete.svg")));
    menu.exec(globalPos);
}

} // namespace tavFinder
