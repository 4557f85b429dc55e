#pragma once
// The thumbnail view: the entries of a folder as tiles in a flowing grid,
// scrolled vertically; scrolling is reported at most every 500 ms so that only
// the tiles in view get their pictures.
#include "base/core/XEventListener.h"
#include "gui/panel/XPanel.h"

#include <QFileInfo>
#include <QList>
#include <functional>
#include <vector>

namespace tav {
class XFlowLayout;
class XVScrollPanel;
}

namespace tavFinder {

class PanThumb;
class FinderHost;

class PanelThumbs : public tav::XPanel {
    Q_OBJECT
public:
    explicit PanelThumbs(QWidget* parent = nullptr);

    void set_dirs_and_files(FinderHost* win, const std::vector<QFileInfo>& entries, unsigned size);
    // The folder's entries (hidden ones with 'hidden'), folders first, by name.
    void set_directory(FinderHost* win, const QString& dir, unsigned size, bool hidden = false);
    // After 100 ms: tells the listeners that thumbnails have appeared.
    void trigger_thumbs_appear_event();
    // Builds the grid again at another size.
    void set_thumb_size(unsigned size);
    unsigned thumbSize() const { return size_; }

    tav::XVScrollPanel* scrollPanel() const { return scroll_; }
    const QList<PanThumb*>& tiles() const { return tiles_; }
    QList<PanThumb*> visibleTiles() const;
    tav::XEventListener<std::function<void()>>& eventThumbsAppear() { return evAppear_; }

private:
    tav::XVScrollPanel* scroll_;
    tav::XFlowLayout* flow_;
    QList<PanThumb*> tiles_;
    std::vector<QFileInfo> entries_;
    FinderHost* win_ = nullptr;
    unsigned size_ = 128;
    tav::XEventListener<std::function<void()>> evAppear_;
};

} // namespace tavFinder
