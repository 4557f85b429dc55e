#include "src/gui/lang/PanelLang.h"

#include "base/log/Logger.h"
#include "base/node/XNode.h"
#include "src/gui/lang/PanelMessage.h"

#include <QLayoutItem>

namespace tavFinder {

using tav::log;

PanelLang::PanelLang(QWidget* parent) : tav::XPanel(parent, tav::XPanel::VERTICAL) {
    setSpacing(2);
}

void PanelLang::set_lang_root(tav::XNode* catalogue, const QString& lang) {
    // Old rows go later: this may run from a signal of one of their widgets.
    while (QLayoutItem* item = boxLayout()->takeAt(0)) {
        if (QWidget* w = item->widget()) {
            w->hide();
            w->deleteLater();
        }
        delete item;
    }
    rows_.clear();
    if (!X_ASSERT_MSG(catalogue, "nLang == NULL")) return;
    // The nodes must not point at the edits of the rows just dropped.
    catalogue->remove_all_pointer();

    const std::vector<tav::XNode*> messages = catalogue->children_by_Type(QStringLiteral("Message"));
    log(tav::LOG_TRACE, "PanelLang::set_lang_root, lang:'$', ar msg:$", lang, int(messages.size()));
    for (tav::XNode* m : messages) {
        tav::XNode* en = m->query(QStringLiteral("en"));
        if (!en || en->getText().isEmpty()) continue;
        auto* row = add(new PanelMessage(this));
        row->set_message(m, lang);
        rows_.push_back(row);
    }
    addSpacer();
}

} // namespace tavFinder
