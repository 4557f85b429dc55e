#pragma once
// A search expression that cannot be used: the user is told where and why at
// the input field itself (tooltip and a flash), not only in the log.
#include <QString>

class QComboBox;

namespace tav {
namespace find {
class XContentFilter;
}
}

namespace tavFinder {

// "Character 7: unbalanced parenthesis" in the interface's language.
QString expression_error_text(const tav::find::XContentFilter& filter);
// Flashes the field and shows the text as its tooltip until the text changes
// ('normalTip' comes back then).
void show_expression_error(QComboBox* combo, const QString& text, const QString& normalTip);

} // namespace tavFinder
