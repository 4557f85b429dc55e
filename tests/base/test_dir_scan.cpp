#include "base/dir/XDirInfo.h"
#include "base/dir/XIgnore.h"
#include "base/io/XLineReaderDA.h"
#include "base/io/XPaths.h"
#include "base/thread/XThread.h"
#include "common/TestEnv.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QTextCodec>
#include <atomic>
#include <QtTest>
#include <mutex>
#include <linux/capability.h>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {
QStringList relNames(const tav::XDirInfo& di, const QString& root) {
    QStringList out;
    for (QFileInfo* fi : di.ar_filtered_files) out << fi->absoluteFilePath().mid(root.size() + 1);
    return out;
}

// As root, permission bits do not stop reading; drop the capabilities that
// bypass them (threads started later inherit the reduced set).
void dropPermissionBypass() {
    if (::geteuid() != 0) return;
    __user_cap_header_struct hdr{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct data[2] = {};
    if (syscall(SYS_capget, &hdr, data) != 0) return;
    for (int cap : {CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH}) {
        data[cap / 32].effective &= ~(1u << (cap % 32));
        data[cap / 32].permitted &= ~(1u << (cap % 32));
    }
    syscall(SYS_capset, &hdr, data);
}

QString genTree() { return qEnvironmentVariable("TF_TEST_SOURCE_DIR") + QStringLiteral("/bench/gen_tree.py"); }
}

class TestDirScan : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

