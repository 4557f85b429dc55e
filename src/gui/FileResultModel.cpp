#include "src/gui/FileResultModel.h"

#include "base/io/XPaths.h"
#include "base/log/Logger.h"
#include "base/util/Format.h"

#include <QApplication>
#include <QDateTime>
#include "base/util/NaturalCompare.h"
#include <QFileIconProvider>
#include <QPalette>
#include <algorithm>
#include <sys/stat.h>
#include <utility>

namespace tavFinder {

using tav::log;

namespace {
QFileIconProvider& iconProvider() {
    static QFileIconProvider provider;
    return provider;
}

FileResult& emptyFileResult() {
    static FileResult empty;
    // A caller may have written into it; it must stay empty for the next one.
    empty = FileResult();
    return empty;
}

// Sorts 'v' by a key computed once per element (folding texts in every
// comparison made large lists slow). Elements with equal keys end in no defined order.
template <typename T, typename KeyFn>
void sortByKey(std::vector<T>& v, KeyFn keyOf, bool ascending) {
    using Key = decltype(keyOf(v.front()));
    if (v.size() < 2) return;
    std::vector<std::pair<Key, size_t>> keys;
    keys.reserve(v.size());
    for (size_t i = 0; i < v.size(); ++i) keys.emplace_back(keyOf(v[i]), i);
    if (ascending) std::sort(keys.begin(), keys.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    else std::sort(keys.begin(), keys.end(), [](const auto& a, const auto& b) { return b.first < a.first; });
    std::vector<T> sorted;
    sorted.reserve(v.size());
    for (const auto& k : keys) sorted.push_back(std::move(v[k.second]));
    v = std::move(sorted);
}

// The modification time as a sort key, from the file system: QFileInfo's date goes
// through the local time zone for every row and took most of a sort's time.
int64_t modifiedKey(const QFileInfo& fi) {
    struct stat st {};
    if (::stat(tav::encodePath(fi.absoluteFilePath()).constData(), &st) == 0)
        return int64_t(st.st_mtim.tv_sec) * 1000000000 + int64_t(st.st_mtim.tv_nsec);
    return fi.lastModified().toMSecsSinceEpoch() * 1000000;   // a path past the system's limit
}

int64_t dateKey(const FileResult& r) { return r.mtimeNs != INT64_MIN ? r.mtimeNs : modifiedKey(r.fileInfo); }

// Names and paths in reading order (case ignored, numbers by value).
struct NaturalKey {
    QString s;
    bool operator<(const NaturalKey& o) const { return tav::naturalLess(s, o.s); }
};

template <typename T, typename FiOf>
void sortColumn(std::vector<T>& v, int column, bool ascending, FiOf fiOf) {
    switch (column) {
    case FileResultModel::COL_NAME:
        sortByKey(v, [&](const T& e) { return NaturalKey{fiOf(e).fileName()}; }, ascending);
        break;
    case FileResultModel::COL_SIZE:
        sortByKey(v, [&](const T& e) { return int64_t(fiOf(e).size()); }, ascending);
        break;
    case FileResultModel::COL_DATE:
        sortByKey(v, [&](const T& e) { return modifiedKey(fiOf(e)); }, ascending);
        break;
    case FileResultModel::COL_PATH:
        sortByKey(v, [&](const T& e) { return NaturalKey{fiOf(e).absoluteFilePath()}; }, ascending);
        break;
    default:
        break;
    }
}
}

FileResultModel::FileResultModel(QObject* parent) : QStandardItemModel(parent) {}

void FileResultModel::setFileResults(std::vector<FileResult>&& ar) {
    basicMode = false;
    arFileResults = std::move(ar);
    ar.clear();
}

void FileResultModel::addFileResults(std::vector<FileResult>& batch, int column, bool ascending) {
    if (batch.empty()) return;
    basicMode = false;
    const size_t old = arFileResults.size();
    // Room grows by doubling: an exact reserve per batch would move every row each time.
    for (FileResult& r : batch) arFileResults.push_back(std::move(r));
    batch.clear();
    setRowCount(int(arFileResults.size()));   // the views hear of the new rows at the end
    if (column < 0) return;
    // The new order, stable: results with equal keys keep the order they came in.
    const size_t n = arFileResults.size();
    std::vector<size_t> order(n);
    for (size_t i = 0; i < n; ++i) order[i] = i;
    const auto sortBy = [&](auto keyOf) {
        using Key = decltype(keyOf(arFileResults.front()));
        std::vector<Key> keys;
        keys.reserve(n);
        for (const FileResult& r : arFileResults) keys.push_back(keyOf(r));
        // The rows there are in this order already: only the batch is sorted and merged
        // in (a table of 200,000 rows takes a batch in milliseconds, not a full sort).
        const auto merge = [&](auto less) {
            std::stable_sort(order.begin() + ptrdiff_t(old), order.end(), less);
            std::inplace_merge(order.begin(), order.begin() + ptrdiff_t(old), order.end(), less);
        };
        if (ascending) merge([&](size_t a, size_t b) { return keys[a] < keys[b]; });
        else merge([&](size_t a, size_t b) { return keys[b] < keys[a]; });
    };
    switch (column) {
    case COL_HITS: sortBy([](const FileResult& r) { return int64_t(r.hits()); }); break;
    case COL_SIZE: sortBy([](const FileResult& r) { return r.size >= 0 ? r.size : int64_t(r.fileInfo.size()); }); break;
    case COL_DATE: sortBy([](const FileResult& r) { return dateKey(r); }); break;
    case COL_NAME:
    case COL_PATH:
        sortBy([column](const FileResult& r) {
            const QString shown = r.displayPath();
            return NaturalKey{column == COL_NAME ? shown.mid(shown.lastIndexOf(QLatin1Char('/')) + 1) : shown};
        });
        break;
    default: return;
    }
    bool same = true;
    for (size_t i = 0; i < n && same; ++i) same = order[i] == i;
    if (same) return;
    emit layoutAboutToBeChanged();
    std::vector<FileResult> sorted;
    sorted.reserve(n);
    std::vector<int> newRowOf(n);
    for (size_t i = 0; i < n; ++i) {
        sorted.push_back(std::move(arFileResults[order[i]]));
        newRowOf[order[i]] = int(i);
    }
    arFileResults = std::move(sorted);
    const QModelIndexList from = persistentIndexList();
    QModelIndexList to;
    to.reserve(from.size());
    for (const QModelIndex& i : from) to << index(i.row() >= 0 && size_t(i.row()) < n ? newRowOf[size_t(i.row())] : i.row(), i.column());
    changePersistentIndexList(from, to);
    emit layoutChanged();
}

void FileResultModel::setFiles(std::vector<QFileInfo>&& ar) {
    basicMode = true;
    arFiles = std::move(ar);
    ar.clear();
}

QString FileResultModel::columnText(const QFileInfo& fi, int column) {
    switch (column) {
    case COL_NAME:
        return tav::fill("$", fi.fileName());
    case COL_SIZE:
        return tav::format1000(int64_t(fi.size()));
    case COL_DATE:
        return fi.lastModified().toString(QStringLiteral("yyyy/MM/dd - hh:mm"));
    case COL_PATH:
        return fi.absolutePath();
    default:
        return QString();
    }
}

// Roles that do not depend on the mode.
QVariant FileResultModel::commonRole(const QModelIndex& index, int role, const QFileInfo& fi) const {
    switch (role) {
    case Qt::DecorationRole:
        if (index.column() == COL_NAME) return iconProvider().icon(fi);
        return QVariant();
    case Qt::BackgroundRole:
        return index.row() % 2 == 0 ? QApplication::palette().alternateBase() : QApplication::palette().base();
    case Qt::TextAlignmentRole:
        // Vertically centred like the other columns (the view's default for them).
        if (index.column() == COL_SIZE || index.column() == COL_HITS) return int(Qt::AlignRight | Qt::AlignVCenter);
        return QVariant();
    default:
        return QVariant();
    }
}

QVariant FileResultModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() < 0 || index.row() >= rowCount()) return QVariant();
    if (basicMode) return data_simple(index, role);
    const size_t row = size_t(index.row());
    if (row >= arFileResults.size()) return QVariant();
    const FileResult& r = arFileResults[row];
    if (role == Qt::DisplayRole) {
        if (index.column() == COL_HITS) return tav::format1000(r.hits());
        // A member of an archive: its own name, and the archive as the start of its path.
        if (r.isMember() && (index.column() == COL_NAME || index.column() == COL_PATH)) {
            const QString shown = r.displayPath();
            const int cut = shown.lastIndexOf(QLatin1Char('/'));
            return index.column() == COL_NAME ? shown.mid(cut + 1) : shown.left(cut);
        }
        return columnText(r.fileInfo, index.column());
    }
    if (role == Qt::ToolTipRole && r.isMember()) return r.displayPath();
    return commonRole(index, role, r.fileInfo);
}

