#include "gui/window/XTestWindow.h"

#include "base/log/Logger.h"
#include "gui/tools/XTools.h"

namespace tav {

XTestWindow::XTestWindow() {
    setDeleteOnClose(true);
    addHotKeyMethod(QKeySequence(Qt::Key_Escape), [this]() { close(); });
}

XTestWindow* XTestWindow::setTestingStandard(QWidget* w, const QString& title, int width, int height) {
    if (!X_ASSERT_MSG(w, "widget == NULL")) return nullptr;
    auto* win = new XTestWindow;
    win->setWindowTitle(title);
    win->setCentralWidget(w);
    XTools::centerOnScreen(win, width, height);
    win->show();
    return win;
}

} // namespace tav
