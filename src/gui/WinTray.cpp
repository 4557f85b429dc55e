#include "src/gui/WinTray.h"

#include "base/kernel/Kernel.h"
#include "base/log/Logger.h"
#include "base/thread/XThread.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XBox.h"
#include "gui/widgets/XMenu.h"
#include "src/gui/WinFinder.h"
#include "src/gui/WindowBase.h"

#include <QCoreApplication>
#include <atomic>

namespace tavFinder {

using tav::log;

namespace {
WinTray* gTray = nullptr;
std::atomic<bool> gWatchdogEnabled{true};
}

WinTray* WinTray::get() {
    if (!gTray) gTray = new WinTray;
    return gTray;
}
bool WinTray::exists() { return gTray != nullptr; }
void WinTray::destroy() {
    delete gTray;
    gTray = nullptr;
}
void WinTray::setWatchdogEnabled(bool on) {
    gWatchdogEnabled = on;
    if (gTray && !on) gTray->watchdog_.stop();
}

WinTray::WinTray() : tav::XTray(nullptr), watchdog_(500) {
    setIcon(QIcon(QStringLiteral(":/tf/icons/find3.svg")));
    setToolTip(QStringLiteral("Talvo Finder"));
    iconShow_ = WindowBase::icon(QStringLiteral("show.svg"));
    iconHide_ = WindowBase::icon(QStringLiteral("hide.svg"));

    tav::XMenu* m = menu();
    m->createAction(tav::xt("Quit"), []() { WinFinder::quit_application(); }, QIcon(QStringLiteral(":/tf/icons/close.svg")));
    m->addSeparator();
    m->createAction(tav::xt("New Window"), []() { WinFinder::new_win(QString()); }, WindowBase::icon(QStringLiteral("find.svg")));
    m->addSeparator();
    m->createAction(tav::xt("Reset Configuration"), [this]() { on_reset_configuration(); },
                    QIcon(QStringLiteral(":/tf/icons/reset.svg")));
    m->addSeparator();

    watchdog_.addListener([this]() { on_watchdog(); });
    tav::run_in_gui_thread([]() {
        if (gTray && gWatchdogEnabled) gTray->watchdog_.start();
    }, 1000);
}

WinTray::~WinTray() { watchdog_.stop(); }

void WinTray::on_watchdog() {
    if (!gWatchdogEnabled) return;
    if (!tav::XTools::getAbstractWindows(false, true).empty()) return;
    watchdog_.stop();
    WinFinder::quit_the_app();
}

void WinTray::on_reset_configuration() {
    if (!tav::XBox::ask_yes_no(nullptr, tav::xt("Reset Config"),
                               tav::xt("Reset Talvo Finder Configuration\nConfirm to bring Talvo Finder\nto initial state and restart program")))
        return;
    tav::run_in_gui_thread([]() {
        tav::TalvoEngine::set_config_to_initial_state();
        tav::Kernel::setRebootProgram(true);
        QCoreApplication::exit(0);
    }, 1000);
}

} // namespace tavFinder
