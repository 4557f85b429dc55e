#pragma once
// The one tray icon of the process: an entry per window, "New Window",
// "Reset Configuration", "Quit", and the watchdog that ends the program
// when no window is left (closing the last window does not end it by itself).
#include "gui/tools/XTimer.h"
#include "gui/window/XTray.h"

#include <QIcon>

namespace tavFinder {

class WinTray : public tav::XTray {
    Q_OBJECT
public:
    // Created on first request.
    static WinTray* get();
    static bool exists();
    static void destroy();

    const QIcon& iconShow() const { return iconShow_; }
    const QIcon& iconHide() const { return iconHide_; }
    tav::XTimer& watchdog() { return watchdog_; }
    // Tests that close and reopen windows switch the watchdog off.
    static void setWatchdogEnabled(bool on);

    void on_reset_configuration();

private:
    WinTray();
    ~WinTray() override;
    void on_watchdog();

    tav::XTimer watchdog_;
    QIcon iconShow_;
    QIcon iconHide_;
};

} // namespace tavFinder
