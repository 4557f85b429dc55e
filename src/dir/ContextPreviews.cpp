#include "src/dir/ContextPreviews.h"

#include "base/log/Logger.h"
#include "gui/tools/XTools.h"
#include "src/dir/XContainerPreviews.h"
#include "src/gui/WinFinder.h"

namespace tavFinder {

using tav::log;

ContextPreviews::ContextPreviews(const QString& name) : tav::NameAble(name) {}
ContextPreviews::~ContextPreviews() = default;

void ContextPreviews::ini(QWidget* sourceWidget, XContainerPreviews* container) {
    X_ASSERT_MSG(container, "c == NULL");
    X_ASSERT_MSG(sourceWidget, "widget == NULL");
    sourceWidget_ = sourceWidget;
    container_ = container;
}

void ContextPreviews::select_file(const QFileInfo& fi) {
    if (tav::XTools::is_modifier_control() && sourceWidget_) {
        log(32, "ContextPreviews::select_file, fi '$'", fi);
        tav::XTools::drop_file(sourceWidget_, fi);
        tav::XTools::set_modifier(0);
        return;
    }
    candidates_.clear();
    fiCurrent_ = fi;
    if (container_) WinFinder::show_status_for(container_, fi);
    log(32, "ContextPreviews::select_file '$'", fi);
    if (container_) container_->showInfoPage(fi);
}

void ContextPreviews::cycle_previews() {
    if (fiCurrent_.isDir()) {
        log(32, "ContextPreviews@$::cycle_previews, [$]", getName(), fiCurrent_);
        return;
    }
    if (!fiCurrent_.exists()) {
        log(32, "ContextPreviews@$::cycle_previews, <<<$>>> 404", getName(), fiCurrent_);
        return;
    }
}

void ContextPreviews::set_preview(const QString& type) { log(32, "ContextPreviews::set_preview, name '$'", type); }

tav::Preview* ContextPreviews::currentPreview() {
    log(32, "ContextPreviews::currentPreview - NULLPTR");
    return nullptr;
}

} // namespace tavFinder
