#pragma once
// The text preview with coloured layers of marks: the hits of the main search
// (layer 1000) and of up to two searches typed into the panel itself (1000,
// 1001), the direct marks of pattern selection mode (1002), navigation between
// the marks of the active layer, mouse-over highlighting and a character
// information line. View settings are a set of bits kept in the configuration.
#include "base/core/AtomicBits.h"
#include "base/core/XProp.h"
#include "gui/previews/PreviewAscii.h"
#include "gui/viewText/TextMarks.h"
#include "src/gui/panPreview/PanPreview.h"

#include <QColor>
#include <array>
#include <memory>

class QLineEdit;
class QToolButton;

namespace tav {
class XMenu;
class XNode;
class XSlider;
namespace find {
class XContentFilter;
class XRamLayer;
}
namespace viewText {
class XTextView;
}
}

namespace tavFinder {

class PanelSearch;
class TavFind;

class PanPreviewAsc : public PanPreview {
    Q_OBJECT
public:
    enum ConfigBits : uint32_t {
        BIT_RULER = 2,
        BIT_WRAP = 4,
        BIT_NAVIGATION = 8,
        BIT_MOUSE_CHAR = 16,
        BIT_MOUSE_CHAR_INFO = 32,
        BIT_MOUSE_WORD = 64,
        BIT_MOUSE_LINE = 128,
        BIT_MOUSE_SENTENCE = 256,
        BIT_MOUSE_PARAGRAPH = 512,
        BIT_SEARCH_LAYER_1 = 1024,
        BIT_SEARCH_LAYER_2 = 2048,
    };
    static constexpr uint32_t kDefaultBits = BIT_RULER | BIT_NAVIGATION | BIT_SEARCH_LAYER_1;   // 1034
    static constexpr int kLayerBase = 1000;
    static constexpr int kLayerDirect = 1002;
    static constexpr int kCopyMaxChars = 88;

    explicit PanPreviewAsc(QWidget* parent = nullptr);
    ~PanPreviewAsc() override;

    tav::Preview* preview() override { return &preview_; }
    tav::PreviewAscii& previewAscii() { return preview_; }
    void ini() override;
    void search_focused() override;
    void on_zoom(bool in) override;

    void set_panel_from_outside(tav::XPanel* outside);
    void update_search_results(const tav::find::XRamLayer& hits, const tav::find::XContentFilter& filter, unsigned panelNo);
    void on_search(PanelSearch* panel);
    // "Copy → Search Field N": the text in the form that finds exactly it in the
    // panel's mode (an escaped pattern, or a quoted phrase), the panel shown, searched.
    void copy_to_search_field(unsigned n, const QString& text);
    static QString expression_finding(const QString& text, bool regEx);
    void on_direct_mark_search(const QString& selection);
    void on_mark_increment(bool up);
    void on_mark_to_top(bool top);
    void on_layer_changed(int id);
    void adapt_slider_navi_pos();
    // Opens the layer menu at the mouse.
    void sub_menu_filter();
    // Fills the layer menu (what sub_menu_filter shows).
    void build_menu_filter(tav::XMenu& menu);
    PanelSearch* get_panel_search(unsigned panelNo);
    // Clears a panel's layer, its search text and hit count.
    void clear_panel_layer(unsigned panelNo);
    // Makes a panel's layer the active one, in the panel's colour.
    void activate_layer_by_color(unsigned panelNo);

    void from_node(tav::XNode* node);
    void to_node(tav::XNode* node) const;

    tav::AtomicBits& bitsConfig() { return bitsConfig_; }
    tav::XPropBool& patternSelectionMode() { return patternMode_; }
    tav::viewText::XTextView* textView() const { return view_; }
    tav::XSlider* slider() const { return slider_; }
    tav::XPanel* panelNavigation() const { return panelNavi_; }
    QLineEdit* infoLine() const { return infoLine_; }
    tav::find::XRamLayer* activeSearchLayer() const { return layerActive_; }
    // The slider style with the handle in this colour.
    static QString sliderStyle(const QColor& handle);
    // Searches of the panels still running in the background.
    int searchesRunning() const { return running_; }

private:
    void apply_bits(uint32_t bits);
    void on_slider_value(int v);
    void on_mouse_over(const tav::viewText::MouseOverMark& m);
    void style_slider(const QColor& c);
    // Shows a layer of hits in layer 'id' with the colour, mark 0 active.
    void show_layer(int id, const tav::find::XRamLayer& hits, const QColor& color);
    tav::find::XRamLayer* layer(int id);
    tav::find::XRamLayer searchFile(const tav::find::XContentFilter& filter);
    void scrollToActive();

    tav::PreviewAscii preview_;
    tav::AtomicBits bitsConfig_;
    tav::viewText::XTextView* view_ = nullptr;
    tav::XPanel* panelNavi_ = nullptr;
    tav::XSlider* slider_ = nullptr;
    tav::viewText::MouseOverMark mouseOver_;
    tav::find::XRam paragraph_;
    tav::find::XRamLayer* layerActive_ = nullptr;
    QLineEdit* infoLine_ = nullptr;
    std::array<PanelSearch*, 3> panels_{};
    tav::XPropBool patternMode_{false};
    std::unique_ptr<TavFind> find_;
    int bitsListener_ = -1;
    std::array<int, 3> searchGen_{};   // per panel: only the newest search shows its hits
    int running_ = 0;
};

} // namespace tavFinder
