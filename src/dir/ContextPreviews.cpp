#include "src/dir/ContextPreviews.h"

#include "base/log/Logger.h"
#include "base/text/FileType.h"
#include "gui/previews/PreviewAscii.h"
#include "gui/previews/PreviewHex.h"
#include "gui/previews/XMimeType.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XComboBox.h"
#include "src/dir/AbstractPreviewDir.h"
#include "src/dir/XContainerPreviews.h"
#include "src/dir/FinderHost.h"
#include "src/gui/config/ConfigTavFinder.h"

#include "base/thread/XThread.h"

#include <QDateTime>
#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace tavFinder {

using tav::log;

namespace {
tav::Preview* gCurrent = nullptr;
}

ContextPreviews::ContextPreviews(const QString& name) : tav::NameAble(name) {
    for (const char* e : {"txt", "c", "cc", "cs", "hxx", "h", "cpp", "hpp", "css", "qml", "cmake", "md", "cfg", "ini",
                          "bat", "cmd", "sh", "ses", "mes", "sln", "java", "kt", "py", "pro", "properties", "stl",
                          "bdf", "nas", "pc", "md", "gradle", "js", "bas", "vb", "def"})
        sourceTextExtensions_.insert(QString::fromLatin1(e));
}

ContextPreviews::~ContextPreviews() {
    if (containerGuard_ && copyListenerId_ >= 0) containerGuard_->copyToSearch().listeners().remove(copyListenerId_);
}

void ContextPreviews::ini(QWidget* sourceWidget, XContainerPreviews* c) {
    X_ASSERT_MSG(c, "c == NULL");
    X_ASSERT_MSG(sourceWidget, "widget == NULL");
    sourceWidget_ = sourceWidget;
    container_ = c;
    containerGuard_ = c;
    if (!c) return;
    copyListenerId_ = c->copyToSearch().addListener([this](const QString& text) {
        log(tav::LOG_TRACE, "ContextPreviews::ini, context menu, SEL CHANGED :'$'", text);
        if (!sourceWidget_) return;
        if (FinderHost* host = FinderHost::of(sourceWidget_)) host->putInSearchField(text);
    });
}

tav::Preview* ContextPreviews::currentPreview() {
    if (!gCurrent) log(tav::LOG_TRACE, "ContextPreviews::currentPreview - NULLPTR");
    return gCurrent;
}

void ContextPreviews::forgetPreview(tav::Preview* p) {
    if (p && gCurrent == p) gCurrent = nullptr;
}

void ContextPreviews::prepare(tav::Preview* p) {
    if (!p) return;
    if (container_) container_->cancelVisibleLoading();
    p->set_font(tav::XTools::getMonoFont(cfg().fontSize));
    if (auto* asc = dynamic_cast<tav::PreviewAscii*>(p)) {
        asc->set_ruler(cfg().flagRuler);
        asc->set_auto_wrap(cfg().flagAutoWrap);
        asc->set_line_info_pos(tav::LINE_INFO_POS(std::clamp(cfg().li_pos, 0, 2)));
    }
}

bool ContextPreviews::openIn(tav::Preview* p) {
    if (container_) container_->eventPreviewAppears().fire(p);
    return p->open_file(fiCurrent_);
}

std::function<bool(const QFileInfo&)>& ContextPreviews::textSniffer() {
    static std::function<bool(const QFileInfo&)> f = [](const QFileInfo& fi) { return tav::is_text_file(fi); };
    return f;
}

int ContextPreviews::sniffText(const QFileInfo& fi) {
    const QString path = fi.absoluteFilePath();
    const qint64 modified = fi.lastModified().toMSecsSinceEpoch();
    if (lastSniff_.path == path && lastSniff_.modified == modified) return lastSniff_.text ? 1 : 0;
    struct Shared {
        std::mutex m;
        std::condition_variable cv;
        bool done = false;
        bool text = false;
    };
    auto shared = std::make_shared<Shared>();
    std::weak_ptr<int> alive = alive_;
    const std::function<bool(const QFileInfo&)> sniffer = textSniffer();
    tav::XThreadPool::start_global([shared, fi, path, modified, alive, this, sniffer]() {
        const bool text = sniffer(fi);
        {
            std::lock_guard<std::mutex> l(shared->m);
            shared->done = true;
            shared->text = text;
        }
        shared->cv.notify_all();
        // When the GUI thread gave up waiting, the answer is shown as it comes.
        tav::run_in_gui_thread([fi, path, modified, alive, this, text]() {
            if (alive.expired() || lastSniff_.path == path) return;
            lastSniff_ = Sniffed{path, modified, text};
            if (fiCurrent_.absoluteFilePath() == path && text) select_file(fi);
        });
    });
    std::unique_lock<std::mutex> l(shared->m);
    if (!shared->cv.wait_for(l, std::chrono::milliseconds(kSniffWaitMs), [&]() { return shared->done; })) {
        log(tav::LOG_TRACE, "ContextPreviews::sniffText, <<<$>>> does not answer: shown as bytes for now", path);
        return -1;
    }
    lastSniff_ = Sniffed{path, modified, shared->text};
    return shared->text ? 1 : 0;
}

