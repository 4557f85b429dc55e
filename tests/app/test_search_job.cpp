#include "common/TestEnv.h"

#include "base/find/XContentFilter.h"
#include "src/find/SearchJob.h"

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

using tavFinder::FileResult;
using tavFinder::SearchJob;
using tavFinder::SearchParams;
using tavFinder::SearchProgress;

namespace {

// Keeps everything a sink hears, and checks the order of what it hears.
struct Recorder : tavFinder::SearchSink {
    QStringList rows;            // "hits<TAB>path"
    int batches = 0;
    int dones = 0;
    bool cancelled = false;
    bool resultsAfterDone = false;
    bool progressBackwards = false;
    SearchProgress last;
    int mostMarks = 0;           // marks held by one result
    int withoutDate = 0;
    void searchResults(std::vector<FileResult>& batch) override {
        if (dones) resultsAfterDone = true;
        ++batches;
        for (const FileResult& r : batch) {
            rows << QString::number(r.hits()) + '\t' + r.displayPath();
            mostMarks = std::max(mostMarks, r.layer.size());
            if (r.mtimeNs == INT64_MIN) ++withoutDate;   // the table sorts by date without a stat per row
        }
    }
    void searchProgress(const SearchProgress& p) override {
        if (p.bytesRead < last.bytesRead || p.filesSearched < last.filesSearched || p.hits < last.hits) progressBackwards = true;
        last = p;
    }
    void searchDone(bool c, const QStringList&, uint64_t, uint64_t) override {
        ++dones;
        cancelled = c;
    }
    QStringList sorted() const {
        QStringList s = rows;
        s.sort();
        return s;
    }
};

SearchParams paramsFor(const QString& dir, const QString& word) {
    SearchParams p;
    p.dir = dir;
    p.hidden = true;
    p.threads = 3;
    p.filter.contentFilter.createSymbols(word, false);
    return p;
}

} // namespace

// The search job and its sinks: the same results whoever listens, one end per search.
class TestSearchJob : public QObject {
    Q_OBJECT
    tftest::TestEnv env;
    tftest::TestDir gen;
    QJsonObject manifest;

    QString tree() const { return gen.abs(QStringLiteral("tree")); }
    qint64 expected(const char* what, const char* word) const {
        return manifest.value(QLatin1String(what)).toObject().value(QLatin1String(word)).toVariant().toLongLong();
    }

private slots:
    void initTestCase() {
        if (QStandardPaths::findExecutable(QStringLiteral("python3")).isEmpty()) QSKIP("python3 missing");
        QProcess p;
        p.start(QStringLiteral("python3"), {qEnvironmentVariable("TF_TEST_SOURCE_DIR") + QStringLiteral("/bench/gen_tree.py"), gen.path(),
                                            QStringLiteral("--files"), QStringLiteral("900"), QStringLiteral("--big-mb"), QStringLiteral("2")});
        QVERIFY(p.waitForFinished(120000));
        QCOMPARE(p.exitCode(), 0);
        QFile mf(gen.abs(QStringLiteral("manifest.json")));
        QVERIFY(mf.open(QIODevice::ReadOnly));
        manifest = QJsonDocument::fromJson(mf.readAll()).object();
    }

