#include "src/gui/panPreview/PanPreviewImg.h"

#include "base/log/Logger.h"
#include "gui/previews/XView2D.h"

namespace tavFinder {

void PanPreviewImg::ini() { embed(preview_); }

void PanPreviewImg::on_zoom(bool in) {
    tav::log(tav::LOG_TRACE, "PanPreviewImg::on_zoom, flagZoom:$", in);
    tav::XView2D* v = preview_.img_view();
    if (!X_ASSERT_MSG(v, "img_view == NULL")) return;
    v->on_zoom(in, 1);
}

} // namespace tavFinder
