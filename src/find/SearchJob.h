#pragma once
// One search from a folder to its results: the walk feeds each folder's files
// to the waiting workers at once, the workers search them, and a sink gets what
// comes out: batches of results (at most every batchIntervalMs), progress,
// the paths that could not be read, and the end. The window, the command
// "find" and the developer's results window are sinks of this one job.
//
// Every call of the sink happens on the thread that started the job, from its
// event loop. Nothing here waits on that thread: starting again while a run is
// still ending leaves the old run to end on its own threads; it reports nothing
// more.
#include "base/dir/XDirInfo.h"
#include "base/extract/XExtract.h"
#include "base/find/XFilter.h"
#include "src/find/FileResult.h"
#include "src/find/TavFind.h"

#include <QStringList>
#include <QTimer>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace tavFinder {

struct SearchParams {
    QString dir;                      // the folder walked
    tav::find::XFilter filter;        // file filter and content filter
    bool hidden = false;              // walk into names starting with '.'
    uint32_t threads = 2;             // workers (1 ... 64)
    bool documents = false;           // documents and archives through their text
    tav::extract::Limits limits;
    bool countLines = true;           // off only to measure what counting costs
    // The walk stats every file, so the bytes to read are known once it ends (a
    // progress bar needs them); off, each worker stats its file once open (faster).
    bool statFiles = false;
    uint64_t maxFiles = 0;            // stop after this many files with hits (0: all)
    bool ignoreFiles = false;         // leave out what .gitignore and .ignore files say
    // Marks a result keeps (the rest of its hits only counted; 0: all). Bounds the
    // memory by the files found, not by their hits; FileMarks.h gives all again.
    uint32_t keepMarks = kResultMarks;
    static constexpr uint32_t kResultMarks = 100;
};

struct SearchProgress {
    uint64_t folders = 0;             // walked so far
    uint64_t filesToSearch = 0;       // passed the file filter so far
    uint64_t filesSearched = 0;
    uint64_t bytesToRead = 0;         // of the files known so far
    uint64_t bytesRead = 0;           // also inside the files being searched
    uint64_t results = 0;             // files (and members) with hits
    uint64_t hits = 0;
    bool walkDone = false;
};

class SearchSink {
public:
    virtual ~SearchSink() = default;
    // Results found since the last batch; the sink may move them out.
    virtual void searchResults(std::vector<FileResult>& batch) = 0;
    virtual void searchProgress(const SearchProgress& progress) { (void)progress; }
    // Once, after the last batch: folders and files that could not be read
    // (their counts may exceed the lists, which are cut), and whether it was cancelled.
    virtual void searchDone(bool cancelled, const QStringList& unreadable, uint64_t unreadableDirs, uint64_t unreadableFiles) = 0;
};

class SearchJob {
public:
    explicit SearchJob(SearchSink& sink);
    // Cancels a running search; its threads end on their own.
    ~SearchJob();
    SearchJob(const SearchJob&) = delete;
    SearchJob& operator=(const SearchJob&) = delete;

    // Starts a search (cancelling the one that runs); the content filter must be
    // ready (createSymbols done).
    void start(const SearchParams& params);
    // Asks the running search to stop; its sink still gets the results so far and the end.
    void cancel();
    // Cancels without a word: the sink hears nothing more of the running search.
    void discard();
    bool isRunning() const;
    bool wasCancelled() const;

    // The current run's search and walk (their totals), and what it was asked.
    TavFind& search();
    const tav::XDirInfo& walk() const;
    const SearchParams& params() const;

    int batchIntervalMs = 100;
    // Called by a worker after each file it took (tests hold a search at a known
    // point with it); set before start.
    std::function<void()> onFileDone;

private:
    struct Run;
    void flush(Run& run);
    void searchEnded(const std::shared_ptr<Run>& run);
    static void release(std::shared_ptr<Run>&& run);

    SearchSink& sink_;
    std::shared_ptr<Run> current_;
    QTimer timer_;
    std::shared_ptr<int> alive_;
};

} // namespace tavFinder
