#include "src/dir/XContainerPreviews.h"

#include "base/log/Logger.h"
#include "base/log/QtMessageFilter.h"
#include "base/node/XNode.h"
#include "gui/previews/PreviewAscii.h"
#include "gui/previews/PreviewHex.h"
#include "gui/previews/PreviewImage.h"
#include "gui/previews/PreviewXml.h"
#include "gui/tools/XSearchMachines.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XMenu.h"
#include "src/dir/ContextPreviews.h"
#include "src/dir/PreviewDir.h"

namespace tavFinder {

using tav::log;
using tav::xt;

namespace {
// A selection of this length or longer is no search text.
constexpr int kMaxCopyToSearch = 89;
}

XContainerPreviews::XContainerPreviews(QWidget* parent) : tav::XPanelStacked(parent, QStringLiteral("ContainerPreviews")) {}

XContainerPreviews::~XContainerPreviews() {
    // The process-wide current preview must not point into previews that go now.
    for (auto& p : owned_) ContextPreviews::forgetPreview(p.get());
    if (dir_) ContextPreviews::forgetPreview(dir_.get());
    dir_.reset();
    owned_.clear();
}

void XContainerPreviews::addPreview(tav::Preview* p, bool ini, bool addWidget) {
    if (!X_ASSERT_MSG(p, "preview == NULL")) return;
    p->set_debug(tav::XTools::isDebug());
    owned_.emplace_back(p);
    for (const QString& ext : p->get_file_extensions()) table_.emplace(ext, p);
    if (ini) {
        p->ini();
        if (auto* hex = dynamic_cast<tav::PreviewHex*>(p)) {
            const QString tmpl = tav::XTools::isTavStyleDark() ? QStringLiteral(":tf/image/dark/tf-$.svg")
                                                              : QStringLiteral(":tf/image/tf-$.svg");
            hex->set_svg_default_image(tav::fill(tmpl, tav::XTools::lang()));
        }
    }
    if (addWidget && p->widget_preview()) addPanel(p->widget_preview());
    // An activated preview asks for a window of its own, once per activation.
    p->eventPreview().add([this](tav::Preview* pr) { eventStandAlone_.fire(pr->file_info()); });
}

void XContainerPreviews::addStandardPreviews() {
    if (hex_) {
        log(tav::LOG_ERROR, "XContainerPreviews::addStandardPreviews, already called");
        return;
    }
    static const bool filtered = [] {
        tav::addConsoleMessageFilter(QStringLiteral("No file name specified"));
        tav::addConsoleMessageFilter(QStringLiteral("Empty filename passed to function"));
        tav::addConsoleMessageFilter(QStringLiteral("libpng warning"));
        tav::installQtMessageHandler();
        return true;
    }();
    Q_UNUSED(filtered);
    auto* hex = new tav::PreviewHex();
    hex_ = hex;
    addPreview(hex, true, true);
    addPreview(new tav::PreviewXml(), true, true);
    auto* text = new tav::PreviewAscii();
    addPreview(text, true, true);
    addPreview(new tav::PreviewImage(), true, true);

    text->add_extra_context_menu([this](tav::XMenu& menu, const QString& sel) {
        const bool usable = !sel.isEmpty() && sel.size() < kMaxCopyToSearch;
        if (!usable) log(tav::LOG_TRACE, "PanPreviewAsc::ini - no selection");
        menu.addSeparator();
        tav::XMenu* web = menu.createSubMenu(xt("Web Search"));
        for (const tav::XSearchMachine& m : tav::XSearchMachines::get_search_machines(false)) {
            if (m.isSeparator()) web->addSeparator();
            else web->createAction(m.title, [m, sel]() { m.trigger_search_machine(sel); });
        }
        menu.addSeparator();
        QAction* a = menu.createAction(xt("Copy \u2192 Content Search"), false, false, usable, 200);
        QObject::connect(a, &QAction::triggered, this, [this, sel]() {
            log(tav::LOG_TRACE, "XContainerPreviews::addStandardPreviews, copy to search:'$'", sel);
            set_copy_to_search(sel);
        });
    });
    showPanel(hex->widget_preview());
}

void XContainerPreviews::set_copy_to_search(const QString& text) {
    log(tav::LOG_TRACE, "XProp_inline::operator='$'", text);
    if (copyToSearch_.value() == text) return;
    log(tav::LOG_TRACE, "XProp_inline::operator, FIRE EVENT");
    copyToSearch_.set(text);
}

void XContainerPreviews::addPreviewListener(std::function<void(tav::Preview*)> f) {
    // One registration per entry: a preview with several extensions hears it several times.
    for (auto& [ext, p] : table_) p->eventPreview().add(f);
}

AbstractPreviewDir* XContainerPreviews::createPreviewDirectory() { return new PreviewDir(); }

void XContainerPreviews::adoptPreviewDirectory(AbstractPreviewDir* p) {
    dir_.reset(p);
    p->set_debug(tav::XTools::isDebug());
    p->ini();
    p->set_text_file_extensions(textExtensions_);
    p->set_show_hidden(showHidden_);
    if (p->widget_preview()) addPanel(p->widget_preview());
}

AbstractPreviewDir* XContainerPreviews::previewDirectory() {
    if (!dir_) adoptPreviewDirectory(createPreviewDirectory());
    return dir_.get();
}

void XContainerPreviews::from_node(tav::XNode* node) {
    node_ = node;
    if (!node) return;
    for (auto& [ext, p] : table_) p->from_node(node->getCreateNode(p->type(), QString(), 0));
    AbstractPreviewDir* d = previewDirectory();
    if (X_ASSERT_MSG(d, "prevDir == NULL")) d->from_node(node->getCreateNode(d->type(), QString(), 0));
}

void XContainerPreviews::to_node() {
    for (auto& [ext, p] : table_) p->to_node();
    AbstractPreviewDir* d = previewDirectory();
    if (X_ASSERT_MSG(d, "previewDirectory() == NULL")) d->to_node();
}

tav::Preview* XContainerPreviews::previewByExtension(const QString& ext) const {
    if (ext.isEmpty()) return nullptr;
    auto it = table_.find(ext.toLower());
    return it == table_.end() ? nullptr : it->second;
}

tav::Preview* XContainerPreviews::previewByWidget(QWidget* w) const {
    if (!w) {
        log(tav::LOG_ERROR, "XContainerFilePreviews::previewByWidget, widget == nullptr");
        return nullptr;
    }
    for (auto& [ext, p] : table_)
        if (p->widget_preview() == w) return p;
    return nullptr;
}

tav::Preview* XContainerPreviews::textPreview() const {
    for (tav::Preview* p : distinctPreviews())
        if (dynamic_cast<tav::PreviewAscii*>(p)) return p;
    return nullptr;
}

std::set<tav::Preview*> XContainerPreviews::distinctPreviews() const {
    std::set<tav::Preview*> out;
    for (auto& [ext, p] : table_) out.insert(p);
    return out;
}

void XContainerPreviews::cancelVisibleLoading() {
    if (tav::Preview* p = previewByWidget(currentWidget())) p->cancel_loading();
}

void XContainerPreviews::showPreview(tav::Preview* p) {
    if (!p || !p->widget_preview()) return;
    showPanel(p->widget_preview());
}

void XContainerPreviews::setTextFileExtensions(const std::unordered_set<QString>& ext) {
    textExtensions_ = ext;
    if (dir_) dir_->set_text_file_extensions(ext);
}

void XContainerPreviews::setShowHidden(bool on) {
    showHidden_ = on;
    if (dir_) dir_->set_show_hidden(on);
}

} // namespace tavFinder
