#pragma once
// A 32-bit flag word with change listeners. Setters that take a 'notify'
// argument call the listeners when the value actually changed.
#include "base/core/XEventListener.h"

#include <atomic>
#include <cstdint>
#include <functional>

namespace tav {

class AtomicBits {
public:
    using Listener = std::function<void(uint32_t flags)>;

    explicit AtomicBits(uint32_t v = 0) : bits_(v) {}
    AtomicBits(const AtomicBits& o) : bits_(o.flags()) {}
    AtomicBits& operator=(const AtomicBits& o) { bits_ = o.flags(); return *this; }

    uint32_t flags() const { return bits_.load(); }
    bool isFlag(uint32_t bit) const { return (bits_.load() & bit) == bit && bit != 0; }
    bool isAnyFlag(uint32_t mask) const { return (bits_.load() & mask) != 0; }

    // Plain setters (no listeners).
    void setFlag(uint32_t bit, bool on) {
        if (on) bits_.fetch_or(bit); else bits_.fetch_and(~bit);
    }
    void setFlags(uint32_t v) { bits_ = v; }

    // Notifying setters; 'notify' != 0 calls listeners on change. The extra
    // argument is kept for call compatibility (lock mode) and ignored.
    void set_flag(uint32_t bit, bool on, int notify = 1, int = 1) {
        const uint32_t old = on ? bits_.fetch_or(bit) : bits_.fetch_and(~bit);
        changed(old, notify);
    }
    void set_flags(uint32_t v, int notify = 1) {
        const uint32_t old = bits_.exchange(v);
        changed(old, notify);
    }
    void toggle_flag(uint32_t bit, int notify = 1) {
        const uint32_t old = bits_.fetch_xor(bit);
        changed(old, notify);
    }
    void reset_flags(int notify = 1) { set_flags(0, notify); }
    // Calls the listeners with the current value, changed or not.
    void notify() const { listeners_.fire(flags()); }

    XEventListener<Listener>& listeners() { return listeners_; }
    int addListener(Listener l) { return listeners_.add(std::move(l)); }

private:
    void changed(uint32_t old, int notify) {
        if (notify && old != bits_.load()) listeners_.fire(flags());
    }
    std::atomic<uint32_t> bits_;
    XEventListener<Listener> listeners_;
};

// An atomic value of any trivially copyable type.
template <typename T>
class XAtomic {
public:
    XAtomic(T v = T()) : v_(v) {}
    XAtomic(const XAtomic& o) : v_(o.load()) {}
    XAtomic& operator=(const XAtomic& o) { v_ = o.load(); return *this; }
    XAtomic& operator=(T v) { v_ = v; return *this; }
    operator T() const { return v_.load(); }
    T load() const { return v_.load(); }
    void store(T v) { v_.store(v); }
    T exchange(T v) { return v_.exchange(v); }
    std::atomic<T>& raw() { return v_; }

private:
    std::atomic<T> v_;
};

} // namespace tav
