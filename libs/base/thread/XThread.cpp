#include "base/thread/XThread.h"

#include "base/log/Logger.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QMetaObject>
#include <QThread>
#include <QThreadPool>
#include <QTimer>

namespace tav {

void run_in_gui_thread(std::function<void()> f, int delayMs) {
    QCoreApplication* app = QCoreApplication::instance();
    if (!app) {
        if (f) f();
        return;
    }
    if (delayMs <= 0) {
        QMetaObject::invokeMethod(app, std::move(f), Qt::QueuedConnection);
    } else {
        QMetaObject::invokeMethod(
            app, [f = std::move(f), delayMs]() { QTimer::singleShot(delayMs, QCoreApplication::instance(), f); },
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
AbstractThread::~AbstractThread() {
    // Safety net: a thread object must not go while its body runs.
    setRunning(false);
    waitDone(-1);
}

void AbstractThread::markStarted() {
    QMutexLocker l(&doneMutex_);
    active_ = true;
    setRunning(true);
}

void AbstractThread::markDone() {
    QMutexLocker l(&doneMutex_);
    active_ = false;
    doneCond_.wakeAll();
}

bool AbstractThread::waitDone(int ms) {
    QMutexLocker l(&doneMutex_);
    QDeadlineTimer deadline(ms < 0 ? QDeadlineTimer::Forever : QDeadlineTimer(ms));
    while (active_) {
        if (!doneCond_.wait(&doneMutex_, deadline)) return !active_;
    }
    return true;
}

// ---- XLightweightThread ----------------------------------------------------------
XLightweightThread::XLightweightThread() : alive_(std::make_shared<int>(0)) {}
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
    t->markStarted();
    pool().start([t, autoDelete]() {
        t->run();
        t->markDone();
        if (autoDelete) delete t;
    });
}

void XThreadPool::start_global(std::function<void()> f) { pool().start(std::move(f)); }

bool XThreadPool::wait_for_all(int ms) { return pool().waitForDone(ms); }

int XThreadPool::activeThreadCount() { return pool().activeThreadCount(); }

} // namespace tav
