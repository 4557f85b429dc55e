#include "src/gui/lang/DiaAddLang.h"

#include "base/log/Logger.h"
#include "gui/panel/XPanel.h"
#include "gui/tools/XTools.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace tavFinder {

using tav::log;
using tav::xt;

DiaAddLang::DiaAddLang(QWidget* parent) : tav::XDialog(parent) {
    setWindowTitle(xt("Add language"));
    auto* layout = new QVBoxLayout(this);
    auto* content = new tav::XPanel(this, tav::XPanel::VERTICAL);
    layout->addWidget(content);
    content->createLabel(xt("Add new Language by given a short name\nLowercase letters only without space.\nWe recommend 2 letters!"));
    tav::XPanel* row = content->createPanel(tav::XPanel::HORIZONTAL);
    row->createLabel(xt("Language"));
    edit_ = row->createLineEdit();
    tav::XPanel* buttons = content->createPanel(tav::XPanel::HORIZONTAL);
    ok_ = buttons->createButton(xt("OK"), [this]() { on_ok(); }, QIcon(QStringLiteral(":/res/icons/apply-ok.svg")));
    cancel_ = buttons->createButton(xt("Cancel"), [this]() { reject(); }, QIcon(QStringLiteral(":/res/icons/apply-cancel.svg")));
    buttons->addSpacer();
    ok_->setDefault(true);
    edit_->setFocus();
}

QString DiaAddLang::text() const { return edit_->text().trimmed(); }

bool DiaAddLang::isAllowedName(const QString& trimmed) {
    for (uint c : trimmed.toUcs4())
        if (!QChar::isLetter(c) || !QChar::isLower(c)) return false;
    return true;
}

void DiaAddLang::on_ok() {
    if (!isAllowedName(text())) {
        // The rule is on the label above; the dialog just stays open.
        log(tav::LOG_REJECTED, "WinLang::on_ok, vorbidden char");
        return;
    }
    accept();
}

} // namespace tavFinder
