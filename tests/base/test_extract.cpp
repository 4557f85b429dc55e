#include "base/extract/XDocText.h"
#include "base/extract/XExtract.h"
#include "base/find/XContentFilter.h"
#include "common/DocFixtures.h"
#include "common/TestEnv.h"

#include <QtTest>

using namespace tav::extract;
using tftest::Entry;
using tftest::Pack;
using tftest::Squeeze;

namespace {

struct Got {
    bool known = false;
    QMap<QString, QByteArray> parts;   // member -> text
    QList<Part> list;
    QStringList problems;
};

Got extract(const QByteArray& data, const QString& name, const Limits& limits = Limits()) {
    XExtractor x(limits);
    Got g;
    g.known = x.extractData(data, name, [&g](Part& p) {
        g.parts.insert(p.member, p.text);
        g.list << p;
        return true;
    });
    g.problems = x.problems();
    return g;
}

int hits(const QString& query, uint32_t scope, const QByteArray& text) {
    tav::find::XContentFilter f;
    f.setScope(scope);
    if (!f.createSymbols(query, false)) return -1;
    return f.find(0, text).size();
}

// Bytes that do not compress.
QByteArray noise(int n) {
    QByteArray b(n, '\0');
    uint32_t x = 2463534242u;
    for (char& c : b) {
        x ^= x << 13; x ^= x >> 17; x ^= x << 5;
        c = char(x);
    }
    return b;
}

const QByteArray kLog = "first line\nthe needle is here\nlast line\n";

} // namespace

class TestExtract : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

