// The key bindings of the main window.
#include "base/log/Logger.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XTreeViewFiles.h"
#include "gui/window/XBrowserWindow.h"
#include "src/dir/ContextPreviews.h"
#include "src/gui/NavigationBar.h"
#include "src/gui/WinFinder.h"
#include "src/gui/PanelResults.h"

#include <QApplication>
#include <QLineEdit>

namespace tavFinder {

using tav::log;

void WinFinder::setup_hotkeys() {
    auto key = [this](const QKeySequence& k, std::function<void()> f) { addHotKeyMethod(k, std::move(f)); };
    // The directory preview follows the view flags: 2 thumbnails, 0 table.
    key(QKeySequence(Qt::CTRL | Qt::Key_1), [this]() {
        if (ContextPreviews::currentPreview()) viewFlags_.set_flags(2);
    });
    key(QKeySequence(Qt::CTRL | Qt::Key_2), [this]() {
        if (ContextPreviews::currentPreview()) viewFlags_.set_flags(0);
    });
    key(QKeySequence(Qt::CTRL | Qt::Key_N), [this]() {
        log(tav::LOG_TRACE, "WinFinder::on_open_new_win");
        on_open_new_win_here(treeView_->selectedFile());
    });
    key(QKeySequence(Qt::ALT | Qt::Key_R), [this]() { on_navi_root(); });
    key(QKeySequence(Qt::Key_F5), [this]() { on_refresh(); });
    // F3 steps through the hits of a shown result; with none shown it opens the hints, as F1 does.
    auto hints = []() { tav::XBrowserWindow::showHelp(QStringLiteral(":tf/html/FirstMessage.html"), tav::xt("Talvo Finder"), 1); };
    key(QKeySequence(Qt::Key_F3), [this, hints]() {
        log(tav::LOG_TRACE, "WinFinder::setup_hotkeys - F3");
        if (findResults_ && findResults_->step_hit(true)) return;
        hints();
    });
    key(QKeySequence(Qt::SHIFT | Qt::Key_F3), [this]() {
        if (findResults_) findResults_->step_hit(false);
    });
    key(QKeySequence(Qt::Key_F1), hints);
    // Escape cancels; with nothing running it must not touch the tree or the history.
    key(QKeySequence(Qt::Key_Escape), [this]() {
        if (stateFind == FIND_SCAN || stateFind == FIND_CONTENT) on_escape_key();
    });
    auto onReturn = [this]() {
        if (naviBar_ && QApplication::focusWidget() == naviBar_->editPath()) {
            log(tav::LOG_TRACE, "WinFinder::setup_hotkeys - FOCUS ON EDIT PATH");
            on_key_return();
            return;
        }
        on_find();
    };
    key(QKeySequence(Qt::Key_Return), onReturn);
    key(QKeySequence(Qt::Key_Enter), onReturn);
    key(QKeySequence(Qt::ALT | Qt::Key_B), [this]() { on_bookmarks(); });
    key(QKeySequence(Qt::ALT | Qt::Key_H), [this]() { hideToTray(); });
    key(QKeySequence(Qt::ALT | Qt::Key_Left), [this]() {
        log(tav::LOG_TRACE, "WinFinder::setup_hotkeys - LEFT");
        on_navi_back();
    });
    key(QKeySequence(Qt::ALT | Qt::Key_Right), [this]() {
        log(tav::LOG_TRACE, "WinFinder::setup_hotkeys - RIGHT");
        on_navi_forward();
    });
    key(QKeySequence(Qt::ALT | Qt::Key_Up), [this]() {
        log(tav::LOG_TRACE, "WinFinder::setup_hotkeys - UP");
        on_navi_parent();
    });
    key(QKeySequence(Qt::ALT | Qt::Key_Down), []() { log(tav::LOG_TRACE, "WinFinder::setup_hotkeys - DOWN"); });
    key(QKeySequence(Qt::ALT | Qt::Key_P), [this]() { filterFlags_.toggle_flag(FILTER_PATTERN); });
    key(QKeySequence(Qt::ALT | Qt::Key_N), [this]() { filterFlags_.toggle_flag(FILTER_NOT_PATTERN); });
    key(QKeySequence(Qt::ALT | Qt::Key_T), [this]() { filterFlags_.toggle_flag(FILTER_TIME); });
    key(QKeySequence(Qt::ALT | Qt::Key_S), [this]() { filterFlags_.toggle_flag(FILTER_SIZE); });
    key(QKeySequence(Qt::ALT | Qt::Key_C), [this]() { filterFlags_.toggle_flag(FILTER_CONTENT); });
    key(QKeySequence(Qt::ALT | Qt::Key_0), [this]() { filterFlags_.reset_flags(); });
    key(QKeySequence(Qt::CTRL | Qt::Key_Q), []() { quit_application(); });
    key(QKeySequence(Qt::ALT | Qt::Key_F), [this]() { on_filter_menu(); });
    key(QKeySequence(Qt::Key_F2), [this]() { on_rename(); });
}

} // namespace tavFinder
