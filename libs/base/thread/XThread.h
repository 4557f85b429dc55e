#pragma once
// Background work on the global pool. A thread object carries a state word
// (bit 2 = running: set when it is started, cleared to ask it to stop and when
// it ends) and a completion listener that runs on the GUI thread.
#include "base/core/AtomicBits.h"
#include "base/core/XEventListener.h"

#include <QMutex>
#include <QWaitCondition>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

namespace tav {

// Runs 'f' on the GUI (main) thread after 'delayMs' milliseconds (0: next turn
// of the event loop). Without an application object it runs at once.
void run_in_gui_thread(std::function<void()> f, int delayMs = 0);
namespace qt {
inline void run_in_Gui_Thread(std::function<void()> f, int delayMs = 0) { run_in_gui_thread(std::move(f), delayMs); }
}
inline void qt_run_in_Gui_Thread(std::function<void()> f, int delayMs = 0) { run_in_gui_thread(std::move(f), delayMs); }

void xSleep(int ms);
bool isGuiThread();

class AbstractThread {
public:
    static constexpr uint32_t RUNNING = 2;

    AbstractThread();
    virtual ~AbstractThread();
    AbstractThread(const AbstractThread&) = delete;
    AbstractThread& operator=(const AbstractThread&) = delete;
    // Moving is allowed only while the source is not active (e.g. to keep worker
    // objects by value in a vector); the state bits are taken over.
    AbstractThread(AbstractThread&& o) noexcept;

    AtomicBits& state() { return state_; }
    const AtomicBits& state() const { return state_; }
    bool isFlag(uint32_t bit) const { return state_.isFlag(bit); }
    bool isRunning() const { return state_.isFlag(RUNNING); }
    void setRunning(bool on) { state_.setFlag(RUNNING, on); }

    // True from the start until the body has returned (independent of the
    // cooperative running flag, which a stop request clears early).
    bool isActive() const { return active_.load(); }
    // Waits until the body has returned; ms < 0 waits without limit. True when done.
    bool waitDone(int ms = -1);

    // The body, called on a pool thread.
    virtual void run() = 0;

    // Used by the pool; not for callers.
    void markStarted();
    void markDone();

private:
    AtomicBits state_;
    std::atomic<bool> active_{false};
    std::mutex doneMutex_;
    std::condition_variable doneCond_;
};

class XLightweightThread : public AbstractThread {
public:
    XLightweightThread();
    ~XLightweightThread() override;
    // Only while the source is not active; its listeners move along.
    XLightweightThread(XLightweightThread&& o) noexcept;

    virtual void runCustom() = 0;
    void run() final;

    // Completion listeners, called after runCustom returned: on the GUI thread
    // when prepared with 'guiThread' true (the default), else on the worker.
    int addListener(std::function<void()> f) { return listeners_.add(std::move(f)); }
    XEventListener<std::function<void()>>& listeners() { return listeners_; }
    void prepareListener(bool guiThread) { listenerOnGui_ = guiThread; }
    void enableListener(bool on) { listeners_.setEnabled(on); }
    bool isListenerEnabled() const { return listeners_.isEnabled(); }

    // Clears the running flag and waits for the body to return. Derived classes
    // call this in their destructors, before their own members go.
    void stopAndWait();

private:
    XEventListener<std::function<void()>> listeners_;
    std::atomic<bool> listenerOnGui_{true};
    std::shared_ptr<int> alive_;
};

class XThreadPool {
public:
    // Starts the thread on the global pool; it is marked running first, so
    // isRunning() holds as soon as this returns. 'autoDelete' deletes it afterwards.
    // A thread object whose previous run is still winding down is waited for first.
    static void start_global(AbstractThread* t, bool autoDelete = false);
    // Runs a plain function on the global pool.
    static void start_global(std::function<void()> f);
    // Runs fn(0) .. fn(parts - 1): part 0 on the calling thread, the others on the
    // pool; returns when all have returned.
    static void run_parts(size_t parts, const std::function<void(size_t part)>& fn);
    // Waits for every queued and running task; ms < 0 without limit.
    static bool wait_for_all(int ms = -1);
    static int activeThreadCount();
};

} // namespace tav
