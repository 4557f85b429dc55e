#include "gui/widgets/XTabWidget.h"

#include "gui/panel/XPanel.h"

namespace tav {

XTabWidget::XTabWidget(QWidget* parent) : QTabWidget(parent) {
    connect(this, &QTabWidget::currentChanged, this, [this](int index) {
        indexChanged_.fire(index);
        if (XPanel* p = panelAt(index)) panelChanged_.fire(p);
    });
}

int XTabWidget::addPanel(XPanel* panel, const QString& title, const QIcon& icon) {
    return icon.isNull() ? addTab(panel, title) : addTab(panel, icon, title);
}

XPanel* XTabWidget::panelAt(int index) const { return qobject_cast<XPanel*>(widget(index)); }
XPanel* XTabWidget::currentPanel() const { return panelAt(currentIndex()); }

std::vector<XPanel*> XTabWidget::panels() const {
    std::vector<XPanel*> out;
    for (int i = 0; i < count(); ++i)
        if (XPanel* p = panelAt(i)) out.push_back(p);
    return out;
}

bool XTabWidget::setCurrentPanel(XPanel* panel) {
    const int i = indexOf(panel);
    if (i < 0) return false;
    setCurrentIndex(i);
    return true;
}

} // namespace tav
