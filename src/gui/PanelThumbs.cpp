#include "src/gui/PanelThumbs.h"

#include "base/dir/XDirInfo.h"
#include "base/log/Logger.h"
#include "base/thread/XThread.h"
#include "gui/thumbs/XFlowLayout.h"
#include "gui/thumbs/XVScrollPanel.h"
#include "src/gui/PanThumb.h"
#include "src/dir/FinderHost.h"

#include <QPointer>

namespace tavFinder {

using tav::log;

PanelThumbs::PanelThumbs(QWidget* parent) : tav::XPanel(parent, VERTICAL, QStringLiteral("PanelThumbs")) {
    setTight();
    scroll_ = add(new tav::XVScrollPanel(this), 1);
    flow_ = new tav::XFlowLayout(scroll_->panel());
}

void PanelThumbs::set_dirs_and_files(FinderHost* win, const std::vector<QFileInfo>& entries, unsigned size) {
    for (PanThumb* t : tiles_) {
        flow_->removeWidget(t);
        delete t;
    }
    tiles_.clear();
    win_ = win;
    size_ = size;
    entries_ = entries;
    log(tav::LOG_TRACE, "PanelThumbs::set_dirs_and_files, ar:$, width/thumb:$", int(entries.size()), size);
    for (const QFileInfo& fi : entries) {
        auto* t = new PanThumb(scroll_->panel());
        flow_->addWidget(t);
        t->setup(win, fi, size);
        tiles_ << t;
    }
    scroll_->panel()->adjustSize();
}

void PanelThumbs::set_directory(FinderHost* win, const QString& dir, unsigned size, bool hidden) {
    set_dirs_and_files(win, tav::XDirInfo::get_flat_directory_info(dir, hidden), size);
}

void PanelThumbs::set_thumb_size(unsigned size) {
    if (size == size_) return;
    const std::vector<QFileInfo> entries = entries_;
    set_dirs_and_files(win_, entries, size);
    trigger_thumbs_appear_event();
}

void PanelThumbs::trigger_thumbs_appear_event() {
    QPointer<PanelThumbs> self(this);
    tav::run_in_gui_thread(
        [self]() {
            if (self) self->evAppear_.fire();
        },
        100);
}

QList<PanThumb*> PanelThumbs::visibleTiles() const {
    QList<PanThumb*> out;
    for (QWidget* w : scroll_->visibleChildren())
        if (auto* t = qobject_cast<PanThumb*>(w)) out << t;
    return out;
}

} // namespace tavFinder
