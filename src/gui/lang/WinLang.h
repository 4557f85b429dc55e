#pragma once
// The language editor: every message of the catalogue as a row (English
// beside the language being edited), languages added and removed, and the
// result saved as the user's "lang.xml" and put live.
#include "src/gui/WindowBase.h"

#include <memory>

class QPushButton;
class QScrollArea;

namespace tav {
class XComboBox;
class XNode;
}

namespace tavFinder {

class PanelLang;

class WinLang : public WindowBase {
    Q_OBJECT
public:
    explicit WinLang(QWidget* parent = nullptr);
    ~WinLang() override;

    // An editor window exists (only one may).
    static bool isOpen();

    // Works on a sorted copy of 'catalogue' (the live one, as a rule).
    void set_lang_root(tav::XNode* catalogue);
    // Where "OK"/"Apply" write the catalogue; empty is the user's lang.xml in
    // the configuration folder.
    void setSaveFile(const QString& path) { saveFile_ = path; }
    QString saveFile() const;
    void set_current_lang_to_edit(const QString& lang);
    // Takes the texts of the rows into the working copy's children named 'lang'.
    void update_nodes(const QString& lang);
    void on_apply();
    void on_add_lang();
    void on_remove_lang(const QString& lang);
    void on_ok();
    void on_cancel();
    // The English text of a message (empty, and logged, without one).
    static QString get_string(tav::XNode* message);

    PanelLang* panel() const { return panel_; }
    tav::XComboBox* comboLang() const { return comboLang_; }
    QPushButton* buttonOk() const { return buttonOk_; }
    QPushButton* buttonCancel() const { return buttonCancel_; }
    QPushButton* buttonAdd() const { return buttonAdd_; }
    QPushButton* buttonRemove() const { return buttonRemove_; }
    const QString& langToEdit() const { return langToEdit_; }
    tav::XNode* workingCopy() const { return nLang_.get(); }

private:
    void on_combo_lang_changed(const QString& lang);
    static QString editable_lang(const QString& lang);

    PanelLang* panel_;
    QScrollArea* scroll_;
    tav::XNode* nLangLive_ = nullptr;
    std::unique_ptr<tav::XNode> nLang_;       // sorted working copy
    std::unique_ptr<tav::XNode> nLangCopy_;   // kept as it was at opening
    tav::XComboBox* comboLang_;
    QPushButton* buttonOk_;
    QPushButton* buttonCancel_;
    QPushButton* buttonAdd_;
    QPushButton* buttonRemove_;
    QString langToEdit_;
    QString langAtOpen_;
    QString saveFile_;
};

} // namespace tavFinder
