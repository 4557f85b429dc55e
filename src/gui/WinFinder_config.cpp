// The main window's settings: the configuration dialog and the language editor.
#include "base/kernel/Kernel.h"
#include "base/log/Logger.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XBox.h"
#include "gui/widgets/XTreeViewFiles.h"
#include "src/FindApplication.h"
#include "src/dir/XContainerPreviews.h"
#include "src/gui/WinFinder.h"
#include "src/gui/config/DiaWinFinderConfig.h"
#include "src/gui/lang/WinLang.h"

#include <QDir>
#include <QStatusBar>

namespace tavFinder {

using tav::log;
using tav::xt;

void WinFinder::on_config() {
    // The dialog shows the theme chosen (the one of the next start when a change waits for it).
    const bool darkBefore = tav::KernelGUI::tavStyleAtNextStart();
    cfg().flagDarkTheme = darkBefore;
    DiaTavFinderConfig dia(this);
    dia.set_gui_from_cfg(cfg());
    dia.setGeometry(50, 50, 600, 400);
    // Cancel changes nothing.
    if (!dia.isExecOK(false)) {
        log(tav::LOG_TRACE, "dia cancel");
        return;
    }
    // The dialog's record becomes the program's.
    cfg() = dia.config();
    log(tav::LOG_TRACE, "$", cfg().toString());
    // The tree follows the filter switch, the folders-only switch and the text extensions.
    propUseFilter_.set(cfg().flagUseFilter);
    if (treeView_) {
        if (cfg().flagUseFilter) treeView_->setFolderFilter(cfg().filter);
        else treeView_->removeFolderFilter();
        treeView_->setDirsOnly(cfg().flagTreeDirOnly);
        treeView_->invalidateModel();
    }
    if (container_preview_) container_preview_->setTextFileExtensions(cfg().extSet());
    // The theme.
    log(tav::LOG_TRACE, cfg().flagDarkTheme ? "WinFinder_config::on_config - DARK THEME" : "WinFinder_config::on_config - STANDARD THEME");
    if (cfg().flagDarkTheme != darkBefore) {
        // Windows, icons and pictures are made for one theme: switching them halfway leaves
        // white fields with light text and invisible icons. The new theme comes with the
        // next start (the question below offers it now).
        tav::KernelGUI::setTavStyleAtNextStart(cfg().flagDarkTheme);
        // Cached thumbnails and icons were drawn for the old theme.
        log(tav::LOG_TRACE, "THEME CHANGED !");
        log(tav::LOG_TRACE, "del contents of cache dir");
        tav::XTools::empty_out_cache_dir();
        tav::XTools::get_create_cache_dir();
    }
    // The font scale.
    tav::TalvoEngine::setFontScale(kernel_ ? kernel_->getNodeRoot() : nullptr, dia.fontScale());
    // Some choices need a restart: offer it.
    if (tav::XBox::ask_yes_no(this, xt("Restart"),
                              xt("Some options will work only after restart!\nDo you want to restart Talvo Finder ?")))
        FindApplication::restart_later();
    // Everything shown is read again; every window follows the status bar switch.
    on_refresh();
    for (tav::AbstractWindow* w : tav::XTools::getAbstractWindows(false, true))
        if (auto* win = dynamic_cast<WinFinder*>(w)) win->statusBar()->setVisible(cfg().flagStatusBar);
}

void WinFinder::on_lang_editor() {
    log(tav::LOG_TRACE, "WinFinder_config::on_lang_editor, current lang:$", tav::XTools::lang());
    if (WinLang::isOpen()) {
        log(tav::LOG_ERROR, "WinFinder_config::on_lang_editor, one instance only!");
        return;
    }
    auto* win = new WinLang(nullptr);
    tav::XNode* nApp = kernel_ ? kernel_->getCreateNodeApplication() : nullptr;
    if (nApp) win->setNodeWin(nApp->getCreateNode(QStringLiteral("GUI"))->getCreateNode(QStringLiteral("WinLang")));
    win->set_lang_root(tav::XTools::nGUI());
    win->setGeometry(50, 50, 800, 500);
    win->show();
}

} // namespace tavFinder
