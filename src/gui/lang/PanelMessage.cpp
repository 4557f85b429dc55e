#include "src/gui/lang/PanelMessage.h"

#include "base/log/Logger.h"
#include "base/node/XNode.h"
#include "gui/widgets/XPlainTextEdit.h"

#include <QEvent>
#include <QPointer>
#include <QScrollBar>

namespace tavFinder {

using tav::log;

PanelMessage::PanelMessage(QWidget* parent)
    : tav::XPanel(parent, tav::XPanel::HORIZONTAL), editEn_(new tav::XPlainTextEdit(this)),
      editLang_(new tav::XPlainTextEdit(this)) {
    setTight();
    for (tav::XPlainTextEdit* e : {editEn_, editLang_}) {
        add(e, 1);
        e->setLineWrapMode(QPlainTextEdit::WidgetWidth);
        e->setTabChangesFocus(true);
        e->eventActive().add([this](bool active) { activate(active); });
        e->installEventFilter(this);
    }
    editEn_->setReadOnly(true);
    activate(false);
}

bool PanelMessage::eventFilter(QObject* watched, QEvent* event) {
    // A relayout scrolls a wrapped text (with the scroll bar's signals blocked);
    // a short row shows the start of its text again once the layout is done.
    if (event->type() == QEvent::Resize && !active_) {
        if (auto* e = qobject_cast<tav::XPlainTextEdit*>(watched)) {
            QPointer<tav::XPlainTextEdit> edit(e);
            QMetaObject::invokeMethod(this, [this, edit]() {
                if (edit && !active_) edit->verticalScrollBar()->setValue(0);
            }, Qt::QueuedConnection);
        }
    }
    return tav::XPanel::eventFilter(watched, event);
}

void PanelMessage::set_message(tav::XNode* message, const QString& lang) {
    if (!X_ASSERT_MSG(message, "nMessage == NULL")) return;
    tav::XNode* en = message->query(QStringLiteral("en"));
    if (!en) log(tav::LOG_ERROR, "PanelMessage::set_message, <en> tag missing !");
    editEn_->setPlainText(en ? en->getText() : QString());
    tav::XNode* tr = message->query(lang);
    editLang_->setPlainText(tr ? tr->getText() : QString());
    for (tav::XPlainTextEdit* e : {editEn_, editLang_}) e->moveCursor(QTextCursor::Start);
    message->set_pointer(editLang_);
}

void PanelMessage::activate(bool flag) {
    log(tav::LOG_TRACE, "PanelMessage::activate, flag:$", flag);
    active_ = flag;
    const int h = flag ? HEIGHT_ACTIVE : HEIGHT;
    for (tav::XPlainTextEdit* e : {editEn_, editLang_}) {
        e->setMinimumHeight(h);
        e->setMaximumHeight(h);
        // A short row shows the first line of its text, without scroll bars.
        e->setVerticalScrollBarPolicy(flag ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
        if (!flag) e->verticalScrollBar()->setValue(0);
    }
}

} // namespace tavFinder
