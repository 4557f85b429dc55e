#include "src/gui/ThumbLoader.h"

#include "base/log/Logger.h"
#include "base/thread/XThread.h"
#include "gui/previews/XThumb.h"
#include "src/gui/PanThumb.h"

#include <QSemaphore>
#include <QThreadPool>

namespace tavFinder {

ThumbLoader::~ThumbLoader() {
    clear();
    // run() ends soon once the queue is empty; its pool waits for the pictures in work.
    while (running_.load()) tav::xSleep(1);
}

void ThumbLoader::add(PanThumb* tile) {
    QMutexLocker l(&mutex_);
    if (!X_ASSERT_MSG(tile, "panThumb == NULL")) return;
    std::shared_ptr<tav::XThumbJob> job = tile->thumb()->job();
    if (job && job->is_ini()) tiles_.emplace(tile, job);
}

ThumbLoader::Item ThumbLoader::next() {
    QMutexLocker l(&mutex_);
    for (auto it = tiles_.begin(); it != tiles_.end();) {
        Item item{it->first, it->second};
        it = tiles_.erase(it);
        if (item.job && item.job->is_ini()) return item;
    }
    return Item();
}

void ThumbLoader::clear() {
    QMutexLocker l(&mutex_);
    tiles_.clear();
}

int ThumbLoader::queued() const {
    QMutexLocker l(&mutex_);
    return int(tiles_.size());
}

bool ThumbLoader::isQueued(PanThumb* tile) const {
    QMutexLocker l(&mutex_);
    return tiles_.count(tile) > 0;
}

void ThumbLoader::run() {
    {
        QThreadPool pool;
        pool.setMaxThreadCount(kMaxThreads);
        // At most kMaxBusy pictures in work: the rest stays queued here, where clear() can drop it.
        QSemaphore busy(kMaxBusy);
        while (Item item = next()) {
            busy.acquire();
            ++started_;
            pool.start([job = item.job, &busy]() {
                if (X_ASSERT_MSG(job, "thumb == NULL")) job->work();
                busy.release();
            });
        }
        pool.waitForDone();
    }
    running_ = false;
}

void ThumbLoader::start() {
    if (running_.exchange(true)) return;
    tav::XThreadPool::start_global([this]() { run(); });
}

} // namespace tavFinder
