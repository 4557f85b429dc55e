// Walks over folders the user may not open, run as a user without privileges:
// root opens every folder, so as root these commands are run as "nobody".
#include "common/TestEnv.h"

#include <QtTest>
#include <sys/stat.h>
#include <unistd.h>

namespace {
struct Run {
    bool finished = false;
    int code = -1;
    QStringList out;
    QString err;
};

constexpr uid_t kNobody = 65534;

void openUp(const QString& path, mode_t mode) { QVERIFY(::chmod(QFile::encodeName(path).constData(), mode) == 0); }
}

class TestUnprivileged : public QObject {
    Q_OBJECT
    tftest::TestDir d;
    QTemporaryDir home;      // configuration of the unprivileged runs, writable by that user
    QTemporaryDir binCopy;   // the programs, where the unprivileged user can reach them
    QString program;
    QStringList prefix;      // how a command is started without privileges

    Run run(const QStringList& args, bool display = false) {
        QProcess p;
        QProcessEnvironment e = QProcessEnvironment::systemEnvironment();
        for (const char* k : {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"}) e.insert(QLatin1String(k), home.path());
        e.insert(QStringLiteral("HOME"), home.path());
        e.remove(QStringLiteral("DISPLAY"));
        if (display) {
            e.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
            e.insert(QStringLiteral("TAV_AUTO_CLOSE_MS"), QStringLiteral("300"));
        } else {
            e.remove(QStringLiteral("QT_QPA_PLATFORM"));
        }
        p.setProcessEnvironment(e);
        p.setWorkingDirectory(home.path());
        QStringList all = prefix;
        all << program << args;
        p.start(all.takeFirst(), all);
        Run r;
        // A walk that loops for ever would hold the test here: a hang guard, not a timing.
        r.finished = p.waitForFinished(60000);
        if (!r.finished) {
            p.kill();
            p.waitForFinished();
            return r;
        }
        r.code = p.exitCode();
        r.out = QString::fromUtf8(p.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        r.err = QString::fromUtf8(p.readAllStandardError());
        return r;
    }

private slots:
    void initTestCase() {
        QVERIFY(d.isValid() && home.isValid() && binCopy.isValid());
        // Two unreadable folders side by side, one with a readable folder inside
        // that must stay unseen, and readable files around them.
        d.file(QStringLiteral("a/x.conf"), "needle\n");
        d.file(QStringLiteral("a/locked/y.conf"), "needle\n");
        d.file(QStringLiteral("a/locked/open/w.conf"), "needle\n");
        d.file(QStringLiteral("b/z.conf"), "needle needle\n");
        d.dir(QStringLiteral("b/locked2"));
        d.dir(QStringLiteral("c/noread"));
        d.file(QStringLiteral("c/noread/v.conf"), "needle\n");
        d.file(QStringLiteral("c/u.txt"), "needle\n");
        openUp(d.path(), 0755);
        openUp(d.abs(QStringLiteral("a/locked")), 0);
        openUp(d.abs(QStringLiteral("b/locked2")), 0);
        openUp(d.abs(QStringLiteral("c/noread")), 0311);   // may be passed through, not listed
        openUp(home.path(), 0777);

        program = tftest::TestEnv::programPath();
        if (::geteuid() != 0) return;   // the permissions hold for this user as they are
        // Root: every command runs as nobody. The build may sit where nobody
        // cannot reach it, so the programs are copied to a folder it can.
        openUp(binCopy.path(), 0755);
        for (const QString& name : {QStringLiteral("talvofinder"), QStringLiteral("talvofinder-app")}) {
            const QString from = QFileInfo(program).absolutePath() + QLatin1Char('/') + name;
            const QString to = binCopy.path() + QLatin1Char('/') + name;
            QVERIFY2(QFile::copy(from, to), qPrintable(from));
            openUp(to, 0755);
        }
        program = binCopy.path() + QStringLiteral("/talvofinder");
        prefix = QStringList{QStringLiteral("setpriv"), QStringLiteral("--reuid=%1").arg(kNobody),
                             QStringLiteral("--regid=%1").arg(kNobody), QStringLiteral("--clear-groups"), QStringLiteral("--")};
        // Unprivileged or not at all: a run that cannot drop root fails here, loudly.
        QProcess id;
        id.start(prefix.first(), prefix.mid(1) << QStringLiteral("id") << QStringLiteral("-u"));
        QVERIFY2(id.waitForFinished(10000) && id.exitCode() == 0,
                 "cannot run a command as nobody (setpriv, from util-linux): the unreadable-folder cases would not be tested");
        QCOMPARE(QString::fromLatin1(id.readAllStandardOutput()).trimmed(), QString::number(kNobody));
    }

    void cleanupTestCase() {
        // Let the temporary folders be removed.
        for (const char* rel : {"a/locked", "b/locked2", "c/noread"}) openUp(d.abs(QLatin1String(rel)), 0755);
    }

    // Listing, size bounds and content search each end, list what could be read
    // and name each folder that could not.
    void findSkipsAndNamesUnreadableFolders() {
        const QStringList readable{d.abs(QStringLiteral("a/x.conf")), d.abs(QStringLiteral("b/z.conf"))};
        const QStringList named{QStringLiteral("find: cannot read ") + d.abs(QStringLiteral("a/locked")),
                                QStringLiteral("find: cannot read ") + d.abs(QStringLiteral("b/locked2")),
                                QStringLiteral("find: cannot read ") + d.abs(QStringLiteral("c/noread"))};

        Run r = run({"find", "--dir", d.path(), "--pattern", "*.conf"});
        QVERIFY2(r.finished, "the walk did not end");
        QCOMPARE(r.code, 0);
        QCOMPARE(r.out, readable + QStringList{QStringLiteral("files: total:3, files match:2")});
        QCOMPARE(r.err.split(QLatin1Char('\n'), Qt::SkipEmptyParts), named);

        r = run({"find", "--dir", d.path(), "--minSize", "8"});   // every file is stat-ed
        QVERIFY2(r.finished, "the walk did not end");
        QCOMPARE(r.out, QStringList{d.abs(QStringLiteral("b/z.conf"))} + QStringList{QStringLiteral("files: total:3, files match:1")});

        r = run({"find", "--dir", d.path(), "--find", "needle"});
        QVERIFY2(r.finished, "the search did not end");
        QCOMPARE(r.code, 0);
        QCOMPARE(r.out.mid(0, 3), (QStringList{QStringLiteral("2\t") + d.abs(QStringLiteral("b/z.conf")),
                                               QStringLiteral("1\t") + d.abs(QStringLiteral("a/x.conf")),
                                               QStringLiteral("1\t") + d.abs(QStringLiteral("c/u.txt"))}));
        QVERIFY2(r.out.value(3).startsWith(QStringLiteral("files-total:3 => ")), qPrintable(r.out.join('\n')));
        QCOMPARE(r.err.split(QLatin1Char('\n'), Qt::SkipEmptyParts), named);

        // The folder itself unreadable: nothing found, nothing hangs.
        r = run({"find", "--dir", d.abs(QStringLiteral("a/locked")), "--find", "needle"});
        QVERIFY2(r.finished, "the search did not end");
        QCOMPARE(r.code, 1);
    }

    // The developer scan and the windowed searches walk the same way.
    void scanAndWindowSearchesEnd() {
        Run r = run({"dirInfo", "--open", d.path()}, true);
        QVERIFY2(r.finished, "dirInfo did not end");
        QCOMPARE(r.code, 0);
        QVERIFY2(r.err.contains(QStringLiteral("files:3, bytes:28, filtered:3, unreadable:3")), qPrintable(r.err));
        QCOMPARE(r.err.count(QStringLiteral("XDirInfo::scan_dir, cannot read")), 3);

        r = run({"result_full_Window", "--open", d.path(), "--find", "needle"}, true);
        QVERIFY2(r.finished, "the window's content search did not end");
        QVERIFY2(r.err.contains(QStringLiteral("'needle', 3 file hits, total hits:4")), qPrintable(r.err));

        r = run({"result_scan_Window", "--dir", d.path(), "--sPattern", "*.conf"}, true);
        QVERIFY2(r.finished, "the window's scan did not end");
        QVERIFY2(r.err.contains(QStringLiteral("auto-close:")), qPrintable(r.err));
    }
};

QTEST_GUILESS_MAIN(TestUnprivileged)
#include "test_unprivileged.moc"
