#include "base/env/Env.h"
#include "base/io/XPaths.h"
#include "base/kernel/CommandRegistry.h"
#include "base/kernel/Kernel.h"
#include "common/TestEnv.h"
#include "src/FindApplication.h"
#include "src/StartPath.h"

#include <QtTest>

namespace {
// Where the test was started: set_env_variables() changes the folder later.
const QString kStartDir = QDir::currentPath();
}

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

    // A file manager's "Open with" passes a path where a command would be.
    void pathInPlaceOfCommandOpensTheFinderThere() {
        tftest::TestDir data;
        const QString dir = data.dir(QStringLiteral("open me"));
        const QString file = data.file(QStringLiteral("open me/a.txt"), "x");
        const QString p0 = QStringLiteral("talvofinder");
        using tavFinder::args_for_path;
        QCOMPARE(args_for_path({p0, dir}), (QStringList{p0, "app", "--dir", dir}));
        QCOMPARE(args_for_path({p0, file}), (QStringList{p0, "app", "--dir", file}));
        // Relative to where the program was started.
        const QString rel = QDir(kStartDir).relativeFilePath(dir);
        QCOMPARE(args_for_path({p0, rel}).value(3), dir);
        // A slash makes a path even when nothing is there, so "app" can say so.
        QCOMPARE(args_for_path({p0, "gone/x"}), (QStringList{p0, "app", "--dir", QDir(kStartDir).absoluteFilePath("gone/x")}));
        // Commands, keys and unknown words stay as they are.
        for (const QStringList& same : {QStringList{p0}, QStringList{p0, "find", "--dir", dir}, QStringList{p0, "--file", dir},
                                        QStringList{p0, "no.such.command"}})
            QCOMPARE(args_for_path(same), same);

        QProcessEnvironment e = procEnv();
        e.insert(QStringLiteral("TAV_AUTO_CLOSE_MS"), QStringLiteral("1500"));
        QProcess p;
        p.setProcessEnvironment(e);
        p.start(exe(), {dir});
        QVERIFY(p.waitForFinished(30000));
        const QByteArray err = p.readAllStandardError();
        QVERIFY2(p.exitCode() == 0, err.constData());
        QVERIFY2(err.contains("auto-close: tavFinder::WinFinder 'TF " + dir.toUtf8() + "'"), err.constData());

        const QString gone = data.abs(QStringLiteral("gone"));
        for (const QStringList& args : {QStringList{gone}, QStringList{"app", "--dir", gone}}) {
            p.start(exe(), args);
            QVERIFY(p.waitForFinished(30000));
            QCOMPARE(p.exitCode(), 2);
            QVERIFY(p.readAllStandardError().contains("'" + gone.toUtf8() + "' does not exist"));
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
