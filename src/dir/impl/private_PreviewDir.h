#pragma once
// The inside of PreviewDir: the folder table with its sorting, the thumbnail
// page and its loader, the limited container and the context that serves it.
#include "src/gui/ThumbLoader.h"

#include <QDir>
#include <QFileInfo>
#include <QList>
#include <QPointer>
#include <QString>
#include <memory>
#include <unordered_set>

class QWidget;

namespace tav {
class XNode;
class XPanelStacked;
class XSplitter;
class XTableWidget;
}

namespace tavFinder {

class ContextPreviews;
class LimitedPreviewContainer;
class PanelThumbs;
class PanThumb;
class PreviewDir;
class FinderHost;

class private_PreviewDir {
public:
    explicit private_PreviewDir(PreviewDir* owner);
    ~private_PreviewDir();

    void ini();
    QWidget* widget() const;
    void setFilepath(const QString& path);
    void fromNode(tav::XNode* node);
    void toNode(tav::XNode* node);
    void setTextFileExtensions(const std::unordered_set<QString>& ext);
    void onActiveWinView(int view);
    int activeView() const;
    void stopThumbs();

    void onHeaderClicked(int column);
    void onRowClicked(int row);
    // Queues the visible thumbnails and starts the loader.
    void loadVisibleThumbs();

    ContextPreviews* context() const { return context_.get(); }
    LimitedPreviewContainer* limited() const { return limited_; }
    tav::XTableWidget* table() const { return table_; }
    PanelThumbs* thumbs() const { return thumbs_; }
    ThumbLoader& loader() { return loader_; }
    const QList<QFileInfo>& entries() const { return entries_; }

    bool showHidden = false;

private:
    void fillTable();
    void selectInner(const QFileInfo& fi);
    FinderHost* mainWindow() const;
    bool thumbsShown() const;
    QDir::SortFlags sortFlags() const;
    QList<QFileInfo> listEntries(const QString& path) const;

    PreviewDir* owner_;
    QString path_;
    QList<QFileInfo> entries_;
    int sortKind_ = QDir::Name;
    int sortColumn_ = 0;
    // One order bit per column: set means the natural order of its sort kind
    // (names A to Z, largest first, newest first), clear the reverse.
    uint32_t orderBits_ = 0x7;

    QPointer<tav::XSplitter> splitter_;
    tav::XPanelStacked* stack_ = nullptr;
    tav::XTableWidget* table_ = nullptr;
    PanelThumbs* thumbs_ = nullptr;
    LimitedPreviewContainer* limited_ = nullptr;
    std::unique_ptr<ContextPreviews> context_;
    ThumbLoader loader_;
    int generation_ = 0;
};

} // namespace tavFinder
