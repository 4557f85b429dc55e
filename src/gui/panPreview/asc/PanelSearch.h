#pragma once
// One search of the text preview: search text with history, switches for
// regular expressions, whole words and case, scope, colour of its layer and
// the number of hits.
#include "gui/panel/XPanel.h"

#include <QColor>

class QLabel;
class QToolButton;

namespace tav {
class XColorLabel;
class XComboBox;
class XNode;
template <typename T>
class XTypedComboBox;
namespace find {
class XContentFilter;
}
}

namespace tavFinder {

class PanelSearch : public tav::XPanel {
    Q_OBJECT
public:
    explicit PanelSearch(QWidget* parent = nullptr);

    void ini(unsigned panelNo);
    unsigned panelNo() const { return panelNo_; }
    // Colour of panel n when nothing is saved (panel 2 depends on the style).
    static QColor defaultColor(unsigned panelNo);

    void from_node(tav::XNode* node);
    void to_node(tav::XNode* node) const;
    void set_content_filter(const tav::find::XContentFilter& filter);
    void set_hits(unsigned hits);
    QColor color() const;
    // Empties the search text and the hit count.
    void clear_search();

    tav::XComboBox* comboSearch() const { return combo_; }
    QToolButton* buttonRegEx() const { return buttonRegEx_; }
    QToolButton* buttonWholeWords() const { return buttonWholeWords_; }
    QToolButton* buttonMatchCase() const { return buttonMatchCase_; }
    QLabel* labelHits() const { return labelHits_; }
    QToolButton* buttonDelete() const { return buttonDelete_; }
    QToolButton* buttonFind() const { return buttonFind_; }
    tav::XColorLabel* colorLabel() const { return colorLabel_; }
    tav::XTypedComboBox<unsigned>* comboScope() const { return comboScope_; }
    bool isRegEx() const;
    bool isWholeWords() const;
    bool isMatchCase() const;

private:
    unsigned panelNo_ = 0;
    tav::XComboBox* combo_ = nullptr;
    QToolButton* buttonRegEx_ = nullptr;
    QToolButton* buttonWholeWords_ = nullptr;
    QToolButton* buttonMatchCase_ = nullptr;
    QLabel* labelHits_ = nullptr;
    QToolButton* buttonDelete_ = nullptr;
    QToolButton* buttonFind_ = nullptr;
    tav::XColorLabel* colorLabel_ = nullptr;
    tav::XTypedComboBox<unsigned>* comboScope_ = nullptr;
};

} // namespace tavFinder
