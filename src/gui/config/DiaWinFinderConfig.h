#pragma once
// The configuration dialog: a copy of the configuration record plus the
// theme, font scale and language, in four tabs. Only OK (the caller) takes the
// copy back.
#include "gui/widgets/XButtonGroupTyped.h"
#include "gui/window/XDialog.h"
#include "src/gui/config/ConfigTavFinder.h"

#include <memory>
#include <vector>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QTabWidget;

namespace tav {
class XPanel;
template <typename T>
class XTypedComboBox;
}

namespace tavFinder {

class DiaTavFinderConfig : public tav::XDialog {
    Q_OBJECT
public:
    explicit DiaTavFinderConfig(QWidget* parent = nullptr);
    ~DiaTavFinderConfig() override;

    // Takes a copy of 'config' and shows it.
    void set_gui_from_cfg(const WinFinderConfig& config);
    // Reads the controls into the copy (and the language into the engine node).
    void set_cfg_from_gui();
    const WinFinderConfig& config() const { return cfg_; }
    // Font scale in percent as chosen.
    int fontScale() const;

    // ---- controls (for the window and for tests) ----------------------------------------
    QTabWidget* tabs() const { return tabs_; }
    QPushButton* buttonOk() const { return buttonOk_; }
    QPushButton* buttonCancel() const { return buttonCancel_; }
    tav::XTypedComboBox<unsigned>* comboThreads() const { return comboThreads_; }
    tav::XTypedComboBox<unsigned>* comboScale() const { return comboScale_; }
    tav::XTypedComboBox<unsigned>* comboFontSizeHex() const { return comboFontHex_; }
    tav::XTypedComboBox<unsigned>* comboFontSize() const { return comboFont_; }
    tav::XTypedComboBox<unsigned>* comboAutoLoad() const { return comboAutoLoad_; }
    tav::XTypedComboBox<unsigned>* comboScope() const { return comboScope_; }
    QComboBox* comboLang() const { return comboLang_; }
    QCheckBox* checkDarkTheme() const { return checkDark_; }
    QCheckBox* checkStatusBar() const { return checkStatusBar_; }
    QCheckBox* checkPropAutoLoad() const { return checkPropAutoLoad_; }
    QCheckBox* checkCtrl() const { return checkCtrl_; }
    QCheckBox* checkShift() const { return checkShift_; }
    QCheckBox* checkAlt() const { return checkAlt_; }
    QCheckBox* checkReadOnly() const { return checkReadOnly_; }
    QCheckBox* checkConfirmQuit() const { return checkConfirmQuit_; }
    QCheckBox* checkDateSize() const { return checkDateSize_; }
    QCheckBox* checkMouseOver() const { return checkMouseOver_; }
    QCheckBox* checkDirsOnly() const { return checkDirsOnly_; }
    QCheckBox* checkUseFilter() const { return checkUseFilter_; }
    QPlainTextEdit* textFilter() const { return textFilter_; }
    QCheckBox* checkUseStartFolder() const { return checkStart_; }
    QLineEdit* editStartFolder() const { return editStart_; }
    QCheckBox* checkUseRootFolder() const { return checkRoot_; }
    QLineEdit* editRootFolder() const { return editRoot_; }
    QPlainTextEdit* textExtensions() const { return textExt_; }
    QCheckBox* checkRuler() const { return checkRuler_; }
    QCheckBox* checkAutoWrap() const { return checkAutoWrap_; }
    tav::XButtonGroupTyped<int>& groupLinePos() { return groupLiPos_; }
    // The "Favorite Filter" box of a filter bit, or null.
    QCheckBox* checkFilterBit(unsigned bit) const;

private:
    void setup_general(QWidget* page);
    void setup_tree(QWidget* page);
    void setup_filter(QWidget* page);
    void setup_text_view(QWidget* page);
    // A row: label (minimum width 140), control, spacer, explanation.
    tav::XPanel* add_row(tav::XPanel* page, const QString& label, const QString& explanation = QString(),
                         bool explanationDisabled = false);
    QCheckBox* add_check_in_row(tav::XPanel* row, const QString& text);
    QString select_directory();

    WinFinderConfig cfg_;
    QTabWidget* tabs_ = nullptr;
    QPushButton* buttonOk_ = nullptr;
    QPushButton* buttonCancel_ = nullptr;

    tav::XTypedComboBox<unsigned>* comboThreads_ = nullptr;
    tav::XTypedComboBox<unsigned>* comboScale_ = nullptr;
    tav::XTypedComboBox<unsigned>* comboFontHex_ = nullptr;
    tav::XTypedComboBox<unsigned>* comboFont_ = nullptr;
    tav::XTypedComboBox<unsigned>* comboAutoLoad_ = nullptr;
    tav::XTypedComboBox<unsigned>* comboScope_ = nullptr;
    QComboBox* comboLang_ = nullptr;
    QCheckBox* checkDark_ = nullptr;
    QCheckBox* checkStatusBar_ = nullptr;
    QCheckBox* checkPropAutoLoad_ = nullptr;
    QCheckBox* checkCtrl_ = nullptr;
    QCheckBox* checkShift_ = nullptr;
    QCheckBox* checkAlt_ = nullptr;
    QCheckBox* checkReadOnly_ = nullptr;
    QCheckBox* checkConfirmQuit_ = nullptr;
    QCheckBox* checkDateSize_ = nullptr;
    QCheckBox* checkMouseOver_ = nullptr;
    QCheckBox* checkDirsOnly_ = nullptr;
    QCheckBox* checkUseFilter_ = nullptr;
    QPlainTextEdit* textFilter_ = nullptr;
    QCheckBox* checkStart_ = nullptr;
    QLineEdit* editStart_ = nullptr;
    QCheckBox* checkRoot_ = nullptr;
    QLineEdit* editRoot_ = nullptr;
    QPlainTextEdit* textExt_ = nullptr;
    QCheckBox* checkRuler_ = nullptr;
    QCheckBox* checkAutoWrap_ = nullptr;
    tav::XButtonGroupTyped<int> groupLiPos_;
    std::vector<std::pair<unsigned, QCheckBox*>> filterBits_;
    std::vector<QLabel*> rowLabels_;   // of the page being built
};

} // namespace tavFinder
