#pragma once
// A menu built fresh where it opens: actions with closures, submenus, icons.
#include <QMenu>
#include <functional>

namespace tav {

class XMenu : public QMenu {
    Q_OBJECT
public:
    explicit XMenu(QWidget* parent = nullptr, bool toolTipsVisible = false);
    explicit XMenu(const QString& title, QWidget* parent = nullptr);

    // An action with an identifier (kept as the action's data); 'checkable'
    // actions start 'checked'.
    QAction* createAction(const QString& text, bool checkable = false, bool checked = false, bool enabled = true,
                          int id = 0);
    // An action that runs 'f' when triggered.
    QAction* createAction(const QString& text, std::function<void()> f, const QIcon& icon = QIcon(),
                          const QString& toolTip = QString());
    // A checkable action; 'f' gets the new state.
    QAction* createCheckAction(const QString& text, bool checked, std::function<void(bool)> f,
                               const QString& toolTip = QString());
    // A submenu owned by this menu.
    XMenu* createSubMenu(const QString& title, const QIcon& icon = QIcon());

    // The first action whose identifier is 'id', or null.
    QAction* actionById(int id) const;
    // Opens at a global position (the mouse position when null) and waits.
    QAction* execAt(const QPoint* globalPos = nullptr);
};

} // namespace tav
