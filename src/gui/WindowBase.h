#pragma once
// Base of every top-level window of the finder: an entry in the tray menu,
// about and help pages, themed icons.
#include "gui/window/XMainWindow.h"

#include <QFileInfo>
#include <QAction>
#include <QPointer>
#include <cstdint>



namespace tavFinder {

class WindowBase : public tav::XMainWindow {
    Q_OBJECT
public:
    explicit WindowBase(QWidget* parent = nullptr);
    ~WindowBase() override;

    // Gives the window its entry in the tray menu (once).
    void setupTray();
    QAction* trayAction() const { return actionTray_; }

    // "Hide to Tray": hides the window when a system tray can bring it back,
    // otherwise minimises it (a hidden window without a tray is lost to the user).
    void hideToTray();
    static bool trayAvailable();
    // Tests decide: 1 a tray, 0 none, -1 ask the desktop.
    static void setTrayAvailableOverride(int available);
    // Shows, raises and activates every top-level window of the program
    // (what a second start asks of the running one).
    static void showAllWindows();

    // The file the window shows; none here, the main window has its selection.
    virtual QFileInfo getCurrentFile() const { return QFileInfo(); }

    // About (browser mode 0) and help (mode 1): the page of the current language.
    void on_about() override;
    void on_help() override;
    static QString helpPageOfLanguage();

    // ":/tf/icons/" + "dark/" in the dark style + name.
    static QIcon icon(const QString& name);

protected:
    void closeEvent(QCloseEvent* e) override;
    // Text and icon of the tray entry for the window's visibility.
    void updateTrayAction(bool visible);

    uint32_t flagsBase_ = 0;

private:
    QPointer<QAction> actionTray_;
};

} // namespace tavFinder
