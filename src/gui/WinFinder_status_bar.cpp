// The status bar of the main window: a centred label with the shown file.
#include "base/log/Logger.h"
#include "base/thread/XThread.h"
#include "base/util/Format.h"
#include "src/gui/WinFinder.h"
#include "gui/widgets/XComboBox.h"
#include "src/gui/config/ConfigTavFinder.h"

#include <QLabel>
#include <QPointer>
#include <QStatusBar>

namespace tavFinder {

using tav::log;

void WinFinder::setup_status_bar() {
    if (statusLabel_) {
        log(tav::LOG_TRACE, "WinFinder_status_bar::setup_status_bar, already set !");
        return;
    }
    statusLabel_ = new QLabel(this);
    statusLabel_->setObjectName(QStringLiteral("statusLabel"));
    statusLabel_->setAlignment(Qt::AlignCenter);
    statusBar()->addWidget(statusLabel_, 1);
    statusBar()->setVisible(cfg().flagStatusBar);
}

void WinFinder::set_status_text(const QString& text) {
    if (statusLabel_) statusLabel_->setText(text);
}

QString WinFinder::status_text_of(const QFileInfo& fi) {
    if (fi.isDir()) return tav::fill("[$]", fi.absoluteFilePath());
    return tav::fill("$  ( $ )", fi.absoluteFilePath(), tav::formatBytes(uint64_t(fi.size())));
}

void WinFinder::putInSearchField(const QString& text) {
    if (comboContent_) comboContent_->setEditText(text);
}

void WinFinder::show_status_for(QWidget* inside, const QFileInfo& fi) {
    QWidget* w = inside;
    while (w && !qobject_cast<WinFinder*>(w)) w = w->parentWidget();
    if (!w) return;
    QPointer<WinFinder> win(static_cast<WinFinder*>(w));
    const QString text = status_text_of(fi);
    tav::qt_run_in_Gui_Thread([win, text]() {
        if (win) win->set_status_text(text);
    });
}

} // namespace tavFinder
