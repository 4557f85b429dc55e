#include "base/dir/XDirInfo.h"
#include "common/TestEnv.h"

#include "base/io/XLineReaderDA.h"
#include "base/util/Format.h"
#include "src/find/TavFind.h"
#include "src/find/ThreadControllerFind.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QElapsedTimer>
#include <atomic>
#include <QtTest>
#include <linux/capability.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

using tavFinder::FileResult;
using tavFinder::TavFind;

namespace {
// As root, permission bits do not stop reading; drop the capabilities that
// bypass them so that an unreadable file is unreadable here too.
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

// The list a search takes: pointers to file informations kept by the test.
std::vector<QFileInfo*> pointersTo(std::vector<QFileInfo>& infos) {
    std::vector<QFileInfo*> p;
    for (QFileInfo& fi : infos) p.push_back(&fi);
    return p;
}

tav::find::XContentFilter filterFor(const QString& text, bool regEx = false) {
    tav::find::XContentFilter f;
    f.createSymbols(text, regEx);
    return f;
}

// Runs a whole search and waits for the listener; returns "hits name" lines, sorted.
// With 'sizes' the files' sizes are given as a scan would give them.
// 'order' gets the names in the order the workers found them.
QStringList runSearch(TavFind& tf, std::vector<QFileInfo*> files, int* listenerCalls, std::vector<int64_t>* sizes = nullptr,
                      QStringList* order = nullptr) {
    if (sizes) tf.prepareFiles(files, *sizes);
    else tf.prepareFiles(files);
    tf.start_search();
    const int before = *listenerCalls;
    if (!QTest::qWaitFor([&]() { return *listenerCalls > before; }, 20000)) return {QStringLiteral("timeout")};
    QStringList out;
    for (const FileResult& r : tf.takeResults()) {
        out << QStringLiteral("%1 %2").arg(r.layer.size()).arg(r.fileInfo.fileName());
        if (order) *order << r.fileInfo.fileName();
    }
    // Taken once: a second take finds nothing new.
    if (!tf.takeResults().empty()) return {QStringLiteral("results taken twice")};
    out.sort();
    return out;
}
}

class TestFindSearch : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

