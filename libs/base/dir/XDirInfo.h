#pragma once
// Recursive directory scan and the list of files that pass a file filter.
//
// The walk reads each folder's entries with their types (no stat per entry),
// stats a file only when a size or time bound (or flagStatFiles) needs it, never
// follows symbolic links, never opens FIFOs, sockets or devices, skips hidden
// entries unless flagHiddenFiles is set, does not enter folders that match an
// excluded pattern, and skips unreadable folders with a level-32 log line.
// The counters may be read by other threads while the scan runs; flagStop ends
// it early and is cleared when a scan begins.
#include "base/find/XFileFilter.h"
#include "base/find/XFindStats.h"

#include <QFileInfo>
#include <QString>
#include <QStringList>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace tav {

// A read-only view over a run of elements.
template <typename T>
class XView {
public:
    XView() = default;
    XView(const T* b, const T* e) : b_(b), e_(e) {}
    const T* begin() const { return b_; }
    const T* end() const { return e_; }
    size_t size() const { return size_t(e_ - b_); }
    bool empty() const { return b_ == e_; }
    const T& operator[](size_t i) const { return b_[i]; }
    // "[n] {0x... 0x...}"; longer than 10: the first 5, " ... " and the last 5.
    QString toString() const;

private:
    const T* b_ = nullptr;
    const T* e_ = nullptr;
};

template <typename T>
QString XView<T>::toString() const {
    auto hex = [](const T& p) { return QString::asprintf("0x%08llx", static_cast<unsigned long long>(reinterpret_cast<quintptr>(p))); };
    QString s = QStringLiteral("[%1] {").arg(size());
    const size_t n = size();
    QStringList parts;
    if (n > 10) {
        for (size_t i = 0; i < 5; ++i) parts << hex(b_[i]);
        QString head = parts.join(QLatin1Char(' '));
        parts.clear();
        for (size_t i = n - 5; i < n; ++i) parts << hex(b_[i]);
        s += head + QStringLiteral(" ... ") + parts.join(QLatin1Char(' '));
    } else {
        for (size_t i = 0; i < n; ++i) parts << hex(b_[i]);
        s += parts.join(QLatin1Char(' '));
    }
    return s + QLatin1Char('}');
}

class XDirInfo {
public:
    QString sPath;                          // the folder of the last scan
    bool flagHiddenFiles = false;           // scan entries whose name starts with '.'
    bool flagStatFiles = false;             // stat every file (fills countBytes during the scan)
    // Leave out what .gitignore, .ignore and .git/info/exclude files say (git's
    // rules, from the repository's root down); ignored folders are not entered,
    // and neither is ".git".
    bool flagIgnoreFiles = false;
    std::atomic<bool> flagStop{false};      // set to end a scan early

    // Counters of the running or last scan (folders include the scanned folder itself).
    std::atomic<uint32_t> countDirs{0};
    std::atomic<uint32_t> countFiles{0};
    std::atomic<uint64_t> countBytes{0};    // bytes of the files that were stat-ed
    // Folders below the scanned one that could not be opened or read; they are
    // skipped, never retried.
    std::atomic<uint32_t> countUnreadableDirs{0};
    // Their paths, sorted (at most kMaxUnreadableListed of them).
    QStringList unreadableDirs() const;
    static constexpr size_t kMaxUnreadableListed = 10000;

    // Files that passed setup_filtered_files; the pointers stay valid until the
    // next-but-one setup (a search still running on the previous list is safe).
    std::vector<QFileInfo*> ar_filtered_files;
    // Their sizes as the scan found them, -1 where it did not stat the file
    // (a search takes them over and need not stat each file again).
    std::vector<int64_t> ar_filtered_sizes;

    XDirInfo();
    ~XDirInfo();
    XDirInfo(const XDirInfo& o);
    XDirInfo& operator=(const XDirInfo& o);

    // Walks the tree below 'path'. With a filter, folders matching its excluded
    // patterns are not entered and files are stat-ed when its bounds need it.
    // False when the folder cannot be read or the scan was stopped.
    bool scan_dir(const QString& path, const XFileFilter* filter = nullptr);

