#pragma once
// A window that shows one widget on its own, for developer commands: the
// widget fills the window, Escape closes it.
#include "gui/window/XMainWindow.h"

namespace tav {

class XTestWindow : public XMainWindow {
    Q_OBJECT
public:
    XTestWindow();
    // Wraps 'w' (taken over) in a test window of the given size, centred and shown.
    static XTestWindow* setTestingStandard(QWidget* w, const QString& title, int width = 1000, int height = 700);
};

} // namespace tav
