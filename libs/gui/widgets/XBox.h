#pragma once
// Message boxes: yes/no question, warning, information; and a text input.
// Tests (and scripted runs) can answer them without a dialog.
#include <QString>

class QWidget;

namespace tav {

class XBox {
public:
    static bool ask_yes_no(QWidget* parent, const QString& title, const QString& text);
    static void warn(QWidget* parent, const QString& title, const QString& text);
    static void info(QWidget* parent, const QString& title, const QString& text);

    // Answer the next boxes without showing them: 1 yes/OK, 0 no/cancel;
    // -1 (the default) shows them. Every box answered this way is logged.
    static void setScriptedAnswer(int answer);
    static int scriptedAnswer();
    // Number of boxes opened so far (shown or answered by script).
    static int countShown();
    // The text of the last box asked for (scripted or shown); tests read it.
    static QString lastText();
};

class XBoxInput {
public:
    // The text the user typed; 'ok' tells whether the dialog was accepted.
    // A scripted answer 1 accepts 'text' unchanged, or the scripted text when one is set.
    static QString get_text(QWidget* parent, const QString& title, const QString& label, const QString& text,
                            bool* ok = nullptr);
    // The text the next scripted inputs return instead of their preset; a null
    // string (the default) returns the preset.
    static void setScriptedText(const QString& text);
};

} // namespace tav
