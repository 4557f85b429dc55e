#include "gui/panel/XPanelStacked.h"

#include "base/log/Logger.h"

namespace tav {

XPanelStacked::XPanelStacked(QWidget* parent, const QString& name) : QStackedWidget(parent) {
    if (!name.isEmpty()) setObjectName(name);
}

int XPanelStacked::addPanel(QWidget* w) {
    if (!X_ASSERT_MSG(w, "widget == NULL")) return -1;
    const int i = indexOf(w);
    return i >= 0 ? i : addWidget(w);
}

bool XPanelStacked::showPanel(QWidget* w) {
    if (!w || indexOf(w) < 0) return false;
    setCurrentWidget(w);
    return true;
}

} // namespace tav
