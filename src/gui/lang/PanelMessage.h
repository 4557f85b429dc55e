#pragma once
// One row of the language editor: the English text (read-only) beside the
// text of the language being edited. The row grows while one of its edits has
// the focus, so longer texts can be read and written.
#include "gui/panel/XPanel.h"

namespace tav {
class XNode;
class XPlainTextEdit;
}

namespace tavFinder {

class PanelMessage : public tav::XPanel {
    Q_OBJECT
public:
    static constexpr int HEIGHT = 28;
    static constexpr int HEIGHT_ACTIVE = 112;

    explicit PanelMessage(QWidget* parent = nullptr);

    // Shows the message's English text and its text in 'lang'; the message
    // node keeps a pointer to the editable edit.
    void set_message(tav::XNode* message, const QString& lang);
    void activate(bool flag);

    tav::XPlainTextEdit* editEnglish() const { return editEn_; }
    tav::XPlainTextEdit* editLang() const { return editLang_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    tav::XPlainTextEdit* editEn_;
    tav::XPlainTextEdit* editLang_;
    bool active_ = false;
};

} // namespace tavFinder
