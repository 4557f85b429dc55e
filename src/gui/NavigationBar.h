#pragma once
// The row above the tree: back, forward, parent, root, folder filter, refresh,
// the path field, and the thumbnail switch with its size buttons.
#include "gui/panel/XPanel.h"
#include "src/gui/WinFinder.h"

class QLineEdit;
class QToolButton;

namespace tavFinder {

class WinFinder::NavigationBar : public tav::XPanel {
    Q_OBJECT
public:
    NavigationBar(WinFinder* win, QWidget* parent);

    QToolButton* buttonBack() const { return back_; }
    QToolButton* buttonForward() const { return forward_; }
    QToolButton* buttonParent() const { return parent_; }
    QToolButton* buttonRoot() const { return root_; }
    QToolButton* buttonFilterDirs() const { return filterDirs_; }
    QToolButton* buttonRefresh() const { return refresh_; }
    QToolButton* buttonThumbs() const { return thumbs_; }
    QWidget* panelThumbSize() const { return thumbSize_; }
    QLineEdit* editPath() const { return editPath_; }
    void setPath(const QString& path);

private:
    WinFinder* win_;
    QToolButton* back_;
    QToolButton* forward_;
    QToolButton* parent_;
    QToolButton* root_;
    QToolButton* filterDirs_;
    QToolButton* refresh_;
    QLineEdit* editPath_;
    QToolButton* thumbs_;
    tav::XPanel* thumbSize_;
};

} // namespace tavFinder