private slots:
    void initTestCase() { dropPermissionBypass(); }

    void walksWithoutLinksSpecialFilesOrHiddenEntries() {
        tftest::TestDir d;
        d.file(QStringLiteral("a.txt"), "1");
        d.file(QStringLiteral("sub/b.cpp"), "22");
        d.file(QStringLiteral("sub/deeper/c.txt"), "333");
        d.file(QStringLiteral(".hidden.txt"), "4444");
        d.file(QStringLiteral(".hiddir/d.txt"), "55555");
        d.file(QStringLiteral("node_modules/pkg/e.txt"), "666666");
        d.file(QStringLiteral("sub/node_modules.txt"), "7777777");   // a file of that name is excluded too
        QVERIFY(QFile::link(d.abs(QStringLiteral("sub")), d.abs(QStringLiteral("sub/deeper/loop"))));   // loop
        QVERIFY(QFile::link(d.abs(QStringLiteral("a.txt")), d.abs(QStringLiteral("link.txt"))));
        QCOMPARE(::mkfifo(QFile::encodeName(d.abs(QStringLiteral("pipe.txt"))).constData(), 0600), 0);

        tav::XDirInfo di;
        QVERIFY(di.scan_dir(d.path()));
        di.setup_filtered_files(tav::XFileFilter(), true);
        QCOMPARE(relNames(di, d.path()), (QStringList{"a.txt", "node_modules/pkg/e.txt", "sub/b.cpp", "sub/deeper/c.txt",
                                                      "sub/node_modules.txt"}));
        QCOMPARE(di.countFiles.load(), 5u);
        QCOMPARE(di.countDirs.load(), 5u);   // the folder itself, sub, deeper, node_modules, pkg
        QCOMPARE(di.countBytes.load(), 0u);   // nothing needed a stat

        // Hidden entries with the switch; excluded names prune whole folders.
        tav::XFileFilter f;
        f.setPattern(QStringLiteral("node_modules*"), true);
        di.flagHiddenFiles = true;
        QVERIFY(di.scan_dir(d.path(), &f));
        const tav::XFindStats st = di.setup_filtered_files(f, true);
        QCOMPARE(relNames(di, d.path()), (QStringList{".hidden.txt", ".hiddir/d.txt", "a.txt", "sub/b.cpp", "sub/deeper/c.txt"}));
        QCOMPARE(di.countDirs.load(), 4u);
        QCOMPARE(st.countFiles.load(), 6u);   // node_modules.txt was seen, then filtered
        QCOMPARE(st.countMatch.load(), 5u);
        QCOMPARE(di.get_view_filtered_files().size(), size_t(5));
        QVERIFY(di.get_view_filtered_files().toString().startsWith(QStringLiteral("[5] {0x")));

        // A size bound makes the scan stat what it needs.
        f.sizeArea = tav::XFileFilter::GREATER_EQUAL;
        f.size1 = 2;
        QVERIFY(di.scan_dir(d.path(), &f));
        QCOMPARE(di.countBytes.load(), 1u + 2 + 3 + 4 + 5 + 7);
        di.setup_filtered_files(f, true);
        QCOMPARE(relNames(di, d.path()), (QStringList{".hidden.txt", ".hiddir/d.txt", "sub/b.cpp", "sub/deeper/c.txt"}));

        // A copy owns its list; the original's pointers stay where they were.
        const tav::XDirInfo copy(di);
        QCOMPARE(relNames(copy, d.path()), relNames(di, d.path()));
        QVERIFY(copy.ar_filtered_files.front() != di.ar_filtered_files.front());
        // The pointers of the previous list survive one more setup (a search may still use them).
        QFileInfo* old = di.ar_filtered_files.front();
        di.setup_filtered_files(tav::XFileFilter(), true);
        QCOMPARE(old->fileName(), QStringLiteral(".hidden.txt"));

        // One folder, flat: folders first.
        const auto flat = tav::XDirInfo::get_flat_directory_info(d.path(), false);
        QStringList names;
        for (const QFileInfo& fi : flat) names << fi.fileName();
        QCOMPARE(names.mid(0, 2), (QStringList{"node_modules", "sub"}));
        QVERIFY(names.contains(QStringLiteral("a.txt")) && !names.contains(QStringLiteral(".hidden.txt")));

        QVERIFY(!di.scan_dir(d.abs(QStringLiteral("missing"))));
        QCOMPARE(di.countFiles.load(), 0u);
    }

    // Unreadable folders beside and below readable ones with subfolders: each is
    // skipped once, counted and named, and the walk ends.
    void unreadableFolderIsLoggedAndSkipped() {
        tftest::TestDir d;
        d.file(QStringLiteral("ok/a.txt"), "a");
        d.file(QStringLiteral("ok/s1/c.txt"), "c");
        d.file(QStringLiteral("ok/s2/locked3/f.txt"), "f");
        d.file(QStringLiteral("locked/b.txt"), "b");
        d.file(QStringLiteral("locked2/sub/e.txt"), "e");
        const QStringList lockedRel{QStringLiteral("locked"), QStringLiteral("locked2"), QStringLiteral("ok/s2/locked3")};
        for (const QString& rel : lockedRel) QCOMPARE(::chmod(QFile::encodeName(d.abs(rel)).constData(), 0), 0);
        tftest::LogCapture logs;
        tav::XDirInfo di;
        const bool ok = di.scan_dir(d.path());
        auto unlock = [&] {
            for (const QString& rel : lockedRel) ::chmod(QFile::encodeName(d.abs(rel)).constData(), 0755);
        };
        if (::geteuid() == 0 && di.countFiles.load() == 5) {
            unlock();
            QSKIP("permissions are not enforced for this process");
        }
        QVERIFY(ok);   // the folder itself was read
        QCOMPARE(di.countFiles.load(), 2u);
        QCOMPARE(di.countUnreadableDirs.load(), 3u);
        QStringList want;
        for (const QString& rel : lockedRel) want << d.abs(rel);
        want.sort();
        QCOMPARE(di.unreadableDirs(), want);
        QCOMPARE(logs.linesAtLevel(32).filter(QStringLiteral("XDirInfo::scan_dir, cannot read")).size(), 3);
        // A fed scan sees the same.
        std::atomic<int> fed{0};   // the walkers feed at once
        tav::XFileFilter all;
        QVERIFY(di.scan_dir_feed(d.path(), all, [&](const std::vector<QFileInfo*>& f, const std::vector<int64_t>&) { fed += int(f.size()); }));
        unlock();
        QCOMPARE(fed, 2);
        QCOMPARE(di.countUnreadableDirs.load(), 3u);
    }

    // Paths longer than the system's limit are walked, and their files opened.
    void foldersPastThePathLimitAreWalked() {
        tftest::TestDir d;
        const int levels = 2500;   // "/dd" each: 7,500 bytes below the test folder
        int fd = ::open(QFile::encodeName(d.path()).constData(), O_RDONLY | O_DIRECTORY);
        QVERIFY(fd >= 0);
        for (int i = 0; i < levels; ++i) {
            QCOMPARE(::mkdirat(fd, "dd", 0755), 0);
            const int next = ::openat(fd, "dd", O_RDONLY | O_DIRECTORY);
            ::close(fd);
            QVERIFY(next >= 0);
            fd = next;
            if (i == levels / 2) {   // one file half-way, one at the bottom
                const int f = ::openat(fd, "half.txt", O_WRONLY | O_CREAT, 0644);
                QVERIFY(f >= 0);
                ::close(f);
            }
        }
        const int f = ::openat(fd, "deep.txt", O_WRONLY | O_CREAT, 0644);
        QVERIFY(f >= 0);
        QCOMPARE(::write(f, "the needle\n", 11), ssize_t(11));
        ::close(f);
        ::close(fd);

        tav::XDirInfo di;
        QVERIFY(di.scan_dir(d.path()));
        QCOMPARE(di.countFiles.load(), 2u);
        QCOMPARE(di.countDirs.load(), uint32_t(levels + 1));
        QCOMPARE(di.countUnreadableDirs.load(), 0u);
        di.setup_filtered_files(tav::XFileFilter(), true);
        QCOMPARE(di.ar_filtered_files.size(), size_t(2));
        const QString deep = di.ar_filtered_files[0]->absoluteFilePath();
        QVERIFY(deep.endsWith(QStringLiteral("/dd/deep.txt")));
        QVERIFY(deep.size() > PATH_MAX);
        tav::XLineReaderDA reader;
        QVERIFY(reader.openFile(deep, 0, false));
        QCOMPARE(reader.getMemorySize(), uint64_t(11));
        QCOMPARE(reader.lineAt(0), QStringLiteral("the needle"));

        // QTemporaryDir cannot remove what it cannot name.
        QProcess::execute(QStringLiteral("rm"), {QStringLiteral("-rf"), d.abs(QStringLiteral("dd"))});
    }

    void stopFlagEndsAScanAndIsClearedByTheNext() {
        tftest::TestDir d;
        for (int i = 0; i < 3000; ++i) {
            d.file(QStringLiteral("d%1/f.txt").arg(i), "x");
            d.file(QStringLiteral("d%1/g.cpp").arg(i), "yy");
        }
        tav::XDirInfo di;
        di.flagStop = true;   // left over from an earlier cancel
        QVERIFY(di.scan_dir(d.path()));
        QCOMPARE(di.countFiles.load(), 6000u);
        // A long list is filtered in parts; the result is whole and sorted.
        tav::XFileFilter cpp;
        cpp.setPattern(QStringLiteral("*.cpp"), false);
        cpp.sizeArea = tav::XFileFilter::EQUAL;
        cpp.size1 = 2;
        QCOMPARE(di.setup_filtered_files(cpp, true).countMatch.load(), 3000u);
        QStringList names = relNames(di, d.path());
        QVERIFY(std::is_sorted(names.begin(), names.end()));
        QCOMPARE(names.filter(QStringLiteral("g.cpp")).size(), 3000);
        QCOMPARE(names.removeDuplicates(), 0);

        // Stop as soon as the counters move; a busy machine may finish first, so try a few times.
        int stopped = 0;
        for (int attempt = 0; attempt < 20 && stopped == 0; ++attempt) {
            std::atomic<bool> result{true};
            std::atomic<bool> finished{false};
            di.clear();   // counters back to 0, so their first move shows the scan has begun
            tav::XThreadPool::start_global([&]() {
                result = di.scan_dir(d.path());
                finished = true;
            });
            while (di.countFiles.load() == 0 && !finished) QThread::yieldCurrentThread();
            di.flagStop = true;
            QTRY_VERIFY(finished.load());
            if (!result.load()) {
                ++stopped;
                QVERIFY(di.countFiles.load() < 6000u);
            }
        }
        QVERIFY(stopped > 0);
    }

    void generatedTreeMatchesItsManifest() {
        if (QStandardPaths::findExecutable(QStringLiteral("python3")).isEmpty()) QSKIP("python3 missing");
        tftest::TestDir d;
        QProcess gen;
        gen.start(QStringLiteral("python3"), {genTree(), d.path(), QStringLiteral("--files"), QStringLiteral("1500"),
                                              QStringLiteral("--big-mb"), QStringLiteral("1")});
        QVERIFY(gen.waitForFinished(120000));
        QCOMPARE(gen.exitCode(), 0);
        QFile mf(d.abs(QStringLiteral("manifest.json")));
        QVERIFY(mf.open(QIODevice::ReadOnly));
        const QJsonObject m = QJsonDocument::fromJson(mf.readAll()).object();

        tav::XDirInfo di;
        di.flagHiddenFiles = true;
        di.flagStatFiles = true;
        QVERIFY(di.scan_dir(d.abs(QStringLiteral("tree"))));   // has a symbolic link loop
        QCOMPARE(qint64(di.countFiles.load()), m.value(QStringLiteral("files")).toVariant().toLongLong());
        QCOMPARE(qint64(di.countDirs.load()), m.value(QStringLiteral("dirs")).toVariant().toLongLong());
        QCOMPARE(qint64(di.countBytes.load()), m.value(QStringLiteral("bytes")).toVariant().toLongLong());

        tav::XFileFilter text;
        for (const char* e : {"txt", "cpp", "h", "md", "log", "py", "json", "csv"}) text.textFileExtensions.insert(QString::fromLatin1(e));
        QCOMPARE(qint64(di.setup_filtered_files(text, false).countMatch.load()), m.value(QStringLiteral("text_files")).toVariant().toLongLong());
        tav::XFileFilter big;
        big.sizeArea = tav::XFileFilter::GREATER_EQUAL;
        big.size1 = 10241;
        QCOMPARE(qint64(di.setup_filtered_files(big, false).countMatch.load()), m.value(QStringLiteral("size_gt_10k")).toVariant().toLongLong());
        tav::XFileFilter bin;
        bin.setPattern(QStringLiteral("*.bin,*.png,*.o"), false);
        QCOMPARE(qint64(di.setup_filtered_files(bin, false).countMatch.load()), m.value(QStringLiteral("bin_files")).toVariant().toLongLong());

        // Fed by folders while the walk goes on: the same files as the list, sizes
        // only where a bound made the walk stat them, from walkers running at once.
        const QString root = d.abs(QStringLiteral("tree"));
        tav::XDirInfo fed;
        fed.flagHiddenFiles = true;
        for (const tav::XFileFilter* f : {&text, &big, &bin}) {
            std::mutex m;
            QStringList paths;
            std::vector<int64_t> sizes;
            QVERIFY(fed.scan_dir_feed(root, *f, [&](const std::vector<QFileInfo*>& files, const std::vector<int64_t>& s) {
                std::lock_guard<std::mutex> l(m);
                QCOMPARE(s.size(), files.size());
                for (QFileInfo* fi : files) paths << fi->absoluteFilePath();
                sizes.insert(sizes.end(), s.begin(), s.end());
            }));
            QVERIFY(fed.ar_filtered_files.empty());
            di.setup_filtered_files(*f, false);
            QStringList listed;
            for (QFileInfo* fi : di.ar_filtered_files) listed << fi->absoluteFilePath();
            paths.sort();
            listed.sort();
            QCOMPARE(paths, listed);
            const bool bound = f == &big;
            for (int64_t s : sizes) QVERIFY(bound ? s >= 10241 : s == -1);
        }
    }

    void ignoreFilesAsGitReadsThem() {
        if (QStandardPaths::findExecutable(QStringLiteral("git")).isEmpty()) QSKIP("git missing");
        tftest::TestDir d;
        const QString repo = d.dir(QStringLiteral("repo"));
        QProcess git;
        git.setWorkingDirectory(repo);
        git.start(QStringLiteral("git"), {QStringLiteral("init"), QStringLiteral("-q"), QStringLiteral(".")});
        QVERIFY(git.waitForFinished(30000) && git.exitCode() == 0);
        // Nested ignore files with every rule: comments, negation, folders only, anchors, classes, '**', escapes.
        d.file(QStringLiteral("repo/.gitignore"),
               "# comment\n\nbuild/\n*.log\n!keep.log\n/top.txt\ndocs/**/secret*\n[abc]?.tmp\n\\#hash\nsub/**/x/\n"
               "trail.txt   \n**/gen\nsp\\ ace.txt\\ \n");
        d.file(QStringLiteral("repo/src/.gitignore"), "*.o\n!important.o\n/local.txt\n");
        d.file(QStringLiteral("repo/.git/info/exclude"), "excl.txt\n");
        const QStringList files{"a.txt", "top.txt", "src/top.txt", "src/m.o", "src/important.o", "src/local.txt", "src/x/local.txt",
                                "src/build/z.c", "logs/a.log", "logs/keep.log", "docs/a/b/secret1", "docs/secret2", "docs/a/open",
                                "a1.tmp", "d1.tmp", "#hash", "sub/ok.txt", "sub/deep/x/q.txt", "sub/x/r.txt", "excl.txt", "deep/excl.txt",
                                "trail.txt", "gen/g.c", "a/b/gen/h.c", "sp ace.txt ", "sp ace.txt"};
        for (const QString& f : files) d.file(QStringLiteral("repo/") + f, "x");
        // What git says is ignored, for each file.
        git.start(QStringLiteral("git"), QStringList{QStringLiteral("check-ignore"), QStringLiteral("--no-index")} + files);
        QVERIFY(git.waitForFinished(30000));
        QStringList ignoredByGit = QString::fromUtf8(git.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
        QStringList expected;
        for (const QString& f : files)
            if (!ignoredByGit.contains(f)) expected << f;
        expected << ".gitignore" << "src/.gitignore";
        expected.sort();

        const auto listed = [&](const QString& folder) {
            tav::XDirInfo scan;
            scan.flagHiddenFiles = true;
            scan.flagIgnoreFiles = true;
            scan.scan_dir(folder);
            scan.setup_filtered_files(tav::XFileFilter(), true);
            QStringList out;
            for (QFileInfo* fi : scan.ar_filtered_files) out << QDir(repo).relativeFilePath(fi->absoluteFilePath());
            out.sort();
            return out;
        };
        QCOMPARE(listed(repo), expected);
        QVERIFY(expected.contains("logs/keep.log") && expected.contains("src/important.o") && !expected.contains("src/m.o"));
        // A search below the root still obeys the rules of the folders above it.
        QStringList inSrc;
        for (const QString& f : expected)
            if (f.startsWith("src/")) inSrc << f;
        QCOMPARE(listed(d.abs("repo/src")), inSrc);
        // Wildcards as git matches them, and a hostile pattern that would backtrack for ever in a
        // naive matcher ends at once (the fuzzer found it).
        const auto glob = [](const char* pattern, const char* text) {
            return tav::XIgnoreRules::globMatch(pattern, pattern + std::strlen(pattern), text, text + std::strlen(text));
        };
        QVERIFY(glob("a/**/b", "a/b") && glob("a/**/b", "a/x/y/b") && !glob("a/**/b", "a/xb"));
        QVERIFY(glob("**/gen", "gen") && glob("**/gen", "x/y/gen") && glob("x/**", "x/y/z") && !glob("x/**", "x"));
        QVERIFY(glob("*.c", "m.c") && !glob("*.c", "d/m.c") && glob("a**b", "axxb") && !glob("a**b", "a/b"));
        QVERIFY(glob("[a-c]?.t", "b1.t") && !glob("[!a-c]?.t", "b1.t") && glob("\\*x", "*x") && glob("[", "["));
        const std::string many = std::string(200, 'a');
        QVERIFY(!glob("*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*b", many.c_str()));
        QVERIFY(!glob("**a**a**a**a**a**a**a**a**a**a**a**a**b", (many + "/" + many).c_str()));
        std::string deep;
        for (int i = 0; i < 40; ++i) deep += "a/";
        std::string stars;
        for (int i = 0; i < 16; ++i) stars += "**/a/";
        QVERIFY(!glob((stars + "b").c_str(), (deep + "c").c_str()));
        QVERIFY(glob((stars + "c").c_str(), (deep + "c").c_str()) && glob("**/a/**/a/**/c", "x/a/y/a/z/c"));
        QVERIFY(!glob("**/a/**/a/**/c", "x/a/y/z/c"));

        // ".ignore" files are read as well (git does not read them).
        d.file(QStringLiteral("repo/sub/.ignore"), "ok.txt\n");
        QVERIFY(!listed(repo).contains("sub/ok.txt"));
        // Off: everything but the repository's own folder is there.
        tav::XDirInfo all;
        all.flagHiddenFiles = true;
        all.scan_dir(repo);
        all.setup_filtered_files(tav::XFileFilter(), true);
        QVERIFY(all.ar_filtered_files.size() > size_t(files.size()));
    }

    void namesThatAreNotUtf8AreFoundAndOpened() {
        // Every byte string comes back as it was, valid UTF-8 or not.
        for (const QByteArray& raw : {QByteArray("caf\xe9.txt"), QByteArray("\xff\xfe"), QByteArray("ok-\xc3\xa9"), QByteArray("\xed\xa0\x80"),
                                      QByteArray("\xc0\xaf"), QByteArray("\xf0\x9f\x98\x80 x"), QByteArray("\xe2\x82")}) {
            QCOMPARE(tav::encodePath(tav::decodePath(raw)), raw);
        }
        QCOMPARE(tav::decodePath(QByteArray("ok-\xc3\xa9")), QStringLiteral("ok-\u00e9"));
        // Qt names files through the locale's codec, made the same conversion; a text in pieces
        // (a stream) may cut a character or a pair between them and still comes out whole.
        tav::install_file_name_codec();
        QCOMPARE(QFile::encodeName(tav::decodePath(QByteArray("caf\xe9"))), QByteArray("caf\xe9"));
        QCOMPARE(QFile::decodeName(QByteArray("na\xefve")), tav::decodePath(QByteArray("na\xefve")));
        QTextCodec* codec = QTextCodec::codecForLocale();
        const QByteArray mixed("a\xc3\xa9\xe9\xf0\x9f\x98\x80z");
        for (int cut = 0; cut <= mixed.size(); ++cut) {
            QTextCodec::ConverterState in, out;
            QString text = codec->toUnicode(mixed.constData(), cut, &in);
            text += codec->toUnicode(mixed.constData() + cut, mixed.size() - cut, &in);
            QCOMPARE(text, tav::decodePath(mixed));
            const int at = cut % (text.size() + 1);
            QByteArray bytes = codec->fromUnicode(text.constData(), at, &out);
            bytes += codec->fromUnicode(text.constData() + at, text.size() - at, &out);
            QCOMPARE(bytes, mixed);
        }
        QVERIFY(QTextCodec::codecForName("UTF-8") != codec);   // text files still read as Qt reads them
        // A Latin-1 name in a folder: listed with its own bytes and opened by the line reader.
        tftest::TestDir d;
        const QByteArray name = QFile::encodeName(d.path()) + "/caf\xe9.txt";
        {
            const int fd = ::open(name.constData(), O_WRONLY | O_CREAT, 0644);
            QVERIFY(fd >= 0);
            QCOMPARE(::write(fd, "needle\n", 7), ssize_t(7));
            ::close(fd);
        }
        tav::XDirInfo scan;
        scan.scan_dir(d.path());
        scan.setup_filtered_files(tav::XFileFilter(), true);
        QCOMPARE(scan.ar_filtered_files.size(), size_t(1));
        const QString path = scan.ar_filtered_files[0]->absoluteFilePath();
        QCOMPARE(tav::encodePath(path), name);
        tav::XLineReaderDA reader;
        QVERIFY(reader.openFile(path, 0x10000, true));
        QCOMPARE(reader.getMemorySize(), 7u);
    }
};

QTEST_GUILESS_MAIN(TestDirScan)
#include "test_dir_scan.moc"