void ContextPreviews::select_file(const QFileInfo& fi) {
    // A selection shows the entry; it never drags (that takes a mouse gesture, see XDragOut).
    candidates_.clear();
    fiCurrent_ = fi;
    if (container_)
        if (FinderHost* host = FinderHost::of(container_)) host->showStatusFor(fi);
    log(tav::LOG_TRACE, "ContextPreviews::select_file '$'", fi);
    if (!container_) return;

    tav::Preview* chosen = nullptr;
    // A folder gets the folder preview.
    if (fi.isDir()) {
        chosen = container_->previewDirectory();
        if (!chosen) return;
    }
    // The preview shown before lets go of its file.
    if (gCurrent) gCurrent->close_preview();
    // A file: the previews that can show it, the best first.
    if (!fi.isDir()) {
        const QString ext = tav::getFileExtension(fi.fileName(), true);
        chosen = container_->previewByExtension(ext);
        if (!chosen) {
            chosen = container_->hexPreview();
            if (auto* hex = dynamic_cast<tav::PreviewHex*>(chosen)) hex->set_font_size(cfg().fontSizeHexView);
            if (sniffText(fi) == 1) {
                log(tav::LOG_TRACE, "ContextPreviews::select_file - IS TEXT FILE !");
                if (tav::Preview* t = container_->textPreview()) chosen = t;
            }
        }
        // Pictures and source texts have their own favourites.
        const bool image = !ext.isEmpty() && tav::XMimeType::fromFile(fi).isQtImage();
        const bool sourceText = sourceTextExtensions_.count(ext) > 0;
        for (tav::Preview* p : container_->distinctPreviews()) {
            bool take;
            if (ext.isEmpty()) take = dynamic_cast<tav::PreviewHex*>(p) || dynamic_cast<tav::PreviewAscii*>(p);
            else if (image) take = p->is_image() || p == container_->hexPreview();
            else take = !p->is_image() && !(sourceText && p->is_xml());
            if (take) candidates_.push_back(p);
        }
        if (!chosen) {
            log(tav::LOG_ERROR, "ContextPreviews@$::select_file, no preview for <<<$>>>", getName(), fi);
            return;
        }
        // The chosen preview comes first among the candidates (Ctrl+Shift cycles through them).
        log(tav::LOG_TRACE, "ContextPreviews::select_file, preview '$'", chosen->name());
        auto it = std::find(candidates_.begin(), candidates_.end(), chosen);
        if (it != candidates_.end()) index_ = int(it - candidates_.begin());
    }
    // Font and text settings of the window.
    prepare(chosen);
    // Shift held: the text of a file shown as bytes or XML.
    if (tav::XTools::is_modifier_shift() && (chosen->is_hex() || chosen->is_xml())) {
        if (tav::Preview* t = container_->textPreview()) {
            chosen = t;
            prepare(chosen);
        }
    }
    // The result is not looked at; the preview shows what it could.
    openIn(chosen);
    gCurrent = chosen;
    container_->showPreview(chosen);
    chosen->post_first_time_visibilty_action();
}

void ContextPreviews::cycle_previews() {
    // Every candidate gets one chance: a file no preview can open (not even as
    // bytes, e.g. without read permission) must not loop for ever.
    const size_t rounds = candidates_.size();
    for (size_t round = 0; round < std::max<size_t>(rounds, 1); ++round) {
        if (fiCurrent_.isDir()) {
            log(tav::LOG_TRACE, "ContextPreviews@$::cycle_previews, [$]", getName(), fiCurrent_);
            return;
        }
        if (!QFileInfo::exists(fiCurrent_.absoluteFilePath())) {
            log(tav::LOG_TRACE, "ContextPreviews@$::cycle_previews, <<<$>>> 404", getName(), fiCurrent_);
            return;
        }
        if (index_ == -1 || candidates_.empty() || !container_) return;
        ++index_;
        if (index_ >= int(candidates_.size())) index_ = 0;
        tav::Preview* p = candidates_[size_t(index_)];
        log(tav::LOG_TRACE, "ContextPreviews@$::cycle_previews, <<<$>>>", getName(), fiCurrent_);
        log(tav::LOG_TRACE, "ContextPreviews@$::cycle_previews, preview '$'", getName(), p->type());
        prepare(p);
        if (openIn(p)) {
            container_->showPreview(p);
            return;
        }
        log(tav::LOG_TRACE, "ContextPreviews::cycle_previews - PROBLEMS LOADING file");
    }
}

void ContextPreviews::set_preview(const QString& type) {
    log(tav::LOG_TRACE, "ContextPreviews::set_preview, name '$'", type);
    if (fiCurrent_.isDir()) {
        log(tav::LOG_TRACE, "ContextPreviews@$::set_preview, [$]", getName(), fiCurrent_);
        return;
    }
    if (!QFileInfo::exists(fiCurrent_.absoluteFilePath())) {
        log(tav::LOG_TRACE, "ContextPreviews@$::set_preview, <<<$>>> 404", getName(), fiCurrent_);
        return;
    }
    auto it = std::find_if(candidates_.begin(), candidates_.end(), [&type](tav::Preview* p) { return p->type() == type; });
    if (it == candidates_.end() || !container_) return;
    tav::Preview* p = *it;
    log(tav::LOG_TRACE, "ContextPreviews@$::set_preview, <<<$>>>", getName(), fiCurrent_);
    log(tav::LOG_TRACE, "ContextPreviews@$::set_preview, preview '$'", getName(), p->type());
    prepare(p);
    if (openIn(p)) {
        container_->showPreview(p);
        return;
    }
    log(tav::LOG_TRACE, "ContextPreviews::set_preview - PROBLEMS LOADING file");
    cycle_previews();
}

} // namespace tavFinder
