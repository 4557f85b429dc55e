#pragma once
// What the folder previews ask of the window that holds them, without knowing
// which window that is: the folder layer stays below the windows.
#include <QFileInfo>
#include <QString>
#include <QWidget>

namespace tavFinder {

class FinderHost {
public:
    virtual ~FinderHost() = default;
    // The window itself (to guard against its end).
    virtual QWidget* hostWidget() = 0;
    // A text for the content search field.
    virtual void putInSearchField(const QString& text) = 0;
    // The status bar speaks of this file.
    virtual void showStatusFor(const QFileInfo& fi) = 0;
    // The file menu for an entry of a folder preview.
    virtual void fileContextMenu(const QFileInfo& fi) = 0;

    // The host holding a widget, or null.
    static FinderHost* of(QWidget* w) {
        for (QWidget* p = w; p; p = p->parentWidget())
            if (auto* h = dynamic_cast<FinderHost*>(p)) return h;
        return nullptr;
    }
};

} // namespace tavFinder
