// Context menus of the main window, the bookmarks menu and the settings menu.
// Every entry captures the file information by value: the menu must not follow
// later selection changes.
#include "base/log/Logger.h"
#include "base/tree/XTypeSupporter.h"
#include "gui/previews/Preview.h"
#include "gui/tools/XSearchMachines.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XBox.h"
#include "gui/widgets/XMenu.h"
#include "gui/widgets/XTreeViewFiles.h"
#include "src/dir/AbstractPreviewDir.h"
#include "src/dir/ContextPreviews.h"
#include "src/dir/XContainerPreviews.h"
#include "base/find/XContentFilter.h"
#include "src/find/FileResult.h"
#include "src/gui/Bookmarks.h"
#include "src/gui/WinFinder.h"
#include "src/gui/apps/Terminal.h"
#include "src/gui/config/ConfigTavFinder.h"
#include "src/gui/dia/DiaBookmark.h"
#include "src/gui/dia/DiaEditBookmarks.h"

#include <QApplication>
#include <QStatusBar>

namespace tavFinder {

using tav::log;
using tav::xt;

void WinFinder::on_contextMenu_treeView(const QFileInfo& fi) {
    log(tav::LOG_TRACE, "WinFinder::on_contextMenu_treeView, fi:$", fi);
    tav::XMenu menu(this);
    fill_contextMenu(menu, fi, nullptr, true);
    menu.execAt();
}

void WinFinder::on_contextMenu_rightSide(const QFileInfo& fi, AbstractPreviewDir* previewDir) {
    log(tav::LOG_TRACE, "WinFinder::on_contextMenu_rightSide, fi:$", fi);
    tav::XMenu menu(this);
    fill_contextMenu(menu, fi, previewDir, false);
    menu.execAt();
}

void WinFinder::fill_contextMenu(tav::XMenu& menu, const QFileInfo& fi, AbstractPreviewDir* previewDir, bool fromTree,
                                 std::function<void()> view) {
    const bool isFile = fi.isFile();
    // Viewing a file.
    if (isFile) {
        if (!view) view = [this, fi]() { open_stand_alone_preview(fi); };
        menu.createAction(xt("View"), view, WindowBase::icon(QStringLiteral("show.svg")));
        tav::XMenu* with = menu.createSubMenu(xt("View with ..."));
        if (container_preview_) {
            for (tav::Preview* p : container_preview_->distinctPreviews()) {
                const QString type = p->type();
                with->createAction(p->name(), [this, type]() { select_preview(QApplication::focusWidget(), type); });
            }
        }
    }
    // Selecting the entry in the tree (not from the tree itself).
    if (!fromTree)
        menu.createAction(xt("Tree"), [this, fi]() { treeView_->selectFile(fi.absoluteFilePath(), true); },
                          WindowBase::icon(QStringLiteral("root.svg")));
    // Opening a file with a program.
    if (isFile) {
        menu.addSeparator();
        create_open_with_app(menu, fi);
        menu.createAction(xt("Open With Default Program"), [fi]() { tav::XTools::open_file_with_default_program(fi); });
    }
    // Rename and delete, when allowed.
    add_modify_entries(menu, fi);
    // Other windows and programs at the entry.
    menu.addSeparator();
    menu.createAction(xt("Window"), [this, fi]() { on_open_new_win_here(fi); }, WindowBase::icon(QStringLiteral("window.svg")));
    menu.createAction(xt("File Manager"), [fi]() { tav::XTools::showFolderInFileManager(fi.absoluteFilePath()); },
                      WindowBase::icon(QStringLiteral("fileManager1.svg")));
    menu.createAction(xt("Terminal"), [fi]() { Terminal::open_here(fi); });
    // Clipboard.
    menu.addSeparator();
    context_menu_fi_path_to_clipboard(menu, fi);
    context_menu_fi_name_to_clipboard(menu, fi);
    // Web search for the name.
    menu.addSeparator();
    context_menu_webSearchFile(menu, fi);
    // Bookmark.
    menu.addSeparator();
    context_menu_bookmark(menu, fi);
    // Properties of a file; the recursive count of a folder.
    if (isFile) {
        menu.addSeparator();
        menu.createAction(xt("Properties"), [this, fi]() { open_properties(fi); });
        return;
    }
    add_deep_info(menu, fi, previewDir, fromTree);
}

void WinFinder::onContextMenu_rightSide_FileResults(const FileResult& fileResult, const tav::find::XContentFilter& filter) {
    log(tav::LOG_TRACE, "WinFinder::onContextMenu_rightSide_FileResults, fResult:$", fileResult.toString());
    tav::XMenu menu(this);
    fill_contextMenu_FileResults(menu, fileResult, filter);
    menu.execAt();
}

// A result gets the whole file menu; its "View" opens the file with the hits marked.
void WinFinder::fill_contextMenu_FileResults(tav::XMenu& menu, const FileResult& fileResult,
                                             const tav::find::XContentFilter& filter) {
    const QFileInfo fi = fileResult.fileInfo;
    Q_UNUSED(filter);
    // "View" opens the details window as a double click does (a member with its own text).
    fill_contextMenu(menu, fi, nullptr, false, [this, fileResult]() { on_open_fileResult(fileResult); });
    menu.addSeparator();
    menu.createAction(xt("Export..."), [this]() { on_export_results(); }, QIcon(), xt("Write the results as CSV, JSON or an HTML report"));
    if (!fileResult.isMember()) return;
    // A member lives inside its archive: what would act on it as a file of its own is off;
    // the file manager and the copied path take the archive.
    const QStringList off{xt("View with ..."), xt("Rename"), xt("Delete"), xt("Terminal"), xt("Open with ..."), xt("Properties")};
    for (QAction* a : menu.actions())
        if (off.contains(a->text())) a->setEnabled(false);
}

void WinFinder::add_deep_info(tav::XMenu& menu, const QFileInfo& fi, AbstractPreviewDir* previewDir, bool fromTree) {
    AbstractPreviewDir* dir = previewDir ? previewDir : (container_preview_ ? container_preview_->previewDirectory() : nullptr);
    // Without a directory preview the menu ends here.
    if (!dir) return;
    menu.addSeparator();
    if (fromTree) {
        menu.createAction(xt("Deep Info"), [this, fi]() {
            log(tav::LOG_TRACE, "WinFinder::on_contextMenu_treeView - deep view");
            on_deep_view(fi);
        });
        return;
    }
    menu.createAction(xt("Deep Info"), [dir]() {
        log(tav::LOG_TRACE, "WinFinder::on_contextMenu_rightSide - prev dir, deep info");
        dir->onDeepInfo();
    }, QIcon(), xt("Count files recursively"));
}

void WinFinder::on_deep_view(const QFileInfo& fi) {
    log(tav::LOG_TRACE, "WinFinder::on_deep_view, fi:$", fi);
    AbstractPreviewDir* dir = container_preview_ ? container_preview_->previewDirectory() : nullptr;
    if (!dir) return;
    // The count runs on the folder the preview shows: the one the menu was opened for.
    if (contextMain_->currentFile().absoluteFilePath() != fi.absoluteFilePath()) treeView_->selectFile(fi.absoluteFilePath(), false);
    dir->onDeepInfo();
}

void WinFinder::context_menu_fi_path_to_clipboard(tav::XMenu& menu, const QFileInfo& fi) {
    menu.createAction(xt("Copy Path to Clipboard"), [fi]() {
        log(tav::LOG_TRACE, "WinFinder::context_menu_fi_path_to_clipboard");
        tav::XClipboard::setText(fi.absoluteFilePath());
    }, WindowBase::icon(QStringLiteral("copy.svg")));
}

void WinFinder::context_menu_fi_name_to_clipboard(tav::XMenu& menu, const QFileInfo& fi) {
    menu.createAction(xt("Copy Filename to Clipboard"), [fi]() {
        log(tav::LOG_TRACE, "WinFinder::context_menu_fi_name_to_clipboard");
        tav::XClipboard::setText(fi.fileName());
    });
}

void WinFinder::context_menu_webSearchFile(tav::XMenu& menu, const QFileInfo& fi) {
    log(tav::LOG_NAVIGATION, "WinFinder::context_menu_webSearchFile, fi: '$'", fi);
    tav::XMenu* web = menu.createSubMenu(xt("Web Search"));
    web->addSeparator();
    // Read at every opening, so an edited list applies at once.
    for (const tav::XSearchMachine& m : tav::XSearchMachines::get_search_machines(false)) {
        if (m.isSeparator()) web->addSeparator();
        else web->createAction(m.title, [m, name = fi.fileName()]() { m.trigger_search_machine(name); });
    }
}

void WinFinder::context_menu_bookmark(tav::XMenu& menu, const QFileInfo& fi) {
    log(tav::LOG_TRACE, "WinFinder::context_menu_bookmark");
    if (Bookmarks::contains_bookmark(Bookmarks::get_tree(), fi.absoluteFilePath())) {
        menu.createAction(xt("Edit Bookmark"), [this, fi]() { on_edit_bookmark(fi); }, WindowBase::icon(QStringLiteral("edit.svg")));
        menu.createAction(xt("Remove Bookmark"), [this, fi]() { on_remove_bookmark(fi); },
                          WindowBase::icon(QStringLiteral("delete.svg")));
    } else {
        menu.createAction(xt("Add Bookmark"), [this, fi]() { on_add_bookmark(fi); }, WindowBase::icon(QStringLiteral("plus.svg")));
    }
}

void WinFinder::on_add_bookmark(const QFileInfo& fi) {
    log(tav::LOG_TRACE, "WinFinder::on_add_bookmark, fi <<<$>>>", fi);
    DiaBookmark dia(this);
    dia.setWindowTitle(xt("Bookmark"));
    dia.set_bookmark(Bookmark{fi.fileName(), fi.absoluteFilePath()});
    if (!dia.isExecOK(true)) return;
    log(tav::LOG_TRACE, "WinFinder::on_add_bookmark, aha");
    Bookmarks::add_bookmark(Bookmarks::get_tree(), dia.get_bookmark());
    Bookmarks::save(Bookmarks::get_tree());
}

void WinFinder::on_edit_bookmark(const QFileInfo& fi) {
    const Bookmark bm = Bookmarks::get_bookmark(Bookmarks::get_tree(), fi.absoluteFilePath());
    log(tav::LOG_TRACE, "WinFinder::on_edit_bookmark, path <<<$>>>", bm.path);
    DiaBookmark dia(this);
    dia.setWindowTitle(xt("Bookmark"));
    dia.set_bookmark(bm);
    if (!dia.isExecOK(true)) return;
    const Bookmark edited = dia.get_bookmark();
    log(tav::LOG_TRACE, "WinFinder::on_edit_bookmark, aha");
    log(tav::LOG_TRACE, "bm:$", Bookmarks::to_string(edited));
    // A blank title keeps the bookmark as it was.
    if (edited.title.trimmed().isEmpty()) return;
    Bookmarks::set_bookmark(Bookmarks::get_tree(), edited);
    Bookmarks::save(Bookmarks::get_tree());
}

void WinFinder::on_remove_bookmark(const QFileInfo& fi) {
    log(tav::LOG_TRACE, "WinFinder::on_remove_bookmark <$>", fi);
    Bookmarks::remove_bookmark(Bookmarks::get_tree(), fi.absoluteFilePath());
    // Saved with the next change or at exit.
    Bookmarks::get_tree().show(tav::XTypeSupporter::basicTypes(), 0, QString(), false, -1);
}

bool WinFinder::fill_bookmarks_menu(tav::XMenu& menu) {
    const tav::XTree& tree = Bookmarks::get_tree();
    if (tree.isEmpty()) return false;
    for (const Bookmark& bm : Bookmarks::from_tree(tree)) {
        menu.createAction(bm.title, [this, bm]() {
            log(tav::LOG_TRACE, "WinFinder::on_bookmarks <$> <$>", bm.path, bm.title);
            treeView_->selectFile(bm.path, true);
        }, tav::XTools::get_file_icon_association(QFileInfo(bm.path)), bm.path);
    }
    menu.addSeparator();
    menu.createAction(xt("Edit Bookmarks"), [this]() { on_edit_bookmarks(); }, WindowBase::icon(QStringLiteral("edit.svg")));
    return true;
}

void WinFinder::on_bookmarks() {
    log(tav::LOG_TRACE, "WinFinder::on_bookmarks");
    tav::XMenu menu(this, true);
    if (!fill_bookmarks_menu(menu)) {
        tav::XBox::info(this, xt("Bookmarks"),
                        xt("There are actually no bookmarks!\nHow to create ?\nContext Menu somewhere\nand select add bookmark!"));
        return;
    }
    menu.execAt();
}

void WinFinder::on_edit_bookmarks() {
    log(tav::LOG_TRACE, "WinFinder::on_edit_bookmarks");
    DiaEditBookmarks dia(this);
    dia.setWindowTitle(xt("Edit Bookmarks"));
    dia.setup();
    dia.setGeometry(50, 50, 800, 600);
    dia.exec();
}

void WinFinder::fill_settings_menu(tav::XMenu& menu) {
    menu.createCheckAction(xt("Mouse Over Info"), cfg().flagTreeMouseOverInfo, [](bool on) { cfg().flagTreeMouseOverInfo = on; });
    menu.createCheckAction(xt("Status Bar"), cfg().flagStatusBar, [this](bool on) {
        cfg().flagStatusBar = on;
        statusBar()->setVisible(on);
    });
    menu.addSeparator();
    menu.createAction(xt("Configuration Dialog"), [this]() { on_config(); }, WindowBase::icon(QStringLiteral("wheel.svg")));
    menu.addSeparator();
    menu.createAction(xt("Language Editor"), [this]() { on_lang_editor(); });
    menu.addSeparator();
    menu.createAction(xt("About Talvo Finder"), [this]() { on_about(); }, QIcon(QStringLiteral(":/tf/icons/find3.svg")));
}

void WinFinder::on_settings_menu() {
    tav::XMenu menu(this, true);
    fill_settings_menu(menu);
    menu.exec(QCursor::pos());
}

} // namespace tavFinder
