#include "base/find/XByteScan.h"
#include "base/find/XContentFilter.h"
#include "base/io/XLineReaderDA.h"
#include "common/TestEnv.h"

#include <QtTest>
#include <sys/stat.h>

using tav::XLineReaderDA;

namespace {
// Every window of the file, checked to end where the cut rule says.
QByteArray readAllWindows(XLineReaderDA& r, XLineReaderDA::Cut cut, int* windows, bool* cutsOk) {
    QByteArray all;
    XLineReaderDA::Window w;
    *windows = 0;
    *cutsOk = true;
    bool more = r.firstWindow(cut, w);
    while (more) {
        ++*windows;
        if (int64_t(w.offset) != all.size()) *cutsOk = false;
        all.append(w.data, int(w.size));
        if (!w.last) {
            if (w.size == 0 || w.data[w.size - 1] != '\n') *cutsOk = false;
            if (cut == XLineReaderDA::CUT_PARAGRAPH) {
                // The window's last line is blank (white space only).
                const QByteArray win(w.data, int(w.size));
                const int prev = win.lastIndexOf('\n', win.size() - 2);
                if (!win.mid(prev + 1, win.size() - prev - 2).trimmed().isEmpty()) *cutsOk = false;
            }
        }
        if (w.last) break;
        more = r.nextWindow(cut, w);
    }
    return all;
}
}

class TestLineReader : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

