#include "base/find/XFileFilter.h"
#include "common/TestEnv.h"

#include <QDateTime>
#include <QtTest>

using tav::XFileFilter;

namespace {
bool nameOk(const XFileFilter::Prepared& p, const QString& name) {
    const QByteArray u = name.toUtf8();
    return p.matchFileName(u.constData(), size_t(u.size()));
}
bool folderExcluded(const XFileFilter::Prepared& p, const QString& name) {
    const QByteArray u = name.toUtf8();
    return p.isExcludedFolder(u.constData(), size_t(u.size()));
}
int64_t ms(int y, int mo, int d, int h = 0, int mi = 0, int s = 0, int msec = 0) {
    return QDateTime(QDate(y, mo, d), QTime(h, mi, s, msec)).toMSecsSinceEpoch();
}
}

class TestFileFilter : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

private slots:
    void patternsMatchWholeNamesIgnoringCase() {
        XFileFilter f;
        QVERIFY(f.isEmpty());
        f.setPattern(QStringLiteral(" *.CPP , MyFile?, *bitmap* "), false);
        QVERIFY(f.hasPattern(false));
        QCOMPARE(f.pattern(false), QStringLiteral("*.CPP , MyFile?, *bitmap*"));
        auto p = f.prepare();
        QVERIFY(nameOk(p, QStringLiteral("main.cpp")));
        QVERIFY(nameOk(p, QStringLiteral("MAIN.Cpp")));
        QVERIFY(!nameOk(p, QStringLiteral("main.cpp.bak")));   // whole name, not a part of it
        QVERIFY(nameOk(p, QStringLiteral("myfile1")));
        QVERIFY(nameOk(p, QStringLiteral("MyFileÄ")));          // '?' takes one character, not one byte
        QVERIFY(!nameOk(p, QStringLiteral("MyFile12")));
        QVERIFY(nameOk(p, QStringLiteral("a_BitMap_b.png")));
        QVERIFY(!nameOk(p, QStringLiteral("readme.txt")));

        // Non-ASCII names fold too.
        f.setPattern(QStringLiteral("GRÖSSE*"), false);
        QVERIFY(nameOk(f.prepare(), QStringLiteral("größe.txt")) == false);   // ß is not ss
        f.setPattern(QStringLiteral("ÄRGER*"), false);
        QVERIFY(nameOk(f.prepare(), QStringLiteral("ärger.txt")));

        // Excluded patterns take files and folders out; an empty text clears a list.
        f.setPattern(QString(), false);
        f.setPattern(QStringLiteral("node_modules,.git,*.o"), true);
        p = f.prepare();
        QVERIFY(folderExcluded(p, QStringLiteral("node_modules")));
        QVERIFY(folderExcluded(p, QStringLiteral(".GIT")));
        QVERIFY(!folderExcluded(p, QStringLiteral("src")));
        QVERIFY(!nameOk(p, QStringLiteral("x.o")));
        QVERIFY(nameOk(p, QStringLiteral("x.c")));
        QVERIFY(nameOk(p, QStringLiteral("git")));
        // Without include patterns every other file passes; star runs backtrack.
        QVERIFY(XFileFilter::wildcardMatch("*a*b", 4, "xxaxxaxb", 8));
        QVERIFY(!XFileFilter::wildcardMatch("*a*b", 4, "xxaxxaxbc", 9));
        QVERIFY(XFileFilter::wildcardMatch("**", 2, "", 0));
    }

    void extensionSetComparesTheLowerCasedLastExtension() {
        XFileFilter f;
        f.textFileExtensions = {QStringLiteral("txt"), QStringLiteral("cpp"), QStringLiteral("gitignore")};
        const auto p = f.prepare();
        QVERIFY(nameOk(p, QStringLiteral("a.TXT")));
        QVERIFY(nameOk(p, QStringLiteral("archive.tar.cpp")));
        QVERIFY(!nameOk(p, QStringLiteral("a.txt.gz")));
        QVERIFY(!nameOk(p, QStringLiteral("Makefile")));      // no dot: no extension
        QVERIFY(nameOk(p, QStringLiteral(".gitignore")));
        QVERIFY(!nameOk(p, QStringLiteral("a.")));
        // Combined with patterns, both must agree.
        f.setPattern(QStringLiteral("a*"), false);
        QVERIFY(!nameOk(f.prepare(), QStringLiteral("b.txt")));
        QVERIFY(nameOk(f.prepare(), QStringLiteral("a.txt")));
    }

    void boundsAreInclusiveWithWholeDaysAndYears() {
        XFileFilter f;
        // Sizes: inclusive, "between" in either order.
        f.sizeArea = XFileFilter::LESS_EQUAL;
        f.size1 = 100;
        QVERIFY(f.needsStat());
        QVERIFY(f.bounds().contains(100, 0));
        QVERIFY(!f.bounds().contains(101, 0));
        f.sizeArea = XFileFilter::GREATER_EQUAL;
        QVERIFY(f.bounds().contains(100, 0));
        QVERIFY(!f.bounds().contains(99, 0));
        f.sizeArea = XFileFilter::EQUAL;
        QVERIFY(f.bounds().contains(100, 0) && !f.bounds().contains(99, 0) && !f.bounds().contains(101, 0));
        f.sizeArea = XFileFilter::BETWEEN;
        f.size1 = 500;
        f.size2 = 10;
        QVERIFY(f.bounds().contains(10, 0) && f.bounds().contains(500, 0));
        QVERIFY(!f.bounds().contains(9, 0) && !f.bounds().contains(501, 0));
        f.sizeArea = XFileFilter::NONE;
        QVERIFY(!f.needsStat());

        // A date at local midnight stands for the whole day.
        const int64_t day = ms(2021, 3, 14);
        f.timeArea = XFileFilter::EQUAL;
        f.time1 = day;
        auto b = f.bounds();
        QVERIFY(b.contains(0, day));
        QVERIFY(b.contains(0, ms(2021, 3, 14, 23, 59, 59, 999)));
        QVERIFY(!b.contains(0, ms(2021, 3, 15)));
        QVERIFY(!b.contains(0, day - 1));
        f.timeArea = XFileFilter::LESS_EQUAL;   // "before" that day includes the day
        b = f.bounds();
        QVERIFY(b.contains(0, ms(2021, 3, 14, 18)) && b.contains(0, ms(1999, 1, 1)));
        QVERIFY(!b.contains(0, ms(2021, 3, 15)));
        f.timeArea = XFileFilter::GREATER_EQUAL;
        b = f.bounds();
        QVERIFY(b.contains(0, day) && !b.contains(0, day - 1));
        f.timeArea = XFileFilter::BETWEEN;
        f.time1 = ms(2021, 3, 20);
        f.time2 = ms(2021, 3, 10);   // reversed on purpose
        b = f.bounds();
        QVERIFY(b.contains(0, ms(2021, 3, 10)) && b.contains(0, ms(2021, 3, 20, 22)));
        QVERIFY(!b.contains(0, ms(2021, 3, 21)) && !b.contains(0, ms(2021, 3, 9, 23, 59)));

        // "year" as the filter panel builds it: 1 January .. 1 January next year - 1 s.
        f.time1 = ms(2021, 1, 1);
        f.time2 = ms(2022, 1, 1) - 1000;
        b = f.bounds();
        QVERIFY(b.contains(0, ms(2021, 1, 1)));
        QVERIFY(b.contains(0, ms(2021, 12, 31, 23, 59, 59, 500)));   // the last second counts whole
        QVERIFY(!b.contains(0, ms(2022, 1, 1)));
        QVERIFY(!b.contains(0, ms(2020, 12, 31, 23, 59, 59, 999)));
        // A bound with milliseconds is exact.
        f.timeArea = XFileFilter::LESS_EQUAL;
        f.time1 = ms(2021, 5, 5, 10, 0, 0, 250);
        QVERIFY(f.bounds().contains(0, f.time1) && !f.bounds().contains(0, f.time1 + 1));
        // A year code that was not turned into a range is no condition.
        f.timeArea = XFileFilter::YEAR;
        QVERIFY(!f.needsStat());
        QCOMPARE(XFileFilter::area_to_String(XFileFilter::BETWEEN), QStringLiteral("BETWEEN"));
    }

    void matchTestsARealFile() {
        tftest::TestDir d;
        const QString p = d.file(QStringLiteral("Notes.TXT"), QByteArray(2000, 'x'));
        XFileFilter f;
        f.textFileExtensions = {QStringLiteral("txt")};
        f.sizeArea = XFileFilter::GREATER_EQUAL;
        f.size1 = 2000;
        QVERIFY(f.match(QFileInfo(p)));
        f.size1 = 2001;
        QVERIFY(!f.match(QFileInfo(p)));
        QVERIFY(!f.match(QFileInfo(d.abs(QStringLiteral("missing.txt")))));
        QVERIFY(f.toString(false).contains(QStringLiteral("text files")));
        QVERIFY(f.toString(true).contains(QStringLiteral("GREATER_EQUAL")));
    }
};

QTEST_GUILESS_MAIN(TestFileFilter)
#include "test_file_filter.moc"
