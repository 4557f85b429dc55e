#include "base/kernel/XRunGuard.h"
#include "base/thread/XThread.h"
#include "common/TestEnv.h"

#include <QtTest>
#include <atomic>

namespace {
// Counts until told to stop; reports whether its listener ran on the main thread.
class Counter : public tav::XLightweightThread {
public:
    std::atomic<int> loops{0};
    ~Counter() override { stopAndWait(); }
    void runCustom() override {
        while (isRunning() && loops < 100000) {
            ++loops;
            tav::xSleep(1);
        }
    }
};
}

class TestThreads : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

private slots:
    void runningFlagStopsWorkAndListenerRunsOnGuiThread() {
        Counter c;
        bool listenerOnGui = false;
        int calls = 0;
        c.prepareListener(true);
        c.enableListener(true);
        c.addListener([&]() {
            ++calls;
            listenerOnGui = QThread::currentThread() == QCoreApplication::instance()->thread();
        });
        tav::XThreadPool::start_global(&c, false);
        QVERIFY(c.isRunning());   // set before start_global returns
        QTRY_VERIFY(c.loops > 5);
        c.setRunning(false);
        QVERIFY(c.waitDone(5000));
        QVERIFY(!c.isActive());
        QTRY_COMPARE(calls, 1);
        QVERIFY(listenerOnGui);

        // A disabled listener is not called; the thread object can be run again.
        c.enableListener(false);
        const int before = c.loops;
        tav::XThreadPool::start_global(&c, false);
        QTRY_VERIFY(c.loops > before + 3);
        c.stopAndWait();
        QCoreApplication::processEvents();
        QCOMPARE(calls, 1);
    }

    void delayedCallsRunInOrderOnTheGuiThread() {
        QStringList order;
        tav::run_in_gui_thread([&]() { order << QStringLiteral("200"); }, 200);
        tav::run_in_gui_thread([&]() { order << QStringLiteral("0"); }, 0);
        tav::XThreadPool::start_global([&]() {
            tav::run_in_gui_thread([&]() { order << QStringLiteral("worker"); }, 50);
        });
        QTRY_COMPARE(order.size(), 3);
        QCOMPARE(order, (QStringList{"0", "worker", "200"}));
        QVERIFY(tav::XThreadPool::wait_for_all(5000));
    }

    void destroyingARunningThreadWaitsForIt() {
        auto* c = new Counter;
        tav::XThreadPool::start_global(c, false);
        QTRY_VERIFY(c->loops > 2);
        delete c;   // must stop and wait, not crash
        QVERIFY(tav::XThreadPool::wait_for_all(5000));
    }

    void runGuardAllowsOneInstanceAndTakesOverDeadLocks() {
        const QString key = QStringLiteral("tfTestGuard");
        {
            tav::XRunGuard first(key);
            QVERIFY(first.run_instance_of_program());
            tav::XRunGuard second(key);
            QVERIFY(!second.run_instance_of_program());
        }
        tav::XRunGuard third(key);
        QVERIFY(third.run_instance_of_program());   // released with the first
        const QString path = third.lockFilePath();
        QVERIFY(path.startsWith(env.runtimeDir()));

        // A lock left by a process that no longer exists is taken over.
        const QString key2 = QStringLiteral("tfTestGuardStale");
        QProcess p;
        p.start(QStringLiteral("/bin/true"), QStringList());
        QVERIFY(p.waitForStarted(5000));
        const qint64 deadPid = p.processId();
        QVERIFY(p.waitForFinished(5000));
        tav::XRunGuard probe(key2);
        QFile lock(probe.lockFilePath());
        QVERIFY(lock.open(QIODevice::WriteOnly));
        lock.write(QByteArray::number(deadPid) + "\ntrue\n" + QSysInfo::machineHostName().toUtf8() + "\n");
        lock.close();
        QVERIFY(probe.run_instance_of_program());
    }
};

QTEST_GUILESS_MAIN(TestThreads)
#include "test_threads.moc"
