#include "gui/widgets/XTreeViewFiles.h"

#include "base/util/NaturalCompare.h"

#include "gui/tools/XDragOut.h"
#include "base/log/Logger.h"
#include "base/node/XNode.h"
#include "base/util/Format.h"
#include "gui/tools/XTools.h"

#include <QDateTime>
#include <QDir>
#include <QFileSystemModel>
#include <QHeaderView>
#include <QHelpEvent>
#include <QResizeEvent>
#include <QScrollBar>
#include <QToolTip>

namespace tav {

namespace {
enum Column { NAME = 0, SIZE = 1, TYPE = 2, DATE = 3 };

QString cleanPath(const QString& p) { return QDir::cleanPath(QFileInfo(p).absoluteFilePath()); }
}

// ---- proxy -------------------------------------------------------------------------------------
XTreeViewFilesProxy::XTreeViewFilesProxy(QObject* parent) : QSortFilterProxyModel(parent) {
    setDynamicSortFilter(true);
    setRecursiveFilteringEnabled(false);
}

void XTreeViewFilesProxy::setFolderFilter(const QList<QFileInfo>& folders) {
    folders_.clear();
    for (const QFileInfo& fi : folders)
        if (!fi.filePath().isEmpty()) folders_.insert(cleanPath(fi.absoluteFilePath()));
    invalidateFilter();
}

void XTreeViewFilesProxy::setFolderFilterActive(bool on) {
    if (active_ == on) return;
    active_ = on;
    invalidateFilter();
}

bool XTreeViewFilesProxy::isFiltered(const QString& absolutePath) const {
    return active_ && folders_.contains(cleanPath(absolutePath));
}

QVariant XTreeViewFilesProxy::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole) {
        switch (section) {
        case NAME: return xt("Name");
        case SIZE: return xt("Size");
        case DATE: return xt("Date");
        default: break;
        }
    }
    return QSortFilterProxyModel::headerData(section, orientation, role);
}

QVariant XTreeViewFilesProxy::data(const QModelIndex& index, int role) const {
    if (role == Qt::DisplayRole && (index.column() == SIZE || index.column() == DATE)) {
        auto* fs = qobject_cast<QFileSystemModel*>(sourceModel());
        const QModelIndex src = mapToSource(index);
        if (fs && src.isValid()) {
            if (index.column() == DATE) return fs->lastModified(src).toString(QStringLiteral("yyyy/MM/dd - hh:mm"));
            return fs->isDir(src) ? QString() : format1000(int64_t(fs->size(src)));
        }
    }
    return QSortFilterProxyModel::data(index, role);
}

bool XTreeViewFilesProxy::filterAcceptsRow(int row, const QModelIndex& parent) const {
    if (!active_ || folders_.isEmpty()) return true;
    auto* fs = qobject_cast<QFileSystemModel*>(sourceModel());
    if (!fs) return true;
    const QModelIndex i = fs->index(row, 0, parent);
    return !folders_.contains(QDir::cleanPath(fs->filePath(i)));
}

bool XTreeViewFilesProxy::lessThan(const QModelIndex& left, const QModelIndex& right) const {
    auto* fs = qobject_cast<QFileSystemModel*>(sourceModel());
    if (!fs) return QSortFilterProxyModel::lessThan(left, right);
    const bool ld = fs->isDir(left), rd = fs->isDir(right);
    // Folders before files whatever the direction: the view reverses the
    // whole order for descending sorts, so flip the folder rule with it.
    if (ld != rd) return sortOrder() == Qt::AscendingOrder ? ld : rd;
    switch (left.column()) {
    case SIZE:
        if (fs->size(left) != fs->size(right)) return fs->size(left) < fs->size(right);
        break;
    case DATE: {
        const QDateTime a = fs->lastModified(left), b = fs->lastModified(right);
        if (a != b) return a < b;
        break;
    }
    default:
        break;
    }
    // Like the folder table: case ignored, numbers by value.
    return tav::naturalLess(fs->fileName(left), fs->fileName(right));
}

