#include "src/gui/WindowBase.h"

#include "base/log/Logger.h"
#include "base/thread/XThread.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XMenu.h"
#include "gui/window/XBrowserWindow.h"
#include "src/gui/WinTray.h"

#include <QAction>
#include <QApplication>
#include <QSystemTrayIcon>
#include <atomic>
#include <QCloseEvent>
#include <QFile>

namespace tavFinder {

using tav::log;

WindowBase::WindowBase(QWidget* parent) : tav::XMainWindow(parent) {
    setDeleteOnClose(true);
    eventVisible().add([this](bool visible) { updateTrayAction(visible); });
}

WindowBase::~WindowBase() {
    log(tav::LOG_TRACE, "WindowBase::~WindowBase");
    if (actionTray_) delete actionTray_.data();
}

QIcon WindowBase::icon(const QString& name) { return tav::XTools::getIcon(name); }

QString WindowBase::helpPageOfLanguage() {
    const QString page = tav::fill(":/tf/html/index.$.html", tav::XTools::lang());
    return QFile::exists(page) ? page : QStringLiteral(":/tf/html/index.en.html");
}

void WindowBase::on_about() { tav::XBrowserWindow::showHelp(helpPageOfLanguage(), tav::xt("About Talvo Finder"), 0); }
void WindowBase::on_help() { tav::XBrowserWindow::showHelp(helpPageOfLanguage(), tav::xt("About Talvo Finder"), 1); }

namespace {
std::atomic<int> gTrayOverride{-1};
}

void WindowBase::setTrayAvailableOverride(int available) { gTrayOverride = available; }

bool WindowBase::trayAvailable() {
    const int o = gTrayOverride.load();
    return o >= 0 ? o == 1 : QSystemTrayIcon::isSystemTrayAvailable();
}

void WindowBase::hideToTray() {
    if (trayAvailable()) {
        hide();
        return;
    }
    log(tav::LOG_NAVIGATION, "WindowBase::hideToTray, no system tray: minimised");
    showMinimized();
}

void WindowBase::showAllWindows() {
    for (QWidget* w : QApplication::topLevelWidgets()) {
        if (!qobject_cast<WindowBase*>(w)) continue;
        if (w->isMinimized()) w->showNormal();
        else w->show();
        w->raise();
        w->activateWindow();
    }
}

void WindowBase::setupTray() {
    log(tav::LOG_TRACE, "WindowBase::setupTray");
    if (actionTray_) {
        log(tav::LOG_ERROR, "WindowBase::setupTray, actionShow already exists");
        return;
    }
    WinTray* tray = WinTray::get();
    actionTray_ = tray->menu()->addAction(QString());
    connect(actionTray_.data(), &QAction::triggered, this, [this]() {
        if (isVisible() && !isMinimized()) {
            hideToTray();
        } else {
            if (isMinimized()) showNormal();
            else show();
            raise();
            activateWindow();
        }
    });
    connect(tray, &QSystemTrayIcon::activated, this, [](QSystemTrayIcon::ActivationReason) {
        log(tav::LOG_TRACE, "WindowBase::setupTray, trigger");
    });
    updateTrayAction(isVisible());
    if (!tray->isVisible()) tray->show();
}

void WindowBase::updateTrayAction(bool visible) {
    if (!actionTray_) return;
    QPointer<WindowBase> self(this);
    tav::run_in_gui_thread([self, visible]() {
        if (!self || !self->actionTray_ || !WinTray::exists()) return;
        WinTray* tray = WinTray::get();
        self->actionTray_->setText(tav::fill("$ $", self->windowName(), self->getCurrentFile().absoluteFilePath()));
        self->actionTray_->setIcon(visible ? tray->iconHide() : tray->iconShow());
    });
}

void WindowBase::closeEvent(QCloseEvent* e) {
    if (WinTray::exists() && actionTray_) {
        WinTray::get()->menu()->removeAction(actionTray_);
        delete actionTray_.data();
    }
    tav::XMainWindow::closeEvent(e);
}

} // namespace tavFinder
