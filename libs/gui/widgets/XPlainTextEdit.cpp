#include "gui/widgets/XPlainTextEdit.h"

#include <QFocusEvent>

namespace tav {

XPlainTextEdit::XPlainTextEdit(QWidget* parent) : QPlainTextEdit(parent) {}

void XPlainTextEdit::focusInEvent(QFocusEvent* e) {
    QPlainTextEdit::focusInEvent(e);
    eventActive_.fire(true);
}

void XPlainTextEdit::focusOutEvent(QFocusEvent* e) {
    QPlainTextEdit::focusOutEvent(e);
    // The edit's own context menu takes the focus for a moment; it stays active.
    if (e->reason() == Qt::PopupFocusReason) return;
    eventActive_.fire(false);
}

} // namespace tav
