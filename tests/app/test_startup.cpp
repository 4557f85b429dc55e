#include "base/env/Env.h"
#include "base/io/XFileIO.h"
#include "base/io/XPaths.h"
#include "base/kernel/CommandRegistry.h"
#include "base/kernel/Kernel.h"
#include "common/TestEnv.h"
#include "src/FindApplication.h"
#include "src/StartPath.h"

#include <QtTest>
#include <tuple>

namespace {
// Where the test was started: set_env_variables() changes the folder later.
const QString kStartDir = QDir::currentPath();
}

class TestStartup : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

    static QString exe() { return tftest::TestEnv::programPath(); }
    QProcessEnvironment procEnv() const { return env.processEnvironment(true); }
    static QString configText() {
        QFile f(tav::Kernel::nodeFilePath());
        return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
    }

private slots:
    void initTestCase() {
        // The started programs must not wait in the first-run message.
        env.markFirstRunDone();
    }

    void environmentIsPrepared() {
        const QString callerDir = QDir::currentPath();
        tav::setEnv(QStringLiteral("TAV_WINDOWS_DEVELOP"), QString());
        tavFinder::set_env_variables();
        QCOMPARE(tav::getEnv(QStringLiteral("TAVFINDER_VERSION")), QStringLiteral("1.00.16"));
        QCOMPARE(tav::getEnv(QStringLiteral("OS")), QStringLiteral("LINUX"));
        QCOMPARE(tav::getEnv(QStringLiteral("QT_PLUGIN_PATH")), tav::get_exe_path(false) + QStringLiteral("/plugins"));
        QCOMPARE(QDir::currentPath(), callerDir);   // the caller's folder stays the working folder
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
        QFile::remove(tav::Kernel::nodeFilePath());
        env.markFirstRunDone();
        QProcess first;
        QByteArray firstLog;
        connect(&first, &QProcess::readyReadStandardError, this, [&]() { firstLog += first.readAllStandardError(); });
        first.setProcessEnvironment(procEnv());
        first.start(exe(), {QStringLiteral("app"), QStringLiteral("--log"), QStringLiteral("4")});
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
        // The running one was asked to show its windows (they may be hidden or minimised).
        QTRY_VERIFY_WITH_TIMEOUT(firstLog.contains("FindApplication, show request"), 10000);
        // "talvofinder PATH" hands the path over: the running one opens a window there.
        QTemporaryDir there;
        QProcess third;
        third.setProcessEnvironment(procEnv());
        third.start(exe(), {there.path()});
        QVERIFY(third.waitForFinished(20000));
        QCOMPARE(third.exitCode(), 0);
        QVERIFY(third.readAllStandardError().contains("ONE-INSTANCE-ONLY!"));
        const QByteArray opened = "WinFinder::setUp, sSelectFile '" + QFile::encodeName(QDir::cleanPath(there.path())) + "'";
        QTRY_VERIFY_WITH_TIMEOUT(firstLog.contains(opened), 10000);

        // SIGTERM (log-out, shutdown, kill) quits through the normal path: the
        // settings and the window's state are written, the exit is clean.
        QVERIFY(!configText().contains("<Config"));
        first.terminate();
        QVERIFY(first.waitForFinished(20000));
        QCOMPARE(first.exitStatus(), QProcess::NormalExit);
        QCOMPARE(first.exitCode(), 0);
        QVERIFY(firstLog.contains("XQuitSignals, signal 15: quitting"));
        const QString saved = configText();
        QVERIFY(saved.contains("<Config"));
        QVERIFY(saved.contains("<XTreeView"));
        QVERIFY(!QFile::exists(lock));
    }

    void callerFolderAndLogLevel() {
        // A relative path on the command line is the caller's; "--log 4" shows the trace.
        QTemporaryDir caller;
        QVERIFY(QDir(caller.path()).mkpath(QStringLiteral("sub")));
        QProcessEnvironment e = procEnv();
        e.insert(QStringLiteral("TAV_AUTO_CLOSE_MS"), QStringLiteral("800"));
        auto run = [&](const QStringList& args, const QProcessEnvironment& env) {
            QProcess p;
            p.setProcessEnvironment(env);
            p.setWorkingDirectory(caller.path());
            p.start(exe(), args);
            p.waitForFinished(30000);
            return std::make_pair(p.exitCode(), QString::fromLocal8Bit(p.readAllStandardError()));
        };
        const QString line = QStringLiteral("FindApplication::tavFind <<<%1/sub>>>").arg(QFileInfo(caller.path()).canonicalFilePath());
        auto [code, err] = run({QStringLiteral("app"), QStringLiteral("--file"), QStringLiteral("sub"), QStringLiteral("--log"), QStringLiteral("4")}, e);
        QCOMPARE(code, 0);
        QVERIFY2(err.contains(line), qPrintable(err.left(2000)));
        // The same from the environment; without either, the trace stays off.
        QProcessEnvironment withEnv = e;
        withEnv.insert(QStringLiteral("TAV_LOG"), QStringLiteral("4"));
        std::tie(code, err) = run({QStringLiteral("app"), QStringLiteral("--file"), QStringLiteral("sub")}, withEnv);
        QCOMPARE(code, 0);
        QVERIFY(err.contains(line));
        std::tie(code, err) = run({QStringLiteral("app"), QStringLiteral("--file"), QStringLiteral("sub")}, e);
        QCOMPARE(code, 0);
        QVERIFY(!err.contains(QStringLiteral("FindApplication::tavFind <<<")));
        // A level that is none is refused before anything starts.
        std::tie(code, err) = run({QStringLiteral("app"), QStringLiteral("--log"), QStringLiteral("9")}, e);
        QCOMPARE(code, 2);
        QVERIFY(err.contains(QStringLiteral("--log needs a level from 0")));
        std::tie(code, err) = run({QStringLiteral("find"), QStringLiteral("--log")}, e);
        QCOMPARE(code, 2);
    }

    void damagedConfigurationIsToldInTheWindow() {
        const QString path = tav::Kernel::nodeFilePath();
        QVERIFY(tav::writeFileAtomic(path, "<TalvoEngine><Applicat"));
        QProcessEnvironment e = procEnv();
        e.insert(QStringLiteral("TAV_AUTO_CLOSE_MS"), QStringLiteral("800"));
        QProcess p;
        p.setProcessEnvironment(e);
        p.start(exe(), {QStringLiteral("app"), QStringLiteral("--log"), QStringLiteral("4")});
        QVERIFY(p.waitForFinished(30000));
        QCOMPARE(p.exitCode(), 0);
        const QString err = QString::fromLocal8Bit(p.readAllStandardError());
        // The window says which file and where its copy is.
        QVERIFY2(err.contains(QStringLiteral("WinFinder::show_notice, The file ") + path + QStringLiteral(" was damaged")), qPrintable(err.left(3000)));
        QVERIFY(err.contains(QStringLiteral(".bad.")));
        QVERIFY(err.contains(QStringLiteral("FindApplication::tavFind, configuration damaged")));
        env.markFirstRunDone();
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
