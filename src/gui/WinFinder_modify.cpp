// Renaming and deleting from the main window. Both ask first, let go of the
// previewed file before touching it, and select the parent folder afterwards.
#include "base/io/XFileIO.h"
#include "base/log/Logger.h"
#include "gui/previews/Preview.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XBox.h"
#include "gui/widgets/XMenu.h"
#include "gui/widgets/XTreeViewFiles.h"
#include "src/dir/ContextPreviews.h"
#include "src/gui/WinFinder.h"
#include "src/gui/config/ConfigTavFinder.h"

#include <QAction>
#include <QDir>

namespace tavFinder {

using tav::log;
using tav::xt;

namespace {
constexpr int kModifyActionId = 200;
}

void WinFinder::add_modify_entries(tav::XMenu& menu, const QFileInfo& fi) {
    if (cfg().flag_tf_read_only) return;
    menu.addSeparator();
    QAction* rename = menu.createAction(xt("Rename"), false, false, true, kModifyActionId);
    connect(rename, &QAction::triggered, this, [this, fi]() { rename_file(fi); });
    QAction* del = menu.createAction(xt("Delete"), false, false, true, kModifyActionId);
    connect(del, &QAction::triggered, this, [this, fi]() { on_delete(fi); });
}

void WinFinder::on_rename() {
    log(32, "WinFinder::on_rename");
    tav::Preview* p = ContextPreviews::currentPreview();
    if (!p) return;
    rename_file(p->file_info());
}

namespace {
// Selects 'folder' in the tree, or shows it again when the tree is already there.
void selectParent(WinFinder* win, const QString& folder) {
    if (win->treeView()->selectedFile().absoluteFilePath() == QFileInfo(folder).absoluteFilePath())
        win->on_treeView_selectFile(QFileInfo(folder));
    else
        win->treeView()->selectFile(folder, true);
}
}

void WinFinder::rename_file(const QFileInfo& fi) {
    const QString name = tav::XBoxInput::get_text(this, xt("Rename"), QString(), fi.fileName());
    if (name.isEmpty()) return;
    // Taken as entered; the platform's own separator joins folder and name.
    const QString newPath = fi.absolutePath() + QDir::separator() + name;
    // An existing target (the current name included) is never replaced.
    const bool ok = !QFileInfo::exists(newPath) && QDir().rename(fi.absoluteFilePath(), newPath);
    if (!ok) {
        tav::XBox::warn(this, xt("Error"), xt("Cannot rename file"));
        return;
    }
    selectParent(this, fi.absolutePath());
}

void WinFinder::on_delete(const QFileInfo& fi) {
    const bool isDir = fi.isDir();
    const QString question = tav::fill("$\n$", isDir ? xt("Do you really want to delete directory ?")
                                                       : xt("Do you really want to delete file ?"),
                                       fi.absoluteFilePath());
    if (!tav::XBox::ask_yes_no(this, isDir ? xt("Delete Directory") : xt("Delete File"), question)) return;
    // The preview must not hold the file open while it goes.
    if (tav::Preview* p = ContextPreviews::currentPreview()) {
        p->close_preview();
        log(16, "WinFinder_modify::on_delete, Preview-Open-Counter:$", tav::Preview::open_counter());
    }
    const bool ok = isDir ? QDir(fi.absoluteFilePath()).removeRecursively() : tav::deleteFile(fi.absoluteFilePath());
    if (!ok) {
        tav::XBox::warn(this, xt("Error"),
                        tav::fill("$\n$", isDir ? xt("Cannot Delete Directory") : xt("Cannot Delete File"), fi.absoluteFilePath()));
        return;
    }
    selectParent(this, fi.absolutePath());
}

} // namespace tavFinder