private slots:
    void initTestCase() { dropPermissionBypass(); }

    void workersFindTheSameWhateverTheirNumber() {
        tftest::TestDir d;
        std::vector<QFileInfo> infos;
        QStringList expected;
        for (int i = 0; i < 40; ++i) {
            QByteArray text = "line without\n";
            for (int k = 0; k < i % 4; ++k) text += "a Needle here\n";
            infos.emplace_back(d.file(QStringLiteral("f%1.txt").arg(i, 2, 10, QLatin1Char('0')), text));
            if (i % 4) expected << QStringLiteral("%1 f%2.txt").arg(i % 4).arg(i, 2, 10, QLatin1Char('0'));
        }
        infos.emplace_back(d.file(QStringLiteral("empty.txt")));
        infos.emplace_back(d.file(QStringLiteral("empty-locked.txt")));
        infos.emplace_back(d.file(QStringLiteral("locked.txt"), "needle"));
        infos.emplace_back(d.dir(QStringLiteral("a-folder")));
        ::chmod(QFile::encodeName(d.abs(QStringLiteral("empty-locked.txt"))).constData(), 0);
        ::chmod(QFile::encodeName(d.abs(QStringLiteral("locked.txt"))).constData(), 0);
        const bool permissionsHold = ::access(QFile::encodeName(d.abs(QStringLiteral("locked.txt"))).constData(), R_OK) != 0;
        std::vector<QFileInfo*> files = pointersTo(infos);
        expected.sort();

        TavFind tf;
        int calls = 0;
        tf.addListener([&]() { ++calls; });
        tf.setContentFilter(filterFor(QStringLiteral("needle")));
        tftest::LogCapture logs;
        tf.maxThreads = 1;
        // One worker takes the files in input order.
        QStringList order;
        QCOMPARE(runSearch(tf, files, &calls, nullptr, &order), expected);
        QVERIFY(!order.isEmpty());
        QStringList sorted = order;
        sorted.sort();
        QCOMPARE(order, sorted);
        QVERIFY(logs.containsLine(QStringLiteral("TavFind2::prepareFiles, arTextFiles:44")));
        QVERIFY(logs.containsLine(QStringLiteral("ThreadControllerFind::ini, max_thread:1")));
        QVERIFY(logs.contains(QStringLiteral("FindThread::runCustom, IS NOT A FILE <<<") + d.abs(QStringLiteral("a-folder"))));
        if (permissionsHold) {
            // The unreadable file is reported; the empty one is counted but never opened.
            QCOMPARE(logs.linesAtLevel(4).filter(QStringLiteral("FindThread::runCustom, problems with")).size(), 1);
            QVERIFY(logs.contains(QStringLiteral("problems with <<<") + d.abs(QStringLiteral("locked.txt"))));
            // ... and counted and named for the summary; the folder is no unreadable file.
            QCOMPARE(tf.countUnreadableFiles(), uint64_t(1));
            QCOMPARE(tf.unreadableFiles(), QStringList{d.abs(QStringLiteral("locked.txt"))});
        } else {
            QWARN("permission bits do not hold here: the unreadable file is not tested");
        }
        const tav::XFindStats st = tf.workerStats();
        QCOMPARE(st.countFiles.load(), uint64_t(43));   // every regular file, empty ones included
        QCOMPARE(tf.countResults(), size_t(30));
        QCOMPARE(tf.countHits(), uint64_t(60));
        QCOMPARE(st.countMatch.load(), uint64_t(30));   // the workers' totals agree with the results
        QCOMPARE(st.countHits.load(), uint64_t(60));
        QCOMPARE(tf.getBytesRead(), uint64_t(st.countBytes.load()));
        QCOMPARE(st.countLines.load(), uint64_t(40 + 60));

        // Eight workers (more than some lists have files) give the same set.
        tf.maxThreads = 8;
        std::vector<QFileInfo*> again = pointersTo(infos);
        QCOMPARE(runSearch(tf, again, &calls), expected);
        QCOMPARE(tf.workerCount(), size_t(8));
        QCOMPARE(tf.workerStats().countFiles.load(), uint64_t(43));
        std::vector<QFileInfo*> three(again.begin(), again.begin() + 3);
        QCOMPARE(runSearch(tf, three, &calls), (QStringList{"1 f01.txt", "2 f02.txt"}));
        QCOMPARE(runSearch(tf, {}, &calls), QStringList());
        QCOMPARE(calls, 4);
        QVERIFY(!tf.isRunning());
        ::chmod(QFile::encodeName(d.abs(QStringLiteral("locked.txt"))).constData(), 0644);
        ::chmod(QFile::encodeName(d.abs(QStringLiteral("empty-locked.txt"))).constData(), 0644);
    }

    void generatedTreeMatchesItsManifest() {
        if (QStandardPaths::findExecutable(QStringLiteral("python3")).isEmpty()) QSKIP("python3 missing");
        tftest::TestDir d;
        QProcess gen;
        gen.start(QStringLiteral("python3"), {qEnvironmentVariable("TF_TEST_SOURCE_DIR") + QStringLiteral("/bench/gen_tree.py"), d.path(),
                                              QStringLiteral("--files"), QStringLiteral("1200"), QStringLiteral("--big-mb"), QStringLiteral("2")});
        QVERIFY(gen.waitForFinished(120000));
        QCOMPARE(gen.exitCode(), 0);
        QFile mf(d.abs(QStringLiteral("manifest.json")));
        QVERIFY(mf.open(QIODevice::ReadOnly));
        const QJsonObject m = QJsonDocument::fromJson(mf.readAll()).object();

        tav::XDirInfo scan;
        scan.flagHiddenFiles = true;
        scan.scan_dir(d.abs(QStringLiteral("tree")));
        scan.setup_filtered_files(tav::XFileFilter(), false);
        const std::vector<QFileInfo*> all = scan.ar_filtered_files;
        TavFind tf;
        tf.maxThreads = 3;
        int calls = 0;
        tf.addListener([&]() { ++calls; });
        for (const char* word : {"return", "ZQX_RARE_NEEDLE"}) {
            tf.setContentFilter(filterFor(QString::fromLatin1(word)));
            runSearch(tf, all, &calls);
            QCOMPARE(qint64(tf.countHits()), m.value(QStringLiteral("hits")).toObject().value(QLatin1String(word)).toVariant().toLongLong());
            QCOMPARE(qint64(tf.countResults()),
                     m.value(QStringLiteral("hitfiles")).toObject().value(QLatin1String(word)).toVariant().toLongLong());
        }
        QCOMPARE(qint64(tf.workerStats().countBytes.load()), m.value(QStringLiteral("bytes")).toVariant().toLongLong());
        QCOMPARE(qint64(tf.getBytesToRead()), m.value(QStringLiteral("bytes")).toVariant().toLongLong());
        for (int64_t s : scan.ar_filtered_sizes) QCOMPARE(s, int64_t(-1));   // this scan stat-ed nothing

        // The same with the sizes taken from a scan that stats every file.
        tav::XDirInfo statScan;
        statScan.flagHiddenFiles = true;
        statScan.flagStatFiles = true;
        statScan.scan_dir(d.abs(QStringLiteral("tree")));
        statScan.setup_filtered_files(tav::XFileFilter(), false);
        QCOMPARE(statScan.ar_filtered_sizes.size(), statScan.ar_filtered_files.size());
        for (const char* word : {"return", "ZQX_RARE_NEEDLE"}) {
            std::vector<int64_t> sizes = statScan.ar_filtered_sizes;
            tf.setContentFilter(filterFor(QString::fromLatin1(word)));
            runSearch(tf, statScan.ar_filtered_files, &calls, &sizes);
            QCOMPARE(qint64(tf.countHits()), m.value(QStringLiteral("hits")).toObject().value(QLatin1String(word)).toVariant().toLongLong());
            QCOMPARE(qint64(tf.countResults()),
                     m.value(QStringLiteral("hitfiles")).toObject().value(QLatin1String(word)).toVariant().toLongLong());
        }
        QCOMPARE(qint64(tf.workerStats().countBytes.load()), m.value(QStringLiteral("bytes")).toVariant().toLongLong());
        QCOMPARE(qint64(tf.workerStats().countFiles.load()), m.value(QStringLiteral("files")).toVariant().toLongLong());
        QCOMPARE(qint64(tf.getBytesToRead()), m.value(QStringLiteral("bytes")).toVariant().toLongLong());

        // The search running while the walk feeds it, the workers stat-ing the files.
        for (const char* word : {"return", "ZQX_RARE_NEEDLE"}) {
            tav::XDirInfo feedScan;
            feedScan.flagHiddenFiles = true;
            tf.setContentFilter(filterFor(QString::fromLatin1(word)));
            const int before = calls;
            tf.beginFeed();
            QVERIFY(tf.start_search());
            // Each folder's informations live until its files are searched, and the walk waits
            // while too many files are queued: the files alive at once stay far below the tree's.
            tf.maxQueued = 100;
            std::atomic<int64_t> live{0}, mostLive{0};
            std::atomic<size_t> biggestFolder{0};
            feedScan.scan_dir_feed_owned(d.abs(QStringLiteral("tree")), tav::XFileFilter(),
                                         [&](const std::vector<QFileInfo*>& files, const std::vector<int64_t>& sizes,
                                             std::shared_ptr<const void> owner) {
                                             const int64_t n = int64_t(files.size());
                                             biggestFolder = std::max(biggestFolder.load(), files.size());
                                             int64_t now = live += n;
                                             for (int64_t m = mostLive.load(); now > m && !mostLive.compare_exchange_weak(m, now);) {}
                                             std::shared_ptr<const void> counted(owner.get(), [owner, n, &live](const void*) { live -= n; });
                                             tf.feedFiles(files, sizes, std::move(counted));
                                         });
            tf.endFeed();
            QTRY_COMPARE_WITH_TIMEOUT(calls, before + 1, 20000);
            QTRY_COMPARE(live.load(), int64_t(0));
            QVERIFY2(mostLive.load() <= int64_t(tf.maxQueued + (tf.maxThreads + 8) * biggestFolder.load()),
                     qPrintable(QStringLiteral("%1 alive at once").arg(mostLive.load())));
            QVERIFY(mostLive.load() < m.value(QStringLiteral("files")).toVariant().toLongLong() / 2);
            QCOMPARE(qint64(tf.countHits()), m.value(QStringLiteral("hits")).toObject().value(QLatin1String(word)).toVariant().toLongLong());
            QCOMPARE(qint64(tf.countResults()),
                     m.value(QStringLiteral("hitfiles")).toObject().value(QLatin1String(word)).toVariant().toLongLong());
            QCOMPARE(qint64(tf.countTextFiles()), m.value(QStringLiteral("files")).toVariant().toLongLong());
            QCOMPARE(qint64(tf.workerStats().countFiles.load()), m.value(QStringLiteral("files")).toVariant().toLongLong());
            QCOMPARE(qint64(tf.getBytesToRead()), m.value(QStringLiteral("bytes")).toVariant().toLongLong());
        }
    }

    // Files fed while the search runs: workers wait for them, stat the ones of
    // unknown size through their descriptor, and a stop or the end of the feed
    // ends the waiting.
    void filesFedWhileTheSearchRuns() {
        tftest::TestDir d;
        std::vector<QFileInfo> first{QFileInfo(d.file(QStringLiteral("a.txt"), "one needle\n")),
                                     QFileInfo(d.file(QStringLiteral("b.txt"), "no hay\n"))};
        std::vector<QFileInfo> second{QFileInfo(d.file(QStringLiteral("c.txt"), "needle needle\n")),
                                      QFileInfo(d.file(QStringLiteral("empty.txt"), ""))};
        const QString fifo = d.abs(QStringLiteral("fifo.txt"));
        QCOMPARE(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
        second.emplace_back(fifo);
        second.emplace_back(d.dir(QStringLiteral("folder")));
        second.emplace_back(d.abs(QStringLiteral("vanished.txt")));

        TavFind tf;
        tf.maxThreads = 3;
        tf.setContentFilter(filterFor(QStringLiteral("needle")));
        int calls = 0;
        tf.addListener([&]() { ++calls; });
        tftest::LogCapture logs;
        tf.beginFeed();
        QVERIFY(tf.start_search());
        QTest::qWait(50);
        QVERIFY(tf.isRunning());   // nothing fed yet: the workers wait
        tf.feedFiles(pointersTo(first), {11, 7});
        QTest::qWait(50);
        QVERIFY(tf.isRunning());
        QCOMPARE(calls, 0);
        tf.feedFiles(pointersTo(second), {});   // sizes unknown
        tf.endFeed();
        QTRY_COMPARE(calls, 1);
        QStringList found;
        for (const FileResult& r : tf.takeResults()) found << QStringLiteral("%1 %2").arg(r.layer.size()).arg(r.fileInfo.fileName());
        found.sort();
        QCOMPARE(found, (QStringList{"1 a.txt", "2 c.txt"}));
        QCOMPARE(tf.countTextFiles(), size_t(7));
        QCOMPARE(tf.workerStats().countFiles.load(), uint64_t(4));   // the FIFO, the folder and the vanished file are not files
        QCOMPARE(tf.getBytesToRead(), uint64_t(11 + 7 + 14));
        for (const char* name : {"fifo.txt", "folder", "vanished.txt"})
            QVERIFY2(logs.contains(QStringLiteral("problems with <<<") + d.abs(QString::fromLatin1(name))), name);

        // Totals of many gigabytes do not wrap at 4 GiB (sizes as a scan reports them; nothing is read).
        {
            TavFind big;
            std::vector<QFileInfo> none{QFileInfo(d.abs(QStringLiteral("gone1"))), QFileInfo(d.abs(QStringLiteral("gone2")))};
            std::vector<QFileInfo*> files = pointersTo(none);
            std::vector<int64_t> sizes{int64_t(3) << 30, (int64_t(5) << 30) + 7};
            big.prepareFiles(files, sizes);
            QCOMPARE(big.getBytesToRead(), (uint64_t(8) << 30) + 7);
            QVERIFY(tav::formatBytes(big.getBytesToRead()).startsWith(QStringLiteral("8")));
        }

        // A stop ends workers that wait for a feed that never ends; so does the end of the object.
        tf.beginFeed();
        QVERIFY(tf.start_search());
        QTest::qWait(20);
        tf.stop_search();
        QTRY_COMPARE(calls, 2);
        QVERIFY(!tf.isRunning());
        {
            TavFind waiting;
            waiting.setContentFilter(filterFor(QStringLiteral("needle")));
            waiting.beginFeed();
            waiting.start_search();
            QTest::qWait(20);
        }
    }

    // Sizes a scan found are used as they are: nothing is stat-ed again, and no
    // read goes past them, whatever the file became in the meantime.
    void sizesFromTheScanBoundTheSearch() {
        tftest::TestDir d;
        std::vector<QFileInfo> infos;
        infos.emplace_back(d.file(QStringLiteral("plain.txt"), "a needle\n"));                  // 9 bytes
        infos.emplace_back(d.file(QStringLiteral("grown.txt"), "start\nlater a needle\n"));   // known as 6
        infos.emplace_back(d.file(QStringLiteral("was-empty.txt"), "needle"));                  // known as 0
        d.file(QStringLiteral("target.txt"), "needle");
        const QString link = d.abs(QStringLiteral("now-a-link.txt"));                           // a link put in a file's place
        QVERIFY(QFile::link(d.abs(QStringLiteral("target.txt")), link));
        infos.emplace_back(link);
        const QString fifo = d.abs(QStringLiteral("now-a-fifo.txt"));
        QCOMPARE(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
        infos.emplace_back(fifo);
        infos.emplace_back(d.dir(QStringLiteral("now-a-folder")));
        std::vector<QFileInfo*> files = pointersTo(infos);

        TavFind tf;
        int calls = 0;
        tf.addListener([&]() { ++calls; });
        tf.setContentFilter(filterFor(QStringLiteral("needle")));
        tftest::LogCapture logs;
        std::vector<int64_t> sizes{9, 6, 0, 6, 10, 4096};
        QCOMPARE(runSearch(tf, files, &calls, &sizes), QStringList{"1 plain.txt"});   // the FIFO did not block
        QVERIFY(sizes.empty());   // taken over
        QCOMPARE(tf.getBytesToRead(), uint64_t(9 + 6 + 6 + 10 + 4096));
        const tav::XFindStats st = tf.workerStats();
        QCOMPARE(st.countFiles.load(), uint64_t(6));
        QCOMPARE(st.countBytes.load(), uint64_t(9 + 6));
        for (const char* name : {"now-a-link.txt", "now-a-fifo.txt", "now-a-folder"})
            QVERIFY2(logs.contains(QStringLiteral("problems with <<<") + d.abs(QString::fromLatin1(name))), name);
        QVERIFY(!logs.contains(QStringLiteral("was-empty.txt")));   // never opened

        // Sizes that do not match the list one to one are ignored: files are stat-ed.
        std::vector<QFileInfo*> again = pointersTo(infos);
        std::vector<int64_t> wrong{1, 2};
        QCOMPARE(runSearch(tf, again, &calls, &wrong),
                 (QStringList{"1 grown.txt", "1 now-a-link.txt", "1 plain.txt", "1 was-empty.txt"}));
        QVERIFY(logs.contains(QStringLiteral("IS NOT A FILE <<<") + d.abs(QStringLiteral("now-a-folder"))));
    }

    void stopAndSecondStartEndTheSearch() {
        tftest::TestDir d;
        std::vector<QFileInfo> infos;
        const QByteArray text = QByteArray("hay ").repeated(2000) + "needle\n";
        for (int i = 0; i < 1500; ++i) infos.emplace_back(d.file(QStringLiteral("f%1.txt").arg(i), text));
        std::vector<QFileInfo*> files = pointersTo(infos);

        TavFind tf;
        tf.maxThreads = 1;
        tf.setContentFilter(filterFor(QStringLiteral("needle")));
        int calls = 0;
        tf.addListener([&]() { ++calls; });
        tftest::LogCapture logs;
        tf.stop_search();
        QVERIFY(logs.containsLine(QStringLiteral("TavFind::stop_search - not running")));
        std::vector<QFileInfo*> copy = files;
        tf.prepareFiles(copy);
        QVERIFY(copy.empty());   // taken over
        tf.start_search();
        tf.stop_search();
        QVERIFY(logs.containsLine(QStringLiteral("TavFind::stop_search - will stop now")));
        QTRY_COMPARE(calls, 1);   // the listeners still hear of the end
        QVERIFY(tf.countResults() < files.size());

        // A start while running acts as a stop; nothing new starts.
        copy = files;
        tf.prepareFiles(copy);
        tf.start_search();
        tf.start_search();
        QVERIFY(logs.containsLine(QStringLiteral("TavFind2::start_search - RUNNING")));
        QTRY_COMPARE(calls, 2);
        QVERIFY(tf.countResults() < files.size());
        QVERIFY(!tf.isRunning());
        QCOMPARE(logs.count(QStringLiteral("ThreadControllerFind::~runCustom, file hits:")), 2);
    }

    void cancelInsideAFileWindowByWindow() {
        // A file of many read windows: progress is reported per window, and a "no" from
        // the watch ends the file's search after the window it came in.
        tftest::TestDir d;
        const QByteArray line = QByteArray("hay ").repeated(60) + "needle\n";
        const QString path = d.file(QStringLiteral("big.log"), line.repeated(40000));   // ~9.8 MB
        tav::find::XContentFilter filter = filterFor(QStringLiteral("needle"));
        tav::XLineReaderDA reader;
        reader.setWindowSizes(size_t(128) << 10, tav::XLineReaderDA::DEFAULT_WINDOW);
        QVERIFY(reader.openFile(path, 0x10000, true));
        std::atomic<uint64_t> bytes{0};
        int windows = 0;
        std::vector<uint64_t> seen;
        tav::find::XContentFilter::WindowWatch watch;
        watch.bytesDone = &bytes;
        watch.keepGoing = [&]() {
            seen.push_back(bytes.load());
            return ++windows < 3;
        };
        const tav::find::XRamLayer cut = filter.find(0, reader, &watch);
        QVERIFY(watch.stopped);
        QCOMPARE(windows, 3);
        QVERIFY(seen[0] > 0 && seen[1] > seen[0] && seen[2] > seen[1]);   // grows inside the file
        QVERIFY(bytes.load() < uint64_t(QFileInfo(path).size()) / 4);
        QVERIFY(cut.size() > 0 && cut.size() < 40000 / 4);   // the hits of the windows read
        // Without a stop: every byte once, every hit.
        reader.close();
        QVERIFY(reader.openFile(path, 0x10000, true));
        bytes = 0;
        watch.keepGoing = []() { return true; };
        filter.seekHome();
        QCOMPARE(filter.find(0, reader, &watch).size(), 40000);
        QVERIFY(!watch.stopped);
        QCOMPARE(bytes.load(), uint64_t(QFileInfo(path).size()));
    }

    void secondStartDuringACancelDoesNotHoldTheCaller() {
        tftest::TestDir d;
        std::vector<QFileInfo> infos;
        for (int i = 0; i < 40; ++i) infos.emplace_back(d.file(QStringLiteral("f%1.txt").arg(i), QByteArray("needle\n")));
        TavFind tf;
        tf.maxThreads = 1;
        tf.setContentFilter(filterFor(QStringLiteral("needle")));
        int calls = 0;
        tf.addListener([&]() { ++calls; });
        // The worker is held after its third file, as a worker inside a slow window would be.
        std::atomic<bool> release{false};
        tf.onFileDone = [&]() {
            if (release.load() || tf.workerStats().countFiles.load() < 3) return;
            QElapsedTimer t;
            t.start();
            while (!release.load() && t.elapsed() < 10000) tav::xSleep(1);
        };
        // Starts a search, stops it once its worker is held, and asks for a new one; the time the call took.
        auto startStopRestart = [&]() -> qint64 {
            std::vector<QFileInfo*> files = pointersTo(infos);
            tf.prepareFiles(files);
            if (!tf.start_search()) return -1;
            if (!QTest::qWaitFor([&]() { return tf.workerStats().countFiles.load() >= 3; }, 5000)) return -1;
            tf.stop_search();
            files = pointersTo(infos);
            tf.prepareFiles(files);
            QElapsedTimer t;
            t.start();
            if (!tf.start_search()) return -1;
            return t.elapsed();
        };
        const qint64 held = startStopRestart();
        QVERIFY2(held >= 0 && held < 1000, qPrintable(QString::number(held)));   // not the 10 s of the held worker
        QVERIFY(tf.isStartQueued());
        QVERIFY(!tf.start_search());   // a second request joins the queued one
        release = true;
        QTRY_COMPARE(calls, 2);        // the stopped search, then the new one, each once
        QVERIFY(!tf.isStartQueued());
        QCOMPARE(tf.countResults(), size_t(40));
        // A queued start cancelled before it began still ends with one call.
        release = false;
        QVERIFY(startStopRestart() >= 0 && tf.isStartQueued());
        tf.stop_search();
        QVERIFY(!tf.isStartQueued());
        release = true;
        QTRY_COMPARE(calls, 4);
        QTest::qWait(50);
        QCOMPARE(calls, 4);
        QVERIFY(!tf.isRunning());
    }

    void destroyingARunningSearchWaitsAndStaysSilent() {
        tftest::TestDir d;
        std::vector<QFileInfo> infos;
        for (int i = 0; i < 800; ++i) infos.emplace_back(d.file(QStringLiteral("f%1.txt").arg(i), QByteArray("x needle y\n").repeated(300)));
        std::vector<QFileInfo*> files = pointersTo(infos);
        int calls = 0;
        {
            TavFind tf;
            tf.maxThreads = 4;
            tf.setContentFilter(filterFor(QStringLiteral("needle")));
            tf.addListener([&]() { ++calls; });
            tf.prepareFiles(files);
            tf.start_search();
        }   // stops and waits for every thread
        QTest::qWait(100);
        QCOMPARE(calls, 0);
    }

    // Workers read big files in windows: a hit across a window's end, in a line
    // far longer than a window, and a paragraph spread over several windows are found.
    void longLinesAndParagraphsAreNotSplit() {
        tftest::TestDir d;
        QByteArray line(300 << 10, 'x');
        line.replace((128 << 10) - 3, 6, "needle");
        QByteArray para = "alpha\n";
        while (para.size() < (300 << 10)) para += "a line of the same long paragraph\n";
        para += "omega\n\nneedle alone\n";
        std::vector<QFileInfo> infos{QFileInfo(d.file(QStringLiteral("line.txt"), line + "\n")),
                                     QFileInfo(d.file(QStringLiteral("para.txt"), para))};
        TavFind tf;
        tf.maxThreads = 2;
        int calls = 0;
        tf.addListener([&]() { ++calls; });
        tf.setContentFilter(filterFor(QStringLiteral("needle")));
        QCOMPARE(runSearch(tf, {&infos[0], &infos[1]}, &calls), (QStringList{"1 line.txt", "1 para.txt"}));
        tav::find::XContentFilter f = filterFor(QStringLiteral("alpha omega"));
        f.setScope(tav::find::XContentFilter::SCOPE_PARAGRAPH);
        tf.setContentFilter(f);
        QCOMPARE(runSearch(tf, {&infos[0], &infos[1]}, &calls), QStringList{"2 para.txt"});
        QCOMPARE(tf.workerStats().countLines.load(), uint64_t(1 + para.count('\n')));
    }

    void singleFilesAreSearchedAtOnce() {
        tftest::TestDir d;
        const QString hit = d.file(QStringLiteral("hit.txt"), "Alpha beta\nalpha");
        const QString miss = d.file(QStringLiteral("miss.txt"), "gamma");
        const QString empty = d.file(QStringLiteral("empty.txt"));
        TavFind tf;
        tav::find::XContentFilter f = filterFor(QStringLiteral("alpha"));
        FileResult r = tf.find(QFileInfo(hit), f);
        QCOMPARE(r.layer.size(), 2);
        QCOMPARE(r.fileInfo.absoluteFilePath(), hit);
        QCOMPARE(r.toString(), QStringLiteral("2"));
        r = tf.find(QFileInfo(miss), f);
        QVERIFY(!r.layer && r.fileInfo.filePath().isEmpty());
        QCOMPARE(r.toString(), QStringLiteral("not-valid"));
        QVERIFY(!tf.find(QFileInfo(empty), f).layer);
        tftest::LogCapture logs;
        QVERIFY(!tf.find(QFileInfo(d.abs(QStringLiteral("gone.txt"))), f).layer);
        QVERIFY(logs.contains(QStringLiteral("TavFind::find, IS NOT A FILE <<<")));
        QVERIFY(!tf.find(QFileInfo(d.path()), f).layer);
        QVERIFY(logs.contains(QStringLiteral("TavFind::find, problems with <<<") + d.path()));
        // The list variant keeps the input order and drops files without hits.
        std::vector<QFileInfo> infos{QFileInfo(miss), QFileInfo(hit), QFileInfo(empty), QFileInfo(hit)};
        std::vector<QFileInfo*> list{&infos[0], &infos[1], nullptr, &infos[2], &infos[3]};
        const std::vector<FileResult> out = tf.find(list, f);
        QCOMPARE(out.size(), size_t(2));
        QCOMPARE(out[0].fileInfo.fileName(), QStringLiteral("hit.txt"));
    }
};

QTEST_GUILESS_MAIN(TestFindSearch)
#include "test_find_search.moc"
