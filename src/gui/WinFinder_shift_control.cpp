// Hover preview: with Ctrl (and Shift) held, the entry under the mouse in the
// tree is shown without selecting it.
#include "base/log/Logger.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/panel/XPanelStacked.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XTreeViewFiles.h"
#include "gui/previews/PreviewHex.h"
#include "src/dir/PreviewDir.h"
#include "src/dir/XContainerPreviews.h"
#include "src/gui/config/ConfigTavFinder.h"
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
        log(tav::LOG_TRACE, "WinFinder::setUp_shift_control, TREE-LEFT, fi:$", fi);
        if (fi.isDir()) {
            on_treeView_selectFile(fi);
            return;
        }
        // Shift (with Ctrl) shows the text, Ctrl alone the bytes.
        tav::Preview* p = nullptr;
        if (tav::XTools::is_modifier_shift()) {
            p = container_preview_->textPreview();
            if (p) apply_preview_settings(p);
        } else {
            p = container_preview_->hexPreview();
            if (auto* hex = dynamic_cast<tav::PreviewHex*>(p)) hex->set_font_size(cfg().fontSizeHexView);
        }
        if (!p) return;
        p->open_file(fi);
        container_preview_->showPreview(p);
        if (stacked_->isShowing(findResults_)) stacked_->showPanel(container_preview_);
        // The status bar speaks of the file shown, not of the selection.
        show_status_for(this, fi);
        return;
    }
    AbstractPreviewDir* dir = container_preview_->existingPreviewDirectory();
    if (auto* pd = dynamic_cast<PreviewDir*>(dir)) {
        if (pd->widget_preview() && container_preview_->currentWidget() == pd->widget_preview())
            log(tav::LOG_TRACE, "WinFinder_shift_control::on_treeView_selectFile_table_forceView, <<<$>>>", pd->hoveredEntry());
    }
}

} // namespace tavFinder
