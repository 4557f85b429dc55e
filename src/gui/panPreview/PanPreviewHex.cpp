#include "src/gui/panPreview/PanPreviewHex.h"

#include "base/log/Logger.h"
#include "src/gui/config/ConfigTavFinder.h"

#include <algorithm>

namespace tavFinder {

void PanPreviewHex::ini() {
    preview_.set_font_size(std::clamp(cfg().fontSizeHexView, kFontMin, kFontMax));
    embed(preview_);
}

void PanPreviewHex::on_zoom(bool in) {
    tav::log(tav::LOG_TRACE, "PanPreviewHex::on_zoom, flagZoom:$", in);
    const int size = preview_.font_size();
    preview_.set_font_size(in ? std::min(kFontMax, size + 1) : std::max(kFontMin, size - 1));
}

} // namespace tavFinder
