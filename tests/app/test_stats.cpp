// Text statistics: the counting and its page, the preview with its background
// run, and the headless "stat" command.
#include "common/TestEnv.h"

#include "base/util/Format.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/widgets/XBrowser.h"
#include "gui/widgets/XTypedComboBox.h"
#include "src/gui/stats/Stats.h"
#include "src/gui/stats/StatsCounter.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

using tavFinder::StatsCounter;
using tavFinder::StatsOptions;
using tavFinder::StatsResult;

namespace {
struct Run {
    int code = -1;
    QStringList out;
};
QStringList rowTexts(const StatsResult& r) {
    QStringList l;
    for (const auto& row : r.rows) l << tav::fill("$=$", row.text, row.count);
    return l;
}
}

class TestStats : public QObject {
    Q_OBJECT
    tftest::TestEnv env;
    tftest::TestDir dir;
    std::atomic<bool> running{true};

    Run stat(const QStringList& args) {
        QProcess p;
        p.setProcessEnvironment(env.processEnvironment(false));   // must run without any display
        p.setWorkingDirectory(dir.path());
        p.start(tftest::TestEnv::programPath(), QStringList{"stat"} + args);
        Run r;
        if (!p.waitForFinished(60000)) return r;
        r.code = p.exitCode();
        r.out = QString::fromUtf8(p.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        return r;
    }

private slots:
    void countingCharactersAndWords();
    void pageFormat();
    void statCommand();
    void previewRunsAndStops();
};

void TestStats::countingCharactersAndWords() {
    StatsOptions chars;
    chars.words = false;
    // Delimiters (blanks, punctuation, line ends) are never counted; ties in character order.
    const QString f1 = dir.file(QStringLiteral("chars.txt"), "b, a! c?\r\nc\t(b) \"a\" \xc3\xa4\n");
    StatsResult r = StatsCounter::count(running, QFileInfo(f1), chars);
    QVERIFY(r.opened && !r.stopped);
    QCOMPARE(rowTexts(r), (QStringList{"a=2", "b=2", "c=2", QString::fromUtf8("\xc3\xa4=1")}));
    QCOMPARE(r.symbols, uint64_t(7));
    QCOMPARE(r.lines, uint64_t(2));
    QCOMPARE(r.rows[3].bytes, QStringLiteral("C3 A4"));

    // Without the filter the blanks count too.
    chars.filterDelimiter = false;
    const QString aab = dir.file(QStringLiteral("aab.txt"), "a a b");
    r = StatsCounter::count(running, QFileInfo(aab), chars);
    QCOMPARE(rowTexts(r), (QStringList{" =2", "a=2", "b=1"}));
    chars.filterDelimiter = true;

    // A line longer than what is held at once loses nothing at the cuts.
    chars.lineLenMax = 4096;
    const QString longLine = dir.file(QStringLiteral("long.txt"), QByteArray(10000, 'x') + "\ny\n" + QByteArray(5000, 'z'));
    r = StatsCounter::count(running, QFileInfo(longLine), chars);
    QCOMPARE(rowTexts(r), (QStringList{"x=10000", "z=5000", "y=1"}));

    // Words: case-sensitive, shorter ones left out, ties in ascending order.
    StatsOptions words;
    words.words = true;
    words.wordLen = 3;
    const QString f2 = dir.file(QStringLiteral("words.txt"), "word Word word, an\nzeta alpha.zeta-alpha on\n");
    r = StatsCounter::count(running, QFileInfo(f2), words);
    QCOMPARE(rowTexts(r), (QStringList{"alpha=2", "word=2", "zeta=2", "Word=1"}));
    QCOMPARE(r.rows[0].bytes, QStringLiteral("---"));
    QCOMPARE(r.symbols, uint64_t(7));
    // Own delimiters: the hyphen and the dot no longer split.
    words.delimiters = QStringLiteral(" ,\n");
    r = StatsCounter::count(running, QFileInfo(f2), words);
    QCOMPARE(rowTexts(r), (QStringList{"word=2", "Word=1", "alpha.zeta-alpha=1", "zeta=1"}));

    // A cleared flag stops the count; a missing file does not open.
    std::atomic<bool> stopped{false};
    QVERIFY(StatsCounter::count(stopped, QFileInfo(f2), words).stopped);
    QCOMPARE(StatsCounter::statistics(stopped, QFileInfo(f2), 0, 1, "#fff", "#000"), QStringLiteral("break!"));
    QVERIFY(!StatsCounter::count(running, QFileInfo(dir.abs(QStringLiteral("gone.txt"))), words).opened);
}

void TestStats::pageFormat() {
    QCOMPARE(StatsCounter::percentage(5.5), QStringLiteral("05.500 "));
    QCOMPARE(StatsCounter::percentage(200.0 / 3.0), QStringLiteral("66.667 "));
    QCOMPARE(StatsCounter::percentage(100.0), QStringLiteral("100.000 "));
    QCOMPARE(StatsCounter::percentage(0.0004), QStringLiteral("00.000 "));

    const QString aab = dir.file(QStringLiteral("page.txt"), "a a b");
    const QString page = StatsCounter::statistics(running, QFileInfo(aab), 0, 1, QStringLiteral("#ffffff"), QStringLiteral("#000000"));
    QVERIFY(page.startsWith(QStringLiteral("<!DOCTYPE HTML PUBLIC")));
    QVERIFY(page.contains(QStringLiteral("<body style=\"background-color:#ffffff;color:#000000;\">\n")));
    QVERIFY(page.contains(tav::fill("<h2>\"$\"</h2>", QFileInfo(aab).absoluteFilePath())));
    QVERIFY(page.contains(QStringLiteral("<td>5 bytes  ~5 bytes</td>")));
    QVERIFY(page.contains(QStringLiteral("read 1 lines, found 3 symbols, 2 are unique ( in ")));
    QVERIFY(page.contains(QStringLiteral("<th>Number</th><th>Char</th><th>Count</th><th>Percentage</th><th>Bytes</th>")));
    const QString c = QStringLiteral("<td style='text-align:center;'>");
    QVERIFY(page.contains(QStringLiteral("<tr>") + c + "1</td>" + c + "a</td>" + c + "2</td>" + c + "66.667 </td>" + c + "61</td>"));
    QVERIFY(page.contains(QStringLiteral("<tr>") + c + "2</td>" + c + "b</td>" + c + "1</td>" + c + "33.333 </td>" + c + "62</td>"));
    QVERIFY(page.endsWith(QStringLiteral("</tableResult></body>\n</html>\n")));

    // Row limit; word pages have no bytes column.
    StatsOptions o;
    const StatsResult r = StatsCounter::count(running, QFileInfo(aab), o);
    QCOMPARE(StatsCounter::table(r, true, 1).count(QStringLiteral("<tr>")), 2);
    QCOMPARE(StatsCounter::table(r, true, 0).count(QStringLiteral("<tr>")), 3);
    QVERIFY(!StatsCounter::table(r, false, 0).contains(QStringLiteral("Bytes")));

    const QString missing = StatsCounter::statistics(running, QFileInfo(dir.abs(QStringLiteral("nope.txt"))), 0, 1, "#fff", "#000");
    QVERIFY(missing.contains(tav::fill("<p>Problems with '$'</p>", QFileInfo(dir.abs(QStringLiteral("nope.txt"))).absoluteFilePath())));
}

void TestStats::statCommand() {
    dir.file(QStringLiteral("aab.txt"), "a a b");
    Run r = stat({"--file", "aab.txt", "--treat", "QChar"});
    QCOMPARE(r.code, 0);
    QCOMPARE(r.out.mid(0, 3), (QStringList{"Number\tChar\tCount\tPercentage\tBytes", "1\ta\t2\t66.667\t61", "2\tb\t1\t33.333\t62"}));
    QVERIFY(r.out.last().startsWith(QStringLiteral("read 1 lines, found 3 symbols, 2 are unique")));

    r = stat({"--file", "aab.txt", "--treat", "QChar", "--filterDelimiter", "false", "--show", "1", "--logTrailler", "false"});
    QCOMPARE(r.code, 0);
    QCOMPARE(r.out, (QStringList{"Number\tChar\tCount\tPercentage\tBytes", "1\t \t2\t40.000\t20"}));

    dir.file(QStringLiteral("w.txt"), "ab,ab;cd:cd.xy+z\n");
    r = stat({"--file", "w.txt", "--treat", "Word", "--wordLen", "2", "--delim", ",;:.\n", "--logTrailler", "false", "--show", "all"});
    QCOMPARE(r.code, 0);
    QCOMPARE(r.out, (QStringList{"Number\tWord\tCount\tPercentage", "1\tab\t2\t40.000", "2\tcd\t2\t40.000", "3\txy+z\t1\t20.000"}));

    // Usage problems: 6, with the scheme.
    r = stat({"--file", "aab.txt"});
    QCOMPARE(r.code, 6);
    QCOMPARE(r.out.mid(0, 2), (QStringList{"Argument Problems", "scheme of stat command"}));
    QVERIFY(r.out.contains(QStringLiteral("wordLen works together with Word only")));
    QCOMPARE(stat({"--file", "aab.txt", "--treat", "QChar", "--bogus", "1"}).code, 6);
    QCOMPARE(stat({"--file", "aab.txt", "--treat", "QChar", "--show", "ten"}).code, 6);
    r = stat({"--file", "missing.txt", "--treat", "QChar"});
    QCOMPARE(r.code, 6);
    QCOMPARE(r.out, QStringList{"File 'missing.txt' does not exist"});
    r = stat({"--file", "aab.txt", "--treat", "QChar", "--lineLenMax", "2000000001"});
    QCOMPARE(r.code, 6);
    QCOMPARE(r.out, QStringList{"lineLenMax is too big, max is 2,000,000,000 and we have here 2,000,000,001"});

    // A treatment that does not exist: 1.
    r = stat({"--file", "aab.txt", "--treat", "Line"});
    QCOMPARE(r.code, 1);
    QCOMPARE(r.out, QStringList{"--treat must be QChar or Word"});
}

void TestStats::previewRunsAndStops() {
    tavFinder::Stats stats;
    stats.ini();
    QWidget* w = stats.widget_preview();
    QVERIFY(w);
    w->resize(800, 500);
    w->show();
    QCOMPARE(stats.comboWordLen()->selected(), 3u);
    QCOMPARE(stats.comboWordLen()->count(), 20);
    QCOMPARE(stats.editShow()->text(), QStringLiteral("50"));

    const QString text = dir.file(QStringLiteral("prev.txt"), "x y z x y x\n");
    QVERIFY(stats.open_file(QFileInfo(text)));
    QVERIFY(stats.browser()->toPlainText().contains(QFileInfo(text).absoluteFilePath()));
    QVERIFY(!stats.browser()->toPlainText().contains(QStringLiteral("symbols")));

    // Character statistics of every row ("All" disables the row count).
    stats.comboWordLen()->setSelected(1);
    stats.checkAll()->setChecked(true);
    QVERIFY(!stats.editShow()->isEnabled());
    stats.editShow()->setText(QStringLiteral("1"));
    QTest::mouseClick(stats.buttonGo(), Qt::LeftButton);
    QTRY_VERIFY(stats.browser()->toPlainText().contains(QStringLiteral("found 6 symbols, 3 are unique")));
    QCOMPARE(stats.buttonGo()->text(), QStringLiteral("Create word len statistics"));
    QVERIFY(!stats.isRunning());
    const QString plain = stats.browser()->toPlainText();
    QVERIFY(plain.indexOf(QStringLiteral("50.000")) < plain.indexOf(QStringLiteral("33.333")));
    QVERIFY(plain.contains(QStringLiteral("16.667")));

    // A row count that is no number: nothing starts.
    stats.checkAll()->setChecked(false);
    stats.editShow()->setText(QStringLiteral("many"));
    tftest::LogCapture logs;
    stats.on_go();
    QVERIFY(!stats.isRunning());
    QVERIFY(logs.contains(QStringLiteral("private_Stats::ini, <<<many>>> is not a valid number")));

    // Stopping a run shows the stopped page, and the run's late result never replaces it.
    QByteArray big;
    for (int i = 0; i < 400000; ++i) big += "lorem ipsum dolor sit amet, consectetur adipiscing elit sed do\n";
    const QString bigFile = dir.file(QStringLiteral("big.txt"), big);
    QVERIFY(stats.open_file(QFileInfo(bigFile)));
    stats.editShow()->setText(QStringLiteral("10"));
    stats.on_go();
    QVERIFY(stats.isRunning());
    QCOMPARE(stats.buttonGo()->text(), QStringLiteral("Cancel..."));
    stats.on_go();
    QVERIFY(!stats.isRunning());
    QCOMPARE(stats.buttonGo()->text(), QStringLiteral("Go"));
    QVERIFY(stats.browser()->toPlainText().contains(QStringLiteral("Generating Statistics Stopped")));
    QTest::qWait(1500);
    QVERIFY(stats.browser()->toPlainText().contains(QStringLiteral("Generating Statistics Stopped")));
    QVERIFY(!stats.browser()->toPlainText().contains(QStringLiteral("symbols")));

    // Word statistics of the big file, ten rows.
    stats.comboWordLen()->setSelected(5);
    stats.on_go();
    QTRY_VERIFY_WITH_TIMEOUT(stats.browser()->toPlainText().contains(QStringLiteral("found 2,000,000 symbols, 5 are unique")), 90000);   // minutes under the sanitizers
}

QTEST_MAIN(TestStats)
#include "test_stats.moc"
