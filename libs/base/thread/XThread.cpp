#include "base/thread/XThread.h"

#include "base/log/Logger.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QThread>
#include <QThreadPool>
#include <QTimer>

#include <chrono>

#if defined(__SANITIZE_THREAD__)
#define TF_TSAN 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define TF_TSAN 1
#endif
#endif
#ifdef TF_TSAN
#include <sanitizer/tsan_interface.h>
// The pool and the event queue hand work over through Qt's own (uninstrumented)
// locks; these annotations tell the sanitizer about that hand-over.
#define TF_HAPPENS_BEFORE(p) __tsan_release(p)
#define TF_HAPPENS_AFTER(p) __tsan_acquire(p)
#else
#define TF_HAPPENS_BEFORE(p) ((void)(p))
#define TF_HAPPENS_AFTER(p) ((void)(p))
#endif

namespace tav {

void run_in_gui_thread(std::function<void()> f, int delayMs) {
    QCoreApplication* app = QCoreApplication::instance();
    if (!app) {
        if (f) f();
        return;
    }
    auto holder = std::make_shared<std::function<void()>>(std::move(f));
    TF_HAPPENS_BEFORE(holder.get());
    auto call = [holder]() {
        TF_HAPPENS_AFTER(holder.get());
        if (*holder) (*holder)();
    };
    if (delayMs <= 0) {
        QMetaObject::invokeMethod(app, std::move(call), Qt::QueuedConnection);
    } else {
        QMetaObject::invokeMethod(
            app, [call = std::move(call), delayMs]() { QTimer::singleShot(delayMs, QCoreApplication::instance(), call); },
            Qt::QueuedConnection);
    }
}

void xSleep(int ms) { QThread::msleep(ms > 0 ? unsigned(ms) : 0); }

bool isGuiThread() {
    QCoreApplication* app = QCoreApplication::instance();
    return !app || QThread::currentThread() == app->thread();
}

// ---- AbstractThread -------------------------------------------------------------
AbstractThread::AbstractThread() = default;
AbstractThread::AbstractThread(AbstractThread&& o) noexcept : state_(o.state_) {
    if (o.isActive()) log(tav::LOG_ERROR, "AbstractThread::move - source is active");
}
AbstractThread::~AbstractThread() {
    // Safety net: a thread object must not go while its body runs.
    setRunning(false);
    waitDone(-1);
}

void AbstractThread::markStarted() {
    std::lock_guard<std::mutex> l(doneMutex_);
    active_ = true;
    setRunning(true);
}

void AbstractThread::markDone() {
    std::lock_guard<std::mutex> l(doneMutex_);
    active_ = false;
    doneCond_.notify_all();
}

bool AbstractThread::waitDone(int ms) {
    std::unique_lock<std::mutex> l(doneMutex_);
    if (ms < 0) {
        doneCond_.wait(l, [this] { return !active_; });
        return true;
    }
    return doneCond_.wait_for(l, std::chrono::milliseconds(ms), [this] { return !active_; });
}

// ---- XLightweightThread ----------------------------------------------------------
XLightweightThread::XLightweightThread() : alive_(std::make_shared<int>(0)) {}
XLightweightThread::XLightweightThread(XLightweightThread&& o) noexcept
    : AbstractThread(std::move(o)), listeners_(std::move(o.listeners_)), listenerOnGui_(o.listenerOnGui_.load()),
      alive_(std::make_shared<int>(0)) {}
XLightweightThread::~XLightweightThread() { stopAndWait(); }

void XLightweightThread::stopAndWait() {
    setRunning(false);
    waitDone(-1);
}

void XLightweightThread::run() {
    runCustom();
    setRunning(false);
    if (!listeners_.isEnabled() || listeners_.isEmpty()) return;
    if (listenerOnGui_) {
        std::weak_ptr<int> alive = alive_;
        run_in_gui_thread([this, alive]() {
            if (alive.expired()) return;   // the thread object is gone
            listeners_.fire();
        });
    } else {
        listeners_.fire();
    }
}

// ---- XThreadPool ------------------------------------------------------------------
namespace {
char gPoolDone;   // address used to annotate "every task happened before wait_for_all returned"
char gPoolStart;  // address used to annotate "a task's making happened before it runs"
QThreadPool& pool() {
    // Grows as needed: a controller that waits for its workers must never starve them.
    static QThreadPool* p = [] {
        auto* tp = new QThreadPool();
        tp->setMaxThreadCount(1024);
        tp->setExpiryTimeout(30000);
        return tp;
    }();
    return *p;
}
}

void XThreadPool::start_global(AbstractThread* t, bool autoDelete) {
    if (!X_ASSERT_MSG(t, "thread == NULL")) return;
    // The end of the previous run (listeners, markDone) may still be under way.
    t->waitDone(-1);
    t->markStarted();
    TF_HAPPENS_BEFORE(t);
    pool().start([t, autoDelete]() {
        TF_HAPPENS_AFTER(t);
        t->run();
        TF_HAPPENS_BEFORE(&gPoolDone);
        t->markDone();
        if (autoDelete) delete t;
    });
}

void XThreadPool::start_global(std::function<void()> f) {
    auto holder = std::make_shared<std::function<void()>>(std::move(f));
    // The task object is made here and read on the pool thread; the pool's own hand-over
    // is invisible to the thread sanitizer, so it is announced on a fixed address before
    // the task reads even its captures.
    std::function<void()> task = [holder]() {
        TF_HAPPENS_AFTER(&gPoolStart);
        if (*holder) (*holder)();
        TF_HAPPENS_BEFORE(&gPoolDone);
    };
    TF_HAPPENS_BEFORE(&gPoolStart);
    pool().start(std::move(task));
}

void XThreadPool::run_parts(size_t parts, const std::function<void(size_t part)>& fn) {
    if (parts == 0) return;
    std::mutex m;
    std::condition_variable cv;
    size_t pending = parts - 1;
    for (size_t k = 1; k < parts; ++k) {
        start_global([&, k]() {
            fn(k);
            std::lock_guard<std::mutex> l(m);
            if (--pending == 0) cv.notify_all();
        });
    }
    fn(0);
    std::unique_lock<std::mutex> l(m);
    cv.wait(l, [&] { return pending == 0; });
}

bool XThreadPool::wait_for_all(int ms) {
    const bool done = pool().waitForDone(ms);
    TF_HAPPENS_AFTER(&gPoolDone);
    return done;
}

int XThreadPool::activeThreadCount() { return pool().activeThreadCount(); }

} // namespace tav
