#include "common/DocFixtures.h"
#include "common/TestEnv.h"

#include <QtTest>

using tftest::Pack;
using tftest::Squeeze;

// The find command with documents and archives switched on and off.
class TestFindDocuments : public QObject {
    Q_OBJECT
    tftest::TestEnv env;
    tftest::TestDir d;

    QStringList run(const QStringList& args, QString* err = nullptr, int* code = nullptr) {
        QProcess p;
        p.setProcessEnvironment(env.processEnvironment(false));
        p.start(tftest::TestEnv::programPath(), QStringList{"find", "--dir", d.path(), "--find", "zebra"} + args);
        if (!p.waitForFinished(60000)) return {"timeout"};
        if (err) *err = QString::fromUtf8(p.readAllStandardError());
        if (code) *code = p.exitCode();
        QStringList out = QString::fromUtf8(p.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
        if (!out.isEmpty()) out.removeLast();   // the summary
        std::sort(out.begin(), out.end());
        return out;
    }
    QString row(int hits, const QString& rel) { return QString::number(hits) + '\t' + d.abs(rel); }

private slots:
    void initTestCase() {
        const QByteArray text = "a zebra here\nand a zebra there\n";
        QByteArray utf16("\xff\xfe", 2);
        for (QChar c : QStringLiteral("UTF-16 zebra\n")) utf16 += QByteArray(reinterpret_cast<const char*>(&c), 2);
        d.file("plain.txt", text);
        d.file("c/app.txt.gz", tftest::compress(Squeeze::Gzip, text));
        d.file("c/app.log.xz", tftest::compress(Squeeze::Xz, text));
        d.file("c/app.zst", tftest::compress(Squeeze::Zstd, text));
        d.file("a/m.zip", tftest::makeArchive(Pack::Zip, Squeeze::None, {{"in/one.txt", text}, {"none.txt", "horse\n"}}));
        d.file("a/m.tar.gz", tftest::makeArchive(Pack::Tar, Squeeze::Gzip, {{"one.txt", text}}));
        d.file("a/m.7z", tftest::makeArchive(Pack::SevenZip, Squeeze::None, {{"seven.txt", "zebra\n"}}));
        d.file("a/nest.tgz", tftest::makeArchive(Pack::Tar, Squeeze::Gzip,
                                                 {{"logs.zip", tftest::makeArchive(Pack::Zip, Squeeze::None, {{"app.log", text}})}}));
        d.file("doc/p.pdf", tftest::makePdf({"one", "zebra on two"}));
        d.file("doc/w.docx", tftest::makeDocx({"zebra", "zebra again"}));
        d.file("doc/s.xlsx", tftest::makeXlsx({"zebra cell"}));
        d.file("doc/t.odt", tftest::makeOdt({"an odt zebra"}));
        d.file("doc/b.epub", tftest::makeEpub({"an epub zebra"}));
        d.file("doc/u16.txt", utf16);
    }

    void everyFamilyIsFoundWithMemberPaths() {
        QString err;
        const QStringList on = run({"--documents", "true"}, &err);
        const QStringList expected{
            row(1, "a/m.7z!/seven.txt"),   row(1, "doc/b.epub"),     row(1, "doc/p.pdf"),  row(1, "doc/s.xlsx"),
            row(1, "doc/t.odt"),           row(1, "doc/u16.txt"),    row(2, "a/m.tar.gz!/one.txt"),
            row(2, "a/m.zip!/in/one.txt"), row(2, "a/nest.tgz!/logs.zip!/app.log"), row(2, "c/app.log.xz"),
            row(2, "c/app.txt.gz"),        row(2, "c/app.zst"),      row(2, "doc/w.docx"), row(2, "plain.txt")};
        QCOMPARE(on, expected);
        QVERIFY2(!err.contains("completely"), qPrintable(err));
        // Hits are positions in the extracted text.
        QString hits;
        QProcess p;
        p.setProcessEnvironment(env.processEnvironment(false));
        p.start(tftest::TestEnv::programPath(), {"find", "--dir", d.abs("a"), "--find", "zebra", "--documents", "true",
                                                  "--show", "hits", "--pattern", "*.zip"});
        QVERIFY(p.waitForFinished(60000));
        QCOMPARE(QString::fromUtf8(p.readAllStandardOutput()).split('\n').mid(0, 2),
                 (QStringList{d.abs("a/m.zip!/in/one.txt") + "\t2\t5", d.abs("a/m.zip!/in/one.txt") + "\t19\t5"}));

        // Off: every file as its bytes, as before (the stored 7z member and the plain texts only).
        const QStringList off = run({});
        QVERIFY(off.contains(row(2, "plain.txt")));
        QVERIFY(!off.contains(row(2, "c/app.txt.gz")));
        for (const QString& r : off) QVERIFY2(!r.contains('!'), qPrintable(r));
        QCOMPARE(run({"--documents", "false"}), off);
    }

    void hostileFilesAreCountedAndTheRestIsFound() {
        tftest::TestDir bad;
        const QByteArray tgz = tftest::makeArchive(Pack::Tar, Squeeze::Gzip, {{"x.txt", QByteArray(200000, 'x')}});
        bad.file("cut.tgz", tgz.left(tgz.size() / 2));
        bad.file("evil.tar", tftest::makeArchive(Pack::Tar, Squeeze::None, {{"../up.txt", "zebra"}, {"ok.txt", "zebra"}}));
        bad.file("bad.pdf", "%PDF-1.7\nnot really");
        bad.file("fine.txt", "zebra\n");
        QProcess p;
        p.setProcessEnvironment(env.processEnvironment(false));
        p.start(tftest::TestEnv::programPath(), {"find", "--dir", bad.path(), "--find", "zebra", "--documents", "true"});
        QVERIFY(p.waitForFinished(60000));
        const QString err = QString::fromUtf8(p.readAllStandardError());
        QVERIFY2(err.contains("find: 3 files could not be searched completely"), qPrintable(err));
        const QStringList out = QString::fromUtf8(p.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
        QCOMPARE(out.mid(0, 2), (QStringList{"1\t" + bad.abs("evil.tar!/ok.txt"), "1\t" + bad.abs("fine.txt")}));
        QCOMPARE(p.exitCode(), 0);

        // The bomb limits are the user's: a member cut at 1 KiB keeps its first hit only, and
        // a low ratio stops a member that expands too much.
        tftest::TestDir big;
        QByteArray text = "zebra first\n" + QByteArray(4000, 'z') + "\nzebra last\n";
        big.file("big.txt.gz", tftest::compress(Squeeze::Gzip, text));
        const auto runBig = [&](const QStringList& extra, QString* errOut) {
            QProcess q;
            q.setProcessEnvironment(env.processEnvironment(false));
            q.start(tftest::TestEnv::programPath(),
                    QStringList{"find", "--dir", big.path(), "--find", "zebra", "--documents", "true"} + extra);
            q.waitForFinished(60000);
            *errOut = QString::fromUtf8(q.readAllStandardError());
            return QString::fromUtf8(q.readAllStandardOutput()).split('\n').value(0);
        };
        QString e;
        QCOMPARE(runBig({}, &e), "2\t" + big.abs("big.txt.gz"));
        QCOMPARE(runBig({"--maxMemberSize", "1kb"}, &e), "1\t" + big.abs("big.txt.gz"));
        QVERIFY2(e.contains("find: 1 files could not be searched completely"), qPrintable(e));
        runBig({"--ratioFrom", "1kb", "--maxRatio", "2"}, &e);
        QVERIFY2(e.contains("find: 1 files could not be searched completely"), qPrintable(e));
        runBig({"--maxRatio", "1"}, &e);
        QVERIFY2(e.contains("--maxRatio takes a whole number of 2 or more"), qPrintable(e));
    }
};

QTEST_GUILESS_MAIN(TestFindDocuments)
#include "test_find_documents.moc"
