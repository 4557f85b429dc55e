// Hover preview: with Ctrl (and Shift) held, the entry under the mouse in the
// tree is shown without selecting it.
#include "base/log/Logger.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/panel/XPanelStacked.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XTreeViewFiles.h"
#include "src/dir/XContainerPreviews.h"
#include "src/gui/PanelResults.h"
#include "src/gui/WinFinder.h"

namespace tavFinder {

using tav::log;

void WinFinder::setUp_shift_control() {
    tav::KernelGUI* k = kernel_ ? kernel_ : tav::KernelGUI::instanceGui();
    if (!X_ASSERT_MSG(k, "kernel == NULL")) return;
    idModifier_[0] = k->addModifierListener(0, [this]() { forceViewHovered(); });
    idModifier_[1] = k->addModifierListener(1, []() {});
}

void WinFinder::forceViewHovered() {
    if (!treeView_ || !tav::XTools::is_modifier_control()) return;
    const QFileInfo fi = treeView_->hoveredFile();
    if (!fi.filePath().isEmpty() && fi.exists()) {
        log(32, "WinFinder::setUp_shift_control, TREE-LEFT, fi:$", fi);
        if (fi.isDir()) {
            on_treeView_selectFile(fi);
            return;
        }
        // Files go to the text preview (Shift) or the hex preview (Ctrl) of the
        // container; until those exist the container shows the entry's page.
        container_preview_->showInfoPage(fi);
        if (stacked_->isShowing(findResults_)) stacked_->showPanel(container_preview_);
    }
}

} // namespace tavFinder
