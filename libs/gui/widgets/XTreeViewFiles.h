#pragma once
// The directory tree: a QFileSystemModel seen through a proxy that hides the
// folders of a filter and sorts folders first. Directories only, hidden files,
// size and date columns, a root below the file-system root, and the user's
// gestures as listener lists.
#include "base/core/XEventListener.h"

#include <QFileInfo>
#include <QList>
#include <QSet>
#include <QSortFilterProxyModel>
#include <QTreeView>
#include <functional>

class QFileSystemModel;

namespace tav {

class XNode;

class XTreeViewFilesProxy : public QSortFilterProxyModel {
    Q_OBJECT
public:
    explicit XTreeViewFilesProxy(QObject* parent = nullptr);
    void setFolderFilter(const QList<QFileInfo>& folders);
    void setFolderFilterActive(bool on);
    bool isFolderFilterActive() const { return active_; }
    bool isFiltered(const QString& absolutePath) const;
    void invalidateAll() { invalidate(); }

    // Headers from the catalogue, sizes and dates as in the folder table.
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    QVariant data(const QModelIndex& index, int role) const override;

protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override;
    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;

private:
    QSet<QString> folders_;
    bool active_ = false;
};

class XTreeViewFiles : public QTreeView {
    Q_OBJECT
public:
    using FileListener = std::function<void(const QFileInfo&)>;

    explicit XTreeViewFiles(QWidget* parent = nullptr);
    ~XTreeViewFiles() override;

    QFileSystemModel* fileModel() const { return model_; }
    XTreeViewFilesProxy* proxy() const { return proxy_; }

    // ---- what the tree shows -----------------------------------------------------------
    void setFolderFilter(const QList<QFileInfo>& folders);   // and switches it on
    void removeFolderFilter();
    bool hasFolderFilter() const;
    void setDirsOnly(bool on);
    bool isDirsOnly() const { return dirsOnly_; }
    void setHiddenFiles(bool on);
    bool isHiddenFiles() const { return hidden_; }
    // The size and date columns (and the header) beside the names.
    void showHeaderDetails(bool on);
    bool isHeaderDetails() const { return details_; }
    // Filters and sorts the model again.
    void invalidateModel();

    // ---- selection ------------------------------------------------------------------------
    // Selects (and scrolls to) an existing entry, expanding it when asked. The
    // selection event fires as for a user's selection. False for a path that
    // does not exist or that the tree does not show.
    bool selectFile(const QString& path, bool expand);
    QFileInfo selectedFile() const;
    QFileInfo hoveredFile() const { return hovered_; }
    QFileInfo fileAt(const QModelIndex& proxyIndex) const;
    QModelIndex indexOfPath(const QString& path) const;   // proxy index, or invalid

    // ---- root -------------------------------------------------------------------------------
    // Roots the tree at a folder; empty or "/" shows the whole file system.
    bool setRoot(const QString& path);
    QString rootPath() const;
    bool isAtRoot() const { return !rootIndex().isValid(); }

    // ---- state --------------------------------------------------------------------------------
    void saveStates(XNode* node) const;
    bool restoreStates(const XNode* node);
    // Tooltip shown while hovering (empty: none).
    void setHoverToolTip(const QString& text) { hoverToolTip_ = text; }
    const QString& hoverToolTip() const { return hoverToolTip_; }

    // ---- events -----------------------------------------------------------------------------------
    XEventListener<FileListener>& eventSelectFile() { return eventSelect_; }
    XEventListener<std::function<void(const QString&)>>& eventDirReload() { return eventReload_; }
    XEventListener<FileListener>& eventDoubleClick() { return eventDouble_; }
    XEventListener<FileListener>& eventContextMenu() { return eventContext_; }
    XEventListener<FileListener>& eventHover() { return eventHover_; }
    XEventListener<std::function<void(const QString&)>>& eventRootChanged() { return eventRoot_; }

    // Width the name column keeps at least when sizes and dates are shown.
    int minimumNameWidth() const;

protected:
    bool viewportEvent(QEvent* e) override;
    void leaveEvent(QEvent* e) override;
    void resizeEvent(QResizeEvent* e) override;

private:
    void applyModelFilter();
    void applyColumns();
    // The name takes what sizes and dates leave, never less than minimumNameWidth().
    void fitNameColumn();

    QFileSystemModel* model_;
    XTreeViewFilesProxy* proxy_;
    bool dirsOnly_ = false;
    bool hidden_ = false;
    bool details_ = false;
    QFileInfo hovered_;
    QString hoverToolTip_;
    QString selectedDir_;        // the selected folder, watched for reloads
    bool selectedDirLoaded_ = false;
    // After a programmatic selection the folders above it still load; the
    // view scrolls to the selection again while they do.
    QString pendingScroll_;
    qint64 pendingScrollUntil_ = 0;
    XEventListener<FileListener> eventSelect_;
    XEventListener<std::function<void(const QString&)>> eventReload_;
    XEventListener<FileListener> eventDouble_;
    XEventListener<FileListener> eventContext_;
    XEventListener<FileListener> eventHover_;
    XEventListener<std::function<void(const QString&)>> eventRoot_;
};

} // namespace tav