    void sinksGetTheSameResults() {
        for (const char* word : {"return", "ZQX_RARE_NEEDLE"}) {
            Recorder sink;
            SearchJob job(sink);
            job.batchIntervalMs = 10;
            job.start(paramsFor(tree(), QString::fromLatin1(word)));
            QTRY_COMPARE_WITH_TIMEOUT(sink.dones, 1, 60000);
            QVERIFY(!sink.cancelled);
            QVERIFY(!sink.resultsAfterDone);
            QVERIFY(!sink.progressBackwards);
            // The results are the generator's, and the totals the job counted are those of the rows.
            QCOMPARE(qint64(sink.rows.size()), expected("hitfiles", word));
            qint64 hits = 0;
            for (const QString& r : sink.rows) hits += r.section('\t', 0, 0).toLongLong();
            QCOMPARE(hits, expected("hits", word));
            // Results hold their first marks only: memory follows the files found, not their hits.
            QVERIFY(sink.mostMarks > 0 && sink.mostMarks <= int(SearchParams::kResultMarks));
            QCOMPARE(sink.withoutDate, 0);
            QCOMPARE(qint64(sink.last.hits), hits);
            QCOMPARE(qint64(sink.last.bytesRead), manifest.value(QStringLiteral("bytes")).toVariant().toLongLong());
            QVERIFY(sink.last.walkDone);

            // The find command is another sink of the same job: the same rows.
            QProcess find;
            find.setProcessEnvironment(env.processEnvironment(false));
            find.start(tftest::TestEnv::programPath(), {"find", "--dir", tree(), "--find", word, "--hidden", "true", "--threads", "2"});
            QVERIFY(find.waitForFinished(60000));
            QStringList printed = QString::fromUtf8(find.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
            QVERIFY(!printed.isEmpty());
            printed.removeLast();   // the summary
            printed.sort();
            QCOMPARE(printed, sink.sorted());
        }
    }

    void restartCancelAndDiscard() {
        Recorder sink;
        SearchJob job(sink);
        // A start while one runs replaces it: only the second search is heard of, and it ends once.
        job.start(paramsFor(tree(), QStringLiteral("return")));
        job.start(paramsFor(tree(), QStringLiteral("ZQX_RARE_NEEDLE")));
        QTRY_COMPARE_WITH_TIMEOUT(sink.dones, 1, 60000);
        QCOMPARE(qint64(sink.rows.size()), expected("hitfiles", "ZQX_RARE_NEEDLE"));
        for (const QString& r : sink.rows) QVERIFY2(r.section('\t', 0, 0).toInt() >= 1, qPrintable(r));
        QTest::qWait(100);
        QCOMPARE(sink.dones, 1);

        // Cancelled: the end says so, with what was found until then.
        Recorder cancelled;
        SearchJob job2(cancelled);
        job2.start(paramsFor(tree(), QStringLiteral("return")));
        job2.cancel();
        QTRY_COMPARE_WITH_TIMEOUT(cancelled.dones, 1, 60000);
        QVERIFY(cancelled.cancelled);
        QVERIFY(job2.wasCancelled());
        QVERIFY(!job2.isRunning());
        QVERIFY(qint64(cancelled.rows.size()) <= expected("hitfiles", "return"));

        // Discarded: nothing more is heard, and a job destroyed while it runs waits for nothing.
        Recorder silent;
        {
            SearchJob job3(silent);
            job3.start(paramsFor(tree(), QStringLiteral("return")));
            job3.discard();
            QVERIFY(!job3.isRunning());
            job3.start(paramsFor(tree(), QStringLiteral("return")));
        }
        QTest::qWait(300);
        QCOMPARE(silent.dones, 0);
        QCOMPARE(silent.batches, 0);
    }

    void cancelInsideABigFile() {
        // 256 MiB of text: the cancel comes from the first progress report that is inside the file.
        tftest::TestDir d;
        const QString path = d.abs(QStringLiteral("big.log"));
        {
            QFile f(path);
            QVERIFY(f.open(QIODevice::WriteOnly));
            const QByteArray block = QByteArray("hay and straw, but nothing else\n").repeated(32768);   // 1 MiB
            for (int i = 0; i < 256; ++i) QVERIFY(f.write(block) == block.size());
        }
        const uint64_t size = uint64_t(QFileInfo(path).size());
        struct CancelInside : Recorder {
            SearchJob* job = nullptr;
            QElapsedTimer sinceCancel;
            qint64 cancelToDone = -1;
            void searchProgress(const SearchProgress& p) override {
                Recorder::searchProgress(p);
                if (p.bytesRead > 0 && !sinceCancel.isValid()) {
                    sinceCancel.start();
                    job->cancel();
                }
            }
            void searchDone(bool c, const QStringList& u, uint64_t a, uint64_t b) override {
                if (sinceCancel.isValid()) cancelToDone = sinceCancel.elapsed();
                Recorder::searchDone(c, u, a, b);
            }
        } sink;
        SearchJob job(sink);
        sink.job = &job;
        job.batchIntervalMs = 10;
        SearchParams p = paramsFor(d.path(), QStringLiteral("needle"));
        p.threads = 1;
        job.start(p);
        QTRY_COMPARE_WITH_TIMEOUT(sink.dones, 1, 30000);
        QVERIFY(sink.cancelled);
        // Progress came from inside the file, and the cancel took effect there: the file was not read to its end.
        QVERIFY(sink.last.bytesRead > 0);
        QVERIFY2(sink.last.bytesRead < size, qPrintable(QString::number(sink.last.bytesRead)));
        QVERIFY2(sink.cancelToDone >= 0 && sink.cancelToDone < 1000, qPrintable(QString::number(sink.cancelToDone)));
    }
};

QTEST_GUILESS_MAIN(TestSearchJob)
#include "test_search_job.moc"
