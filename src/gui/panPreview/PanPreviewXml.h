#pragma once
// The details window's XML tab.
#include "gui/previews/PreviewXml.h"
#include "src/gui/panPreview/PanPreview.h"

namespace tavFinder {

class PanPreviewXml : public PanPreview {
    Q_OBJECT
public:
    explicit PanPreviewXml(QWidget* parent = nullptr) : PanPreview(parent, QStringLiteral("PanPreviewXml")) {}
    tav::Preview* preview() override { return &preview_; }
    void ini() override;
    void on_zoom(bool in) override;

private:
    tav::PreviewXml preview_;
};

} // namespace tavFinder
