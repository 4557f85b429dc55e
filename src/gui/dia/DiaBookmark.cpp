#include "src/gui/dia/DiaBookmark.h"

#include "gui/panel/XPanel.h"
#include "gui/tools/XTools.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace tavFinder {

using tav::xt;

DiaBookmark::DiaBookmark(QWidget* parent) : tav::XDialog(parent) {}

void DiaBookmark::set_bookmark(const Bookmark& bm) {
    bm_ = bm;
    if (!editTitle_) {
        auto* layout = new QVBoxLayout(this);
        auto* panel = new tav::XPanel(this, tav::XPanel::VERTICAL);
        layout->addWidget(panel);

        tav::XPanel* rowName = panel->createPanel(tav::XPanel::HORIZONTAL);
        rowName->createLabel(xt("Name"))->setMinimumWidth(120);
        editTitle_ = rowName->createLineEdit();
        editTitle_->setObjectName(QStringLiteral("editTitle"));

        tav::XPanel* rowPath = panel->createPanel(tav::XPanel::HORIZONTAL);
        rowPath->createLabel(xt("Path"))->setMinimumWidth(120);
        editPath_ = rowPath->createLineEdit();
        editPath_->setObjectName(QStringLiteral("editPath"));
        editPath_->setReadOnly(true);
        editPath_->setMinimumWidth(600);

        tav::XPanel* rowButtons = panel->createPanel(tav::XPanel::HORIZONTAL);
        rowButtons->createButton(xt("OK"), [this]() { on_ok(); }, QIcon(QStringLiteral(":/res/icons/apply-ok.svg")))
            ->setObjectName(QStringLiteral("buttonOK"));
        rowButtons->createButton(xt("Cancel"), [this]() { reject(); }, QIcon(QStringLiteral(":/res/icons/apply-cancel.svg")))
            ->setObjectName(QStringLiteral("buttonCancel"));
        rowButtons->addSpacer();
    }
    editTitle_->setText(bm.title);
    editPath_->setText(bm.path);
}

void DiaBookmark::on_ok() {
    bm_.title = editTitle_->text().trimmed();
    accept();
}

} // namespace tavFinder