QVariant FileResultModel::data_simple(const QModelIndex& index, int role) const {
    const size_t row = size_t(index.row());
    if (row >= arFiles.size()) return QVariant();
    const QFileInfo& fi = arFiles[row];
    if (role == Qt::DisplayRole) {
        if (index.column() == COL_HITS) {
            log(tav::LOG_ERROR, "FileResultModel::data_simple, SHOULD NOT BE HERE");
            return QStringLiteral("0");
        }
        return columnText(fi, index.column());
    }
    return commonRole(index, role, fi);
}

void FileResultModel::sort(int column, bool ascending) {
    if (basicMode) {
        sortColumn(arFiles, column, ascending, [](const QFileInfo& fi) -> const QFileInfo& { return fi; });
        return;
    }
    if (column == COL_HITS) {
        sortByKey(arFileResults, [](const FileResult& r) { return r.hits(); }, ascending);
        return;
    }
    // Members sort by their own name and by the path through their archive, as shown.
    if (column == COL_NAME || column == COL_PATH) {
        sortByKey(arFileResults, [column](const FileResult& r) {
            // A search's paths are absolute already: making them so again costs more than the sort.
            if (!r.isMember()) return NaturalKey{column == COL_NAME ? r.fileInfo.fileName() : r.displayPath()};
            const QString shown = r.displayPath();
            return NaturalKey{column == COL_NAME ? shown.mid(shown.lastIndexOf(QLatin1Char('/')) + 1) : shown};
        }, ascending);
        return;
    }
    // The search knows each result's size and date: no stat per row.
    if (column == COL_SIZE) {
        sortByKey(arFileResults, [](const FileResult& r) { return r.size >= 0 ? r.size : int64_t(r.fileInfo.size()); }, ascending);
        return;
    }
    if (column == COL_DATE) {
        sortByKey(arFileResults, dateKey, ascending);
        return;
    }
    sortColumn(arFileResults, column, ascending, [](const FileResult& r) -> const QFileInfo& { return r.fileInfo; });
}

