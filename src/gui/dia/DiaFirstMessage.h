#pragma once
// The hint shown at start until the user asks not to see it again: a short
// page and the choice of the interface language.
#include "gui/widgets/XButtonGroupTyped.h"
#include "gui/window/XDialog.h"

#include <QString>
#include <utility>

class QPushButton;

namespace tav {
class XBrowser;
}

namespace tavFinder {

class DiaFirstMessage : public tav::XDialog {
    Q_OBJECT
public:
    enum DaLang { English = 0, German = 1, Russian = 2 };
    // Result codes: closed without a button, "OK", "OK + save".
    enum Result { NONE = 0, OK = 1, OK_SAVE = 2 };

    explicit DiaFirstMessage(QWidget* parent = nullptr);

    // Shows the dialog modally: (result code, short name of the chosen language;
    // empty unless accepted).
    static std::pair<int, QString> show_first_message(QWidget* parent = nullptr);

    static QString lang_short_name(int daLang);
    // "CANCEL", "OK" or "OK_SAVE" followed by ", return:" and the code.
    static QString result_text(int code);
    static QString page_of(DaLang lang);

    int result_code() const { return result_; }
    DaLang selected_lang() const { return group_.currentEnum(); }

    tav::XBrowser* browser() const { return browser_; }
    tav::XButtonGroupTyped<DaLang>& group() { return group_; }
    QPushButton* buttonOk() const { return ok_; }
    QPushButton* buttonOkSave() const { return okSave_; }

private:
    int result_ = NONE;
    tav::XBrowser* browser_;
    tav::XButtonGroupTyped<DaLang> group_;
    QPushButton* ok_;
    QPushButton* okSave_;
};

} // namespace tavFinder
