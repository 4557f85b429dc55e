#include "common/TestEnv.h"

#include <QtTest>

namespace {
struct Run {
    int code = -1;
    QStringList out;   // lines of standard output
    QString err;
};
}

class TestFindCommand : public QObject {
    Q_OBJECT
    tftest::TestEnv env;
    tftest::TestDir d;

    Run run(const QStringList& args, const QString& workDir = QString()) {
        QProcess p;
        p.setProcessEnvironment(env.processEnvironment(false));   // headless: needs no display at all
        if (!workDir.isEmpty()) p.setWorkingDirectory(workDir);
        p.start(tftest::TestEnv::programPath(), QStringList{"find"} + args);
        Run r;
        if (!p.waitForFinished(60000)) return r;
        r.code = p.exitCode();
        r.out = QString::fromUtf8(p.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        r.err = QString::fromUtf8(p.readAllStandardError());
        return r;
    }

private slots:
    void initTestCase() {
        d.file(QStringLiteral("b/two.txt"), "Return return\nreturn");
        d.file(QStringLiteral("a/one.cpp"), "int f() { return 0; }\n");
        d.file(QStringLiteral("a/three.txt"), "return; return\n");
        d.file(QStringLiteral("a/none.md"), "nothing\n");
        d.file(QStringLiteral(".hidden/h.txt"), "return\n");
        d.file(QStringLiteral("x.bin"), QByteArray("\0return", 7));
    }

    void contentSearchPrintsHitFilesMostHitsFirst() {
        Run r = run({"--dir", d.path(), "--find", "return"});
        QCOMPARE(r.code, 0);
        QCOMPARE(r.out.size(), 5);
        QCOMPARE(r.out[0], QStringLiteral("3\t") + d.abs(QStringLiteral("b/two.txt")));
        QCOMPARE(r.out[1], QStringLiteral("2\t") + d.abs(QStringLiteral("a/three.txt")));
        QCOMPARE(r.out[2], QStringLiteral("1\t") + d.abs(QStringLiteral("a/one.cpp")));   // ties by path
        QCOMPARE(r.out[3], QStringLiteral("1\t") + d.abs(QStringLiteral("x.bin")));
        QVERIFY2(QRegularExpression(QStringLiteral("^files-total:5 => 72 bytes, files-match:4, match-total:7 - \\d+\\.\\d{3} sec$"))
                     .match(r.out[4])
                     .hasMatch(),
                 qPrintable(r.out[4]));

        // Hidden files, text files only, patterns, regular expressions and scopes.
        r = run({"--dir", d.path(), "--find", "return", "--hidden", "true", "--textFiles", "true", "--npattern", "b"});
        QCOMPARE(r.code, 0);
        QCOMPARE(r.out.size(), 4);   // three.txt, h.txt, one.cpp + summary (b/ pruned, x.bin is no text)
        QVERIFY(r.out.last().startsWith(QStringLiteral("files-total:4 => ")));
        r = run({"--dir", d.path(), "--find", "^return", "--regex", "true", "--pattern", "*.txt", "--threads", "1"});
        // Case is ignored as in simple expressions, and ^ is at line starts.
        QCOMPARE(r.out.mid(0, 2), (QStringList{QStringLiteral("2\t") + d.abs(QStringLiteral("b/two.txt")),
                                               QStringLiteral("1\t") + d.abs(QStringLiteral("a/three.txt"))}));
        r = run({"--dir", d.path(), "--find", "^return", "--regex", "true", "--matchCase", "true", "--pattern", "*.txt"});
        QCOMPARE(r.out.mid(0, 2), (QStringList{QStringLiteral("1\t") + d.abs(QStringLiteral("a/three.txt")),
                                               QStringLiteral("1\t") + d.abs(QStringLiteral("b/two.txt"))}));
        // The query language with both switches: "return" as a whole word in the same paragraph as "0" or "f".
        r = run({"--dir", d.path(), "--find", "(0 | f) NEAR/1 return", "--wholeWords", "true", "--show", "hits"});
        const QString one = d.abs(QStringLiteral("a/one.cpp"));
        QCOMPARE(r.out.mid(0, 3), (QStringList{one + "\t4\t1", one + "\t10\t6", one + "\t17\t1"}));
        QCOMPARE(r.out.size(), 4);
        QCOMPARE(run({"--dir", d.path(), "--find", "Return -return", "--matchCase", "true"}).code, 1);
        r = run({"--dir", d.path(), "--find", "return -int", "--scope", "Paragraph", "--show", "count"});
        QCOMPARE(r.out.size(), 2);
        QVERIFY(r.out[0].contains(QStringLiteral("files-match:3, match-total:6")));
        QCOMPARE(r.out[1], QStringLiteral("lines:6, bytes:72"));
        r = run({"--dir", d.path(), "--find", "return", "--show", "hits", "--pattern", "t*.txt"});
        QCOMPARE(r.out.mid(0, 3), (QStringList{d.abs(QStringLiteral("b/two.txt")) + "\t0\t6", d.abs(QStringLiteral("b/two.txt")) + "\t7\t6",
                                               d.abs(QStringLiteral("b/two.txt")) + "\t14\t6"}));
        QCOMPARE(r.out.size(), 6);

        // Nothing found: exit code 1.
        r = run({"--dir", d.path(), "--find", "zebra"});
        QCOMPARE(r.code, 1);
        QVERIFY(r.out.last().contains(QStringLiteral("files-match:0, match-total:0")));
    }

    void fileSearchPrintsSortedPathsAndTotals() {
        Run r = run({"--dir", QStringLiteral("."), "--pattern", "*.txt,*.MD"}, d.path());   // relative to the caller
        QCOMPARE(r.code, 0);
        QCOMPARE(r.out, (QStringList{d.abs(QStringLiteral("a/none.md")), d.abs(QStringLiteral("a/three.txt")),
                                     d.abs(QStringLiteral("b/two.txt")), QStringLiteral("files: total:5, files match:3")}));
        // Size bounds are inclusive.
        r = run({"--dir", d.path(), "--minSize", "15", "--maxSize", "20", "--show", "count"});
        QCOMPARE(r.out, QStringList{QStringLiteral("files: total:5, files match:2")});
        r = run({"--dir", d.path(), "--maxSize", "8"});
        QCOMPARE(r.out, (QStringList{d.abs(QStringLiteral("a/none.md")), d.abs(QStringLiteral("x.bin")),
                                     QStringLiteral("files: total:5, files match:2")}));
        r = run({"--dir", d.path(), "--pattern", "*.none", "--show", "count"});
        QCOMPARE(r.code, 1);
        QCOMPARE(r.out, QStringList{QStringLiteral("files: total:5, files match:0")});
    }

    void badInputIsRefusedWithAMessage() {
        const QList<QStringList> bad = {
            {"--dir", d.abs(QStringLiteral("missing"))},
            {"--find", "x"},
            {"--dir", d.path(), "--find", "(unclosed", "--regex", "true"},
            {"--dir", d.path(), "--find", "\"open quote"},
            {"--dir", d.path(), "--find", "a NEAR"},
            {"--dir", d.path(), "--find", "x", "--matchCase", "perhaps"},
            {"--dir", d.path(), "--find", "x", "--scope", "Chapter"},
            {"--dir", d.path(), "--threads", "0"},
            {"--dir", d.path(), "--hidden", "maybe"},
            {"--dir", d.path(), "--show", "all"},
            {"--dir", d.path(), "--minSize", "big"},
            {"--dir", d.path(), "--colour", "red"},
        };
        for (const QStringList& args : bad) {
            const Run r = run(args);
            QVERIFY2(r.code == 2, qPrintable(args.join(' ')));
            QVERIFY2(r.err.contains(QStringLiteral("usage: talvofinder find")), qPrintable(r.err));
            QVERIFY(r.out.isEmpty());
        }
        QVERIFY(run({"--dir", d.abs(QStringLiteral("missing"))}).err.contains(QStringLiteral("does not exist")));
        // A query that does not parse says where and why, before reading anything.
        QVERIFY(run({"--dir", d.path(), "--find", "(mutex | lock"}).err.contains(
            QStringLiteral("find: cannot use '(mutex | lock': character 1: unbalanced parenthesis")));
        QVERIFY(run({"--dir", d.path(), "--find", "-test"}).err.contains(QStringLiteral("character 1: nothing to find: only excluded terms")));
        QVERIFY(run({"--dir", d.path(), "--find", "x", "--wholeWords", "sometimes"}).err.contains(QStringLiteral("--wholeWords")));
    }
};

QTEST_GUILESS_MAIN(TestFindCommand)
#include "test_find_command.moc"