private slots:
    void countsLinesAndReturnsThemByIndex() {
        tftest::TestDir d;
        struct Case {
            QByteArray text;
            uint64_t lines;
        };
        const Case cases[] = {{"", 0}, {"a", 1}, {"a\n", 1}, {"a\nb", 2}, {"\n\n", 2}, {"x\r\ny\r\n", 2}, {"l1\nl2\nl3\n", 3}};
        XLineReaderDA r;   // one reader for all files: the buffer is reused
        for (const Case& c : cases) {
            const QString p = d.file(QStringLiteral("f.txt"), c.text);
            QVERIFY(r.openFile(p, 0x10000, true));
            QCOMPARE(r.getMemorySize(), uint64_t(c.text.size()));
            QCOMPARE(r.countLines(), c.lines);
        }
        const QString p = d.file(QStringLiteral("g.txt"), "first\r\nzweite Zeile ä\n\nlast");
        QVERIFY(r.openFile(QFileInfo(p), 0x10000, true));
        QCOMPARE(r.lineAt(0), QStringLiteral("first"));
        QCOMPARE(r.lineAt(1), QStringLiteral("zweite Zeile ä"));
        QCOMPARE(r.lineAt(2), QString());
        QCOMPARE(r.lineAt(3), QStringLiteral("last"));
        QCOMPARE(r.lineAt(4), QString());
        QVERIFY(!r.isBinary());

        // The same answers when the file is read in small windows.
        QByteArray big;
        for (int i = 0; i < 5000; ++i) big += "line " + QByteArray::number(i) + (i % 7 ? "\n" : "\r\n");
        big += "tail without newline";
        const QString bp = d.file(QStringLiteral("big.txt"), big);
        r.setWindowSize(4096);
        QVERIFY(r.openFile(bp, 0x10000, true));
        QVERIFY(!r.isWhole());
        QCOMPARE(r.countLines(), uint64_t(5001));
        QCOMPARE(r.lineAt(4321), QStringLiteral("line 4321"));
        QCOMPARE(r.lineAt(5000), QStringLiteral("tail without newline"));
        QCOMPARE(r.getMemorySize(), uint64_t(big.size()));
        QCOMPARE(tav::bytescan::count_byte(big.constData(), size_t(big.size()), '\n'), size_t(5000));
    }

    void windowsEndAtLineAndParagraphBoundaries() {
        tftest::TestDir d;
        QByteArray text;
        for (int i = 0; i < 3000; ++i) {
            text += "sentence number " + QByteArray::number(i) + ". ";
            if (i % 5 == 4) text += "\n";
            if (i % 40 == 39) text += "  \n";   // a blank line (white space only) ends a paragraph
        }
        text += QByteArray(9000, 'z');        // a last line longer than the window
        const QString p = d.file(QStringLiteral("w.txt"), text);
        XLineReaderDA r;
        r.setWindowSize(4096);
        QVERIFY(r.openFile(p, 0x10000, true));
        int windows = 0;
        bool cutsOk = false;
        QCOMPARE(readAllWindows(r, XLineReaderDA::CUT_LINE, &windows, &cutsOk).size(), text.size());
        QVERIFY(windows > 15);
        QVERIFY(!cutsOk);   // the long last line had to be cut inside
        // Read again from the start (a second search of the same file), by paragraphs.
        const QByteArray again = readAllWindows(r, XLineReaderDA::CUT_PARAGRAPH, &windows, &cutsOk);
        QCOMPARE(again, text);
        QCOMPARE(r.countLines(), uint64_t(text.count('\n') + 1));

        // Without the overlong tail every cut lands on a boundary.
        const QString p2 = d.file(QStringLiteral("w2.txt"), text.left(text.lastIndexOf('\n') + 1));
        QVERIFY(r.openFile(p2, 0x10000, true));
        QVERIFY(readAllWindows(r, XLineReaderDA::CUT_PARAGRAPH, &windows, &cutsOk).endsWith("\n"));
        QVERIFY(cutsOk);
        QVERIFY(readAllWindows(r, XLineReaderDA::CUT_LINE, &windows, &cutsOk).size() > 0);
        QVERIFY(cutsOk);

        // Growing windows: a line or paragraph longer than the window is held
        // whole, up to the largest size; only beyond that is it cut.
        QByteArray grow;
        for (int i = 0; i < 400; ++i) grow += "a line without a blank one after it\n";   // one paragraph of 14 KiB
        grow += "\n" + QByteArray(9000, 'z') + "\nend\n";                               // and a line of 9000 bytes
        XLineReaderDA g;
        g.setWindowSizes(4096, 32 << 10);
        QCOMPARE(g.maxWindowSize(), size_t(32 << 10));
        QVERIFY(g.openFile(d.file(QStringLiteral("grow.txt"), grow), 0x10000, true));
        QVERIFY(!g.isWhole());
        QCOMPARE(readAllWindows(g, XLineReaderDA::CUT_PARAGRAPH, &windows, &cutsOk), grow);
        QVERIFY(cutsOk);
        QVERIFY(windows >= 2);
        QCOMPARE(readAllWindows(g, XLineReaderDA::CUT_LINE, &windows, &cutsOk), grow);
        QVERIFY(cutsOk);
        QVERIFY(windows > 4);
        QCOMPARE(g.countLines(), uint64_t(grow.count('\n')));
        const QByteArray huge = QByteArray(40 << 10, 'y') + "\nend\n";
        QVERIFY(g.openFile(d.file(QStringLiteral("huge.txt"), huge), 0x10000, true));
        QCOMPARE(readAllWindows(g, XLineReaderDA::CUT_LINE, &windows, &cutsOk), huge);
        QVERIFY(!cutsOk);   // the line is longer than the largest window
    }

    void badFilesFailCleanlyAndBinaryIsProbed() {
        tftest::TestDir d;
        XLineReaderDA r;
        QVERIFY(!r.openFile(d.abs(QStringLiteral("vanished.txt")), 0x10000, true));
        QVERIFY(!r.isOpen());
        QCOMPARE(r.countLines(), uint64_t(0));
        QCOMPARE(r.lineAt(0), QString());
        QVERIFY(!r.openFile(d.dir(QStringLiteral("folder")), 0x10000, true));
        const QByteArray fifo = QFile::encodeName(d.abs(QStringLiteral("pipe")));
        QCOMPARE(::mkfifo(fifo.constData(), 0600), 0);
        QVERIFY(!r.openFile(d.abs(QStringLiteral("pipe")), 0x10000, true));   // returns, does not block

        QByteArray bin(70000, 'a');
        bin[60000] = '\0';
        const QString bp = d.file(QStringLiteral("b.bin"), bin);
        QVERIFY(r.openFile(bp, 0x10000, true));
        QVERIFY(r.isBinary());
        QVERIFY(r.openFile(bp, 1000, true));   // NUL beyond the probe
        QVERIFY(!r.isBinary());
        QVERIFY(r.openFile(bp, 0x10000, false));
        QVERIFY(!r.isBinary());
    }

    // Holes of a sparse file are skipped, yet hits keep their file positions and
    // the line count is that of the whole file (holes hold zeros, no line ends).
    void sparseFilesAreSearchedByTheirDataOnly() {
        tftest::TestDir d;
        const QString path = d.abs(QStringLiteral("sparse.img"));
        const uint64_t gib = uint64_t(1) << 30;
        struct Piece {
            uint64_t at;
            QByteArray bytes;
        };
        auto make = [&](const std::vector<Piece>& pieces, uint64_t size) {
            QFile f(path);
            QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
            for (const Piece& p : pieces) {
                QVERIFY(f.seek(qint64(p.at)));
                QCOMPARE(f.write(p.bytes), qint64(p.bytes.size()));
            }
            QVERIFY(f.resize(qint64(size)));
        };
        const uint64_t size = 3 * gib;
        make({{0, "alpha\n"}, {gib + 12345, "needle one\n"}, {size - 10, "needle two"}}, size);
        struct stat st;
        QCOMPARE(::stat(QFile::encodeName(path).constData(), &st), 0);
        if (uint64_t(st.st_blocks) * 512 >= size) QSKIP("this file system stores no holes");

        tav::find::XContentFilter filter;
        QVERIFY(filter.createSymbols(QStringLiteral("needle"), false));
        for (uint32_t scope : {0u, 1u}) {
            filter.setScope(scope);
            XLineReaderDA r;
            r.setWindowSizes(128 << 10, 8 << 20);
            QVERIFY(r.openFile(path, 0x10000, true));
            QVERIFY(r.isBinary());   // zeros within the probe
            const tav::find::XRamLayer marks = filter.find(0, r);
            QCOMPARE(marks.size(), 2);
            QCOMPARE(marks.marks()[0].pos(), int64_t(gib + 12345));
            QCOMPARE(marks.marks()[1].pos(), int64_t(size - 10));
            QCOMPARE(r.countLines(), uint64_t(3));
            QCOMPARE(r.getMemorySize(), size);
            QVERIFY(r.skippedHoleBytes() > size - gib);   // not read as zeros
            QCOMPARE(r.readError(), 0);
        }

        // Starting and ending with a hole: the zeros after the last line end make a line.
        make({{2 * gib, "x needle\n"}}, size);
        XLineReaderDA r;
        QVERIFY(r.openFile(path, 0x10000, true));
        QVERIFY(r.isBinary());
        const tav::find::XRamLayer marks = filter.find(0, r);
        QCOMPARE(marks.size(), 1);
        QCOMPARE(marks.marks()[0].pos(), int64_t(2 * gib + 2));
        QCOMPARE(r.countLines(), uint64_t(2));
        QFile::remove(path);
    }
};

QTEST_GUILESS_MAIN(TestLineReader)
#include "test_line_reader.moc"
