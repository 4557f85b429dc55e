#include "src/find/SearchJob.h"

#include "base/log/Logger.h"
#include "base/thread/XThread.h"

#include <algorithm>
#include <atomic>

namespace tavFinder {

struct SearchJob::Run {
    SearchParams params;
    tav::XDirInfo walk;
    TavFind search;
    std::atomic<bool> walkDone{false};
    bool ended = false;       // its end was reported
    bool stale = false;       // replaced by a newer run: reports nothing more
    bool cancelled = false;
};

namespace {
// Before the first start: an idle search and walk to read totals from.
struct Idle {
    TavFind search;
    tav::XDirInfo walk;
    SearchParams params;
};
Idle& idle() {
    static Idle* i = new Idle();   // never destroyed: read by windows until the very end
    return *i;
}
} // namespace

SearchJob::SearchJob(SearchSink& sink) : sink_(sink), alive_(std::make_shared<int>(0)) {
    QObject::connect(&timer_, &QTimer::timeout, [this]() {
        if (current_ && !current_->ended) flush(*current_);
    });
}

SearchJob::~SearchJob() {
    alive_.reset();
    discard();
}

void SearchJob::release(std::shared_ptr<Run>&& run) {
    // The last owner may wait for the run's threads to end: never the caller's thread.
    tav::XThreadPool::start_global([r = std::move(run)]() mutable { r.reset(); });
}

void SearchJob::start(const SearchParams& params) {
    discard();
    auto run = std::make_shared<Run>();
    run->params = params;
    TavFind& s = run->search;
    s.maxThreads = std::clamp<uint32_t>(params.threads, 1, 64);
    s.scope = params.filter.contentFilter.scope();
    s.flagCountLines = params.countLines;
    s.flagDocuments = params.documents;
    s.extractLimits = params.limits;
    s.maxResults = params.maxFiles;
    s.keepMarks = params.keepMarks;
    s.request.sPath = params.dir;
    s.setContentFilter(params.filter.contentFilter);
    s.onFileDone = onFileDone;
    run->walk.sPath = params.dir;
    run->walk.flagHiddenFiles = params.hidden;
    run->walk.flagIgnoreFiles = params.ignoreFiles;
    // Without it, workers stat each file through its descriptor once open and the walk
    // stats only for size bounds.
    run->walk.flagStatFiles = params.statFiles;
    std::weak_ptr<int> alive = alive_;
    std::weak_ptr<Run> weak = run;
    s.addListener([this, alive, weak]() {
        if (alive.expired()) return;
        if (std::shared_ptr<Run> r = weak.lock()) searchEnded(r);
    });
    tav::log(tav::LOG_TRACE, "SearchJob::start <<<$>>> $", params.dir, params.filter.contentFilter.text());
    s.beginFeed();
    s.start_search();
    current_ = run;
    tav::XThreadPool::start_global([run]() {
        // Each folder's file informations live until its files are searched, and the walk
        // waits while the search is far behind: memory stays bounded on a million files.
        run->walk.scan_dir_feed_owned(run->params.dir, run->params.filter.fileFilter,
                                      [&run](const std::vector<QFileInfo*>& files, const std::vector<int64_t>& sizes,
                                             std::shared_ptr<const void> owner) {
                                          // A search that has its files already needs no more walking.
                                          if (run->search.limitReached()) run->walk.flagStop = true;
                                          else run->search.feedFiles(files, sizes, std::move(owner));
                                      });
        run->search.endFeed();
        run->walkDone = true;
    });
    // The first rows are looked for soon; after them, batches at the chosen pace.
    timer_.start(std::min(20, std::max(10, batchIntervalMs)));
}

void SearchJob::cancel() {
    if (!current_ || current_->ended) return;
    tav::log(tav::LOG_TRACE, "SearchJob::cancel");
    current_->cancelled = true;
    current_->walk.flagStop = true;
    current_->search.stop_search();
}

void SearchJob::discard() {
    if (!current_) return;
    cancel();
    timer_.stop();
    current_->stale = true;
    release(std::move(current_));
}

bool SearchJob::isRunning() const { return current_ && !current_->ended; }

bool SearchJob::wasCancelled() const { return current_ && current_->cancelled; }

TavFind& SearchJob::search() { return current_ ? current_->search : idle().search; }

const tav::XDirInfo& SearchJob::walk() const { return current_ ? current_->walk : idle().walk; }

const SearchParams& SearchJob::params() const { return current_ ? current_->params : idle().params; }

void SearchJob::flush(Run& run) {
    std::vector<FileResult> batch;
    run.search.takeResults(batch);
    if (!batch.empty()) {
        if (timer_.interval() != std::max(10, batchIntervalMs)) timer_.setInterval(std::max(10, batchIntervalMs));
        sink_.searchResults(batch);
    }
    SearchProgress p;
    p.folders = run.walk.countDirs.load();
    p.filesToSearch = run.search.countTextFiles();
    const tav::XFindStats w = run.search.workerStats();
    p.filesSearched = w.countFiles.load();
    p.bytesToRead = run.search.getBytesToRead();
    p.bytesRead = run.search.getBytesRead();
    p.results = run.search.countResults();
    p.hits = run.search.countHits();
    p.walkDone = run.walkDone.load();
    sink_.searchProgress(p);
}

void SearchJob::searchEnded(const std::shared_ptr<Run>& run) {
    if (run != current_ || run->stale || run->ended) return;
    timer_.stop();
    flush(*run);
    run->ended = true;
    QStringList unreadable = run->walk.unreadableDirs();
    unreadable << run->search.unreadableFiles();
    tav::log(tav::LOG_TRACE, "SearchJob::searchEnded, $ results, cancelled:$", quint64(run->search.countResults()), run->cancelled);
    sink_.searchDone(run->cancelled, unreadable, run->walk.countUnreadableDirs.load(), run->search.countUnreadableFiles());
}

} // namespace tavFinder
