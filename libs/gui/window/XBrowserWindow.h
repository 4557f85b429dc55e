#pragma once
// The help browser: a window with one page. Mode 0 shows the page alone (an
// about page); mode 1 adds back, forward and home for pages with links.
#include "gui/window/XMainWindow.h"

namespace tav {

class XBrowser;

class XBrowserWindow : public XMainWindow {
    Q_OBJECT
public:
    XBrowserWindow(const QString& page, const QString& title, int mode);
    XBrowser* browser() const { return browser_; }
    int mode() const { return mode_; }

    // Opens a help window (deleted when closed); null when the page is missing.
    static XBrowserWindow* showHelp(const QString& page, const QString& title, int mode);

private:
    XBrowser* browser_;
    int mode_;
};

} // namespace tav
