#include "gui/widgets/XBox.h"

#include "base/log/Logger.h"

#include <QInputDialog>
#include <QMessageBox>
#include <atomic>

namespace tav {

namespace {
std::atomic<int> gAnswer{-1};
std::atomic<int> gShown{0};
QString gScriptedText;
QString gLastText;

bool scripted(const char* kind, const QString& title, int* answer, const QString& text = QString()) {
    ++gShown;
    gLastText = text;
    const int a = gAnswer.load();
    if (a < 0) return false;
    log(tav::LOG_TRACE, "XBox::$, title:'$', scripted answer:$", kind, title, a);
    *answer = a;
    return true;
}
}

void XBox::setScriptedAnswer(int answer) { gAnswer = answer; }
int XBox::scriptedAnswer() { return gAnswer; }
int XBox::countShown() { return gShown; }
QString XBox::lastText() { return gLastText; }

bool XBox::ask_yes_no(QWidget* parent, const QString& title, const QString& text) {
    int a = 0;
    if (scripted("ask_yes_no", title, &a, text)) return a == 1;
    return QMessageBox::question(parent, title, text, QMessageBox::Yes | QMessageBox::No, QMessageBox::No) ==
           QMessageBox::Yes;
}

void XBox::warn(QWidget* parent, const QString& title, const QString& text) {
    int a = 0;
    if (scripted("warn", title, &a, text)) return;
    QMessageBox::warning(parent, title, text);
}

void XBox::info(QWidget* parent, const QString& title, const QString& text) {
    int a = 0;
    if (scripted("info", title, &a, text)) return;
    QMessageBox::information(parent, title, text);
}

void XBoxInput::setScriptedText(const QString& text) { gScriptedText = text; }

QString XBoxInput::get_text(QWidget* parent, const QString& title, const QString& label, const QString& text, bool* ok) {
    int a = 0;
    if (scripted("get_text", title, &a)) {
        if (ok) *ok = a == 1;
        if (a != 1) return QString();
        return gScriptedText.isNull() ? text : gScriptedText;
    }
    bool accepted = false;
    const QString r = QInputDialog::getText(parent, title, label, QLineEdit::Normal, text, &accepted);
    if (ok) *ok = accepted;
    return accepted ? r : QString();
}

} // namespace tav
