#pragma once
// The details window's byte tab, the panel of last resort.
#include "gui/previews/PreviewHex.h"
#include "src/gui/panPreview/PanPreview.h"

namespace tavFinder {

class PanPreviewHex : public PanPreview {
    Q_OBJECT
public:
    static constexpr int kFontMin = 6;
    static constexpr int kFontMax = 64;

    explicit PanPreviewHex(QWidget* parent = nullptr) : PanPreview(parent, QStringLiteral("PanPreviewHex")) {}
    tav::Preview* preview() override { return &preview_; }
    tav::PreviewHex& previewHex() { return preview_; }
    void ini() override;
    bool is_fallback() const override { return true; }
    void on_zoom(bool in) override;

private:
    tav::PreviewHex preview_;
};

} // namespace tavFinder
