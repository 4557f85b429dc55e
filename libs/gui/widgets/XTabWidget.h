#pragma once
// A tab widget whose pages are panels: tells which panel became current (and
// the index), and remembers each tab's icon.
#include "base/core/XEventListener.h"

#include <QTabWidget>
#include <functional>

namespace tav {

class XPanel;

class XTabWidget : public QTabWidget {
    Q_OBJECT
public:
    explicit XTabWidget(QWidget* parent = nullptr);

    int addPanel(XPanel* panel, const QString& title, const QIcon& icon = QIcon());
    XPanel* panelAt(int index) const;
    XPanel* currentPanel() const;
    std::vector<XPanel*> panels() const;
    bool setCurrentPanel(XPanel* panel);

    XEventListener<std::function<void(XPanel*)>>& eventPanelChanged() { return panelChanged_; }
    XEventListener<std::function<void(int)>>& eventIndexChanged() { return indexChanged_; }

private:
    XEventListener<std::function<void(XPanel*)>> panelChanged_;
    XEventListener<std::function<void(int)>> indexChanged_;
};

} // namespace tav
