#pragma once
// A stack whose pages are all shown on top of each other, with a transparent
// "glass" label as the top page: it takes the mouse for the whole panel, so
// clicks anywhere on it mean the panel, not a child.
#include "base/core/XEventListener.h"
#include "gui/panel/XPanelStacked.h"

#include <QLabel>
#include <functional>

namespace tav {

class XPanelStackedGlas : public XPanelStacked {
    Q_OBJECT
public:
    explicit XPanelStackedGlas(QWidget* parent = nullptr, const QString& name = QString());

    // Adds a page under the glass.
    int addUnderGlass(QWidget* w);
    QLabel* glass() const { return glass_; }

    XEventListener<std::function<void()>>& eventClicked() { return evClicked_; }
    XEventListener<std::function<void()>>& eventDoubleClicked() { return evDoubleClicked_; }
    XEventListener<std::function<void()>>& eventContextMenu() { return evContext_; }

private:
    class Glass;
    QLabel* glass_;
    XEventListener<std::function<void()>> evClicked_;
    XEventListener<std::function<void()>> evDoubleClicked_;
    XEventListener<std::function<void()>> evContext_;
};

} // namespace tav
