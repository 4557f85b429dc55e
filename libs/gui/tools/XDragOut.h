#pragma once
// Dragging a file out of a view (to a file manager, an editor, a mail) starts
// only from a real mouse gesture: the left button pressed on an item and moved
// past the platform's drag distance with Ctrl held. Selecting an item, a key or
// merely hovering never starts one: a drag runs its own event loop and takes
// the keys until it ends.
#include <QFileInfo>
#include <QObject>
#include <QPoint>
#include <functional>

class QAbstractItemView;

namespace tav {

class XDragOut : public QObject {
public:
    using FileAt = std::function<QFileInfo(const QPoint& viewportPos)>;
    // Watches the view's viewport; the filter belongs to the view.
    static XDragOut* install(QAbstractItemView* view, FileAt fileAt);
    // Drags started by any view since the program began (tests count them).
    static int started();

protected:
    bool eventFilter(QObject* o, QEvent* e) override;

private:
    XDragOut(QAbstractItemView* view, FileAt fileAt);
    QAbstractItemView* view_;
    FileAt fileAt_;
    QPoint press_;
    QFileInfo file_;
    bool armed_ = false;
};

} // namespace tav
