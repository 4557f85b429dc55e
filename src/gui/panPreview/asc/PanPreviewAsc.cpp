#include "src/gui/panPreview/asc/PanPreviewAsc.h"

#include "base/env/Env.h"
#include "base/find/XContentFilter.h"
#include "base/find/XRamLayer.h"
#include "base/log/Logger.h"
#include "base/node/XNode.h"
#include "base/text/XTokenizer.h"
#include "base/thread/XThread.h"
#include "base/util/Format.h"
#include "gui/tools/XTools.h"
#include "gui/viewText/XTextView.h"
#include "gui/widgets/XComboBox.h"
#include "gui/widgets/XColorLabel.h"
#include "gui/widgets/XMenu.h"
#include "gui/widgets/XSlider.h"
#include "gui/widgets/XTypedComboBox.h"
#include "src/find/TavFind.h"
#include "src/gui/WindowBase.h"
#include "src/gui/config/ConfigTavFinder.h"
#include "src/gui/ExpressionError.h"
#include "src/gui/panPreview/asc/PanelSearch.h"

#include <algorithm>
#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QPointer>
#include <QRegularExpression>
#include <QToolButton>

namespace tavFinder {

using tav::log;
using tav::xt;
using tav::find::XRam;
using tav::find::XRamLayer;

namespace {

const QString kSliderStyle = QStringLiteral(
    ".QSlider { min-width: 24px; max-width: 24px; margin: 10 px; }\n"
    ".QSlider::groove:vertical { border: 1px solid #262626; width: 6px; background: gray; }\n"
    ".QSlider::handle:vertical { background: $(BG_HANDLE); height: 24px; border: 1px solid black; margin: -8px -8px; }\n"
    ".QSlider::groove:vertical:disabled { border: 1px dotted black; width: 6px; background: lightGray; }\n"
    ".QSlider::handle:vertical:disabled { background: lightGray; border: 1px dotted black; }\n");

struct MenuRow {
    uint32_t bit;
    const char* text;
    const char* tip;
};
// The rows of the layer menu, in menu order.
const MenuRow kMenuRows[] = {
    {PanPreviewAsc::BIT_RULER, "Ruler", "Ruler displays line numbers"},
    {PanPreviewAsc::BIT_WRAP, "Wrap", "Wraps lines"},
    {PanPreviewAsc::BIT_NAVIGATION, "Navigation", "Slider and Buttons on the right side"},
    {PanPreviewAsc::BIT_SEARCH_LAYER_1, "1.Search Layer", ""},
    {PanPreviewAsc::BIT_SEARCH_LAYER_2, "2.Search Layer", ""},
    {PanPreviewAsc::BIT_MOUSE_CHAR, "Mouse over Character", ""},
    {PanPreviewAsc::BIT_MOUSE_CHAR_INFO, "Mouse over Character-INFO", "Together with Mouse over Character"},
    {PanPreviewAsc::BIT_MOUSE_WORD, "Mouse over Word", ""},
    {PanPreviewAsc::BIT_MOUSE_LINE, "Mouse over Line", ""},
    {PanPreviewAsc::BIT_MOUSE_SENTENCE, "Mouse over Sentence", ""},
    {PanPreviewAsc::BIT_MOUSE_PARAGRAPH, "Mouse over Paragraph", ""},
};

// Mouse-over bits and the mark categories they add, in the order they are applied.
const std::pair<uint32_t, uint32_t> kMouseOverBits[] = {
    {PanPreviewAsc::BIT_MOUSE_CHAR, XRam::CATEGORY_CHAR},         {PanPreviewAsc::BIT_MOUSE_WORD, XRam::CATEGORY_WORD},
    {PanPreviewAsc::BIT_MOUSE_SENTENCE, XRam::CATEGORY_SENTENCE}, {PanPreviewAsc::BIT_MOUSE_LINE, XRam::CATEGORY_LINE},
    {PanPreviewAsc::BIT_MOUSE_PARAGRAPH, XRam::CATEGORY_PARAGRAPH},
};

} // namespace

PanPreviewAsc::PanPreviewAsc(QWidget* parent) : PanPreview(parent, QStringLiteral("PanPreviewAsc")) {}

PanPreviewAsc::~PanPreviewAsc() = default;

QString PanPreviewAsc::sliderStyle(const QColor& handle) {
    return tav::replace_variables(kSliderStyle, QStringLiteral("BG_HANDLE"), handle.name());
}

void PanPreviewAsc::style_slider(const QColor& c) {
    if (slider_) slider_->setStyleSheet(sliderStyle(c));
}

XRamLayer* PanPreviewAsc::layer(int id) { return view_ ? view_->layers().layer_by_ID(id) : nullptr; }

void PanPreviewAsc::ini() {
    if (view_) {
        log(tav::LOG_ERROR, "PanPreviewAsc::ini() already called!");
        return;
    }
    // The text view with its search panels below it.
    setSpacing(0);
    setMargins(0, 0, 0, 0);
    tav::XPanel* row = createPanel(tav::XPanel::HORIZONTAL);
    row->setTight();
    preview_.ini();
    preview_.set_auto_wrap(cfg().flagAutoWrap);
    row->add(preview_.widget_preview(), 1);
    add(row, 1);

    // The navigation buttons beside the text.
    panelNavi_ = row->createPanel(tav::XPanel::VERTICAL, QStringLiteral("navigation"));
    panelNavi_->setMargins(0, 0, 0, 0);
    panelNavi_->hide();
    slider_ = panelNavi_->add(new tav::XSlider(Qt::Vertical, panelNavi_), 1);
    slider_->setRange(0, 100);
    slider_->setPageStep(20);
    style_slider(QColor(Qt::lightGray));
    panelNavi_->setEnabled(false);
    connect(slider_, &QSlider::valueChanged, this, [this](int v) { on_slider_value(v); });

    // One button per step: first, previous, next, last hit.
    struct NaviButton {
        const char* icon;
        std::function<void()> f;
    };
    const NaviButton buttons[] = {
        {"ar_up_up.svg", [this]() { on_mark_to_top(true); }},
        {"ar_up.svg", [this]() { on_mark_increment(true); }},
        {"ar_down.svg", [this]() { on_mark_increment(false); }},
        {"ar_down_down.svg", [this]() { on_mark_to_top(false); }},
    };
    for (const NaviButton& b : buttons)
        panelNavi_->createImageButton(WindowBase::icon(QString::fromLatin1(b.icon)), QString(), b.f, false, 16);

    // The two search panels, each with its own layer colour.
    view_ = preview_.get_XTextView();
    for (unsigned n = 0; n < panels_.size(); ++n) {
        auto* p = add(new PanelSearch(this));
        p->ini(n);
        p->hide();
        panels_[n] = p;
        connect(p->buttonDelete(), &QToolButton::clicked, this, [this, n]() { clear_panel_layer(n); });
        connect(p->buttonFind(), &QToolButton::clicked, this, [this, p]() { on_search(p); });
        p->colorLabel()->setNeedControlForDialog(true);
        p->colorLabel()->eventColorChanged().add([this, n](const QColor&) { activate_layer_by_color(n); });
        p->colorLabel()->eventClicked().add([this, n]() { activate_layer_by_color(n); });
        p->colorLabel()->setToolTip(xt("Colorized search Layer\nMouse Click to make active\n[Ctrl] + Mouse Click to change color"));
    }

    // The pointer's marks and new layers.
    view_->eventMouseOver().add([this](const tav::viewText::MouseOverMark& m) { on_mouse_over(m); });
    view_->layers().eventLayerAdded().add([this](int id) {
        if (id == kLayerBase) layerActive_ = view_->layers().layer_by_ID(kLayerBase);
        log(tav::LOG_TRACE, "PanPreviewAsc:::ini, layer $ added", id);
    });
    view_->eventActiveMark().add([this](const tav::viewText::XActiveMark&) { adapt_slider_navi_pos(); });

    // The window's text size.
    view_->setFont(tav::XTools::getMonoFont(cfg().fontSize));

    // Layer changes and the preview's own gesture (pattern selection mode).
    preview_.eventLayerChanged().add([this](int id) { on_layer_changed(id); });
    preview_.eventPreview().add([this](tav::Preview*) { patternMode_.set(!patternMode_.value()); });
    patternMode_.addListener([this](const bool& on) {
        if (on) return;
        clear_panel_layer(2);
        show_layer(kLayerDirect, XRamLayer(), get_panel_search(2)->color());
    });

    // The text view's context menu: web search and copy to a search panel.
    preview_.add_extra_context_menu_web_search(xt("Web Search"));
    preview_.add_extra_context_menu([this](tav::XMenu& menu, const QString& selection) {
        const bool usable = !selection.isEmpty() && selection.length() <= kCopyMaxChars;
        if (!usable) log(tav::LOG_TRACE, "PanPreviewAsc::ini - no selection");
        menu.addSeparator();
        QPointer<PanPreviewAsc> self(this);
        for (unsigned n = 0; n < 2; ++n) {
            QAction* a = menu.createAction(n == 0 ? xt("Copy → Search Field &1") : xt("Copy → Search Field &2"), [self, n, selection]() {
                if (self) self->copy_to_search_field(n, selection);
            });
            a->setEnabled(usable);
        }
    });
}

QString PanPreviewAsc::expression_finding(const QString& text, bool regEx) {
    if (regEx) return QRegularExpression::escape(text);
    // A phrase: quotes and backslashes inside it are escaped.
    QString inner = text;
    inner.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
    inner.replace(QLatin1Char('"'), QStringLiteral("\\\""));
    return QLatin1Char('"') + inner + QLatin1Char('"');
}

void PanPreviewAsc::copy_to_search_field(unsigned n, const QString& text) {
    if (n > 1 || !panels_[n]) return;
    PanelSearch* panel = panels_[n];
    panel->comboSearch()->setEditText(expression_finding(text, panel->isRegEx()));
    // A hidden panel is shown, and the search runs at once.
    bitsConfig_.set_flag(n == 0 ? BIT_SEARCH_LAYER_1 : BIT_SEARCH_LAYER_2, true, 1, 1);
    on_search(panel);
}

void PanPreviewAsc::set_panel_from_outside(tav::XPanel* outside) {
    log(tav::LOG_TRACE, "PanPreviewAsc::set_panel_from_outside");
    if (!X_ASSERT_MSG(outside, "outside == NULL") || !view_) return;
    auto* button = outside->add(new QToolButton(outside));
    button->setObjectName(QStringLiteral("searchLayer"));
    button->setText(QLatin1Char(' ') + xt("Search Layer"));
    button->setIcon(WindowBase::icon(QStringLiteral("layer.svg")));
    button->setIconSize(QSize(16, 16));
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setAutoRaise(true);
    connect(button, &QToolButton::clicked, this, [this]() {
        log(tav::LOG_TRACE, "PanPreviewAsc::set_panel_from_outside, AHA");
        sub_menu_filter();
    });
    infoLine_ = outside->add(new QLineEdit(outside));
    infoLine_->setObjectName(QStringLiteral("infoLine"));
    infoLine_->setReadOnly(true);
    // The window's text size, and all the width the toolbar leaves: at 800 px the whole line still shows.
    infoLine_->setFont(tav::XTools::getMonoFont(std::max(8, infoLine_->font().pointSize())));
    infoLine_->setMinimumWidth(200);
    infoLine_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    if (auto* box = outside->boxLayout()) box->setStretchFactor(infoLine_, 1);
    if (bitsListener_ < 0) bitsListener_ = bitsConfig_.addListener([this](uint32_t bits) { apply_bits(bits); });
    apply_bits(bitsConfig_.flags());
}

void PanPreviewAsc::apply_bits(uint32_t bits) {
    if (!view_) return;
    preview_.set_wrap(bits & BIT_WRAP);
    preview_.set_ruler(bits & BIT_RULER);
    panelNavi_->setVisible(bits & BIT_NAVIGATION);
    XRamLayer& mo = view_->mouseOverLayer();
    for (const auto& [bit, category] : kMouseOverBits) {
        const bool on = bits & bit;
        if (on && !mo.contains_mark(category)) mo.add_mark(XRam(-1, 0, category));
        else if (!on && mo.contains_mark(category)) mo.remove_mark(category);
    }
    mo.adapt_layers_order();
    view_->re_paint();
    panels_[0]->setVisible(bits & BIT_SEARCH_LAYER_1);
    panels_[1]->setVisible(bits & BIT_SEARCH_LAYER_2);
    if (infoLine_) infoLine_->setVisible(bits & BIT_MOUSE_CHAR_INFO);
}

void PanPreviewAsc::build_menu_filter(tav::XMenu& menu) {
    for (const MenuRow& r : kMenuRows) {
        QAction* a = menu.createAction(QString::fromLatin1(r.text), true, bitsConfig_.isFlag(r.bit), true, int(r.bit));
        if (*r.tip) a->setToolTip(QString::fromLatin1(r.tip));
        const uint32_t bit = r.bit;
        connect(a, &QAction::toggled, this, [this, bit](bool on) { bitsConfig_.set_flag(bit, on, 1, 1); });
        if (r.bit == BIT_NAVIGATION || r.bit == 4096) menu.addSeparator();
    }
    menu.addSeparator();
    menu.createAction(xt("Reset All"), [this]() { bitsConfig_.reset_flags(1); });
}

void PanPreviewAsc::sub_menu_filter() {
    log(tav::LOG_TRACE, "PanPreviewAsc::sub_menu_filter");
    tav::XMenu menu(this, true);
    build_menu_filter(menu);
    menu.execAt();
}

void PanPreviewAsc::on_mouse_over(const tav::viewText::MouseOverMark& m) {
    mouseOver_ = m;
    paragraph_ = m.paragraph;
    XRamLayer& mo = view_->mouseOverLayer();
    for (int i = 0; i < mo.size(); ++i) {
        XRam& r = mo.at(i);
        if (const XRam* src = m.byCategory(r.category())) r.setValue(*src);
    }
    view_->re_paint();
    if (!bitsConfig_.isFlag(BIT_MOUSE_CHAR_INFO) || !m.character.isValid() || !infoLine_) return;
    const QString ch = view_->textFromMarkRam(m.character);
    // One character: a single UTF-16 unit or a surrogate pair.
    if (ch.isEmpty() || ch.toUcs4().size() != 1) return;
    const tav::XUtf8_Info info = tav::XUtf8_Info::decode(ch);
    const QString text = tav::fill("$  $  $ $:$", ch, info.text(), info.toHTML(), xt("byte-pos"), tav::format1000(m.character.pos()));
    QPointer<QLineEdit> line(infoLine_);
    tav::run_in_gui_thread([line, text]() {
        if (!line) return;
        line->setText(text);
        line->setToolTip(text);
        line->setCursorPosition(0);   // the character first, not the tail of the line
    });
}

PanelSearch* PanPreviewAsc::get_panel_search(unsigned panelNo) {
    if (panelNo < panels_.size()) return panels_[panelNo];
    log(tav::LOG_ERROR, "PanPreviewAsc::get_panel_search, panel_no >= ar.size(), return first panel!");
    return panels_[0];
}

XRamLayer PanPreviewAsc::searchFile(const tav::find::XContentFilter& filter) {
    if (!find_) find_ = std::make_unique<TavFind>();
    return find_->find(preview_.file_info(), filter).layer;
}

void PanPreviewAsc::scrollToActive() {
    if (!view_ || !layerActive_) return;
    if (const XRam* m = layerActive_->active_mark()) view_->scrollToRam(*m);
}

void PanPreviewAsc::on_search(PanelSearch* panel) {
    if (!X_ASSERT_MSG(panel, "panSearch == NULL") || !view_) return;
    log(tav::LOG_TRACE, "PanPreviewAsc::on_search, $", panel->objectName());
    log(tav::LOG_TRACE, "PanPreviewAsc::on_search, regEx:$", panel->isRegEx());
    const QString text = panel->comboSearch()->currentText().trimmed();
    if (text.isEmpty()) {
        log(tav::LOG_TRACE, "PanPreviewAsc::on_search, search for text but text ist empty");
        return;
    }
    tav::find::XContentFilter filter;
    filter.setScope(panel->comboScope()->selected());
    filter.setWholeWords(panel->isWholeWords());
    filter.setMatchCase(panel->isMatchCase());
    if (!filter.createSymbols(text, panel->isRegEx())) {
        log(tav::LOG_REJECTED, "PanPreviewAsc::on_search, problems with expression '$'", text);
        log(tav::LOG_REJECTED, "PanPreviewAsc::on_search, $", filter.errorMessage());
        show_expression_error(panel->comboSearch(), expression_error_text(filter), QString());   // flashes 600 ms
        return;
    }
    panel->comboSearch()->add_to_history(text);
    // The file is searched on a pool thread: a big file must not hold the window; the
    // hits arrive through the event loop, for the newest search of the panel and the same file.
    const unsigned no = panel->panelNo();
    const int gen = ++searchGen_[no];
    const QFileInfo fi = preview_.file_info();
    ++running_;
    QPointer<PanPreviewAsc> self(this);
    tav::XThreadPool::start_global([self, fi, filter, no, gen]() {
        XRamLayer hits = TavFind().find(fi, filter).layer;
        tav::run_in_gui_thread(
            [self, fi, hits = std::move(hits), filter, no, gen]() {
                if (!self) return;
                --self->running_;
                if (gen != self->searchGen_[no] || self->preview_.file_info().absoluteFilePath() != fi.absoluteFilePath()) return;
                PanelSearch* p = self->get_panel_search(no);
                if (!self->view_ || !p) return;
                self->view_->layers().clear(kLayerBase + int(no));
                self->update_search_results(hits, filter, no);
                p->set_hits(unsigned(hits.size()));
                self->view_->re_paint();
            },
            0);
    });
}

void PanPreviewAsc::search_focused() {
    for (PanelSearch* p : panels_) {
        QWidget* f = QApplication::focusWidget();
        if (p && f && (f == p->comboSearch() || p->comboSearch()->isAncestorOf(f))) {
            on_search(p);
            return;
        }
    }
}

void PanPreviewAsc::update_search_results(const XRamLayer& hits, const tav::find::XContentFilter& filter, unsigned panelNo) {
    if (!view_) return;
    const int id = kLayerBase + int(panelNo);
    XRamLayer* l = view_->layers().add_layer(id, 1);
    if (!X_ASSERT_MSG(l, "pLayerActive == NULL")) return;
    if (!hits) {
        log(tav::LOG_TRACE, "PanelResults::on_jump_to_result, NIX");
        panelNavi_->setEnabled(false);
        return;
    }
    panelNavi_->setEnabled(true);
    layerActive_ = l;
    preview_.set_XRamLayer(l);
    l->clear();
    PanelSearch* p = get_panel_search(panelNo);
    if (!X_ASSERT_MSG(p, "panSearch == NULL")) return;
    const QColor color = p->color();
    XRamLayer colored(hits);
    colored.set_color_background(color.rgba());
    l->set_color_background(color.rgba());
    l->add_ram_layer(colored);
    l->set_active_mark_index(0);
    view_->re_paint();
    view_->setFocus();
    p->set_content_filter(filter);
    p->set_hits(unsigned(l->size()));
    log(tav::LOG_TRACE, "PanPreviewAsc::update_search_results");
    slider_->setMaximum(l->size() - 1);
    slider_->setValue(l->size() - 1, true);
    if (!layerActive_) log(tav::LOG_ERROR, "PanPreviewAsc::update_search_results, ramLayerSearch == nullptr");
    QPointer<PanPreviewAsc> self(this);
    tav::run_in_gui_thread([self]() {
        if (self) self->scrollToActive();
    }, 100);
    tav::run_in_gui_thread([self, color, l]() {
        // Another layer made active meanwhile keeps its own colour.
        if (!self || self->layerActive_ != l) return;
        self->slider_->setEnabled(true);
        self->style_slider(color);
    }, 200);
}

void PanPreviewAsc::clear_panel_layer(unsigned panelNo) {
    if (!view_) return;
    view_->layers().clear(kLayerBase + int(panelNo));
    if (PanelSearch* p = get_panel_search(panelNo)) p->clear_search();
    style_slider(QColor(Qt::lightGray));
    view_->re_paint();
}

void PanPreviewAsc::activate_layer_by_color(unsigned panelNo) {
    PanelSearch* p = get_panel_search(panelNo);
    if (!X_ASSERT_MSG(p, "panSearch == NULL") || !view_) return;
    layerActive_ = layer(kLayerBase + int(panelNo));
    if (!X_ASSERT_MSG(layerActive_, "ramLayerSearch == NULL")) return;
    const QColor c = p->color();
    layerActive_->set_color_background(c.rgba());
    preview_.set_XRamLayer(layerActive_);
    view_->re_paint();
    style_slider(c);
    // The whole size here, not size - 1 as after a search.
    slider_->setMaximum(layerActive_->size());
    slider_->setEnabled(layerActive_->size() != 0);
    if (layerActive_->active_mark_index() >= 0) slider_->set_value_revers(layerActive_->active_mark_index(), false);
}

void PanPreviewAsc::on_layer_changed(int id) {
    log(tav::LOG_TRACE, "PanPreviewAsc::on_layer_changed, id:$", id);
    const int n = id - kLayerBase;
    if (n < 0 || n > 2 || !view_) {
        log(tav::LOG_ERROR, "PanPreviewAsc::on_layer_changed, panel_no:$ !!!", n);
        return;
    }
    layerActive_ = layer(id);
    log(tav::LOG_TRACE, "PanPreviewAsc::on_layer_changed, panel_no:$", n);
    if (!layerActive_) return;
    style_slider(get_panel_search(unsigned(n))->color());
    slider_->setMaximum(layerActive_->size());
    slider_->setEnabled(layerActive_->size() != 0);
    // Without notifying: the view is about to make the clicked mark the active one.
    if (layerActive_->active_mark_index() >= 0) slider_->set_value_revers(layerActive_->active_mark_index(), false);
}

void PanPreviewAsc::on_slider_value(int v) {
    if (!layerActive_) {
        log(tav::LOG_ERROR, "PanPreviewAsc::on_slider_find_res_val_changed, ramLayerSearch == nullptr");
        return;
    }
    const int index = slider_->maximum() - v;
    layerActive_->clear_active_mark();
    layerActive_->set_active_mark_index(index);
    view_->re_paint();
    scrollToActive();
}

void PanPreviewAsc::on_mark_increment(bool up) {
    if (!layerActive_) {
        log(tav::LOG_ERROR, "PanPreviewAsc::on_mark_increment");
        return;
    }
    layerActive_->move_active_mark_index(up);
    view_->re_paint();
    scrollToActive();
    adapt_slider_navi_pos();
}

void PanPreviewAsc::on_mark_to_top(bool top) {
    if (!layerActive_) {
        log(tav::LOG_ERROR, "PanPreviewAsc::on_mark_to_top");
        return;
    }
    layerActive_->clear_active_mark();
    if (top) layerActive_->set_active_mark_first();
    else layerActive_->set_active_mark_last();
    view_->re_paint();
    scrollToActive();
    adapt_slider_navi_pos();
}

void PanPreviewAsc::adapt_slider_navi_pos() {
    if (!layerActive_) {
        log(tav::LOG_ERROR, "PanPreviewAsc::adapt_slider_navi_pos");
        return;
    }
    const int i = layerActive_->active_mark_index();
    if (i >= 0) slider_->set_value_revers(i, false);
}

void PanPreviewAsc::show_layer(int id, const XRamLayer& hits, const QColor& color) {
    if (!view_) return;
    XRamLayer* l = view_->layers().add_layer(id, 1);
    l->clear();
    layerActive_ = l;
    preview_.set_XRamLayer(l);
    l->set_color_background(color.rgba());
    l->add_ram_layer(hits);
    l->set_active_mark_index(0);
    view_->re_paint();
    slider_->setMaximum(std::max(0, l->size() - 1));
    slider_->setValue(slider_->maximum(), false);
    panelNavi_->setEnabled(l->size() > 0);
    QPointer<PanPreviewAsc> self(this);
    tav::run_in_gui_thread([self, color, l]() {
        if (!self || self->layerActive_ != l) return;
        self->slider_->setEnabled(true);
        self->style_slider(color);
    }, 200);
}

void PanPreviewAsc::on_direct_mark_search(const QString& selection) {
    if (!patternMode_.value() || selection.isEmpty() || !view_) return;
    const QString pattern = QLatin1Char('"') + selection + QLatin1Char('"');
    tav::find::XContentFilter filter;
    filter.setScope(tav::find::XContentFilter::SCOPE_PARAGRAPH);
    if (!filter.createSymbols(pattern, false)) {
        log(tav::LOG_TRACE, "PanPreviewAsc::on_direct_mark_search, problems");
        return;
    }
    const XRamLayer hits = searchFile(filter);
    if (!hits) log(tav::LOG_TRACE, "PanPreviewAsc::on_direct_mark_search - NIX");
    clear_panel_layer(2);
    show_layer(kLayerDirect, hits, get_panel_search(2)->color());
}

void PanPreviewAsc::on_zoom(bool in) {
    log(tav::LOG_TRACE, "PanPreviewAsc::on_zoom, flagZoom:$", in);
    const QFont f = preview_.get_font();
    preview_.set_font(tav::XTools::get_font_resized(f, f.pointSize() + (in ? 1 : -1)));
}

void PanPreviewAsc::from_node(tav::XNode* node) {
    if (!X_ASSERT_MSG(node, "nPreviewAsc == NULL")) return;
    bitsConfig_.set_flags(node->getUInt(QStringLiteral("bitsConfig"), kDefaultBits), 1);
    for (unsigned n = 0; n < panels_.size(); ++n) {
        if (!panels_[n]) continue;
        if (tav::XNode* c = node->query(QStringLiteral("PanSearch"), tav::fill("pan$", n))) panels_[n]->from_node(c);
    }
}

void PanPreviewAsc::to_node(tav::XNode* node) const {
    if (!X_ASSERT_MSG(node, "nPreviewAsc == NULL")) return;
    node->setUInt(QStringLiteral("bitsConfig"), bitsConfig_.flags());
    for (unsigned n = 0; n < panels_.size(); ++n)
        if (panels_[n]) panels_[n]->to_node(node->getCreateNode(QStringLiteral("PanSearch"), tav::fill("pan$", n)));
}

} // namespace tavFinder
