#include "gui/widgets/XMenu.h"

#include <QCursor>

namespace tav {

XMenu::XMenu(QWidget* parent, bool toolTipsVisible) : QMenu(parent) { setToolTipsVisible(toolTipsVisible); }
XMenu::XMenu(const QString& title, QWidget* parent) : QMenu(title, parent) {}

QAction* XMenu::createAction(const QString& text, bool checkable, bool checked, bool enabled, int id) {
    QAction* a = addAction(text);
    a->setCheckable(checkable);
    if (checkable) a->setChecked(checked);
    a->setEnabled(enabled);
    a->setData(id);
    return a;
}

QAction* XMenu::createAction(const QString& text, std::function<void()> f, const QIcon& icon, const QString& toolTip) {
    QAction* a = addAction(icon, text);
    if (!toolTip.isEmpty()) a->setToolTip(toolTip);
    connect(a, &QAction::triggered, this, [f = std::move(f)]() { if (f) f(); });
    return a;
}

QAction* XMenu::createCheckAction(const QString& text, bool checked, std::function<void(bool)> f, const QString& toolTip) {
    QAction* a = addAction(text);
    a->setCheckable(true);
    a->setChecked(checked);
    if (!toolTip.isEmpty()) a->setToolTip(toolTip);
    connect(a, &QAction::toggled, this, [f = std::move(f)](bool on) { if (f) f(on); });
    return a;
}

XMenu* XMenu::createSubMenu(const QString& title, const QIcon& icon) {
    auto* m = new XMenu(title, this);
    m->setIcon(icon);
    m->setToolTipsVisible(toolTipsVisible());
    addMenu(m);
    return m;
}

QAction* XMenu::actionById(int id) const {
    for (QAction* a : actions())
        if (!a->isSeparator() && a->data().toInt() == id) return a;
    return nullptr;
}

QAction* XMenu::execAt(const QPoint* globalPos) { return exec(globalPos ? *globalPos : QCursor::pos()); }

} // namespace tav