// ---- view ------------------------------------------------------------------------------------------
XTreeViewFiles::XTreeViewFiles(QWidget* parent)
    : QTreeView(parent), model_(new QFileSystemModel(this)), proxy_(new XTreeViewFilesProxy(this)) {
    setObjectName(QStringLiteral("XTreeViewFiles"));
    model_->setReadOnly(true);
    model_->setResolveSymlinks(false);
    applyModelFilter();
    model_->setRootPath(QDir::rootPath());
    proxy_->setSourceModel(model_);
    setModel(proxy_);
    setUniformRowHeights(true);
    setMouseTracking(true);
    setContextMenuPolicy(Qt::CustomContextMenu);
    setSelectionMode(QAbstractItemView::SingleSelection);
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(NAME, QHeaderView::Stretch);
    header()->setMinimumSectionSize(40);
    connect(header(), &QHeaderView::sectionResized, this, [this](int section, int, int) {
        if (section == SIZE || section == DATE) fitNameColumn();
    });
    setSortingEnabled(true);
    sortByColumn(NAME, Qt::AscendingOrder);
    applyColumns();
    XDragOut::install(this, [this](const QPoint& pos) { return fileAt(indexAt(pos)); });

    connect(selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex& cur) {
        const QFileInfo fi = fileAt(cur);
        if (fi.filePath().isEmpty()) return;
        selectedDir_ = fi.isDir() ? cleanPath(fi.absoluteFilePath()) : QString();
        selectedDirLoaded_ = false;
        eventSelect_.fire(fi);
    });
    // The first load of the selected folder is its listing; later loads are
    // changes on disk, which the owner may want to show.
    connect(model_, &QFileSystemModel::directoryLoaded, this, [this](const QString& path) {
        if (!pendingScroll_.isEmpty() && QDateTime::currentMSecsSinceEpoch() < pendingScrollUntil_ &&
            pendingScroll_.startsWith(QDir::cleanPath(path)))
            scrollTo(currentIndex(), QAbstractItemView::PositionAtCenter);
        if (selectedDir_.isEmpty() || QDir::cleanPath(path) != selectedDir_) return;
        if (!selectedDirLoaded_) {
            selectedDirLoaded_ = true;
            return;
        }
        eventReload_.fire(path);
    });
    connect(this, &QAbstractItemView::doubleClicked, this, [this](const QModelIndex& i) {
        const QFileInfo fi = fileAt(i);
        if (!fi.filePath().isEmpty()) eventDouble_.fire(fi);
    });
    connect(this, &QWidget::customContextMenuRequested, this, [this](const QPoint& p) {
        const QFileInfo fi = fileAt(indexAt(p));
        if (!fi.filePath().isEmpty()) eventContext_.fire(fi);
    });
    connect(this, &QAbstractItemView::entered, this, [this](const QModelIndex& i) {
        hovered_ = fileAt(i);
        if (!hovered_.filePath().isEmpty()) eventHover_.fire(hovered_);
    });
}

XTreeViewFiles::~XTreeViewFiles() = default;

void XTreeViewFiles::applyModelFilter() {
    QDir::Filters f = QDir::AllDirs | QDir::NoDotAndDotDot | QDir::Drives;
    if (!dirsOnly_) f |= QDir::Files;
    if (hidden_) f |= QDir::Hidden;
    model_->setFilter(f);
}

void XTreeViewFiles::applyColumns() {
    setColumnHidden(TYPE, true);
    setColumnHidden(SIZE, !details_);
    setColumnHidden(DATE, !details_);
    setHeaderHidden(!details_);
    if (details_) {
        header()->setSectionResizeMode(SIZE, QHeaderView::ResizeToContents);
        header()->setSectionResizeMode(DATE, QHeaderView::ResizeToContents);
        // Stretched, the name got what two columns left: ~70 px in a narrow tree.
        header()->setSectionResizeMode(NAME, QHeaderView::Interactive);
        fitNameColumn();
    } else {
        header()->setSectionResizeMode(NAME, QHeaderView::Stretch);
    }
}

int XTreeViewFiles::minimumNameWidth() const { return indentation() * 3 + fontMetrics().horizontalAdvance(QLatin1Char('x')) * 22; }

void XTreeViewFiles::fitNameColumn() {
    if (!details_) return;
    const int others = header()->sectionSize(SIZE) + header()->sectionSize(DATE);
    header()->resizeSection(NAME, std::max(minimumNameWidth(), viewport()->width() - others));
}

void XTreeViewFiles::resizeEvent(QResizeEvent* e) {
    QTreeView::resizeEvent(e);
    fitNameColumn();
}

void XTreeViewFiles::setFolderFilter(const QList<QFileInfo>& folders) {
    proxy_->setFolderFilter(folders);
    proxy_->setFolderFilterActive(true);
}
void XTreeViewFiles::removeFolderFilter() { proxy_->setFolderFilterActive(false); }
bool XTreeViewFiles::hasFolderFilter() const { return proxy_->isFolderFilterActive(); }

void XTreeViewFiles::setDirsOnly(bool on) {
    dirsOnly_ = on;
    applyModelFilter();
}

void XTreeViewFiles::setHiddenFiles(bool on) {
    hidden_ = on;
    applyModelFilter();
}

void XTreeViewFiles::showHeaderDetails(bool on) {
    details_ = on;
    applyColumns();
}

void XTreeViewFiles::invalidateModel() { proxy_->invalidateAll(); }

