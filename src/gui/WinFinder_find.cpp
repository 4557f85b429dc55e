// The search of the main window.
#include "base/log/Logger.h"
#include "gui/panel/XPanelStacked.h"
#include "gui/widgets/XTreeViewFiles.h"
#include "src/dir/XContainerPreviews.h"
#include "src/gui/PanelResults.h"
#include "src/gui/WinFinder.h"

namespace tavFinder {

using tav::log;

void WinFinder::on_find() {
    log(32, "*******************************");
    log(32, "*** WinFinder::on_find");
    log(32, "*******************************");
}

void WinFinder::on_escape_key() {
    log(32, "WinFinder::on_escape_key");
    // Bring back the preview of the tree's selection.
    if (stacked_ && stacked_->isShowing(findResults_)) stacked_->showPanel(container_preview_);
}

} // namespace tavFinder
