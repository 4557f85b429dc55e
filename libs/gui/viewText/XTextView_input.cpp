// Keyboard, mouse, selection and the context menu of the text view.
#include "gui/viewText/XTextView.h"

#include "base/log/Logger.h"
#include "base/util/Format.h"
#include "gui/tools/XSearchMachines.h"
#include "gui/tools/XTools.h"
#include "gui/viewText/TextUnits.h"
#include "gui/widgets/XMenu.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QInputDialog>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollBar>
#include <QWheelEvent>
#include <algorithm>

namespace tav {
namespace viewText {

// ---- caret and selection ---------------------------------------------------------------------
void XTextView::setCaretPos(int64_t pos, bool extendSelection) {
    if (!src_) return;
    caret_ = std::clamp<int64_t>(pos, 0, src_->size());
    if (!extendSelection) anchor_ = caret_;
    infoHit_ = false;
    viewport()->update();
}

void XTextView::setSelection(int64_t from, int64_t to) {
    if (!src_) return;
    anchor_ = std::clamp<int64_t>(from, 0, src_->size());
    caret_ = std::clamp<int64_t>(to, 0, src_->size());
    viewport()->update();
    fireSelectionIfChanged();
}

void XTextView::clearSelection() {
    anchor_ = caret_;
    viewport()->update();
    fireSelectionIfChanged();
}

void XTextView::selectAll() {
    if (!src_) return;
    setSelection(0, src_->size());
}

QString XTextView::selectedText(int64_t maxBytes) const {
    if (!src_ || !hasSelection()) return QString();
    const int64_t a = selectionStart();
    int64_t b = selectionEnd();
    if (b - a > maxBytes) b = a + maxBytes;
    return textOfBytes(a, b);
}

void XTextView::copy() const {
    if (!hasSelection()) return;
    constexpr int64_t kMaxCopy = 256LL * 1024 * 1024;
    if (selectionEnd() - selectionStart() > kMaxCopy)
        log(tav::LOG_ERROR, "XTextView::copy, selection of $ cut to $", formatBytes(uint64_t(selectionEnd() - selectionStart())),
            formatBytes(uint64_t(kMaxCopy)));
    QApplication::clipboard()->setText(selectedText(kMaxCopy));
}

void XTextView::fireSelectionIfChanged() {
    const int64_t a = selectionStart(), b = selectionEnd();
    if (a == firedSelA_ && b == firedSelB_) return;
    firedSelA_ = a;
    firedSelB_ = b;
    // Listeners get a bounded piece: they look for short phrases, not whole files.
    evSelection_.fire(selectedText(64 * 1024));
}

void XTextView::ensureCaretVisible() {
    if (!src_) return;
    const RowPos cp = rowPosOf(caret_);
    if (!isWrapping()) {
        const int64_t ls = cp.ls;
        const int64_t le = index_->lineContentEnd(ls);
        const int64_t col = cols_.colAtByte(*src_, ls, le, std::min(caret_, le));
        const int64_t vis = visibleColumns();
        if (col < hScroll_) hScroll_ = std::max<int64_t>(0, col - 4);
        else if (col >= hScroll_ + vis) hScroll_ = col - vis + 4;
        invalidateLayout();
    }
    if (cp < top_) {
        setTop(cp);
    } else {
        RowPos p = top_;
        bool visible = false;
        for (int i = 0; i < fullyVisibleRows(); ++i) {
            if (p == cp) {
                visible = true;
                break;
            }
            if (!nextRow(p)) break;
        }
        if (!visible) {
            RowPos t = cp;
            for (int i = 1; i < fullyVisibleRows(); ++i)
                if (!prevRow(t)) break;
            setTop(t);
        }
    }
    updateScrollBars();
    viewport()->update();
}

void XTextView::moveCaretVertical(int64_t rows, bool extend) {
    const RowPos cur = rowPosOf(caret_);
    const int64_t W = isWrapping() ? wrapColumns() : 0;
    const int64_t le = index_->lineContentEnd(cur.ls);
    const int64_t col = cols_.colAtByte(*src_, cur.ls, le, std::min(caret_, le));
    if (desiredCol_ < 0) desiredCol_ = W ? col - cur.sub * W : col;
    RowPos p = cur;
    for (int64_t i = 0; i < std::abs(rows); ++i)
        if (!(rows > 0 ? nextRow(p) : prevRow(p))) break;
    const int64_t nle = index_->lineContentEnd(p.ls);
    int64_t target;
    if (W) {
        const int64_t rowEnd = cols_.byteAtOrAfterCol(*src_, p.ls, nle, (p.sub + 1) * W, nullptr);
        target = cols_.byteAtCol(*src_, p.ls, nle, p.sub * W + desiredCol_);
        // Stay on the row: its last position is before the first cell of the next row.
        if (rowEnd < nle && target >= rowEnd) target = prevCharStart(*src_, rowEnd);
    } else {
        target = cols_.byteAtCol(*src_, p.ls, nle, desiredCol_);
    }
    const int64_t keep = desiredCol_;
    setCaretPos(target, extend);
    desiredCol_ = keep;
}

// ---- keyboard ---------------------------------------------------------------------------------
void XTextView::keyPressEvent(QKeyEvent* e) {
    reloadIfShrunk();
    if (!src_) {
        QAbstractScrollArea::keyPressEvent(e);
        return;
    }
    if (e == QKeySequence::Copy) {
        copy();
        return;
    }
    if (e == QKeySequence::SelectAll) {
        selectAll();
        return;
    }
    const bool shift = e->modifiers() & Qt::ShiftModifier;
    const bool ctrl = e->modifiers() & Qt::ControlModifier;
    const int rows = std::max(1, fullyVisibleRows() - 1);
    bool moved = true;
    bool vertical = false;
    switch (e->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        evActivated_.fire();
        return;
    case Qt::Key_Left: {
        const int64_t ls = index_->lineStartContaining(caret_);
        if (caret_ > ls) {
            setCaretPos(prevCharStart(*src_, caret_), shift);
        } else if (ls > 0) {
            setCaretPos(index_->lineContentEnd(index_->prevLineStart(ls)), shift);
        }
        break;
    }
    case Qt::Key_Right: {
        const int64_t ls = index_->lineStartContaining(caret_);
        const int64_t le = index_->lineContentEnd(ls);
        if (caret_ < le) {
            setCaretPos(cellAt(*src_, caret_, le, 0, tabWidth()).end(), shift);
        } else {
            const int64_t n = index_->nextLineStart(ls);
            if (n < src_->size()) setCaretPos(n, shift);
        }
        break;
    }
    case Qt::Key_Up:
        if (ctrl) {
            scrollRows(-1);
            return;
        }
        moveCaretVertical(-1, shift);
        vertical = true;
        break;
    case Qt::Key_Down:
        if (ctrl) {
            scrollRows(1);
            return;
        }
        moveCaretVertical(1, shift);
        vertical = true;
        break;
    case Qt::Key_PageUp:
        scrollRows(-rows);
        moveCaretVertical(-rows, shift);
        vertical = true;
        break;
    case Qt::Key_PageDown:
        scrollRows(rows);
        moveCaretVertical(rows, shift);
        vertical = true;
        break;
    case Qt::Key_Home:
        if (ctrl) {
            setCaretPos(0, shift);
        } else {
            const RowPos p = rowPosOf(caret_);
            setCaretPos(isWrapping() ? rowStartByte(p, nullptr) : p.ls, shift);
        }
        break;
    case Qt::Key_End:
        if (ctrl) setCaretPos(src_->size(), shift);
        else setCaretPos(index_->lineContentEnd(index_->lineStartContaining(caret_)), shift);
        break;
    case Qt::Key_N:
        if (ctrl) moved = false;
        else moveActiveMark(!shift);
        return;
    case Qt::Key_F3:
        moveActiveMark(!shift);
        return;
    case Qt::Key_G:
        if (ctrl) {
            bool ok = false;
            const int64_t lines = std::max<int64_t>(1, index_->isDone() ? index_->lineCount() : index_->linesSoFar());
            const int line = QInputDialog::getInt(this, xt("Go to Line"), xt("Line:"),
                                                  int(std::max<int64_t>(1, positionOfByte(caret_).line + 1)), 1,
                                                  int(std::min<int64_t>(lines, INT_MAX)), 1, &ok);
            if (ok) {
                const int64_t ls = index_->lineStartOfNumber(line - 1);
                if (ls >= 0) {
                    setCaretPos(ls);
                    scrollToByte(ls, true);
                }
            }
            return;
        }
        moved = false;
        break;
    default:
        moved = false;
    }
    if (!moved) {
        QAbstractScrollArea::keyPressEvent(e);
        return;
    }
    if (!vertical) desiredCol_ = -1;
    ensureCaretVisible();
    if (shift) selectionTimer_.start();
}

// ---- mouse ---------------------------------------------------------------------------------------
void XTextView::mousePressEvent(QMouseEvent* e) {
    reloadIfShrunk();
    if (!src_) return;
    setFocus(Qt::MouseFocusReason);
    if (e->button() != Qt::LeftButton) return;
    const bool shift = e->modifiers() & Qt::ShiftModifier;
    desiredCol_ = -1;
    pressPoint_ = e->pos();
    setCaretPos(byteAtPoint(e->pos(), true), shift);
    dragging_ = true;
    lastMousePos_ = e->pos();
}

void XTextView::mouseMoveEvent(QMouseEvent* e) {
    reloadIfShrunk();
    if (!src_) return;
    lastMousePos_ = e->pos();
    if (dragging_) {
        setCaretPos(byteAtPoint(e->pos(), true), true);
        const bool outside = e->pos().y() < 0 || e->pos().y() >= viewport()->height();
        if (outside && !dragTimer_.isActive()) dragTimer_.start();
        if (!outside) dragTimer_.stop();
        return;
    }
    updateMouseOver(e->pos());
}

void XTextView::mouseReleaseEvent(QMouseEvent* e) {
    if (!src_ || e->button() != Qt::LeftButton) return;
    dragTimer_.stop();
    const bool click = dragging_ && (e->pos() - pressPoint_).manhattanLength() < QApplication::startDragDistance();
    if (dragging_ && !click) setCaretPos(byteAtPoint(e->pos(), true), true);
    dragging_ = false;
    if (click && !hasSelection()) activateMarkAt(byteAtPoint(e->pos(), false));
    fireSelectionIfChanged();
}

void XTextView::mouseDoubleClickEvent(QMouseEvent* e) {
    reloadIfShrunk();
    if (!src_ || e->button() != Qt::LeftButton) return;
    const int64_t pos = byteAtPoint(e->pos(), false);
    const find::XRam w = unitWord(*index_, pos);
    if (w.isValid()) {
        anchor_ = w.pos();
        caret_ = w.end();
        viewport()->update();
        fireSelectionIfChanged();
    }
    dragging_ = false;
}

void XTextView::wheelEvent(QWheelEvent* e) {
    reloadIfShrunk();
    if (!src_) return;
    const QPoint d = e->angleDelta();
    if (e->modifiers() & Qt::ControlModifier) {
        // Zoom: the font size follows the wheel.
        QFont f = font();
        const qreal sz = std::clamp<qreal>(f.pointSizeF() + (d.y() > 0 ? 1 : -1), 6, 64);
        f.setPointSizeF(sz);
        setFont(f);
        e->accept();
        return;
    }
    const bool horizontal = (e->modifiers() & Qt::ShiftModifier) || std::abs(d.x()) > std::abs(d.y());
    const int delta = horizontal ? (d.x() ? d.x() : d.y()) : d.y();
    const int steps = delta / 40;   // 3 rows per notch
    if (horizontal) {
        if (!isWrapping()) horizontalScrollBar()->setValue(horizontalScrollBar()->value() - steps * 2);
    } else if (steps) {
        scrollRows(-steps);
    }
    e->accept();
}

void XTextView::leaveEvent(QEvent* e) {
    QAbstractScrollArea::leaveEvent(e);
    clearMouseOver();
}

void XTextView::focusInEvent(QFocusEvent* e) {
    QAbstractScrollArea::focusInEvent(e);
    viewport()->update();
}

void XTextView::focusOutEvent(QFocusEvent* e) {
    QAbstractScrollArea::focusOutEvent(e);
    viewport()->update();
}

void XTextView::updateMouseOver(const QPoint& pt) {
    if (!src_) return;
    const bool wanted = !mouseOver_.isEmpty() || !evMouseOver_.isEmpty();
    if (!wanted) return;
    ensureLayout();
    // Past the text of the last row the pointer is over nothing.
    const int64_t pos = pt.y() < int(rows_.size()) * rowH_ ? byteAtPoint(pt, false) : -1;
    if (pos == mouseOverPos_) return;
    mouseOverPos_ = pos;
    const MouseOverMark m = pos >= 0 ? unitsAt(*index_, pos) : MouseOverMark();
    bool changed = false;
    for (int i = 0; i < mouseOver_.size(); ++i) {
        find::XRam& r = mouseOver_.at(i);
        const find::XRam* src = m.byCategory(r.category());
        if (src && (r.pos() != src->pos() || r.len() != src->len())) {
            r.setValue(*src);
            changed = true;
        }
    }
    if (changed) viewport()->update();
    evMouseOver_.fire(m);
}

void XTextView::clearMouseOver() {
    if (mouseOverPos_ < 0) return;
    mouseOverPos_ = -1;
    for (int i = 0; i < mouseOver_.size(); ++i) mouseOver_.at(i).setRange(-1, 0);
    viewport()->update();
    evMouseOver_.fire(MouseOverMark());
}

// ---- context menu ------------------------------------------------------------------------------------
void XTextView::add_extra_context_menu(MenuBuilder builder) {
    if (builder) menuBuilders_.push_back(std::move(builder));
}

void XTextView::add_extra_context_menu_web_search(const QString& title) { webSearchTitle_ = title; }

void XTextView::buildContextMenu(XMenu& menu) {
    QAction* aCopy = menu.createAction(xt("Copy"), [this]() { copy(); });
    aCopy->setShortcut(QKeySequence::Copy);
    aCopy->setEnabled(hasSelection());
    QAction* aAll = menu.createAction(xt("Select All"), [this]() { selectAll(); });
    aAll->setShortcut(QKeySequence::SelectAll);
    aAll->setEnabled(bool(src_));
    const QString sel = selectedText(64 * 1024);
    if (!webSearchTitle_.isEmpty()) {
        menu.addSeparator();
        XMenu* web = menu.createSubMenu(webSearchTitle_);
        // The list is read each time, so an edited list applies at once.
        for (const XSearchMachine& m : XSearchMachines::get_search_machines(false)) {
            if (m.isSeparator()) web->addSeparator();
            else web->createAction(m.title, [m, sel]() { m.trigger_search_machine(sel.trimmed()); });
        }
        web->setEnabled(!sel.trimmed().isEmpty());
    }
    for (const MenuBuilder& b : menuBuilders_) b(menu, sel);
}

void XTextView::contextMenuEvent(QContextMenuEvent* e) {
    reloadIfShrunk();
    XMenu menu(this, true);
    buildContextMenu(menu);
    menu.exec(e->globalPos());
}

} // namespace viewText
} // namespace tav
