#include "src/gui/panPreview/asc/PanelSearch.h"

#include "base/find/XContentFilter.h"
#include "base/log/Logger.h"
#include "base/node/XNode.h"
#include "base/util/Format.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XColorLabel.h"
#include "gui/widgets/XComboBox.h"
#include "gui/widgets/XTypedComboBox.h"
#include "src/gui/WindowBase.h"
#include "src/gui/config/ConfigTavFinder.h"

#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QToolButton>

namespace tavFinder {

using tav::log;
using tav::xt;

PanelSearch::PanelSearch(QWidget* parent) : tav::XPanel(parent, tav::XPanel::HORIZONTAL) {}

QColor PanelSearch::defaultColor(unsigned panelNo) {
    switch (panelNo) {
    case 0: return QColor(Qt::green);
    case 1: return QColor(Qt::yellow);
    default: return tav::KernelGUI::isTavStyleDark() ? QColor(142, 0, 0, 255) : QColor(Qt::cyan);
    }
}

void PanelSearch::ini(unsigned panelNo) {
    if (combo_) return;
    panelNo_ = panelNo;
    setObjectName(tav::fill("pan#$", panelNo));
    setMargins(0, 5, 0, 5);
    createLabel(tav::fill("$($)", tav::xt("Search"), panelNo + 1));

    combo_ = new tav::XComboBox(this);
    combo_->setEditable(true);
    combo_->setInsertPolicy(QComboBox::NoInsert);
    combo_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    add(combo_, 1);
    QLineEdit* edit = combo_->lineEdit();
    edit->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(edit, &QWidget::customContextMenuRequested, this, [this, edit](const QPoint& pos) {
        QMenu* menu = edit->createStandardContextMenu();
        menu->addSeparator();
        menu->addAction(xt("Delete History"), this, [this]() {
            const QString text = combo_->currentText();
            combo_->clear();
            combo_->setEditText(text);
        });
        menu->exec(edit->mapToGlobal(pos));
        delete menu;
    });

    buttonRegEx_ = createImageButton(WindowBase::icon(QStringLiteral("brackets.svg")), xt("Regular Expressions"), nullptr, true);
    buttonRegEx_->setChecked(cfg().flagRegEx);
    buttonWholeWords_ = createImageButton(WindowBase::icon(QStringLiteral("whole_words.svg")),
                                          xt("Whole words: no letter, digit or '_' right before or after a hit"), nullptr, true);
    buttonMatchCase_ = createImageButton(WindowBase::icon(QStringLiteral("match_case.svg")),
                                         xt("Match case: upper and lower case letters differ"), nullptr, true);

    colorLabel_ = add(new tav::XColorLabel(24, defaultColor(panelNo), this));

    comboScope_ = add(new tav::XTypedComboBox<unsigned>(this));
    comboScope_->setToolTip(xt("Scope"));
    comboScope_->addItem(0, xt("File"));
    comboScope_->addItem(1, xt("Paragraph"));
    comboScope_->addItem(2, xt("Sentence"));

    labelHits_ = createLabel(QString());
    labelHits_->setFixedWidth(100);
    labelHits_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    labelHits_->setAutoFillBackground(true);
    labelHits_->setBackgroundRole(QPalette::Base);
    if (tav::KernelGUI::isTavStyleDark()) tav::XTools::setBackgroundColor(this, palette().color(QPalette::Window));

    buttonDelete_ = createImageButton(WindowBase::icon(QStringLiteral("delete.svg")), xt("Delete"), nullptr);
    buttonFind_ = createImageButton(WindowBase::icon(QStringLiteral("find.svg")), xt("Find"), nullptr);
}

bool PanelSearch::isRegEx() const { return buttonRegEx_ && buttonRegEx_->isChecked(); }
bool PanelSearch::isWholeWords() const { return buttonWholeWords_ && buttonWholeWords_->isChecked(); }
bool PanelSearch::isMatchCase() const { return buttonMatchCase_ && buttonMatchCase_->isChecked(); }

QColor PanelSearch::color() const { return colorLabel_ ? colorLabel_->color() : defaultColor(panelNo_); }

void PanelSearch::set_hits(unsigned hits) {
    if (labelHits_) labelHits_->setText(tav::format1000(hits));
}

void PanelSearch::clear_search() {
    if (combo_) combo_->setEditText(QString());
    if (labelHits_) labelHits_->clear();
}

void PanelSearch::set_content_filter(const tav::find::XContentFilter& filter) {
    if (!combo_) return;
    combo_->setEditText(filter.text());
    if (!comboScope_->setSelected(filter.scope())) log(tav::LOG_TRACE, "XTypedComboBox<$>::select, value '$' not found", "unsigned", filter.scope());
    log(tav::LOG_TRACE, "PanelSearch::set_content_filter, filter '$'", filter.toString(false));
    buttonRegEx_->setChecked(filter.isRegEx());
    buttonWholeWords_->setChecked(filter.isWholeWords());
    buttonMatchCase_->setChecked(filter.isMatchCase());
}

void PanelSearch::to_node(tav::XNode* node) const {
    if (!node || !combo_) return;
    node->setUInt(QStringLiteral("color"), color().rgba());
    node->setBool(QStringLiteral("flagWholeWords"), isWholeWords());
    node->setBool(QStringLiteral("flagMatchCase"), isMatchCase());
    node->getCreateNode(QStringLiteral("SearchHistory"))->set_string_array(QStringLiteral("pattern"), combo_->get_string_items());
}

void PanelSearch::from_node(tav::XNode* node) {
    if (!X_ASSERT_MSG(node, "nPanSearch == NULL") || !combo_) return;
    if (node->hasAttribute(QStringLiteral("color")))
        colorLabel_->setColor(QColor::fromRgba(node->getUInt(QStringLiteral("color"), color().rgba())), false);
    buttonWholeWords_->setChecked(node->isBool(QStringLiteral("flagWholeWords"), false));
    buttonMatchCase_->setChecked(node->isBool(QStringLiteral("flagMatchCase"), false));
    if (tav::XNode* h = node->query(QStringLiteral("SearchHistory"))) {
        const QString text = combo_->currentText();
        combo_->set_data(h->get_string_array(QStringLiteral("pattern")));
        combo_->setEditText(text);
    }
}

} // namespace tavFinder
