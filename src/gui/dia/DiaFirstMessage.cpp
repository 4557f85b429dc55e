#include "src/gui/dia/DiaFirstMessage.h"

#include "base/log/Logger.h"
#include "gui/panel/XPanel.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XBrowser.h"

#include <QPushButton>
#include <QRadioButton>
#include <vector>
#include <QVBoxLayout>

namespace tavFinder {

using tav::log;
using tav::xt;

QString DiaFirstMessage::lang_short_name(int daLang) {
    switch (daLang) {
    case English: return QStringLiteral("en");
    case German: return QStringLiteral("de");
    case Russian: return QStringLiteral("ru");
    default: return QString();
    }
}

QString DiaFirstMessage::result_text(int code) {
    const QString name = code == OK ? QStringLiteral("OK") : code == OK_SAVE ? QStringLiteral("OK_SAVE") : QStringLiteral("CANCEL");
    return tav::fill("$, return:$", name, code);
}

QString DiaFirstMessage::page_of(DaLang lang) {
    return tav::fill(":tf/html/FirstMessage.$.html", lang_short_name(lang));
}

DiaFirstMessage::DiaFirstMessage(QWidget* parent) : tav::XDialog(parent), group_(this, QStringLiteral("DaLang")) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* content = new tav::XPanel(this, tav::XPanel::VERTICAL);
    layout->addWidget(content);
    // The page.
    content->setTight();
    browser_ = content->createBrowser();
    browser_->setMinimumSize(960, 500);
    browser_->setOpenExternalLinks(false);
    browser_->setOpenLinks(false);
    browser_->setDocMargin(0);
    browser_->setResourceHTML(page_of(English), true);
    // The language choice.
    tav::XPanel* row = content->createPanel(tav::XPanel::HORIZONTAL);
    row->setMargins(8, 6, 8, 6);
    std::vector<std::pair<QRadioButton*, const char*>> radios;
    for (auto [lang, text] : {std::pair<DaLang, const char*>{English, "English"}, {German, "German"}, {Russian, "Russian"}}) {
        auto* radio = row->add(new QRadioButton(xt(text), row));
        group_.addButton(radio, lang);
        radios.emplace_back(radio, text);
    }
    // The buttons.
    row->addSpacer();
    okSave_ = row->createButton(xt("OK + save"), [this]() {
        result_ = OK_SAVE;
        accept();
    });
    ok_ = row->createButton(xt("OK"), [this]() {
        result_ = OK;
        accept();
    });
    ok_->setDefault(true);
    // The page, its buttons and the title speak the language chosen, so the page
    // names the buttons as they read.
    group_.addListener([this, radios](DaLang lang) {
        switch (lang) {
        case English: log(tav::LOG_TRACE, "english"); break;
        case German: log(tav::LOG_TRACE, "deutsch"); break;
        case Russian: log(tav::LOG_TRACE, "russisch"); break;
        }
        browser_->setResourceHTML(page_of(lang), true);
        const QString l = lang_short_name(lang);
        okSave_->setText(tav::XTools::translateTo(QStringLiteral("OK + save"), l));
        ok_->setText(tav::XTools::translateTo(QStringLiteral("OK"), l));
        for (auto [radio, text] : radios) radio->setText(tav::XTools::translateTo(QString::fromLatin1(text), l));
        setWindowTitle(tav::XTools::translateTo(QStringLiteral("Hint"), l));
    });
    // Title, and the current language chosen.
    setWindowTitle(xt("Hint"));
    const QString current = tav::XTools::lang();
    int selected = -1;
    for (DaLang l : {English, German, Russian})
        if (lang_short_name(l) == current) selected = l;
    group_.select(DaLang(selected));
}

std::pair<int, QString> DiaFirstMessage::show_first_message(QWidget* parent) {
    DiaFirstMessage dia(parent);
    const bool accepted = dia.exec() == QDialog::Accepted;
    const QString lang = accepted ? lang_short_name(dia.selected_lang()) : QString();
    return {dia.result_code(), lang};
}

} // namespace tavFinder
