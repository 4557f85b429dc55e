#pragma once
// The details window's picture tab.
#include "gui/previews/PreviewImage.h"
#include "src/gui/panPreview/PanPreview.h"

namespace tavFinder {

class PanPreviewImg : public PanPreview {
    Q_OBJECT
public:
    explicit PanPreviewImg(QWidget* parent = nullptr) : PanPreview(parent, QStringLiteral("PanPreviewImg")) {}
    tav::Preview* preview() override { return &preview_; }
    void ini() override;
    void on_zoom(bool in) override;

private:
    tav::PreviewImage preview_;
};

} // namespace tavFinder
