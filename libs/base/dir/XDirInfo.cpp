#include "base/dir/XDirInfo.h"

#include "base/dir/XIgnore.h"
#include "base/io/XPaths.h"
#include "base/log/Logger.h"
#include "base/thread/XThread.h"
#include "base/util/Format.h"

#include <QDir>
#include <QFile>
#include <algorithm>
#include <iterator>
#include <condition_variable>
#include <mutex>
#include <cerrno>
#include <climits>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tav {

namespace {
struct LinuxDirent64 {
    uint64_t d_ino;
    int64_t d_off;
    unsigned short d_reclen;
    unsigned char d_type;
    char d_name[1];
};

int64_t mtimeMs(const struct stat& st) { return int64_t(st.st_mtim.tv_sec) * 1000 + st.st_mtim.tv_nsec / 1000000; }

std::string joinPath(const std::string& dir, const char* name, size_t len) {
    std::string p;
    p.reserve(dir.size() + 1 + len);
    p = dir;
    if (p.empty() || p.back() != '/') p += '/';
    p.append(name, len);
    return p;
}
}

XDirInfo::XDirInfo() = default;
XDirInfo::~XDirInfo() = default;

XDirInfo::XDirInfo(const XDirInfo& o) { *this = o; }

XDirInfo& XDirInfo::operator=(const XDirInfo& o) {
    if (this == &o) return *this;
    sPath = o.sPath;
    flagHiddenFiles = o.flagHiddenFiles;
    flagStatFiles = o.flagStatFiles;
    flagIgnoreFiles = o.flagIgnoreFiles;
    flagStop = o.flagStop.load();
    countDirs = o.countDirs.load();
    countFiles = o.countFiles.load();
    countBytes = o.countBytes.load();
    countUnreadableDirs = o.countUnreadableDirs.load();
    {
        const QStringList l = o.unreadableDirs();
        std::lock_guard<std::mutex> g(unreadableMutex_);
        unreadable_ = l;
    }
    folders_ = o.folders_;
    files_ = o.files_;
    names_ = o.names_;
    retired_.reset();
    infos_ = o.infos_ ? std::make_shared<std::vector<QFileInfo>>(*o.infos_) : nullptr;
    // The copy's list points into the copy's own file informations.
    ar_filtered_sizes = o.ar_filtered_sizes;
    ar_filtered_files.clear();
    ar_filtered_files.reserve(o.ar_filtered_files.size());
    for (QFileInfo* p : o.ar_filtered_files) {
        if (o.infos_ && infos_ && p >= o.infos_->data() && p < o.infos_->data() + o.infos_->size())
            ar_filtered_files.push_back(infos_->data() + (p - o.infos_->data()));
        else
            ar_filtered_files.push_back(p);
    }
    return *this;
}

void XDirInfo::noteUnreadable(const std::string& dir) {
    countUnreadableDirs.fetch_add(1, std::memory_order_relaxed);
    std::lock_guard<std::mutex> g(unreadableMutex_);
    if (size_t(unreadable_.size()) < kMaxUnreadableListed) unreadable_.push_back(decodePath(dir.data(), dir.size()));
}

QStringList XDirInfo::unreadableDirs() const {
    std::lock_guard<std::mutex> g(unreadableMutex_);
    QStringList l = unreadable_;
    l.sort();
    return l;
}

void XDirInfo::clear() {
    {
        std::lock_guard<std::mutex> g(unreadableMutex_);
        unreadable_.clear();
    }
    countUnreadableDirs = 0;
    folders_.clear();
    files_.clear();
    names_.clear();
    countDirs = 0;
    countFiles = 0;
    countBytes = 0;
}

namespace {
// One walker's share of a scan; merged into the XDirInfo when all are done.
struct WalkPart {
    std::vector<std::string> folders;
    struct File {
        uint32_t folder;   // index into 'folders' of this part
        uint32_t nameOff, nameLen;
        bool hasStat;
        uint64_t size;
        int64_t mtimeMs;
    };
    std::vector<File> files;
    std::string names;
    std::vector<std::shared_ptr<const std::vector<QFileInfo>>> fed;   // blocks handed to a feed (kept)
    bool rootFailed = false;
};

// Folders still to read, shared by the walkers.
// A folder to read, with the ignore rules of the folder it is in.
struct Todo {
    std::string path;
    std::shared_ptr<const XIgnoreRules> rules;
};

struct WalkQueue {
    std::mutex m;
    std::condition_variable cv;
    std::vector<Todo> todo;
    int busy = 0;
    bool done = false;
};
}

