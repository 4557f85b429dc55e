#include "src/gui/apps/PanelProgram.h"

#include "base/env/Env.h"
#include "base/log/Logger.h"
#include "gui/tools/XTools.h"

#include <algorithm>
#include <QCheckBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>

namespace tavFinder {

using tav::log;
using tav::xt;

PanelProgram::PanelProgram(QWidget* parent) : tav::XPanel(parent, tav::XPanel::VERTICAL, QStringLiteral("PanelProgram")) {
    setTight();
    editName_ = lineRow("Name");
    editTitle_ = lineRow("Title");

    tav::XPanel* rowPath = row("Path");
    editPath_ = rowPath->createLineEdit();
    rowPath->createButton(QStringLiteral("."), [this]() { on_select_path(); })->setMaximumWidth(40);

    editArguments_ = lineRow("Arguments");

    tav::XPanel* rowIcon = row("Icon");
    buttonIcon_ = rowIcon->createImageButton(QIcon(), xt("Select Icon"), [this]() { on_select_icon(); }, false, 24);
    editIcon_ = rowIcon->createLineEdit();

    tav::XPanel* rowShell = row("Shell");
    checkTerminal_ = rowShell->add(new QCheckBox(xt("Terminal"), rowShell));
    checkKeepOpen_ = rowShell->add(new QCheckBox(xt("Keep Terminal Window open"), rowShell));
    rowShell->addSpacer();

    tav::XPanel* rowOutput = row("Output");
    checkShowOutput_ = rowOutput->add(new QCheckBox(xt("Show Process Output"), rowOutput));
    rowOutput->addSpacer();

    tav::XPanel* rowDir = row("Working Dir");
    editWorkingDir_ = rowDir->createLineEdit();
    rowDir->createButton(QStringLiteral("."), [this]() { on_select_working_dir(); })->setMaximumWidth(40);

    editEnvironment_ = lineRow("Environment");
    editToolTip_ = lineRow("ToolTip");
    int widest = 0;
    for (QLabel* l : labels_) widest = std::max(widest, l->sizeHint().width());
    for (QLabel* l : labels_) l->setMinimumWidth(widest);
    setIconButton(QString());
}

tav::XPanel* PanelProgram::row(const char* label) {
    tav::XPanel* r = createPanel(tav::XPanel::HORIZONTAL);
    QLabel* l = r->createLabel(xt(label));
    l->setMinimumWidth(100);
    l->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    labels_.push_back(l);
    return r;
}

QLineEdit* PanelProgram::lineRow(const char* label) { return row(label)->createLineEdit(); }

void PanelProgram::setIconButton(const QString& path) {
    // Without an icon of its own the button shows a picture, so it can be seen and clicked.
    const QIcon own = QFileInfo::exists(path) ? QIcon(path) : QIcon();
    const bool usable = !own.isNull() && !own.pixmap(24).isNull();
    buttonIcon_->setIcon(usable ? own : tav::XTools::getIcon(QStringLiteral("picture.svg")));
}

void PanelProgram::from_app(const XApp& app) {
    editName_->setText(app.get_name(false));
    editTitle_->setText(app.get_title(true));
    editPath_->setText(app.get_path(true));
    editArguments_->setText(app.get_arguments(false));
    editIcon_->setText(app.get_icon_path(true));
    editWorkingDir_->setText(app.get_working_dir(true));
    editEnvironment_->setText(app.get_environment(true));
    editToolTip_->setText(app.get_tool_tip(true));
    checkTerminal_->setChecked(app.is_flag_terminal());
    checkKeepOpen_->setChecked(app.is_flag_keep_term_open());
    checkShowOutput_->setChecked(app.is_flag_show_output());
    setIconButton(app.get_icon_path(true));
}

XApp PanelProgram::to_app() const {
    tav::fileInfo_to_env(QFileInfo(editPath_->text()));
    XApp app;
    app.set_name(editName_->text());
    app.set_title(editTitle_->text());
    app.set_path(editPath_->text());
    app.set_icon_path(editIcon_->text());
    app.set_arguments(editArguments_->text());
    app.set_environment(editEnvironment_->text());
    app.set_working_dir(editWorkingDir_->text());
    app.set_tool_tip(editToolTip_->text());
    app.set_flag_terminal(checkTerminal_->isChecked());
    app.set_flag_keep_term_open(checkKeepOpen_->isChecked());
    app.set_flag_show_output(checkShowOutput_->isChecked());
    return app;
}

void PanelProgram::on_select_path() {
    const QString file = QFileDialog::getOpenFileName(this, xt("Select Path"), QFileInfo(editPath_->text()).absolutePath());
    if (!file.isEmpty()) editPath_->setText(file);
}

void PanelProgram::on_select_icon() {
    // Start where the current icon lies, else in the home folder.
    const QFileInfo current(editIcon_->text());
    const QString start = !editIcon_->text().isEmpty() && current.absoluteDir().exists() ? current.absolutePath() : QDir::homePath();
    const QString file = QFileDialog::getOpenFileName(this, xt("Select Icon"), start);
    if (file.isEmpty()) return;
    editIcon_->setText(file);
    setIconButton(file);
}

void PanelProgram::on_select_working_dir() {
    const QString dir = QFileDialog::getExistingDirectory(this, xt("Select a Directory"), QDir::currentPath(),
                                                          QFileDialog::ShowDirsOnly);
    log(tav::LOG_VERBOSE, "dir name '$'", dir);
    if (!dir.isEmpty()) editWorkingDir_->setText(dir);
}

} // namespace tavFinder
