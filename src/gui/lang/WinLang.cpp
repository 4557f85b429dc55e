#include "src/gui/lang/WinLang.h"

#include "base/log/Logger.h"
#include "base/node/XNode.h"
#include "gui/panel/XPanel.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XBox.h"
#include "gui/widgets/XComboBox.h"
#include "gui/widgets/XPlainTextEdit.h"
#include "src/gui/lang/DiaAddLang.h"
#include "src/gui/lang/PanelLang.h"

#include <QPushButton>
#include <QScrollArea>
#include <QSignalBlocker>
#include <algorithm>

namespace tavFinder {

using tav::log;
using tav::xt;

namespace {
bool gOpen = false;
}

bool WinLang::isOpen() { return gOpen; }

QString WinLang::editable_lang(const QString& lang) {
    // English is the key and never edited; German is the editor's fallback.
    return lang == QLatin1String("en") ? QStringLiteral("de") : lang;
}

WinLang::WinLang(QWidget* parent) : WindowBase(parent) {
    gOpen = true;
    setXName(QStringLiteral("WinLang"));
    langAtOpen_ = tav::XTools::lang();
    // Title and icon.
    setWindowTitle(xt("Talvo Finder - Language Editor"));
    setWindowIcon(QIcon(QIcon(QStringLiteral(":/tf/icons/find2.svg")).pixmap(64, 64)));
    // The language table with its buttons.
    auto* content = new tav::XPanel(this, tav::XPanel::VERTICAL, QStringLiteral("WinLangContent"));
    setCentralWidget(content);
    scroll_ = content->add(new QScrollArea(content), 1);
    scroll_->setWidgetResizable(true);
    panel_ = new PanelLang(scroll_);
    scroll_->setWidget(panel_);

    tav::XPanel* row = content->createPanel(tav::XPanel::HORIZONTAL);
    buttonOk_ = row->createButton(xt("OK"), [this]() { on_ok(); }, QIcon(QStringLiteral(":/res/icons/apply-ok.svg")));
    buttonOk_->setToolTip(xt("Saves the current changes and close the Window"));
    buttonCancel_ = row->createButton(xt("Cancel"), [this]() { on_cancel(); },
                                      QIcon(QStringLiteral(":/res/icons/apply-cancel.svg")));
    buttonCancel_->setToolTip(xt("Cancel all - changes will not be written"));
    row->addSpacer();
    buttonAdd_ = row->createButton(xt("Add language"), [this]() { on_add_lang(); });
    buttonAdd_->setToolTip(xt("Add a new language with 2 letters like 'en', 'it', 'ru', ... "));
    buttonRemove_ = row->createButton(xt("Remove language"), [this]() { on_remove_lang(comboLang_->currentText()); });
    buttonRemove_->setToolTip(xt("Remove language except 'en' and 'de'"));
    row->addSpacer();
    row->createLabel(xt("Language"));
    comboLang_ = row->createComboBox(false);
    comboLang_->setMinimumWidth(70);
    connect(comboLang_, &QComboBox::currentTextChanged, this, [this](const QString& lang) {
        log(tav::LOG_TRACE, "WinLang::WinLang - combo lang CHANGED, sLang:$", lang);
        on_combo_lang_changed(lang);
    });
    // The language edited at first: the interface's.
    langToEdit_ = editable_lang(tav::XTools::lang());
}

WinLang::~WinLang() {
    log(tav::LOG_TRACE, "WinLang::~WinLang");
    gOpen = false;
}

void WinLang::set_lang_root(tav::XNode* catalogue) {
    langToEdit_ = editable_lang(tav::XTools::lang());
    log(tav::LOG_TRACE, "WinLang::set_lang_root, XTools::lang:$, langCurr:$", tav::XTools::lang(), langToEdit_);
    if (!X_ASSERT_MSG(catalogue, "nLang == NULL")) return;
    nLangLive_ = catalogue;

    std::vector<tav::XNode*> messages = catalogue->children_by_Type(QStringLiteral("Message"));
    // Plain comparison by code units, so the order does not depend on the locale.
    std::stable_sort(messages.begin(), messages.end(),
                     [](tav::XNode* a, tav::XNode* b) { return get_string(a) < get_string(b); });
    nLang_ = tav::XNode::createRoot(QStringLiteral("GUI"));
    for (tav::XNode* m : messages) nLang_->addNode(m, true);
    log(tav::LOG_TRACE, "count nodes:$", int(messages.size()));
    nLangCopy_ = nLang_->deepCopy();

    panel_->set_lang_root(nLang_.get(), langToEdit_);
    {
        QSignalBlocker block(comboLang_);
        comboLang_->clear();
        for (const QString& l : tav::XTools::get_ar_lang_from_node(catalogue))
            if (l != QLatin1String("en")) comboLang_->addItem(l);
        log(tav::LOG_TRACE, "WinLang::~set_lang_root, XTools::lang:$", tav::XTools::lang());
        comboLang_->setCurrentIndex(comboLang_->findText(langToEdit_));
    }
}

void WinLang::on_combo_lang_changed(const QString& lang) {
    log(tav::LOG_TRACE, "WinLang::on_combo_lang_changed, lang-prev:$, sLang:$", langToEdit_, lang);
    if (lang.isEmpty()) return;
    update_nodes(langToEdit_);
    set_current_lang_to_edit(lang);
}

void WinLang::set_current_lang_to_edit(const QString& lang) {
    log(tav::LOG_TRACE, "WinLang::set_current_lang_to_edit, sLang:$", lang);
    panel_->set_lang_root(nLang_.get(), lang);
    langToEdit_ = lang;
}

QString WinLang::get_string(tav::XNode* message) {
    if (!message) {
        log(tav::LOG_ERROR, "get_string, nMessage == nullptr");
        return QString();
    }
    tav::XNode* en = message->query(QStringLiteral("en"));
    if (!en) {
        log(tav::LOG_ERROR, "get_string, nEN == nullptr");
        return QString();
    }
    return en->getText();
}

void WinLang::update_nodes(const QString& lang) {
    if (!nLang_) {
        log(tav::LOG_ERROR, "WinLang::update_nodes, nLang == nullptr");
        return;
    }
    log(tav::LOG_TRACE, "WinLang::update_nodes, lang:'$'", lang);
    for (tav::XNode* m : nLang_->children_by_Type(QStringLiteral("Message"))) {
        auto* edit = static_cast<tav::XPlainTextEdit*>(m->pointer());
        if (!edit) continue;
        tav::XNode* n = m->query(lang);
        if (!n) {
            log(tav::LOG_ERROR, "WinLang::update_nodes, n == null, create <$>", lang);
            n = m->createChild(lang);
        }
        n->setText(edit->toPlainText());
    }
}

void WinLang::on_add_lang() {
    QString sLang;
    {
        DiaAddLang dia(this);
        if (dia.exec() == QDialog::Accepted) sLang = dia.text();
    }
    log(tav::LOG_TRACE, "WinLang::on_add_lang, sLang:'$'", sLang);
    if (sLang.isEmpty() || !nLang_) return;
    if (tav::XTools::get_ar_lang_from_node(nLang_.get()).contains(sLang)) {
        tav::XBox::warn(this, xt("Already exists"), tav::fill(xt("'$' already exists!"), sLang));
        return;
    }
    log(tav::LOG_TRACE, "WinLang::on_add_lang - ok accept '$'", sLang);
    update_nodes(langToEdit_);   // keep what was typed for the language shown so far
    for (tav::XNode* m : nLang_->children_by_Type(QStringLiteral("Message"))) m->createChild(sLang);
    {
        QSignalBlocker block(comboLang_);
        comboLang_->addItem(sLang);
        comboLang_->setCurrentIndex(comboLang_->count() - 1);
    }
    set_current_lang_to_edit(sLang);
}

void WinLang::on_remove_lang(const QString& lang) {
    if (lang.isEmpty() || !nLang_) return;
    if (lang == QLatin1String("de") || lang == QLatin1String("en")) {
        tav::XBox::warn(this, xt("Not allowed"), xt("You cannot remove lang 'en' and 'de'!"));
        return;
    }
    if (!tav::XBox::ask_yes_no(this, xt("Remove Language"), tav::fill(xt("Do you really want to remove '$' ?"), lang)))
        return;
    if (langToEdit_ != lang) update_nodes(langToEdit_);
    int count = 0;
    for (tav::XNode* m : nLang_->children_by_Type(QStringLiteral("Message"))) {
        if (tav::XNode* n = m->query(lang)) {
            m->removeNode(n, true);
            ++count;
        }
    }
    log(tav::LOG_TRACE, "WinLang::on_remove_lang, '$' removed from $ messages", lang, count);
    {
        QSignalBlocker block(comboLang_);
        comboLang_->removeItem(comboLang_->findText(lang));
        comboLang_->setCurrentIndex(comboLang_->findText(QStringLiteral("de")));
    }
    set_current_lang_to_edit(QStringLiteral("de"));
    // Deliberately also when the interface showed another language.
    tav::XTools::set_lang(QStringLiteral("de"));
}

QString WinLang::saveFile() const {
    if (!saveFile_.isEmpty()) return saveFile_;
    return tav::XTools::get_absolute_config_file_path(QStringLiteral("lang.xml")).absoluteFilePath();
}

void WinLang::on_apply() {
    log(tav::LOG_TRACE, "WinLang::on_apply");
    if (!X_ASSERT_MSG(nLang_.get(), "nLang == NULL")) return;
    update_nodes(langToEdit_);
    const QString path = saveFile();
    log(tav::LOG_TRACE, "WinLang::on_ok - save '$'", path);
    std::unique_ptr<tav::XNode> copy = nLang_->deepCopy();
    copy->remove_all_pointer();
    if (!copy->saveNodeToXml(path)) log(tav::LOG_ERROR, "WinLang::on_apply, <<<$>>> could not be written", path);
    tav::XTools::set_catalogue_content(copy.get());
    copy.reset();
    tav::XTools::set_lang(tav::XTools::lang());
}

void WinLang::on_ok() {
    on_apply();
    close();
    tav::XTools::set_lang(langAtOpen_);
    log(tav::LOG_TRACE, "WinLang::on_ok, XTools::lang:$", tav::XTools::lang());
}

void WinLang::on_cancel() {
    log(tav::LOG_TRACE, "WinLang::on_cancel");
    close();
}

} // namespace tavFinder