private slots:
    void recognisedByContentNotName() {
        const QByteArray gz = tftest::compress(Squeeze::Gzip, kLog);
        QCOMPARE(sniff(gz.constData(), size_t(gz.size()), "notes.txt"), Family::Compressed);
        QCOMPARE(sniff(kLog.constData(), size_t(kLog.size()), "notes.gz"), Family::None);
        const QByteArray tar = tftest::makeArchive(Pack::Tar, Squeeze::None, {{"a.txt", kLog}});
        QCOMPARE(sniff(tar.constData(), size_t(tar.size()), "a.bin"), Family::Archive);
        const QByteArray zip = tftest::makeArchive(Pack::Zip, Squeeze::None, {{"a.txt", kLog}});
        QCOMPARE(sniff(zip.constData(), size_t(zip.size())), Family::Zip);
        const QByteArray pdf = tftest::makePdf({"page"});
        QCOMPARE(sniff(pdf.constData(), size_t(pdf.size())), Family::Pdf);
        QCOMPARE(sniff("\xff\xfeh\0i\0", 6), Family::Utf16);
        QCOMPARE(sniff("\xff\xfe\0\0h\0\0\0", 8), Family::None);   // UTF-32
        // A text that merely starts like bare lzma needs the name to confirm it.
        const QByteArray lzmaLike("\x5d\0\0\x80\0\0\0\0\0\0\0\0\0\0", 14);
        QCOMPARE(sniff(lzmaLike.constData(), size_t(lzmaLike.size()), "x.txt"), Family::None);
        QCOMPARE(sniff(lzmaLike.constData(), size_t(lzmaLike.size()), "x.lzma"), Family::Compressed);
        // Unknown bytes are left to the plain search.
        QVERIFY(!extract(kLog, "a.gz").known);

        // A file on disk: named wrongly, still read by its content.
        tftest::TestDir dir;
        const QString misnamed = dir.file("misnamed.txt", tftest::compress(Squeeze::Xz, kLog));
        XExtractor x;
        QByteArray text;
        QVERIFY(x.extractFile(misnamed, [&text](Part& p) {
            text = p.text;
            return true;
        }));
        QCOMPARE(text, kLog);
    }

    void compressedFilesAreOneText() {
        for (Squeeze s : {Squeeze::Gzip, Squeeze::Bzip2, Squeeze::Xz, Squeeze::Zstd}) {
            const Got g = extract(tftest::compress(s, kLog), "app.log.z");
            QVERIFY(g.known);
            QCOMPARE(g.parts.keys(), QStringList{QString()});   // under the file's own name
            QCOMPARE(g.parts.value(QString()), kLog);
            QVERIFY(g.problems.isEmpty());
        }
        // A compressed UTF-16 text comes out as UTF-8.
        const QByteArray utf16 = QByteArray("\xff\xfe", 2) +
                                 QByteArray(reinterpret_cast<const char*>(QStringLiteral("Grüße\n").utf16()), 12);
        QCOMPARE(extract(tftest::compress(Squeeze::Gzip, utf16), "u.gz").parts.value(QString()),
                 QStringLiteral("Grüße\n").toUtf8());
    }

    void archiveMembersAndNesting() {
        const QList<Entry> members{{"a.txt", "alpha\n"}, {"dir/b.log", kLog}};
        for (Pack p : {Pack::Tar, Pack::Zip, Pack::SevenZip, Pack::Cpio}) {
            // 7z compresses on its own; it cannot be read from a compressed stream.
            const Got g = extract(tftest::makeArchive(p, p == Pack::SevenZip ? Squeeze::None : Squeeze::Gzip, members), "x");
            QVERIFY(g.known);
            QCOMPARE(g.parts.keys(), (QStringList{"a.txt", "dir/b.log"}));
            QCOMPARE(g.parts.value("dir/b.log"), kLog);
        }
        // zip in tar.gz, with a compressed log inside the zip: each level adds "!/"
        // except the compressed single file, which keeps its own name.
        const QByteArray zip = tftest::makeArchive(
            Pack::Zip, Squeeze::None, {{"app.log.gz", tftest::compress(Squeeze::Gzip, kLog)}, {"doc.docx", tftest::makeDocx({"inner needle"})}});
        const Got g = extract(tftest::makeArchive(Pack::Tar, Squeeze::Gzip, {{"logs.zip", zip}, {"top.txt", "top\n"}}), "all.tgz");
        QCOMPARE(g.parts.keys(), (QStringList{"logs.zip!/app.log.gz", "logs.zip!/doc.docx", "top.txt"}));
        QCOMPARE(g.parts.value("logs.zip!/app.log.gz"), kLog);
        QCOMPARE(hits("needle", 0, g.parts.value("logs.zip!/doc.docx")), 1);
        QCOMPARE(memberPath("/d/all.tgz", "logs.zip!/app.log.gz"), QStringLiteral("/d/all.tgz!/logs.zip!/app.log.gz"));
        QCOMPARE(memberPath("/d/a.gz", QString()), QStringLiteral("/d/a.gz"));

        // Four levels are searched, the fifth is skipped and reported.
        QByteArray nested = tftest::makeArchive(Pack::Tar, Squeeze::None, {{"deep.txt", "bottom\n"}});
        for (int i = 0; i < 4; ++i)
            nested = tftest::makeArchive(Pack::Tar, Squeeze::None, {{QStringLiteral("l%1.tar").arg(i), nested}, {QStringLiteral("t%1.txt").arg(i), "x\n"}});
        const Got deep = extract(nested, "n.tar");
        QCOMPARE(deep.parts.keys(), (QStringList{"l3.tar!/l2.tar!/l1.tar!/t0.txt", "l3.tar!/l2.tar!/t1.txt", "l3.tar!/t2.txt", "t3.txt"}));
        QCOMPARE(deep.problems.size(), 1);
        QVERIFY(deep.problems[0].contains("l3.tar!/l2.tar!/l1.tar!/l0.tar"));
    }

    void documentsKeepTheirParagraphs() {
        const QStringList paras{"Alpha one & beta.", "Gamma two", "delta alpha  three"};
        const Got docx = extract(tftest::makeDocx(paras), "report.bin");
        // Only archives have members: a document is one text under its own name.
        QCOMPARE(docx.parts.keys(), QStringList{QString()});
        const QByteArray t = docx.parts.value(QString());
        QCOMPARE(t, QByteArray("Alpha one & beta.\n\nGamma two\n\ndelta alpha  three\n\n"));   // field codes left out
        QCOMPARE(hits("alpha beta", 1, t), 2);    // the same paragraph
        QCOMPARE(hits("gamma delta", 1, t), 0);   // neighbours are not one paragraph
        QCOMPARE(hits("gamma delta", 0, t), 2);

        QCOMPARE(extract(tftest::makeOdt(paras), "x").parts.value(QString()), t);   // <text:s/> keeps the double blank
        QCOMPARE(extract(tftest::makeEpub(paras), "x").parts.value(QString()),
                 QByteArray("Alpha one & beta.\n\nGamma two\n\ndelta alpha three\n\n"));   // XHTML folds blanks, no head
        QCOMPARE(extract(tftest::makeXlsx({"cell one", "cell two"}), "x").parts.value(QString()),
                 QByteArray("cell one\n\ncell two\n\n"));   // shared strings, not indexes or numbers
        QCOMPARE(extract(tftest::makePptx({"s1", "s2", "s3"}), "x").parts.value(QString()), QByteArray("s1\n\ns3\n\ns2\n\n"));

        // A zip that only looks a little like a document is an archive.
        const Got zip = extract(tftest::makeArchive(Pack::Zip, Squeeze::None, {{"[Content_Types].xml", "<x/>"}, {"notes.txt", "n\n"}}), "d.docx");
        QCOMPARE(zip.parts.keys(), (QStringList{"[Content_Types].xml", "notes.txt"}));
        // A broken part keeps the text before the damage and says so.
        QString error;
        QCOMPARE(xmlText(DocKind::Epub, "c.xhtml", "<html><body><p>kept</p><p>a</b>lost", &error), QByteArray("kept\n\na\n\n"));
        QVERIFY(!error.isEmpty());
    }

    void pdfPagesAndUtf16() {
        const Got g = extract(tftest::makePdf({"first page words", "the needle on two", "third page"}), "x.dat");
        QVERIFY(g.known);
        QCOMPARE(g.list.size(), 1);
        const Part& p = g.list[0];
        QCOMPARE(int(p.pageStarts.size()), 3);
        const int at = p.text.indexOf("needle");
        QVERIFY2(at > 0, p.text.constData());
        QCOMPARE(p.pageAt(at), 2);
        QCOMPARE(p.pageAt(0), 1);
        QCOMPARE(p.pageAt(p.text.indexOf("third")), 3);
        QCOMPARE(Part().pageAt(5), 0);

        const QString s = QStringLiteral("Привет needle\n");
        QByteArray le("\xff\xfe", 2), be("\xfe\xff", 2);
        for (QChar c : s) {
            le += char(c.unicode() & 0xff); le += char(c.unicode() >> 8);
            be += char(c.unicode() >> 8); be += char(c.unicode() & 0xff);
        }
        QCOMPARE(extract(le, "u.txt").parts.value(QString()), s.toUtf8());
        QCOMPARE(extract(be, "u.txt").parts.value(QString()), s.toUtf8());
    }

    void badInputIsSkippedAndReported() {
        tftest::LogCapture log;
        // Truncated and corrupt containers: what can be read is, the rest reported.
        const QByteArray tgz = tftest::makeArchive(Pack::Tar, Squeeze::Gzip, {{"a.txt", kLog}, {"b.txt", noise(300000)}});
        Got g = extract(tgz.left(tgz.size() * 2 / 3), "t.tgz");
        QVERIFY(g.known);
        QVERIFY(!g.problems.isEmpty());
        QCOMPARE(g.parts.value("a.txt"), kLog);
        g = extract(QByteArray("PK\x03\x04", 4) + QByteArray(300, '\x01'), "z.zip");
        QVERIFY(!g.problems.isEmpty());
        QVERIFY(g.parts.isEmpty());
        g = extract(QByteArray("%PDF-1.4\n1 0 obj garbage"), "p.pdf");
        QVERIFY(!g.problems.isEmpty());
        QVERIFY(g.parts.isEmpty());
        g = extract(QByteArray("\x1f\x8b\x08\x00garbage-garbage-garbage"), "c.gz");
        QVERIFY(!g.problems.isEmpty());

        // Absolute and climbing names are skipped; the member beside them is searched.
        g = extract(tftest::makeArchive(Pack::Tar, Squeeze::None, {{"../evil.txt", "e"}, {"/etc/evil", "e"}, {"ok.txt", "ok"}}), "n.tar");
        QCOMPARE(g.parts.keys(), QStringList{"ok.txt"});
        QCOMPARE(g.problems.size(), 2);

        // Encrypted members are skipped, not guessed at.
        g = extract(tftest::makeArchive(Pack::Zip, Squeeze::None, {{"secret.txt", kLog}, {"open.txt", "o"}}, "pw"), "e.zip");
        QVERIFY(!g.parts.contains("secret.txt"));
        QVERIFY(g.problems.join('\n').contains("secret.txt"));

        // Bombs: output cut at the limit, or at the ratio beyond its threshold.
        const QByteArray zeros = tftest::compress(Squeeze::Gzip, QByteArray(4 << 20, '\0'));
        Limits small;
        small.maxOutput = 1 << 20;
        g = extract(zeros, "z.gz", small);
        QCOMPARE(g.parts.value(QString()).size(), 1 << 20);
        QVERIFY(g.problems.join('\n').contains("cut at 1048576"));
        Limits ratio;
        ratio.ratioFrom = 256 << 10;
        ratio.maxRatio = 20;
        g = extract(tftest::makeArchive(Pack::Zip, Squeeze::None, {{"bomb.bin", QByteArray(4 << 20, 'z')}, {"fine.txt", kLog}}), "b.zip", ratio);
        QVERIFY(g.parts.value("bomb.bin").size() < (1 << 20));
        QCOMPARE(g.parts.value("fine.txt"), kLog);
        QVERIFY(g.problems.join('\n').contains("expands more than 20 times"));
        // Every problem went to the log as well.
        QVERIFY(log.count("not searched completely") >= 8);

        // A cancel ends the extraction between blocks.
        XExtractor x;
        x.setKeepGoing([] { return false; });
        int parts = 0;
        QVERIFY(x.extractData(tgz, "t.tgz", [&parts](Part&) { return ++parts, true; }));
        QCOMPARE(parts, 0);
        QVERIFY(x.wasCancelled());
    }
};

QTEST_GUILESS_MAIN(TestExtract)
#include "test_extract.moc"
