#include "gui/window/XTray.h"

#include "gui/widgets/XMenu.h"

namespace tav {

XTray::XTray(QObject* parent) : QSystemTrayIcon(parent), menu_(new XMenu(nullptr, true)) { setContextMenu(menu_); }

XTray::~XTray() {
    setContextMenu(nullptr);
    delete menu_;
}

} // namespace tav
