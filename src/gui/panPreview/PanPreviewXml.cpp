#include "src/gui/panPreview/PanPreviewXml.h"

#include "base/log/Logger.h"
#include "gui/tools/XTools.h"

namespace tavFinder {

void PanPreviewXml::ini() { embed(preview_); }

void PanPreviewXml::on_zoom(bool in) {
    tav::log(tav::LOG_TRACE, "PanPreviewXml::on_zoom, flagZoom:$", in);
    const QFont f = preview_.get_font();
    preview_.set_font(tav::XTools::get_font_resized(f, f.pointSize() + (in ? 1 : -1)));
}

} // namespace tavFinder
