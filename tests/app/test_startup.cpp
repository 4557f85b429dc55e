#include "base/env/Env.h"
#include "base/io/XPaths.h"
#include "base/kernel/CommandRegistry.h"
#include "base/kernel/Kernel.h"
#include "common/TestEnv.h"
#include "src/FindApplication.h"

#include <QtTest>

class TestStartup : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

    static QString exe() { return tftest::TestEnv::programPath(); }
    QProcessEnvironment procEnv() const { return env.processEnvironment(true); }

private slots:
    void initTestCase() {
        // The started programs must not wait in the first-run message.
        env.markFirstRunDone();
    }

    void environmentIsPrepared() {
        tav::setEnv(QStringLiteral("TAV_WINDOWS_DEVELOP"), QString());
        tavFinder::set_env_variables();
        QCOMPARE(tav::getEnv(QStringLiteral("TAVFINDER_VERSION")), QStringLiteral("1.00.16"));
        QCOMPARE(tav::getEnv(QStringLiteral("OS")), QStringLiteral("LINUX"));
        QCOMPARE(tav::getEnv(QStringLiteral("QT_PLUGIN_PATH")), tav::get_exe_path(false) + QStringLiteral("/plugins"));
        QCOMPARE(QDir::currentPath(), tav::get_exe_path(false));
        QCOMPARE(tav::getEnv(QStringLiteral("BUILD_DATE")).size(), 11);   // "Sep 25 2022"
        tav::setEnv(QStringLiteral("TAV_WINDOWS_DEVELOP"), QStringLiteral("1"));
        tav::setEnv(QStringLiteral("QT_PLUGIN_PATH"), QStringLiteral("/keep/me"));
        tavFinder::set_env_variables();
        QCOMPARE(tav::getEnv(QStringLiteral("QT_PLUGIN_PATH")), QStringLiteral("/keep/me"));
        tav::unsetEnv(QStringLiteral("TAV_WINDOWS_DEVELOP"));
    }

    void placeholdersGiveWayToRealCommands() {
        tav::registerPendingCommand(QStringLiteral("tf.test.cmd"), QString());
        tav::Kernel k(QStringLiteral("e"), QStringLiteral("tf.test.cmd"), {});
        QCOMPARE(tav::CommandRegistry::find(QStringLiteral("tf.test.cmd"))->run(k), 2);
        tav::TestContextAdder real([](tav::Kernel&) { return 7; }, QStringLiteral("tf.test.cmd"), QString(), false);
        tav::registerPendingCommand(QStringLiteral("tf.test.cmd"), QString());   // too late to replace it
        QCOMPARE(tav::CommandRegistry::find(QStringLiteral("tf.test.cmd"))->run(k), 7);
        QVERIFY(tav::CommandRegistry::find(QStringLiteral("app")) != nullptr);
    }

    void unknownCommandIsRefused() {
        QProcess p;
        p.setProcessEnvironment(procEnv());
        p.start(exe(), {QStringLiteral("no.such.command")});
        QVERIFY(p.waitForFinished(20000));
        QCOMPARE(p.exitCode(), 2);
        QVERIFY(p.readAllStandardError().contains("unknown command 'no.such.command'"));
    }

    void secondInstanceEndsAtOnce() {
        QProcess first;
        first.setProcessEnvironment(procEnv());
        first.start(exe(), QStringList());
        QVERIFY(first.waitForStarted(10000));
        const QString lock = env.runtimeDir() + QStringLiteral("/tavFind.lock");
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(lock), 20000);

        QProcess second;
        second.setProcessEnvironment(procEnv());
        QElapsedTimer t;
        t.start();
        second.start(exe(), QStringList());
        QVERIFY(second.waitForFinished(20000));
        QCOMPARE(second.exitStatus(), QProcess::NormalExit);
        QCOMPARE(second.exitCode(), 0);
        QVERIFY(second.readAllStandardError().contains("ONE-INSTANCE-ONLY!"));
        QCOMPARE(first.state(), QProcess::Running);

        first.terminate();
        if (!first.waitForFinished(5000)) {
            first.kill();
            first.waitForFinished(5000);
        }
    }

    void badCommandLineEndsWithOne() {
        QProcess p;
        p.setProcessEnvironment(procEnv());
        p.start(exe(), {QStringLiteral("app"), QStringLiteral("--fiel"), QStringLiteral("/tmp")});
        QVERIFY(p.waitForFinished(20000));
        QCOMPARE(p.exitCode(), 1);
        QVERIFY(p.readAllStandardError().contains("Keys !"));
    }
};

QTEST_GUILESS_MAIN(TestStartup)
#include "test_startup.moc"
