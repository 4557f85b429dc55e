// The history of the three search combo boxes, kept in the window node under
// "SearchHistory".
#include "base/log/Logger.h"
#include "base/node/XNode.h"
#include "gui/widgets/XComboBox.h"
#include "gui/widgets/XTypedComboBox.h"
#include "src/gui/WinFinder.h"
#include "src/gui/config/ConfigTavFinder.h"

namespace tavFinder {

using tav::log;

namespace {
const QString kHistory = QStringLiteral("SearchHistory");
const QString kPattern = QStringLiteral("pattern");
const QString kCurrIndex = QStringLiteral("currIndex");
const QString kScopeIndex = QStringLiteral("scopeIndex");
}

void WinFinder::restoreSearchHistory() {
    log(tav::LOG_TRACE, "WinFinder::restoreSearchHistory");
    tav::XNode* nWin = nodeWin();
    if (!X_ASSERT_MSG(nWin, "nWin == NULL")) return;
    tav::XNode* nHistory = nWin->getCreateNode(kHistory);
    const std::pair<const char*, tav::XComboBox*> boxes[] = {
        {"PatternFile", comboPattern_}, {"NPatternFile", comboNotPattern_}, {"Content", comboContent_}};
    for (const auto& [name, combo] : boxes) {
        tav::XNode* n = nHistory->getCreateNode(QString::fromLatin1(name));
        combo->set_data(n->get_string_array(kPattern));
        combo->setCurrentIndex(n->getInt(kCurrIndex, 0), true);
    }
    tav::XNode* nContent = nHistory->getCreateNode(QStringLiteral("Content"));
    comboScope_->setCurrentIndex(nContent->getInt(kScopeIndex, int(cfg().scope)));
}

void WinFinder::saveSearchHistory() {
    log(tav::LOG_TRACE, "WinFinder::saveSearchHistory");
    tav::XNode* nWin = nodeWin();
    if (!X_ASSERT_MSG(nWin, "nWin == NULL") || !comboPattern_) return;
    tav::XNode* nHistory = nWin->getCreateNode(kHistory);
    // Every box is restored at the index of the pattern box; kept on purpose.
    const int currIndex = comboPattern_->currentIndex();
    const std::pair<const char*, tav::XComboBox*> boxes[] = {
        {"PatternFile", comboPattern_}, {"NPatternFile", comboNotPattern_}, {"Content", comboContent_}};
    for (const auto& [name, combo] : boxes) {
        tav::XNode* n = nHistory->getCreateNode(QString::fromLatin1(name));
        n->set_string_array(kPattern, combo->get_string_items());
        n->setInt(kCurrIndex, currIndex);
    }
    nHistory->getCreateNode(QStringLiteral("Content"))->setInt(kScopeIndex, comboScope_->currentIndex());
}

void WinFinder::manage_combo_History(tav::XComboBox* combo, const QString& text) {
    if (text.isEmpty()) return;
    if (!X_ASSERT_MSG(combo, "comboBox == NULL")) return;
    if (combo->findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive) >= 0) return;
    log(tav::LOG_TRACE, "WinFinder::manage_combo_History, add:$", text);
    combo->addItem(text);
}

} // namespace tavFinder
