#include "src/gui/ExpressionError.h"

#include "base/find/XContentFilter.h"
#include "base/log/Logger.h"
#include "gui/tools/XTools.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPointer>
#include <QToolTip>
#include <memory>

namespace tavFinder {

using tav::xt;

namespace {
// The reasons of the simple language in the user's language; those of a
// regular expression come from the engine in English.
QString reason(const QString& why) {
    static const std::vector<std::pair<const char*, QString (*)()>> known = {
        {"unbalanced parenthesis", [] { return xt("unbalanced parenthesis"); }},
        {"unbalanced quote", [] { return xt("unbalanced quote"); }},
        {"empty parentheses", [] { return xt("empty parentheses"); }},
        {"NEAR needs a term on both sides", [] { return xt("NEAR needs a term on both sides"); }},
        {"OR needs a term on both sides", [] { return xt("OR needs a term on both sides"); }},
        {"AND needs a term on both sides", [] { return xt("AND needs a term on both sides"); }},
        {"NEAR/n needs a number of words", [] { return xt("NEAR/n needs a number of words"); }},
        {"nothing to find: only excluded terms", [] { return xt("nothing to find: only excluded terms"); }},
        {"nothing to find", [] { return xt("nothing to find"); }},
        {"a term is missing", [] { return xt("a term is missing"); }},
    };
    for (const auto& k : known)
        if (why == QLatin1String(k.first)) return k.second();
    return why;
}
}

QString expression_error_text(const tav::find::XContentFilter& filter) {
    const QString why = reason(filter.errorText());
    if (filter.errorPosition() <= 0) return why;
    return tav::fill(xt("Character $: $"), filter.errorPosition(), why);
}

void show_expression_error(QComboBox* combo, const QString& text, const QString& normalTip) {
    if (!combo) return;
    tav::XTools::flash_combobox_editable(combo, 2);   // 4 x 150 ms
    combo->setToolTip(text);
    if (combo->isVisible()) QToolTip::showText(combo->mapToGlobal(QPoint(0, combo->height())), text, combo);
    QPointer<QComboBox> guard(combo);
    // One connection at a time: the next edit restores the normal tip. The handle goes
    // with the slot (also when the box goes before any edit).
    auto conn = std::make_shared<QMetaObject::Connection>();
    *conn = QObject::connect(combo, &QComboBox::editTextChanged, combo, [guard, normalTip, conn]() {
        if (guard) guard->setToolTip(normalTip);
        QObject::disconnect(*conn);
    });
}

} // namespace tavFinder
