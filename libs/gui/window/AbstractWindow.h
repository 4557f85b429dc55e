#pragma once
// What every framework window has: a name for logs, a state node for its
// geometry, hotkeys, about/help, and membership in the list of open windows.
#include "base/node/XNode.h"

#include <QKeySequence>
#include <QString>
#include <functional>
#include <vector>

class QWidget;
class QShortcut;
class QCloseEvent;

namespace tav {

class AbstractWindow {
public:
    explicit AbstractWindow(QWidget* self);
    virtual ~AbstractWindow();
    AbstractWindow(const AbstractWindow&) = delete;
    AbstractWindow& operator=(const AbstractWindow&) = delete;

    QWidget* widget() const { return self_; }

    // Framework name of the window (may be empty) and the name used in log lines.
    void setXName(const QString& n) { xname_ = n; }
    const QString& xName() const { return xname_; }
    virtual QString windowName() const;

    // Window node, title and help page in one call (what every window's init does).
    void initWindow(XNode* node, const QString& title, const QString& helpPage);
    const QString& helpPage() const { return helpPage_; }

    // The node that keeps this window's state (geometry); not owned.
    void setNodeWin(XNode* n) { nodeWin_ = n; }
    XNode* nodeWin() const { return nodeWin_; }
    // Geometry (and maximised / full-screen state) to and from the node.
    virtual void saveStateToXml();
    virtual bool restoreStateFromXml();

    // A key binding of the window; Qt::WindowShortcut unless told otherwise.
    QShortcut* addHotKeyMethod(const QKeySequence& keys, std::function<void()> f,
                               Qt::ShortcutContext context = Qt::WindowShortcut);

    // About page and help page; the program overrides both.
    virtual void on_about() {}
    virtual void on_help() {}

    void setDeleteOnClose(bool on);

    // Every framework window alive, oldest first.
    static std::vector<AbstractWindow*> allWindows();

private:
    QWidget* self_;
    QString xname_;
    XNode* nodeWin_ = nullptr;
    QString helpPage_;
};

} // namespace tav