void FileResultModel::sort(int column, Qt::SortOrder order) {
    sort(column, order == Qt::AscendingOrder);
    refreshAll();
}

void FileResultModel::refreshAll() {
    log(tav::LOG_TRACE, "FileResultModel::refreshAll");
    beginResetModel();
    endResetModel();
}

FileResult& FileResultModel::fileResultFromRow(int row) {
    if (basicMode) {
        log(tav::LOG_ERROR, "FileResultModel::fileResultFromRow, row:$ - BASIC MODE VORBIDDEN", row);
        return emptyFileResult();
    }
    if (row < 0 || row >= rowCount() || size_t(row) >= arFileResults.size()) {
        log(tav::LOG_TRACE, "FileResultModel::fileResultFromRow, row:$, but rowCount():$", row, rowCount());
        return emptyFileResult();
    }
    return arFileResults[size_t(row)];
}

QFileInfo FileResultModel::fromRow(int row) const {
    const size_t n = basicMode ? arFiles.size() : arFileResults.size();
    if (row < 0 || row >= rowCount() || size_t(row) >= n) {
        log(tav::LOG_TRACE, "FileResultModel::fromRow, row:$, but rowCount():$", row, rowCount());
        return QFileInfo();
    }
    return basicMode ? arFiles[size_t(row)] : arFileResults[size_t(row)].fileInfo;
}

uint64_t FileResultModel::hits() const {
    if (basicMode) {
        log(tav::LOG_ERROR, "FileResultModel::hits(), we are in basic mode !");
        return 0;
    }
    uint64_t n = 0;
    for (const FileResult& r : arFileResults) n += r.hits();
    return n;
}

} // namespace tavFinder
