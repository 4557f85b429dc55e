#pragma once
// The form of one custom application in the applications editor: one row per
// field, a label and its editor.
#include "gui/panel/XPanel.h"
#include "src/gui/apps/XApp.h"

#include <vector>

class QCheckBox;
class QLineEdit;
class QPushButton;
class QToolButton;
class QLabel;

namespace tavFinder {

class PanelProgram : public tav::XPanel {
    Q_OBJECT
public:
    explicit PanelProgram(QWidget* parent = nullptr);

    // Name and arguments raw (so "$(G_PATH)" stays visible), the other texts replaced.
    void from_app(const XApp& app);
    // A new record from the fields; "flagEnabled" is left unset. The environment
    // describes the program of the Path field while the record is built.
    XApp to_app() const;

    QLineEdit* editName() const { return editName_; }
    QLineEdit* editTitle() const { return editTitle_; }
    QLineEdit* editPath() const { return editPath_; }
    QLineEdit* editArguments() const { return editArguments_; }
    QLineEdit* editIcon() const { return editIcon_; }
    QLineEdit* editWorkingDir() const { return editWorkingDir_; }
    QLineEdit* editEnvironment() const { return editEnvironment_; }
    QLineEdit* editToolTip() const { return editToolTip_; }
    QCheckBox* checkTerminal() const { return checkTerminal_; }
    QCheckBox* checkKeepOpen() const { return checkKeepOpen_; }
    QCheckBox* checkShowOutput() const { return checkShowOutput_; }

private:
    std::vector<QLabel*> labels_;   // one width for all: the fields line up in every language
    tav::XPanel* row(const char* label);
    QLineEdit* lineRow(const char* label);
    void setIconButton(const QString& path);
    void on_select_path();
    void on_select_icon();
    void on_select_working_dir();

    QLineEdit* editName_ = nullptr;
    QLineEdit* editTitle_ = nullptr;
    QLineEdit* editPath_ = nullptr;
    QLineEdit* editArguments_ = nullptr;
    QToolButton* buttonIcon_ = nullptr;
    QLineEdit* editIcon_ = nullptr;
    QCheckBox* checkTerminal_ = nullptr;
    QCheckBox* checkKeepOpen_ = nullptr;
    QCheckBox* checkShowOutput_ = nullptr;
    QLineEdit* editWorkingDir_ = nullptr;
    QLineEdit* editEnvironment_ = nullptr;
    QLineEdit* editToolTip_ = nullptr;
};

} // namespace tavFinder