QFileInfo XTreeViewFiles::fileAt(const QModelIndex& proxyIndex) const {
    if (!proxyIndex.isValid()) return QFileInfo();
    const QModelIndex src = proxy_->mapToSource(proxyIndex);
    return src.isValid() ? model_->fileInfo(src) : QFileInfo();
}

QModelIndex XTreeViewFiles::indexOfPath(const QString& path) const {
    const QModelIndex src = model_->index(cleanPath(path));
    return src.isValid() ? proxy_->mapFromSource(src) : QModelIndex();
}

bool XTreeViewFiles::selectFile(const QString& path, bool expand) {
    const QFileInfo fi(path);
    if (path.isEmpty() || !fi.exists()) {
        log(tav::LOG_NAVIGATION, "XTreeViewFiles::selectFile, <<<$>>> 404", path);
        return false;
    }
    const QModelIndex idx = indexOfPath(fi.absoluteFilePath());
    if (!idx.isValid()) {
        log(tav::LOG_NAVIGATION, "XTreeViewFiles::selectFile, <<<$>>> not in the tree", fi.absoluteFilePath());
        return false;
    }
    // Selecting runs the owner's handlers, which may change the model (or run
    // an event loop): the index is looked up again after each step.
    const QString target = fi.absoluteFilePath();
    setCurrentIndex(idx);
    QModelIndex now = indexOfPath(target);
    if (now.isValid()) selectionModel()->select(now, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    now = indexOfPath(target);
    if (expand && now.isValid()) this->expand(now);
    now = indexOfPath(target);
    if (now.isValid()) scrollTo(now, QAbstractItemView::PositionAtCenter);
    pendingScroll_ = cleanPath(fi.absoluteFilePath());
    pendingScrollUntil_ = QDateTime::currentMSecsSinceEpoch() + 3000;
    return true;
}

QFileInfo XTreeViewFiles::selectedFile() const { return fileAt(currentIndex()); }

bool XTreeViewFiles::setRoot(const QString& path) {
    const QString clean = path.isEmpty() ? QDir::rootPath() : cleanPath(path);
    if (clean == QDir::rootPath()) {
        setRootIndex(QModelIndex());
    } else {
        const QFileInfo fi(clean);
        if (!fi.isDir()) {
            log(tav::LOG_ERROR, "XTreeViewFiles::setRoot, <<<$>>> is no folder", clean);
            return false;
        }
        const QModelIndex idx = indexOfPath(clean);
        if (!idx.isValid()) return false;
        setRootIndex(idx);
    }
    eventRoot_.fire(clean);
    return true;
}

QString XTreeViewFiles::rootPath() const {
    return isAtRoot() ? QDir::rootPath() : fileAt(rootIndex()).absoluteFilePath();
}

void XTreeViewFiles::saveStates(XNode* node) const {
    if (!X_ASSERT_MSG(node, "node == NULL")) return;
    node->setString(QStringLiteral("headerState"), QString::fromLatin1(header()->saveState().toBase64()));
    node->setInt(QStringLiteral("sortColumn"), header()->sortIndicatorSection());
    node->setInt(QStringLiteral("sortOrder"), int(header()->sortIndicatorOrder()));
    node->setBool(QStringLiteral("flagDirsOnly"), dirsOnly_);
}

bool XTreeViewFiles::restoreStates(const XNode* node) {
    if (!X_ASSERT_MSG(node, "node == NULL")) return false;
    bool ok = true;
    const QString s = node->getString(QStringLiteral("headerState"));
    if (!s.isEmpty()) ok = header()->restoreState(QByteArray::fromBase64(s.toLatin1()));
    const int column = node->getInt(QStringLiteral("sortColumn"), NAME);
    const int order = node->getInt(QStringLiteral("sortOrder"), int(Qt::AscendingOrder));
    sortByColumn(column >= 0 && column <= DATE ? column : NAME, order == int(Qt::DescendingOrder) ? Qt::DescendingOrder : Qt::AscendingOrder);
    if (node->hasAttribute(QStringLiteral("flagDirsOnly"))) setDirsOnly(node->isBool(QStringLiteral("flagDirsOnly"), dirsOnly_));
    // The header state also holds which columns were hidden; the details switch decides.
    applyColumns();
    return ok;
}

bool XTreeViewFiles::viewportEvent(QEvent* e) {
    if (e->type() == QEvent::ToolTip) {
        auto* he = static_cast<QHelpEvent*>(e);
        if (hoverToolTip_.isEmpty() || !indexAt(he->pos()).isValid()) QToolTip::hideText();
        else QToolTip::showText(he->globalPos(), hoverToolTip_, viewport());
        return true;
    }
    return QTreeView::viewportEvent(e);
}

void XTreeViewFiles::leaveEvent(QEvent* e) {
    hovered_ = QFileInfo();
    QTreeView::leaveEvent(e);
}

} // namespace tav
