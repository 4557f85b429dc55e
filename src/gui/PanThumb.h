#pragma once
// One tile of the thumbnail view: the picture, the name below it, and a glass
// over both that takes the clicks for the whole tile.
#include "gui/thumbs/XPanelStackedGlas.h"

#include <QFileInfo>

namespace tav {
class XElidedLabel;
class XPanel;
class XThumb;
}

namespace tavFinder {

class FinderHost;

class PanThumb : public tav::XPanelStackedGlas {
    Q_OBJECT
public:
    static constexpr unsigned kDefaultSize = 256;

    explicit PanThumb(QWidget* parent = nullptr);

    // Sets the tile up for an entry in a square of 'size'; with a main window the
    // context gesture opens its menu for the entry.
    void setup(FinderHost* win, const QFileInfo& fi, unsigned size);

    tav::XThumb* thumb() const { return thumb_; }
    tav::XElidedLabel* nameLabel() const { return name_; }
    const QFileInfo& file() const { return fi_; }
    unsigned tileSize() const { return size_; }

private:
    tav::XPanel* inner_;
    tav::XThumb* thumb_;
    tav::XElidedLabel* name_ = nullptr;
    QFileInfo fi_;
    unsigned size_ = kDefaultSize;
};

} // namespace tavFinder
