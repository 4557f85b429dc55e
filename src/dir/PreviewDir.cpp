#include "src/dir/PreviewDir.h"

#include "base/log/Logger.h"
#include "base/node/XNode.h"
#include "gui/table/XTableWidget.h"
#include "src/dir/LimitedPreviewContainer.h"
#include "src/dir/impl/private_PreviewDir.h"

namespace tavFinder {

using tav::log;

PreviewDir::PreviewDir() : d(std::make_unique<private_PreviewDir>(this)) {}

PreviewDir::~PreviewDir() { d.reset(); }

void PreviewDir::from_node(tav::XNode* node) {
    Preview::from_node(node);
    d->fromNode(node);
}

void PreviewDir::to_node() { d->toNode(node()); }

void PreviewDir::ini() {
    d->ini();
    set_widget(d->widget());
}

bool PreviewDir::open_file(const QFileInfo& fi) {
    if (!d->widget()) ini();
    fileInfo_ = fi;
    d->setFilepath(fi.absoluteFilePath());
    return true;
}

QString PreviewDir::toString() { return tav::fill("$: can handle directories ", name()); }

void PreviewDir::refresh() {
    log(tav::LOG_NAVIGATION, "PreviewDir::refresh");
    open_file(file_info());
}

void PreviewDir::cancel_loading() { d->stopThumbs(); }

void PreviewDir::set_text_file_extensions(const std::unordered_set<QString>& ext) { d->setTextFileExtensions(ext); }
void PreviewDir::set_show_hidden(bool on) {
    d->showHidden = on;
    // The page of a selected folder counts what the table lists.
    if (LimitedPreviewContainer* c = d->limited()) c->setShowHidden(on);
}
bool PreviewDir::show_hidden() const { return d->showHidden; }
ContextPreviews* PreviewDir::context() { return d->context(); }

void PreviewDir::onDeepInfo() {
    log(tav::LOG_TRACE, "PreviewDir::onDeepInfo");
    LimitedPreviewContainer* c = d->limited();
    if (!X_ASSERT_MSG(c, "container_limited_preview == NULL")) return;
    if (AbstractPreviewDir* inner = c->previewDirectory()) {
        log(tav::LOG_TRACE, "PreviewDir::onDeepInfo, prevDir == nullptr");
        inner->onDeepInfo();
    }
}

void PreviewDir::on_active_win_view(int view) {
    const char* names[] = {"TABLE", "THUMB"};
    log(tav::LOG_TRACE, "PreviewDir::on_active_win_view, dView:$", (view == 0 || view == 1) ? names[view] : "UNKNOWN_VIEW");
    d->onActiveWinView(view);
}

int PreviewDir::activeView() const { return d->activeView(); }
tav::XTableWidget* PreviewDir::table() const { return d->table(); }
PanelThumbs* PreviewDir::thumbPanel() const { return d->thumbs(); }
ThumbLoader& PreviewDir::loader() { return d->loader(); }
LimitedPreviewContainer* PreviewDir::limitedContainer() const { return d->limited(); }
const QList<QFileInfo>& PreviewDir::entries() const { return d->entries(); }

QFileInfo PreviewDir::hoveredEntry() const {
    const int r = d->table() ? d->table()->hoveredRow() : -1;
    return (r >= 0 && r < d->entries().size()) ? d->entries()[r] : QFileInfo();
}

} // namespace tavFinder
