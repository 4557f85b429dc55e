#pragma once
// A list of listeners (callables) guarded by a mutex, with an enable flag.
// add() returns an id that remove() takes; replace() drops every earlier listener.
#include <QMutex>
#include <QMutexLocker>
#include <atomic>
#include <functional>
#include <mutex>
#include <utility>
#include <vector>

namespace tav {

template <typename F>
class XEventListener {
public:
    using Function = F;

    XEventListener() = default;
    XEventListener(const XEventListener&) = delete;
    XEventListener& operator=(const XEventListener&) = delete;
    // Takes over the listeners of another list (which is left empty), e.g. when
    // an object holding a list is moved into a container.
    XEventListener(XEventListener&& o) noexcept {
        std::lock_guard<std::mutex> lock(o.mutex_);
        items_ = std::move(o.items_);
        o.items_.clear();
        nextId_ = o.nextId_;
        enabled_ = o.enabled_.load();
    }

    int add(F f) {
        std::lock_guard<std::mutex> lock(mutex_);
        const int id = nextId_++;
        items_.push_back({id, std::move(f)});
        return id;
    }
    // Replaces every listener by this one.
    int replace(F f) {
        std::lock_guard<std::mutex> lock(mutex_);
        items_.clear();
        const int id = nextId_++;
        items_.push_back({id, std::move(f)});
        return id;
    }
    bool remove(int id) {
        std::lock_guard<std::mutex> lock(mutex_);
        for (auto it = items_.begin(); it != items_.end(); ++it) {
            if (it->first == id) { items_.erase(it); return true; }
        }
        return false;
    }
    void clear() { std::lock_guard<std::mutex> lock(mutex_); items_.clear(); }
    int size() const { std::lock_guard<std::mutex> lock(mutex_); return int(items_.size()); }
    bool isEmpty() const { return size() == 0; }

    void setEnabled(bool on) { enabled_ = on; }
    bool isEnabled() const { return enabled_; }

    // Calls every listener in registration order. The list is copied first so a
    // listener may add or remove listeners without deadlocking.
    template <typename... A>
    void fire(A&&... args) const {
        if (!enabled_) return;
        std::vector<std::pair<int, F>> copy;
        {
            std::lock_guard<std::mutex> lock(mutex_);
            copy = items_;
        }
        for (auto& it : copy) {
            if (it.second) it.second(args...);
        }
    }
    // Calls the listeners while holding the mutex (for lists whose users rely on it).
    template <typename... A>
    void fireLocked(A&&... args) const {
        if (!enabled_) return;
        std::lock_guard<std::mutex> lock(mutex_);
        for (auto& it : items_) {
            if (it.second) it.second(args...);
        }
    }

private:
    mutable std::mutex mutex_;   // std::mutex: its locking is visible to the thread sanitizer
    std::vector<std::pair<int, F>> items_;
    int nextId_ = 1;
    std::atomic<bool> enabled_{true};
};

} // namespace tav
