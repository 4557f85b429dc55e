#include "src/gui/NavigationBar.h"

#include "base/log/Logger.h"
#include "gui/tools/XTools.h"

#include <QLineEdit>
#include <QPointer>
#include <QToolButton>

namespace tavFinder {

using tav::log;
using tav::xt;

WinFinder::NavigationBar::NavigationBar(WinFinder* win, QWidget* parent)
    : tav::XPanel(parent, HORIZONTAL, QStringLiteral("NavigationBar")), win_(win) {
    setMargins(2, 2, 2, 2);
    setSpacing(2);
    auto historyMenu = [this](QToolButton* b) {
        b->setContextMenuPolicy(Qt::CustomContextMenu);
        connect(b, &QWidget::customContextMenuRequested, this,
                [this, b](const QPoint& p) { win_->on_history_menu(b->mapToGlobal(p)); });
    };
    back_ = createImageButton(WindowBase::icon(QStringLiteral("ar_left.svg")),
                              xt("Go backward one directory  [ Alt + left arrow ]\nRight click for context menu !"),
                              [this]() { win_->on_navi_back(); });
    historyMenu(back_);
    forward_ = createImageButton(WindowBase::icon(QStringLiteral("ar_right.svg")),
                                 xt("Go forward one directory [ Alt + right arrow ]\nRight click for context menu !"),
                                 [this]() { win_->on_navi_forward(); });
    historyMenu(forward_);
    parent_ = createImageButton(WindowBase::icon(QStringLiteral("ar_up.svg")),
                                xt("Go to parent directory  [ Alt + up arrow ]\nRight click for context menu !"),
                                [this]() { win_->on_navi_parent(); });
    historyMenu(parent_);
    root_ = createImageButton(WindowBase::icon(QStringLiteral("root.svg")), xt("Go to root directory [ Alt + r ]"),
                              [this]() { win_->on_navi_root(); });
    filterDirs_ = createImageButton(WindowBase::icon(QStringLiteral("filter_dir.svg")), xt("Filter main directories"), nullptr, true);
    filterDirs_->setChecked(win_->propUseFilter().value());
    connect(filterDirs_, &QToolButton::toggled, this, [this](bool on) { win_->propUseFilter().set(on); });
    win_->propUseFilter().addListener([this](bool on) {
        if (filterDirs_->isChecked() != on) filterDirs_->setChecked(on);
    });
    refresh_ = createImageButton(WindowBase::icon(QStringLiteral("refresh.svg")), xt("Refresh [ F5 ]"), [this]() {
        log(tav::LOG_NAVIGATION, "WinFinder_navigate::on_refresh");
        win_->on_refresh();
    });
    editPath_ = add(new QLineEdit(this), 1);
    editPath_->setObjectName(QStringLiteral("editPath"));
    editPath_->setClearButtonEnabled(true);
    thumbs_ = createImageButton(WindowBase::icon(QStringLiteral("picture.svg")), xt("Thumbs ( Symbolic View )"), nullptr, true);
    thumbSize_ = createPanel(HORIZONTAL, QStringLiteral("thumbSize"));
    thumbSize_->setSpacing(2);
    thumbSize_->createImageButton(WindowBase::icon(QStringLiteral("minus.svg")), xt("Smaller"), [this]() { win_->on_thumb_size(false); });
    thumbSize_->createImageButton(WindowBase::icon(QStringLiteral("plus.svg")), xt("Bigger"), [this]() { win_->on_thumb_size(true); });
    thumbSize_->setVisible(false);
    connect(thumbs_, &QToolButton::toggled, this, [this](bool on) {
        thumbSize_->setVisible(on);
        win_->viewFlags().set_flags(on ? 2 : 0);
    });
    // Ctrl+1 and Ctrl+2 change the view flags too: the button follows them.
    QPointer<QToolButton> button(thumbs_);
    QPointer<tav::XPanel> sizes(thumbSize_);
    win_->viewFlags().addListener([button, sizes](uint32_t bits) {
        if (!button || !sizes) return;
        const bool on = bits & 2;
        const QSignalBlocker block(button);
        button->setChecked(on);
        sizes->setVisible(on);
    });
}

void WinFinder::NavigationBar::setPath(const QString& path) { editPath_->setText(path); }

} // namespace tavFinder
