#include "gui/previews/PreviewHex.h"

#include "base/log/Logger.h"
#include "base/node/XNode.h"
#include "gui/previews/XHexView.h"

namespace tav {

PreviewHex::PreviewHex() {
    set_file_extensions({"bin", "dat", "exe", "dll", "so", "o", "obj", "a", "lib", "class", "pyc", "wasm", "img",
                         "iso", "dmp", "elf", "dylib", "sys", "pak"});
}

PreviewHex::~PreviewHex() = default;

void PreviewHex::from_node(XNode* node) {
    Preview::from_node(node);
    if (node) set_font_size(node->getInt(QStringLiteral("fontSize"), fontSize_));
}

void PreviewHex::to_node() {
    if (node()) node()->setInt(QStringLiteral("fontSize"), fontSize_);
}

void PreviewHex::ini() {
    if (view_) {
        log(tav::LOG_ERROR, "PreviewHex::ini, already called");
        return;
    }
    view_ = new XHexView();
    set_widget(view_);
    view_->setFontSize(fontSize_);
    if (!svgPath_.isEmpty()) view_->setDefaultImage(svgPath_);
    view_->eventActivated().add([this]() { fire_preview_event(); });
}

void PreviewHex::set_font(const QFont& font) {
    QFont f = font;
    f.setPointSize(fontSize_);
    font_ = f;
    if (view_) view_->setFont(f);
}

QFont PreviewHex::get_font() { return view_ ? view_->font() : font_; }

bool PreviewHex::can_handle_file(const QFileInfo& fi) { return fi.isFile() && fi.isReadable(); }

bool PreviewHex::open_file(const QFileInfo& fi) {
    if (!view_) ini();
    fileInfo_ = fi;
    const bool ok = view_->openFile(fi.absoluteFilePath());
    set_holding_file(ok);
    return ok;
}

bool PreviewHex::set_mem_file(const XMemFile& mem) {
    if (!view_) ini();
    set_holding_file(false);
    fileInfo_ = QFileInfo(mem.name);
    view_->setBytes(mem.data, mem.name);
    return true;
}

void PreviewHex::close_preview() {
    if (view_) view_->closeFile();
    Preview::close_preview();
}

void PreviewHex::set_font_size(int points) {
    fontSize_ = points;
    if (view_) view_->setFontSize(points);
}

void PreviewHex::set_svg_default_image(const QString& path) {
    svgPath_ = path;
    if (view_) view_->setDefaultImage(path);
}

} // namespace tav
