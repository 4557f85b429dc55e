#pragma once
// The rows of the language editor: one PanelMessage per message of a
// catalogue that has an English text, then a spacer.
#include "gui/panel/XPanel.h"

#include <vector>

namespace tav {
class XNode;
}

namespace tavFinder {

class PanelMessage;

class PanelLang : public tav::XPanel {
    Q_OBJECT
public:
    explicit PanelLang(QWidget* parent = nullptr);
    // Rebuilds the rows for 'catalogue' showing the texts of 'lang'.
    void set_lang_root(tav::XNode* catalogue, const QString& lang);
    const std::vector<PanelMessage*>& rows() const { return rows_; }

private:
    std::vector<PanelMessage*> rows_;
};

} // namespace tavFinder
