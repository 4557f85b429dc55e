// Context menus of the main window and the bookmarks menu.
#include "base/log/Logger.h"
#include "gui/tools/XSearchMachines.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XMenu.h"
#include "gui/widgets/XTreeViewFiles.h"
#include "src/gui/WinFinder.h"

namespace tavFinder {

using tav::log;
using tav::xt;

namespace {
// The entries both menus share, for one file captured by value.
void addCommonEntries(WinFinder* win, tav::XMenu& menu, const QFileInfo& fi) {
    if (fi.isFile()) {
        menu.addSeparator();
        menu.createAction(xt("Open With Default Program"), [fi]() { tav::XTools::open_file_with_default_program(fi); });
    }
    menu.addSeparator();
    menu.createAction(xt("Window"), [win, fi]() { win->on_open_new_win_here(fi); }, WindowBase::icon(QStringLiteral("window.svg")));
    menu.createAction(xt("File Manager"), [fi]() { tav::XTools::showFolderInFileManager(fi.absoluteFilePath()); },
                      WindowBase::icon(QStringLiteral("fileManager1.svg")));
    menu.addSeparator();
    menu.createAction(xt("Copy Path to Clipboard"), [fi]() {
        log(32, "WinFinder::context_menu_fi_path_to_clipboard");
        tav::XClipboard::setText(fi.absoluteFilePath());
    }, WindowBase::icon(QStringLiteral("copy.svg")));
    menu.createAction(xt("Copy Filename to Clipboard"), [fi]() {
        log(32, "WinFinder::context_menu_fi_name_to_clipboard");
        tav::XClipboard::setText(fi.fileName());
    });
    menu.addSeparator();
    log(16, "WinFinder::context_menu_webSearchFile, fi: '$'", fi);
    tav::XMenu* web = menu.createSubMenu(xt("Web Search"));
    web->addSeparator();
    for (const tav::XSearchMachine& m : tav::XSearchMachines::get_search_machines(false)) {
        if (m.isSeparator()) web->addSeparator();
        else web->createAction(m.title, [m, name = fi.fileName()]() { m.trigger_search_machine(name); });
    }
}
}

void WinFinder::on_contextMenu_treeView(const QFileInfo& fi) {
    log(32, "WinFinder::on_contextMenu_treeView, fi:$", fi);
    tav::XMenu menu(this);
    addCommonEntries(this, menu, fi);
    menu.execAt();
}

void WinFinder::on_contextMenu_rightSide(const QFileInfo& fi, AbstractPreviewDir*) {
    log(32, "WinFinder::on_contextMenu_rightSide, fi:$", fi);
    tav::XMenu menu(this);
    menu.createAction(xt("Tree"), [this, fi]() { treeView_->selectFile(fi.absoluteFilePath(), true); });
    addCommonEntries(this, menu, fi);
    menu.execAt();
}

void WinFinder::on_bookmarks() { log(32, "WinFinder::on_bookmarks"); }

} // namespace tavFinder
