#include "gui/previews/PreviewAscii.h"

#include "base/log/Logger.h"
#include "base/node/XNode.h"
#include "base/text/FileType.h"
#include "base/text/TextFiles.h"
#include "gui/viewText/XTextView.h"

namespace tav {

PreviewAscii::PreviewAscii() { set_file_extensions(get_text_file_extensions()); }

PreviewAscii::~PreviewAscii() = default;

std::unordered_set<QString> PreviewAscii::get_text_file_extensions() {
    const QStringList& l = default_text_file_extensions();
    return std::unordered_set<QString>(l.begin(), l.end());
}

void PreviewAscii::from_node(XNode* node) {
    Preview::from_node(node);
    if (!node) return;
    set_ruler(node->isBool(QStringLiteral("ruler"), ruler_));
    set_wrap(node->isBool(QStringLiteral("wrap"), wrap_));
    set_auto_wrap(node->isBool(QStringLiteral("autoWrap"), autoWrap_));
    const int pos = node->getInt(QStringLiteral("lineInfoPos"), int(linePos_));
    if (pos >= LINE_INFO_OFF && pos <= LINE_INFO_BOTTOM_RIGHT) set_line_info_pos(LINE_INFO_POS(pos));
}

void PreviewAscii::to_node() {
    XNode* n = node();
    if (!n) return;
    n->setBool(QStringLiteral("ruler"), ruler_);
    n->setBool(QStringLiteral("wrap"), wrap_);
    n->setBool(QStringLiteral("autoWrap"), autoWrap_);
    n->setInt(QStringLiteral("lineInfoPos"), int(linePos_));
}

void PreviewAscii::ini() {
    if (view_) {
        log(tav::LOG_ERROR, "PreviewAscii::ini, already called");
        return;
    }
    view_ = new viewText::XTextView();
    set_widget(view_);
    view_->set_ruler(ruler_);
    view_->set_wrap(wrap_);
    view_->set_auto_wrap(autoWrap_);
    view_->set_line_info_pos(linePos_);
    if (background_.isValid()) view_->setBackgroundColor(background_);
    if (font_ != QFont()) view_->setFont(font_);
    for (auto& b : pendingBuilders_) view_->add_extra_context_menu(b);
    pendingBuilders_.clear();
    if (!webSearchTitle_.isEmpty()) view_->add_extra_context_menu_web_search(webSearchTitle_);
    view_->eventLayerChanged().add([this](int id) { eventLayerChanged_.fire(id); });
    view_->eventActivated().add([this]() { fire_preview_event(); });
}

void PreviewAscii::set_font(const QFont& font) {
    font_ = font;
    if (view_) view_->setFont(font);
}

QFont PreviewAscii::get_font() { return view_ ? view_->font() : font_; }

void PreviewAscii::set_background_color(QColor c) {
    Preview::set_background_color(c);
    if (view_) view_->setBackgroundColor(c);
}

bool PreviewAscii::can_handle_file(const QFileInfo& fi) { return Preview::can_handle_file(fi) || is_text_file(fi); }

bool PreviewAscii::open_file(const QFileInfo& fi) {
    if (!view_) ini();
    fileInfo_ = fi;
    if (!view_->openFile(fi.absoluteFilePath())) {
        set_holding_file(false);
        return false;
    }
    openedSize_ = fi.size();
    openedTime_ = fi.lastModified();
    set_holding_file(true);
    if (is_debug()) log(tav::LOG_TRACE, "PreviewAscii::open_file <<<$>>>", fi);
    return true;
}

bool PreviewAscii::set_mem_file(const XMemFile& mem) {
    if (!view_) ini();
    set_holding_file(false);
    fileInfo_ = QFileInfo(mem.name);
    view_->setBytes(mem.data, mem.name);
    openedSize_ = -1;
    return true;
}

void PreviewAscii::refresh() {
    if (!view_ || fileInfo_.filePath().isEmpty()) return;
    const QFileInfo fi(fileInfo_.absoluteFilePath());
    if (fi.exists() && fi.size() == openedSize_ && fi.lastModified() == openedTime_) return;
    const int64_t top = view_->topLineStart();
    const int64_t caret = view_->caretPos();
    if (!open_file(fi)) return;
    view_->setCaretPos(caret);
    view_->scrollToByte(top, false);
}

void PreviewAscii::close_preview() {
    if (view_) view_->closeFile();
    Preview::close_preview();
}

void PreviewAscii::cancel_loading() {
    // Indexing stops by itself when another file is opened; nothing else loads.
}

void PreviewAscii::set_ruler(bool on) {
    ruler_ = on;
    if (view_) view_->set_ruler(on);
}

void PreviewAscii::set_auto_wrap(bool on) {
    autoWrap_ = on;
    if (view_) view_->set_auto_wrap(on);
}

void PreviewAscii::set_wrap(bool on) {
    wrap_ = on;
    if (view_) view_->set_wrap(on);
}

void PreviewAscii::set_line_info_pos(LINE_INFO_POS pos) {
    linePos_ = pos;
    if (view_) view_->set_line_info_pos(pos);
}

void PreviewAscii::add_extra_context_menu(MenuBuilder builder) {
    if (view_) view_->add_extra_context_menu(std::move(builder));
    else pendingBuilders_.push_back(std::move(builder));
}

void PreviewAscii::add_extra_context_menu_web_search(const QString& title) {
    webSearchTitle_ = title;
    if (view_) view_->add_extra_context_menu_web_search(title);
}

void PreviewAscii::set_XRamLayer(find::XRamLayer* layer) {
    if (view_) view_->set_active_layer(layer);
}

} // namespace tav
