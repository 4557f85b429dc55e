#include "src/find/TavFind.h"

#include "base/io/XLineReaderDA.h"
#include "base/log/Logger.h"
#include "base/thread/XThread.h"
#include "base/util/Format.h"
#include "src/find/ThreadControllerFind.h"


#include <chrono>

namespace tavFinder {

namespace {
// Sizes of the files, summed in 64 bits. Known sizes are taken as
// they are; otherwise QFileInfo::size() stats the file once and caches it, so
// the workers later read the cached value. Big lists are summed on several pool
// threads, each file by exactly one of them.
uint64_t sumSizes(const std::vector<QFileInfo*>& files, const std::vector<int64_t>& known) {
    auto sumRange = [&files, &known](size_t a, size_t b) {
        uint64_t s = 0;
        for (size_t i = a; i < b; ++i) {
            const qint64 size = i < known.size() && known[i] >= 0 ? known[i] : files[i] ? files[i]->size() : 0;
            if (size > 0) s += uint64_t(size);
        }
        return s;
    };
    const size_t n = files.size();
    const size_t parts = n < 2048 ? 1 : std::min<size_t>(tav::count_hardware_threads(2), 8);
    std::vector<uint64_t> sums(parts, 0);
    tav::XThreadPool::run_parts(parts, [&](size_t k) { sums[k] = sumRange(n * k / parts, n * (k + 1) / parts); });
    uint64_t total = 0;
    for (uint64_t s : sums) total += s;
    return total;
}
}

TavFind::TavFind() : pController(std::make_unique<ThreadControllerFind>()), alive_(std::make_shared<int>(0)) {}

TavFind::~TavFind() {
    pController->setRunning(false);
    wakeWaitingWorkers();
    pController->waitDone(-1);
    // A posted completion call must not reach a destroyed object. Only now: the
    // controller reads alive_ as it ends (notifyDone).
    alive_.reset();
}

void TavFind::prepareFiles(std::vector<QFileInfo*>& files) {
    std::vector<int64_t> none;
    prepareFiles(files, none);
}

void TavFind::prepareFiles(std::vector<QFileInfo*>& files, std::vector<int64_t>& sizes) {
    {
        std::lock_guard<std::mutex> l(mutexIndex);
        arTextFiles = std::move(files);
        files.clear();
        arSizes = std::move(sizes);
        sizes.clear();
        arOwners.clear();
        // Sizes that do not belong one to one to the files are not used.
        if (arSizes.size() != arTextFiles.size()) arSizes.clear();
        feedOpen = false;
        workersStat_ = false;
        countFiles_ = arTextFiles.size();
    }
    tav::log(tav::LOG_TRACE, "TavFind2::prepareFiles, arTextFiles:$", quint64(arTextFiles.size()));
    bytesToRead = sumSizes(arTextFiles, arSizes);
    tav::log(tav::LOG_TRACE, "TavFind2::prepareFiles, bytesToRead:$", tav::format1000(bytesToRead.load()));
}

void TavFind::beginFeed() {
    std::lock_guard<std::mutex> l(mutexIndex);
    arTextFiles.clear();
    arSizes.clear();
    arOwners.clear();
    feedOpen = true;
    workersStat_ = true;
    countFiles_ = 0;
    bytesToRead = 0;
}

void TavFind::feedFiles(const std::vector<QFileInfo*>& files, const std::vector<int64_t>& sizes) { feedFiles(files, sizes, nullptr); }

void TavFind::feedFiles(const std::vector<QFileInfo*>& files, const std::vector<int64_t>& sizes, std::shared_ptr<const void> owner) {
    if (files.empty()) return;
    uint64_t sum = 0;
    for (size_t i = 0; i < files.size() && i < sizes.size(); ++i)
        if (sizes[i] > 0) sum += uint64_t(sizes[i]);
    {
        std::unique_lock<std::mutex> l(mutexIndex);
        if (owner && maxQueued > 0) {
            ++waitingFeeders_;
            condFeed.wait(l, [this]() {
                return arTextFiles.size() - indexNext.load() <= maxQueued || !feedOpen || !pController->isFlag(tav::AbstractThread::RUNNING);
            });
            --waitingFeeders_;
        }
        // Sizes are kept one per file; a list without them gets unknown ones.
        arSizes.resize(arTextFiles.size(), -1);
        if (owner) arOwners.resize(arTextFiles.size());
        arTextFiles.insert(arTextFiles.end(), files.begin(), files.end());
        for (size_t i = 0; i < files.size(); ++i) arSizes.push_back(i < sizes.size() ? sizes[i] : -1);
        if (owner) arOwners.resize(arTextFiles.size(), owner);
        countFiles_ = arTextFiles.size();
    }
    bytesToRead += sum;
    condFeed.notify_all();
}

void TavFind::endFeed() {
    {
        std::lock_guard<std::mutex> l(mutexIndex);
        feedOpen = false;
    }
    tav::log(tav::LOG_TRACE, "TavFind::endFeed, files:$, bytesToRead:$", quint64(countFiles_.load()), tav::format1000(bytesToRead.load()));
    condFeed.notify_all();
}

void TavFind::wakeWaitingWorkers() {
    // Taking the lock orders the stop before a worker's next look at its wait condition.
    { std::lock_guard<std::mutex> l(mutexIndex); }
    condFeed.notify_all();
}

bool TavFind::isRunning() const { return pController->isFlag(tav::AbstractThread::RUNNING); }

bool TavFind::waitDone(int ms) { return pController->waitDone(ms); }

bool TavFind::start_search() {
    tav::log(tav::LOG_TRACE, "TavFind2::start_search, arTextFiles:$", quint64(arTextFiles.size()));
    if (pController->isFlag(tav::AbstractThread::RUNNING)) {
        // A start request during a search stops it; nothing new is started.
        tav::log(tav::LOG_TRACE, "TavFind2::start_search - RUNNING");
        pController->setRunning(false);
        wakeWaitingWorkers();
        return false;
    }
    tav::log(tav::LOG_TRACE, "TavFind2::start_search()");
    if (startQueued_) return false;   // the start already queued takes the new files
    if (!pController->waitDone(0)) {
        // A stopped search ends after its current window; the caller (the GUI thread)
        // does not wait for that.
        tav::log(tav::LOG_TRACE, "TavFind2::start_search - queued behind the ending search");
        startQueued_ = true;
        queueStart();
        return true;
    }
    startNow();
    return true;
}

void TavFind::queueStart() {
    std::weak_ptr<int> alive = alive_;
    tav::run_in_gui_thread(
        [this, alive]() {
            if (alive.expired() || !startQueued_) return;
            if (!pController->waitDone(0)) {
                queueStart();
                return;
            }
            startQueued_ = false;
            startNow();
        },
        5);
}

void TavFind::startNow() {
    countIncomplete = 0;
    admitted_ = 0;
    limitReached_ = false;
    countUnreadable_ = 0;
    {
        std::lock_guard<std::mutex> l(mutexUnreadable_);
        unreadable_.clear();
    }
    pController->ini(this);
    tav::XThreadPool::start_global(pController.get(), false);
    tav::log(tav::LOG_TRACE, "TavFind2::~start_search");
}

void TavFind::stop_search() {
    if (startQueued_) {
        // The queued search never starts; it still ends with its one call of the listeners.
        tav::log(tav::LOG_TRACE, "TavFind::stop_search - queued start dropped");
        startQueued_ = false;
        notifyDone();
        return;
    }
    if (pController->isFlag(tav::AbstractThread::RUNNING)) {
        tav::log(tav::LOG_TRACE, "TavFind::stop_search - will stop now");
        pController->setRunning(false);
        wakeWaitingWorkers();
    } else {
        tav::log(tav::LOG_TRACE, "TavFind::stop_search - not running");
    }
}

QFileInfo* TavFind::nextFile(int64_t* size, std::shared_ptr<const void>* owner) {
    std::unique_lock<std::mutex> l(mutexIndex);
    for (;;) {
        const uint32_t i = indexNext.load();
        if (i < arTextFiles.size()) {
            indexNext.fetch_add(1);
            if (size) *size = i < arSizes.size() ? arSizes[i] : -1;
            // The worker holds the file's owner while it searches; the list forgets it.
            if (i < arOwners.size()) {
                if (owner) *owner = std::move(arOwners[i]);
                else arOwners[i].reset();
            }
            // A feeder waiting for room goes on once half the room is free again.
            if (waitingFeeders_ > 0 && arTextFiles.size() - (i + 1) <= maxQueued / 2) condFeed.notify_all();
            return arTextFiles[i];
        }
        if (!feedOpen || !pController->isFlag(tav::AbstractThread::RUNNING)) break;
        condFeed.wait(l);
    }
    if (size) *size = -1;
    return nullptr;
}

QStringList TavFind::unreadableFiles() const {
    std::lock_guard<std::mutex> l(mutexUnreadable_);
    return unreadable_;
}

void TavFind::noteUnreadable(const QString& path) {
    countUnreadable_.fetch_add(1);
    std::lock_guard<std::mutex> l(mutexUnreadable_);
    if (unreadable_.size() < kUnreadableListed) unreadable_ << path;
}

bool TavFind::admitResult() {
    if (maxResults == 0) return true;
    const uint64_t n = admitted_.fetch_add(1) + 1;
    if (n > maxResults) return false;
    if (n == maxResults) {
        limitReached_ = true;
        tav::log(tav::LOG_TRACE, "TavFind::admitResult, stopped after $ files", maxResults);
        pController->setRunning(false);
        wakeWaitingWorkers();
    }
    return true;
}

size_t TavFind::workerCount() const { return pController->arThreads.size(); }

void TavFind::beginRun(uint32_t workers) {
    indexNext = 0;
    countActive = workers;
}

void TavFind::waitWorkersEnded() {
    std::unique_lock<std::mutex> l(mutexActive);
    while (countActive.load() != 0) condActive.wait_for(l, std::chrono::milliseconds(10));
}

void TavFind::workerEnded() {
    if (countActive.fetch_sub(1) == 1) {
        std::lock_guard<std::mutex> l(mutexActive);
        condActive.notify_all();
    }
}

void TavFind::notifyDone() {
    std::weak_ptr<int> alive = alive_;
    tav::run_in_gui_thread(
        [this, alive]() {
            if (alive.expired()) return;
            std::lock_guard<std::mutex> l(mutexListeners);
            listeners.fire();
        },
        0);
}

FileResult TavFind::find(const QFileInfo& file, tav::find::XContentFilter& filter) {
    filter.seekHome();
    FileResult result;
    if (!file.isFile()) tav::log(tav::LOG_TRACE, "TavFind::find, IS NOT A FILE <<<$>>>", file);
    if (file.size() == 0) return result;
    tav::XLineReaderDA reader;
    if (!reader.openFile(file.absoluteFilePath(), 0x10000, true)) {
        tav::log(tav::LOG_ERROR, "TavFind::find, problems with <<<$>>>", file.absoluteFilePath());
        return result;
    }
    result.layer = filter.find(0, reader);
    filter.seekHome();
    if (result.layer) result.fileInfo = file;
    return result;
}

FileResult TavFind::find(const QFileInfo& file, const tav::find::XContentFilter& filter) {
    tav::find::XContentFilter own(filter);
    return find(file, own);
}

std::vector<FileResult> TavFind::find(const std::vector<QFileInfo*>& files, const tav::find::XContentFilter& filter) {
    tav::find::XContentFilter own(filter);
    std::vector<FileResult> out;
    for (QFileInfo* fi : files) {
        if (!fi) continue;
        FileResult r = find(*fi, own);
        if (r.layer) out.push_back(std::move(r));
    }
    return out;
}

uint64_t TavFind::getBytesRead() const {
    uint64_t sum = 0;
    for (const FindThread& t : pController->arThreads) sum += t.stats.countBytes.load() + t.bytesInFile.load();
    return sum;
}

tav::XFindStats TavFind::workerStats() const {
    tav::XFindStats s;
    for (const FindThread& t : pController->arThreads) s.add(t.stats);
    return s;
}

void TavFind::takeResults(std::vector<FileResult>& out) {
    std::lock_guard<std::mutex> l(pController->mutexResults);
    std::vector<FileResult>& pending = pController->pending;
    if (out.empty()) {
        out.swap(pending);
        return;
    }
    out.insert(out.end(), std::make_move_iterator(pending.begin()), std::make_move_iterator(pending.end()));
    pending.clear();
}

size_t TavFind::countResults() const { return size_t(pController->countResults.load()); }

uint64_t TavFind::countHits() const { return pController->countHits.load(); }

} // namespace tavFinder
