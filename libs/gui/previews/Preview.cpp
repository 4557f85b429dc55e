#include "gui/previews/Preview.h"

#include "base/log/Logger.h"
#include "base/node/XNode.h"
#include "base/text/FileType.h"

#include <QStringList>
#include <QWidget>
#include <algorithm>
#include <atomic>

namespace tav {

namespace {
std::atomic<int> gOpenCounter{0};
}

Preview::Preview() = default;

Preview::~Preview() {
    set_holding_file(false);
    // The widget may already have gone with its Qt parent.
    delete widget_.data();
}

void Preview::from_node(XNode* node) { node_ = node; }
void Preview::to_node() {}

QWidget* Preview::widget_preview() { return widget_.data(); }

QSize Preview::current_size() { return widget_ ? widget_->size() : QSize(); }

void Preview::set_font(const QFont& font) {
    font_ = font;
    if (widget_) widget_->setFont(font);
}

QFont Preview::get_font() { return widget_ ? widget_->font() : font_; }

bool Preview::can_handle_file(const QFileInfo& fi) {
    return fi.isFile() && extensions_.count(getFileExtension(fi.fileName(), true).toLower()) > 0;
}

bool Preview::set_mem_file(const XMemFile&) { return false; }

QString Preview::toString() { return fill("$: can handle $", name(), file_extentions_as_string()); }

void Preview::refresh() {
    if (fileInfo_.filePath().isEmpty()) return;
    QFileInfo fi(fileInfo_.absoluteFilePath());
    open_file(fi);
}

void Preview::close_preview() {
    set_holding_file(false);
    fileInfo_ = QFileInfo();
}

QString Preview::file_extentions_as_string() const {
    QStringList l(extensions_.begin(), extensions_.end());
    std::sort(l.begin(), l.end());
    return l.join(QLatin1Char(','));
}

int Preview::open_counter() { return gOpenCounter.load(); }

void Preview::set_widget(QWidget* w) { widget_ = w; }

void Preview::set_holding_file(bool holding) {
    if (holding == holding_) return;
    holding_ = holding;
    gOpenCounter += holding ? 1 : -1;
}

} // namespace tav
