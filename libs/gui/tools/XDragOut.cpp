#include "gui/tools/XDragOut.h"

#include "base/log/Logger.h"
#include "gui/tools/XTools.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QMouseEvent>
#include <atomic>

namespace tav {

namespace {
std::atomic<int> gStarted{0};
}

XDragOut::XDragOut(QAbstractItemView* view, FileAt fileAt) : QObject(view), view_(view), fileAt_(std::move(fileAt)) {}

XDragOut* XDragOut::install(QAbstractItemView* view, FileAt fileAt) {
    if (!X_ASSERT_MSG(view, "view == NULL")) return nullptr;
    auto* f = new XDragOut(view, std::move(fileAt));
    view->viewport()->installEventFilter(f);
    return f;
}

int XDragOut::started() { return gStarted.load(); }

bool XDragOut::eventFilter(QObject* o, QEvent* e) {
    switch (e->type()) {
    case QEvent::MouseButtonPress: {
        auto* me = static_cast<QMouseEvent*>(e);
        armed_ = false;
        if (me->button() != Qt::LeftButton) break;
        press_ = me->pos();
        file_ = fileAt_ ? fileAt_(press_) : QFileInfo();
        armed_ = !file_.filePath().isEmpty();
        break;
    }
    case QEvent::MouseMove: {
        auto* me = static_cast<QMouseEvent*>(e);
        if (!armed_ || !(me->buttons() & Qt::LeftButton) || !(me->modifiers() & Qt::ControlModifier)) break;
        if ((me->pos() - press_).manhattanLength() < QApplication::startDragDistance()) break;
        armed_ = false;
        ++gStarted;
        log(tav::LOG_TRACE, "XDragOut, drag <<<$>>>", file_);
        // The drag's own loop runs here; nothing of the view is kept across it.
        XTools::drop_file(view_, file_);
        return true;
    }
    case QEvent::MouseButtonRelease:
    case QEvent::Leave:
        armed_ = false;
        break;
    default:
        break;
    }
    return QObject::eventFilter(o, e);
}

} // namespace tav
