#pragma once
// A stack of pages of which one shows.
#include <QStackedWidget>

namespace tav {

class XPanelStacked : public QStackedWidget {
    Q_OBJECT
public:
    explicit XPanelStacked(QWidget* parent = nullptr, const QString& name = QString());
    // Adds a page (taken over); a page already in the stack is not added twice.
    int addPanel(QWidget* w);
    // Shows a page of the stack; false when it is not one.
    bool showPanel(QWidget* w);
    bool isShowing(const QWidget* w) const { return w && currentWidget() == w; }
};

} // namespace tav
