#pragma once
// The content search: one controller thread and maxThreads workers search the
// files given or fed to it and collect a FileResult for every file with at
// least one hit, until its user takes them. A SearchJob (the walk, the batches
// and the sinks) is its usual user. Also searches single files at once (the
// text preview). The listeners run on the GUI thread when a search ends.
#include "base/core/XEventListener.h"
#include "base/extract/XExtract.h"
#include "base/find/XContentFilter.h"
#include "base/find/XFindStats.h"
#include "src/find/FileResult.h"

#include <QFileInfo>
#include <QStringList>
#include <QString>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace tavFinder {

class ThreadControllerFind;

// What was asked for; the program leaves both texts empty.
struct FindRequest {
    QString sPath;
    QString sPattern;
    tav::find::XContentFilter contentFilter;
};

class TavFind {
public:
    using Listener = std::function<void()>;

    TavFind();
    // Stops a running search and waits for its threads.
    ~TavFind();
    TavFind(const TavFind&) = delete;
    TavFind& operator=(const TavFind&) = delete;

    uint32_t maxThreads = 8;     // workers of the next search (1 ... 64)
    FindRequest request;
    uint32_t scope = 1;          // for information; workers use their filter's scope
    tav::XFindStats stats;       // left untouched by the search
    // Lines are counted for every file searched; off only to measure what that costs.
    bool flagCountLines = true;
    // Documents, archives and compressed files are searched through their text
    // (off: every file as its own bytes).
    bool flagDocuments = false;
    tav::extract::Limits extractLimits;
    // Marks each result keeps; the hits after them are only counted (0: all).
    // allMarks (FileMarks.h) gives a result's every mark again when it is shown.
    uint32_t keepMarks = 0;
    // Stop once this many files (or members) with hits are found (0: no limit);
    // later finds of workers still busy are dropped.
    uint64_t maxResults = 0;
    bool limitReached() const { return limitReached_.load(); }
    // Files whose text could not be read completely (corrupt, encrypted, cut, too deep).
    std::atomic<uint64_t> countIncomplete{0};
    // Called by a worker after each file it took (tests hold a worker here to
    // stop a search at a known point); set before the search starts.
    std::function<void()> onFileDone;

    tav::find::XContentFilter& contentFilter() { return request.contentFilter; }
    void setContentFilter(const tav::find::XContentFilter& f) { request.contentFilter = f; }

    // Takes over the list (the given vector is left empty) and sums the sizes.
    void prepareFiles(std::vector<QFileInfo*>& files);
    void prepareFiles(std::vector<QFileInfo*>&& files) { prepareFiles(files); }
    // The same with the sizes a scan found (-1: unknown; both vectors are taken
    // over): files with a known size are not stat-ed again, by this or the workers.
    void prepareFiles(std::vector<QFileInfo*>& files, std::vector<int64_t>& sizes);
    // Files may also come while the search runs (from a scan that goes on):
    // beginFeed empties the list before start_search, feedFiles adds files and
    // their sizes (-1: unknown; safe from any thread), endFeed says that no more
    // come. Until then, a worker without a file waits for the next ones. A fed
    // file without a size is stat-ed by its worker once it is open (no path
    // lookup), and its size counts towards bytesToRead then.
    void beginFeed();
    void feedFiles(const std::vector<QFileInfo*>& files, const std::vector<int64_t>& sizes);
    // Fed files owned by 'owner', which the search lets go once they are searched.
    // While more than maxQueued files wait for a worker, the feeding thread waits
    // (a walk far ahead of the search holds no more than that); never once stopped.
    void feedFiles(const std::vector<QFileInfo*>& files, const std::vector<int64_t>& sizes, std::shared_ptr<const void> owner);
    size_t maxQueued = 50000;
    void endFeed();
    // Starts the search; while one runs, this stops it instead. True when a
    // search was started (each one ends with exactly one call of the listeners).
    // A stopped search that is still ending its current window is not waited for:
    // the new one starts from the event loop as soon as it is over.
    bool start_search();
    // Asks a running search to stop (each worker ends after its current read window).
    void stop_search();
    // A start waiting for a stopped search to end.
    bool isStartQueued() const { return startQueued_; }
    bool isRunning() const;
    // Blocks until the controller has ended; ms < 0 without limit.
    bool waitDone(int ms = -1);