    // Gets each folder's files that pass the filter (and their sizes, -1 where
    // not stat-ed) as soon as the folder has been read, so a search can begin
    // while the walk goes on. Called on the walker threads, possibly at once.
    using FileFeed = std::function<void(const std::vector<QFileInfo*>& files, const std::vector<int64_t>& sizes)>;
    // scan_dir and setup_filtered_files in one walk, the files going to 'feed'
    // by folders rather than into ar_filtered_files (which is left empty). The
    // fed file informations stay valid until the next-but-one scan_dir_feed.
    bool scan_dir_feed(const QString& path, const XFileFilter& filter, const FileFeed& feed);
    // The same, the walk keeping none of the fed informations: a folder's live as
    // long as its 'owner' does (a search lets each go once its files are searched,
    // so a walk of a million files need not hold a million file informations).
    using OwnedFeed = std::function<void(const std::vector<QFileInfo*>& files, const std::vector<int64_t>& sizes,
                                         std::shared_ptr<const void> owner)>;
    bool scan_dir_feed_owned(const QString& path, const XFileFilter& filter, const OwnedFeed& feed);
    // Fills ar_filtered_files with the scanned files that pass the filter
    // (sorted by path when 'sortByPath'); countFiles = files scanned,
    // countMatch = countHits = files passed, countBytes = their known bytes.
    XFindStats setup_filtered_files(const XFileFilter& filter, bool sortByPath);
    // The same files as their paths only (the file system's bytes), sorted by
    // path when asked: a listing of a million files makes no file informations.
    struct FilteredPath {
        std::string path;
        uint64_t size;
        bool known;   // the size is the scan's (else 0)
    };
    std::vector<FilteredPath> filtered_paths(const XFileFilter& filter, bool sortByPath);

    // Every entry below 'path' as a listing shows it (hidden ones when
    // flagHiddenFiles): regular files and links to them (by their target's
    // size), folders with their own size, links to folders (counted, never
    // entered); other kinds are left out. Nothing is kept: 'visit' gets each
    // entry on the walker threads (at once from several); false from it ends
    // the walk. False when the folder cannot be read or the walk was ended.
    struct Entry {
        const char* name;
        size_t nameLen;
        bool isDir;
        uint64_t size;
    };
    using EntryVisit = std::function<bool(const Entry& entry)>;
    bool count_tree(const QString& path, const EntryVisit& visit);
    XView<QFileInfo*> get_view_filtered_files() const {
        return XView<QFileInfo*>(ar_filtered_files.data(), ar_filtered_files.data() + ar_filtered_files.size());
    }

    // Keeps the current filtered list alive for a holder (a search still reading
    // it) beyond the next-but-one setup.
    std::shared_ptr<const std::vector<QFileInfo>> filtered_files_owner() const { return infos_; }

    bool isStopped() const { return flagStop.load(); }
    // Number of files recorded by the last scan.
    size_t countScannedFiles() const { return files_.size(); }
    void clear();
    QString toString() const;

    // The entries of one folder (not recursive): folders first, then files, each by name.
    static std::vector<QFileInfo> get_flat_directory_info(const QString& dir, bool hiddenFiles = false);

private:
    struct FileRec {
        uint32_t folder;
        uint32_t nameOff;
        uint32_t nameLen;
        bool hasStat;
        uint64_t size;
        int64_t mtimeMs;
    };
    std::vector<std::string> folders_;   // absolute native paths
    mutable std::mutex unreadableMutex_;
    QStringList unreadable_;
    void noteUnreadable(const std::string& dir);
    std::vector<FileRec> files_;
    std::string names_;                  // file names, back to back
    std::shared_ptr<std::vector<QFileInfo>> infos_, retired_;
    // Folders' file informations handed to a feed (each block stays where it is).
    using Blocks = std::vector<std::shared_ptr<const std::vector<QFileInfo>>>;
    std::shared_ptr<Blocks> fed_, fedRetired_;

    // 'keepFed': the walk keeps the fed blocks (scan_dir_feed's promise).
    bool scan(const QString& path, const XFileFilter* filter, const OwnedFeed* feed, const EntryVisit* visit = nullptr,
              bool keepFed = true);
};

} // namespace tav