bool XDirInfo::scan_dir(const QString& path, const XFileFilter* filter) { return scan(path, filter, nullptr); }

bool XDirInfo::scan_dir_feed(const QString& path, const XFileFilter& filter, const FileFeed& feed) {
    const OwnedFeed owned = [&feed](const std::vector<QFileInfo*>& files, const std::vector<int64_t>& sizes, std::shared_ptr<const void>) {
        feed(files, sizes);
    };
    return scan(path, &filter, &owned);
}

bool XDirInfo::scan_dir_feed_owned(const QString& path, const XFileFilter& filter, const OwnedFeed& feed) {
    return scan(path, &filter, &feed, nullptr, false);
}

bool XDirInfo::count_tree(const QString& path, const EntryVisit& visit) { return scan(path, nullptr, nullptr, &visit); }

bool XDirInfo::scan(const QString& path, const XFileFilter* filter, const OwnedFeed* feed, const EntryVisit* visit, bool keepFed) {
    flagStop = false;
    clear();
    sPath = path;
    const XFileFilter::Prepared prepared = filter ? filter->prepare() : XFileFilter::Prepared();
    const bool needStat = flagStatFiles || prepared.needsStat();
    const bool hidden = flagHiddenFiles;

    const std::string root = encodePath(QDir::cleanPath(QDir(path).absolutePath())).toStdString();
    {
        struct stat st;
        if (::stat(root.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) {
            log(tav::LOG_TRACE, "XDirInfo::scan_dir, cannot read <<<$>>>", path);
            return false;
        }
    }
    countDirs = 1;

    const bool useIgnore = flagIgnoreFiles;
    const std::shared_ptr<const XIgnoreRules> rootRules = useIgnore ? XIgnoreRules::forSearchRoot(root) : nullptr;
    WalkQueue q;
    q.todo.push_back(Todo{root, nullptr});
    const unsigned nWalkers = std::max(1u, std::min(4u, count_hardware_threads(2)));
    std::vector<WalkPart> parts(nWalkers);

    // A folder's files that pass the filter become file informations (the folder's
    // name is decoded once) in a block of their own, and go to the feed.
    auto feedFolder = [&](WalkPart& part, size_t firstFile, const std::string& dir) {
        auto owned = std::make_shared<std::vector<QFileInfo>>();
        std::vector<QFileInfo>& block = *owned;
        std::vector<int64_t> sizes;
        block.reserve(part.files.size() - firstFile);
        sizes.reserve(part.files.size() - firstFile);
        QString prefix = decodePath(dir.data(), dir.size());
        if (!prefix.endsWith(QLatin1Char('/'))) prefix += QLatin1Char('/');
        for (size_t i = firstFile; i < part.files.size(); ++i) {
            const WalkPart::File& r = part.files[i];
            const char* name = part.names.data() + r.nameOff;
            if (!prepared.matchFileName(name, r.nameLen)) continue;
            if (prepared.needsStat() && (!r.hasStat || !prepared.matchStat(r.size, r.mtimeMs))) continue;
            block.emplace_back(prefix + decodePath(name, r.nameLen));
            sizes.push_back(r.hasStat ? int64_t(r.size) : -1);
        }
        if (block.empty()) return;
        std::vector<QFileInfo*> files;
        files.reserve(block.size());
        for (QFileInfo& fi : block) files.push_back(&fi);
        if (keepFed) part.fed.push_back(owned);
        (*feed)(files, sizes, std::move(owned));
    };

    auto walker = [&](WalkPart& part) {
        std::vector<char> buf(1 << 15);
        std::vector<Todo> found;
        std::unique_lock<std::mutex> lock(q.m);
        for (;;) {
            q.cv.wait(lock, [&] { return !q.todo.empty() || q.busy == 0 || flagStop.load(std::memory_order_relaxed); });
            if (q.todo.empty() || flagStop.load(std::memory_order_relaxed)) {
                if (q.busy == 0 || flagStop.load(std::memory_order_relaxed)) {
                    q.done = true;
                    q.cv.notify_all();
                    return;
                }
                continue;
            }
            Todo next = std::move(q.todo.back());
            q.todo.pop_back();
            ++q.busy;
            lock.unlock();
            std::string dir = std::move(next.path);

            const bool isRoot = dir == root;
            // The rules in force here: the folder's own ignore files over its parent's rules.
            const std::shared_ptr<const XIgnoreRules> rules =
                !useIgnore ? nullptr : isRoot ? rootRules : XIgnoreRules::forFolder(dir, next.rules);
            // The given folder may be reached through a link; below it links are never followed.
            const int fd = openPath(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | (isRoot ? 0 : O_NOFOLLOW));
            // Whatever happens below, this folder's subfolders are its own: never
            // those of an earlier folder, whose strings were moved to the queue.
            found.clear();
            if (fd < 0) {
                const int err = errno;
                log(tav::LOG_TRACE, "XDirInfo::scan_dir, cannot read <<<$>>> ($)", QFile::decodeName(dir.c_str()),
                    QString::fromLocal8Bit(std::strerror(err)));
                if (dir == root) part.rootFailed = true;
                else noteUnreadable(dir);
            } else {
                const uint32_t idx = uint32_t(part.folders.size());
                part.folders.push_back(dir);
                found.clear();
                const size_t firstFile = part.files.size();
                bool statLater = false;
                for (;;) {
                    const long n = ::syscall(SYS_getdents64, fd, buf.data(), buf.size());
                    if (n <= 0) {
                        if (n < 0) {
                            log(tav::LOG_TRACE, "XDirInfo::scan_dir, cannot read <<<$>>> ($)", QFile::decodeName(dir.c_str()),
                                QString::fromLocal8Bit(std::strerror(errno)));
                            noteUnreadable(dir);
                        }
                        break;
                    }
                    for (long off = 0; off < n;) {
                        const auto* d = reinterpret_cast<const LinuxDirent64*>(buf.data() + off);
                        off += d->d_reclen;
                        const char* name = d->d_name;
                        if (name[0] == '.') {
                            if (name[1] == 0 || (name[1] == '.' && name[2] == 0)) continue;
                            if (!hidden) continue;
                        }
                        const size_t len = std::strlen(name);
                        unsigned char type = d->d_type;
                        struct stat st;
                        bool haveStat = false;
                        if (visit) {
                            // Counting: every entry with its size, a link by what it points to.
                            if (::fstatat(fd, name, &st, AT_SYMLINK_NOFOLLOW) != 0) continue;
                            const bool link = S_ISLNK(st.st_mode);
                            if (link && ::fstatat(fd, name, &st, 0) != 0) continue;   // a broken link
                            const bool isDir = S_ISDIR(st.st_mode);
                            if (!isDir && !S_ISREG(st.st_mode)) continue;
                            if (!(*visit)(Entry{name, len, isDir, uint64_t(st.st_size)})) {
                                flagStop = true;
                                break;
                            }
                            if (isDir && !link) found.push_back(Todo{joinPath(dir, name, len), nullptr});
                            continue;
                        }
                        if (type == DT_UNKNOWN) {
                            if (::fstatat(fd, name, &st, AT_SYMLINK_NOFOLLOW) != 0) continue;
                            haveStat = true;
                            type = S_ISDIR(st.st_mode) ? DT_DIR : S_ISREG(st.st_mode) ? DT_REG : DT_LNK;
                        }
                        if (rules && (type == DT_DIR || type == DT_REG)) {
                            if (type == DT_DIR && len == 4 && std::memcmp(name, ".git", 4) == 0) continue;
                            if (rules->ignored(joinPath(dir, name, len), name, len, type == DT_DIR)) continue;
                        }
                        if (type == DT_DIR) {
                            if (prepared.isExcludedFolder(name, len)) continue;
                            found.push_back(Todo{joinPath(dir, name, len), rules});
                        } else if (type == DT_REG) {
                            WalkPart::File r{idx, uint32_t(part.names.size()), uint32_t(len), false, 0, 0};
                            statLater = statLater || (needStat && !haveStat);
                            if (haveStat) {
                                if (!S_ISREG(st.st_mode)) continue;   // replaced since the folder was read
                                r.hasStat = true;
                                r.size = uint64_t(st.st_size);
                                r.mtimeMs = mtimeMs(st);
                                countBytes.fetch_add(r.size, std::memory_order_relaxed);
                            }
                            part.names.append(name, len);
                            part.files.push_back(r);
                            countFiles.fetch_add(1, std::memory_order_relaxed);
                        }
                        // Links, FIFOs, sockets and devices are left alone.
                    }
                    if (flagStop.load(std::memory_order_relaxed)) break;
                }
                // The subfolders go to the other walkers before this one stats or
                // feeds the files: a big folder near the top must not hold them up.
                if ((statLater || feed) && !found.empty()) {
                    lock.lock();
                    countDirs.fetch_add(uint32_t(found.size()), std::memory_order_relaxed);
                    for (Todo& f : found) q.todo.push_back(std::move(f));
                    found.clear();
                    q.cv.notify_all();
                    lock.unlock();
                }
                if (statLater) {
                    size_t kept = firstFile;
                    for (size_t i = firstFile; i < part.files.size(); ++i) {
                        WalkPart::File r = part.files[i];
                        if (!r.hasStat) {
                            char name[NAME_MAX + 1];   // a directory entry's name is never longer
                            const size_t n = std::min<size_t>(r.nameLen, NAME_MAX);
                            std::memcpy(name, part.names.data() + r.nameOff, n);
                            name[n] = 0;
                            struct stat st;
                            if (::fstatat(fd, name, &st, AT_SYMLINK_NOFOLLOW) == 0) {
                                if (!S_ISREG(st.st_mode)) {   // replaced since the folder was read
                                    countFiles.fetch_sub(1, std::memory_order_relaxed);
                                    continue;
                                }
                                r.hasStat = true;
                                r.size = uint64_t(st.st_size);
                                r.mtimeMs = mtimeMs(st);
                                countBytes.fetch_add(r.size, std::memory_order_relaxed);
                            }
                        }
                        part.files[kept++] = r;
                    }
                    part.files.resize(kept);
                }
                if (feed && part.files.size() > firstFile) feedFolder(part, firstFile, dir);
                ::close(fd);
            }
            lock.lock();
            if (!found.empty()) {
                countDirs.fetch_add(uint32_t(found.size()), std::memory_order_relaxed);
                for (Todo& f : found) q.todo.push_back(std::move(f));
                found.clear();
                q.cv.notify_all();
            }
            --q.busy;
            if (q.busy == 0 && q.todo.empty()) q.cv.notify_all();
        }
    };

    XThreadPool::run_parts(nWalkers, [&](size_t k) { walker(parts[k]); });

    if (feed) {
        // The fed files are kept (and the previous lists one round longer, as a
        // search may still be ending on them); the filtered list is not made.
        auto blocks = std::make_shared<Blocks>();
        for (WalkPart& part : parts)
            for (auto& b : part.fed) blocks->push_back(std::move(b));
        fedRetired_ = std::move(fed_);
        fed_ = std::move(blocks);
        retired_ = std::move(infos_);
        ar_filtered_files.clear();
        ar_filtered_sizes.clear();
    }
    bool rootFailed = false;
    for (WalkPart& part : parts) {
        rootFailed = rootFailed || part.rootFailed;
        const uint32_t folderBase = uint32_t(folders_.size());
        const uint32_t nameBase = uint32_t(names_.size());
        for (std::string& f : part.folders) folders_.push_back(std::move(f));
        names_ += part.names;
        files_.reserve(files_.size() + part.files.size());
        for (const WalkPart::File& f : part.files)
            files_.push_back({folderBase + f.folder, nameBase + f.nameOff, f.nameLen, f.hasStat, f.size, f.mtimeMs});
    }
    return !rootFailed && !flagStop.load();
}

std::vector<XDirInfo::FilteredPath> XDirInfo::filtered_paths(const XFileFilter& filter, bool sortByPath) {
    const XFileFilter::Prepared prepared = filter.prepare();
    using Hit = FilteredPath;
    // Name tests, stats where a bound needs them, and the paths: in parts on the pool.
    const size_t n = files_.size();
    const size_t parts = n < 4096 ? 1 : std::max(1u, std::min(4u, count_hardware_threads(2)));
    std::vector<std::vector<Hit>> partHits(parts);
    XThreadPool::run_parts(parts, [&](size_t k) {
        std::vector<Hit>& hits = partHits[k];
        hits.reserve(n / parts + 1);
        for (size_t i = n * k / parts, end = n * (k + 1) / parts; i < end; ++i) {
            FileRec& r = files_[i];
            const char* name = names_.data() + r.nameOff;
            if (!prepared.matchFileName(name, r.nameLen)) continue;
            std::string full = joinPath(folders_[r.folder], name, r.nameLen);
            if (prepared.needsStat()) {
                if (!r.hasStat) {
                    struct stat st;
                    if (::lstat(full.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) continue;
                    r.hasStat = true;
                    r.size = uint64_t(st.st_size);
                    r.mtimeMs = mtimeMs(st);
                }
                if (!prepared.matchStat(r.size, r.mtimeMs)) continue;
            }
            hits.push_back({std::move(full), r.size, r.hasStat});
        }
    });
    std::vector<Hit> hits = std::move(partHits[0]);
    for (size_t k = 1; k < parts; ++k) std::move(partHits[k].begin(), partHits[k].end(), std::back_inserter(hits));
    if (sortByPath) std::sort(hits.begin(), hits.end(), [](const Hit& a, const Hit& b) { return a.path < b.path; });
    return hits;
}

XFindStats XDirInfo::setup_filtered_files(const XFileFilter& filter, bool sortByPath) {
    using Hit = FilteredPath;
    const std::vector<Hit> hits = filtered_paths(filter, sortByPath);
    const size_t parts = hits.size() < 4096 ? 1 : std::max(1u, std::min(4u, count_hardware_threads(2)));

    // The file informations are made in parts and then copied into one list:
    // a copy only counts a reference, while a default one to assign to would
    // cost an allocation of its own.
    const size_t m = hits.size();
    const size_t infoParts = m < 4096 ? 1 : parts;
    std::vector<std::vector<QFileInfo>> partInfos(infoParts);
    XThreadPool::run_parts(infoParts, [&](size_t k) {
        std::vector<QFileInfo>& out = partInfos[k];
        out.reserve(m * (k + 1) / infoParts - m * k / infoParts);
        for (size_t i = m * k / infoParts, end = m * (k + 1) / infoParts; i < end; ++i)
            out.emplace_back(decodePath(hits[i].path.data(), hits[i].path.size()));
    });
    auto infos = std::make_shared<std::vector<QFileInfo>>();
    if (infoParts == 1) {
        infos->swap(partInfos[0]);
    } else {
        infos->reserve(m);
        for (std::vector<QFileInfo>& part : partInfos) infos->insert(infos->end(), part.begin(), part.end());
    }
    uint64_t bytes = 0;
    for (const Hit& h : hits)
        if (h.known) bytes += h.size;
    // The previous list may still be in use by a search that is ending; keep it one round longer.
    retired_ = std::move(infos_);
    infos_ = std::move(infos);
    ar_filtered_files.clear();
    ar_filtered_files.reserve(infos_->size());
    for (QFileInfo& fi : *infos_) ar_filtered_files.push_back(&fi);
    ar_filtered_sizes.clear();
    ar_filtered_sizes.reserve(hits.size());
    for (const Hit& h : hits) ar_filtered_sizes.push_back(h.known ? int64_t(h.size) : -1);

    XFindStats stats;
    stats.countFiles = countFiles.load();
    stats.countMatch = uint64_t(ar_filtered_files.size());
    stats.countHits = uint64_t(ar_filtered_files.size());
    stats.countBytes = bytes;
    return stats;
}

QString XDirInfo::toString() const {
    QString s = fill("path:<<<$>>>, dirs:$, files:$, bytes:$, filtered:$", sPath, countDirs.load(), countFiles.load(),
                     countBytes.load(), int(ar_filtered_files.size()));
    if (const uint32_t n = countUnreadableDirs.load()) s += fill(", unreadable:$", n);
    return s;
}

std::vector<QFileInfo> XDirInfo::get_flat_directory_info(const QString& dir, bool hiddenFiles) {
    QDir d(dir);
    QDir::Filters f = QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System;
    if (hiddenFiles) f |= QDir::Hidden;
    const QFileInfoList list = d.entryInfoList(f, QDir::DirsFirst | QDir::Name | QDir::IgnoreCase);
    return std::vector<QFileInfo>(list.begin(), list.end());
}

} // namespace tav