    // Synchronous search of one file with the given filter.
    FileResult find(const QFileInfo& file, tav::find::XContentFilter& filter);
    FileResult find(const QFileInfo& file, const tav::find::XContentFilter& filter);
    // The results with hits, in input order.
    std::vector<FileResult> find(const std::vector<QFileInfo*>& files, const tav::find::XContentFilter& filter);

    // The next file to search (each file goes to exactly one worker), or null;
    // 'size' gets its size when known in advance, else -1.
    QFileInfo* nextFile(int64_t* size = nullptr, std::shared_ptr<const void>* owner = nullptr);

    // ---- read by the window --------------------------------------------------------
    size_t countTextFiles() const { return countFiles_.load(); }
    uint64_t getBytesToRead() const { return bytesToRead.load(); }
    uint64_t getBytesRead() const;       // sum of the workers' bytes
    // Moves the results found since the last call to the end of 'out' (in the
    // order the workers found them); safe while the search runs.
    void takeResults(std::vector<FileResult>& out);
    std::vector<FileResult> takeResults() {
        std::vector<FileResult> out;
        takeResults(out);
        return out;
    }
    bool hasResults() const { return countResults() > 0; }
    // Totals of the search so far, taken or not.
    size_t countResults() const;
    uint64_t countHits() const;
    // Totals of the workers of the last search.
    tav::XFindStats workerStats() const;
    // Files of the last search that could not be read (opened or read to the end):
    // all counted, the first kUnreadableListed named.
    static constexpr int kUnreadableListed = 100;
    uint64_t countUnreadableFiles() const { return countUnreadable_.load(); }
    QStringList unreadableFiles() const;
    void noteUnreadable(const QString& path);

    int addListener(Listener l) { return listeners.add(std::move(l)); }
    // Number of workers the last search ran with.
    size_t workerCount() const;

    // ---- for the search's own workers and their controller ----------------------------
    // Fed files of unknown size are stat-ed by the workers once open.
    bool workersStat() const { return workersStat_; }
    void addBytesToRead(uint64_t bytes) { bytesToRead += bytes; }
    // The controller starts 'workers' workers; each calls workerEnded() when it is done.
    void beginRun(uint32_t workers);
    // Blocks the controller until every worker has ended.
    void waitWorkersEnded();
    void workerEnded();
    // Called by the controller when all workers have ended (posts to the GUI thread).
    void notifyDone();
    // A worker's find: kept, or dropped past maxResults (the search then stops).
    bool admitResult();

private:
    tav::XEventListener<Listener> listeners;
    std::mutex mutexListeners;
    std::unique_ptr<ThreadControllerFind> pController;
    std::mutex mutexIndex;
    std::atomic<uint32_t> indexNext{0};
    std::atomic<uint32_t> countActive{0};
    // The controller looks at countActive every 10 ms; the last worker wakes it at once.
    std::mutex mutexActive;
    std::condition_variable condActive;
    std::vector<QFileInfo*> arTextFiles;
    std::vector<int64_t> arSizes;           // empty, or one per file (-1: unknown)
    std::vector<std::shared_ptr<const void>> arOwners;   // empty, or one per fed file (handed to its worker)
    int waitingFeeders_ = 0;                // with mutexIndex: feeding threads waiting for room
    std::atomic<uint64_t> bytesToRead{0};   // 64 bits: folders hold far more than 4 GiB
    std::condition_variable condFeed;       // with mutexIndex: files fed, feed ended or stop
    bool feedOpen = false;                  // with mutexIndex
    std::atomic<bool> workersStat_{false};  // fed files: unknown sizes are the workers' to find (read by a search still ending)

    void startNow();
    void queueStart();
    bool startQueued_ = false;
    std::atomic<uint64_t> countUnreadable_{0};
    mutable std::mutex mutexUnreadable_;
    QStringList unreadable_;
    void wakeWaitingWorkers();
    std::shared_ptr<int> alive_;
    std::atomic<size_t> countFiles_{0};
    std::atomic<uint64_t> admitted_{0};
    std::atomic<bool> limitReached_{false};
};

} // namespace tavFinder
