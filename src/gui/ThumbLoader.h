#pragma once
// Produces the pictures of queued thumbnail tiles on a pool of its own (at
// most 6 threads, a new task only while fewer than 5 run). The set holds the
// tiles still to load; workers get only the tile's shared job, never the tile,
// so a tile that is deleted meanwhile is never touched.
#include <QMutex>
#include <atomic>
#include <map>
#include <memory>

namespace tav {
class XThumbJob;
}

namespace tavFinder {

class PanThumb;

class ThumbLoader {
public:
    static constexpr int kMaxThreads = 6;
    static constexpr int kMaxBusy = 5;

    struct Item {
        PanThumb* tile = nullptr;
        std::shared_ptr<tav::XThumbJob> job;
        explicit operator bool() const { return bool(job); }
    };

    ThumbLoader() = default;
    ~ThumbLoader();
    ThumbLoader(const ThumbLoader&) = delete;
    ThumbLoader& operator=(const ThumbLoader&) = delete;

    // Queues a tile whose picture is still to be produced. GUI thread.
    void add(PanThumb* tile);
    // Takes the first queued tile whose picture is still to be produced.
    Item next();
    void clear();
    // Works off the queue; returns when it is empty.
    void run();
    // Runs run() on the global pool unless it runs already.
    void start();

    bool isRunning() const { return running_.load(); }
    int queued() const;
    bool isQueued(PanThumb* tile) const;
    int tasksStarted() const { return started_.load(); }

private:
    mutable QMutex mutex_;
    std::map<PanThumb*, std::shared_ptr<tav::XThumbJob>> tiles_;
    std::atomic<bool> running_{false};
    std::atomic<int> started_{0};
};

} // namespace tavFinder
