#pragma once
// Asks for the short name of a new language: lower-case letters only.
#include "gui/window/XDialog.h"

class QLineEdit;
class QPushButton;

namespace tavFinder {

class DiaAddLang : public tav::XDialog {
    Q_OBJECT
public:
    explicit DiaAddLang(QWidget* parent = nullptr);
    // The line edit's text, trimmed.
    QString text() const;
    // Empty, or letters that are all lower case (any script).
    static bool isAllowedName(const QString& trimmed);

    QLineEdit* lineEdit() const { return edit_; }
    QPushButton* buttonOk() const { return ok_; }
    QPushButton* buttonCancel() const { return cancel_; }

private:
    void on_ok();
    QLineEdit* edit_;
    QPushButton* ok_;
    QPushButton* cancel_;
};

} // namespace tavFinder
