#include "src/gui/lang/PanelMessage.h"

#include "base/log/Logger.h"
#include "base/node/XNode.h"
#include "gui/widgets/XPlainTextEdit.h"

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
    }
    editEn_->setReadOnly(true);
    activate(false);
}

void PanelMessage::set_message(tav::XNode* message, const QString& lang) {
    if (!X_ASSERT_MSG(message, "nMessage == NULL")) return;
    tav::XNode* en = message->query(QStringLiteral("en"));
    if (!en) log(4, "PanelMessage::set_message, <en> tag missing !");
    editEn_->setPlainText(en ? en->getText() : QString());
    tav::XNode* tr = message->query(lang);
    editLang_->setPlainText(tr ? tr->getText() : QString());
    message->set_pointer(editLang_);
}

void PanelMessage::activate(bool flag) {
    log(32, "PanelMessage::activate, flag:$", flag);
    const int h = flag ? HEIGHT_ACTIVE : HEIGHT;
    for (tav::XPlainTextEdit* e : {editEn_, editLang_}) {
        e->setMinimumHeight(h);
        e->setMaximumHeight(h);
    }
}

} // namespace tavFinder
