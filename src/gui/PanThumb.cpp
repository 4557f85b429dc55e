#include "src/gui/PanThumb.h"

#include "base/log/Logger.h"
#include "base/thread/XThread.h"
#include "gui/panel/XPanel.h"
#include "gui/previews/XThumb.h"
#include "gui/thumbs/XElidedLabel.h"
#include "gui/tools/XTools.h"
#include "src/dir/FinderHost.h"

#include <QPointer>

namespace tavFinder {

using tav::log;

PanThumb::PanThumb(QWidget* parent) : tav::XPanelStackedGlas(parent, QStringLiteral("PanThumb")) {
    inner_ = new tav::XPanel(this, tav::XPanel::VERTICAL, QStringLiteral("x"));
    inner_->setObjectName(QStringLiteral("x"));
    inner_->setTight();
    thumb_ = new tav::XThumb(inner_);
    inner_->add(thumb_, 1);
    addUnderGlass(inner_);
    if (tav::XTools::isTavStyleDark()) glass()->setStyleSheet(QStringLiteral("QLabel{background:rgba(76, 175, 80, 0.0)}"));
    setMaximumSize(int(kDefaultSize), int(kDefaultSize));
}

void PanThumb::setup(FinderHost* win, const QFileInfo& fi, unsigned size) {
    // The file and its name under the picture.
    fi_ = fi;
    size_ = size;
    if (!name_) {
        name_ = new tav::XElidedLabel(QString(), inner_);
        QFont f = name_->font();
        f.setPointSize(9);
        name_->setFont(f);
        name_->setMinimumHeight(50);
        inner_->add(name_);
    }
    QPointer<tav::XElidedLabel> label(name_);
    const QString fileName = fi.fileName();
    tav::run_in_gui_thread([label, fileName]() {
        if (label) label->setText(fileName);
    });
    // The picture, loaded in the background.
    thumb_->set_file(fi.absoluteFilePath(), int(size));
    setMinimumWidth(int(size));
    setMaximumSize(int(size), int(size) + 60);
    // A loaded picture shows its real size above the name.
    thumb_->eventReady().add([this]() {
        thumb_->update();
        if (thumb_->image().isNull()) return;
        const QSize real = thumb_->get_real_size();
        if (real.isValid()) name_->setText(tav::fill("$x$\n$", real.width(), real.height(), fi_.fileName()));
    });
    // The file menu comes from the window holding the tile.
    QPointer<QWidget> w(win ? win->hostWidget() : nullptr);
    const bool withWindow = win != nullptr;
    eventContextMenu().add([this, w, win, withWindow]() {
        if (!withWindow) {
            log(tav::LOG_TRACE, "NO WINFINDER");
            return;
        }
        log(tav::LOG_TRACE, "PanelThumbs::set_dirs_and_files - context, ......");
        if (w) win->fileContextMenu(fi_);
    });
}

} // namespace tavFinder
