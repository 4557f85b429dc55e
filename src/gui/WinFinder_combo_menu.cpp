// The context menu of the three search-history combo boxes of the filter panel:
// the line edit's own entries, the history editor and, in regular-expression
// mode, three ready-made expressions for the content box.
#include "base/log/Logger.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XComboBox.h"
#include "src/gui/WinFinder.h"
#include "src/gui/dia/DiaHistory.h"

#include <QCursor>
#include <QLineEdit>
#include <QMenu>
#include <QToolButton>
#include <memory>

namespace tavFinder {

using tav::xt;

void WinFinder::setup_combo_menus() {
    for (tav::XComboBox* combo : {comboPattern_, comboNotPattern_, comboContent_}) {
        if (!X_ASSERT_MSG(combo, "comboBox == NULL") || !combo->lineEdit()) continue;
        combo->lineEdit()->setContextMenuPolicy(Qt::CustomContextMenu);
        connect(combo->lineEdit(), &QLineEdit::customContextMenuRequested, this, [this, combo](const QPoint&) {
            std::unique_ptr<QMenu> menu(combo->lineEdit()->createStandardContextMenu());
            fill_combo_menu(*menu, combo);
            menu->exec(QCursor::pos());
        });
    }
}

void WinFinder::fill_combo_menu(QMenu& menu, tav::XComboBox* combo) {
    menu.addSeparator();
    QAction* edit = menu.addAction(xt("Edit History"));
    connect(edit, &QAction::triggered, this, [this, combo]() { DiaHistory::edit_combo_history(this, combo); });
    if (!buttonRegEx_ || !buttonRegEx_->isChecked()) return;
    menu.addSeparator();
    QMenu* regex = menu.addMenu(xt("Regular Expression"));
    const std::pair<const char*, const char*> expressions[] = {
        {"EMails", "([\\w\\.-]+@[\\w\\.-]+)"},
        {"HTML Title", "<title[^>]*>([^<]+)</title>"},
        {"XML Entities", "&#([0-9]+);"},
    };
    for (const auto& [title, expr] : expressions) {
        // Always into the content box, whichever box the menu belongs to.
        connect(regex->addAction(xt(title)), &QAction::triggered, this,
                [this, e = QString::fromLatin1(expr)]() { comboContent_->setEditText(e); });
    }
}

} // namespace tavFinder
