#pragma once
// The tray icon with its context menu (owned).
#include <QSystemTrayIcon>

namespace tav {

class XMenu;

class XTray : public QSystemTrayIcon {
    Q_OBJECT
public:
    explicit XTray(QObject* parent = nullptr);
    ~XTray() override;
    XMenu* menu() const { return menu_; }

private:
    XMenu* menu_;
};

} // namespace tav
