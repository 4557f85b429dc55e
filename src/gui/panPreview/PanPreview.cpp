#include "src/gui/panPreview/PanPreview.h"

#include "gui/previews/Preview.h"

namespace tavFinder {

PanPreview::PanPreview(QWidget* parent, const QString& typeName)
    : tav::XPanel(parent, tav::XPanel::VERTICAL, typeName), typeName_(typeName) {}

void PanPreview::embed(tav::Preview& p) {
    setMargins(0, 0, 0, 0);
    p.ini();
    if (QWidget* w = p.widget_preview()) add(w, 1);
}

} // namespace tavFinder
