#include "common/TestEnv.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>
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

    // A file keeps only its first marks while the search runs; counts stay exact and
    // every hit is still printed (the file is searched again as it is written out).
    void filesWithManyHitsArePrintedInFull() {
        tftest::TestDir many;
        QByteArray text;
        for (int i = 0; i < 4321; ++i) text += (i % 7 == 6) ? "ab\n" : "ab ";
        const QString path = many.file(QStringLiteral("many.txt"), text);
        many.file(QStringLiteral("few.txt"), "ab\n");
        Run r = run({"--dir", many.path(), "--find", "ab"});
        QCOMPARE(r.out.mid(0, 2), (QStringList{QStringLiteral("4321\t") + path, QStringLiteral("1\t") + many.abs(QStringLiteral("few.txt"))}));
        QVERIFY2(r.out.last().contains(QStringLiteral("match-total:4,322")), qPrintable(r.out.last()));
        r = run({"--dir", many.path(), "--find", "ab", "--show", "hits", "--pattern", "many.txt"});
        QCOMPARE(r.out.size(), 4321 + 1);
        for (int i : {0, 999, 1000, 1001, 4320}) QCOMPARE(r.out[i], path + QStringLiteral("\t%1\t2").arg(3 * i));
        r = run({"--dir", many.path(), "--find", "ab", "--format", "json", "--pattern", "many.txt"});
        const QJsonArray hits =
            QJsonDocument::fromJson(r.out.join(QLatin1Char('\n')).toUtf8()).object().value(QStringLiteral("files")).toArray().at(0).toObject().value(QStringLiteral("hits")).toArray();
        QCOMPARE(hits.size(), 4321);
        QCOMPARE(hits.at(4320).toObject().value(QStringLiteral("line")).toInt(), 4320 / 7 + 1);
        QCOMPARE(hits.at(4320).toObject().value(QStringLiteral("offset")).toInt(), 3 * 4320);
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

    void formatsForOtherPrograms() {
        tftest::TestDir f;
        f.file(QStringLiteral("a.txt"), "one needle here\nno\nneedle, \"quoted\" needle\n");
        f.file(QStringLiteral("sub/we,ird \"name\".txt"), "x\tneedle\n");
        f.file(QStringLiteral("sub/new\nline.txt"), QByteArray(600, 'y') + "needle" + QByteArray(10, 'z') + "\n");
        const auto raw = [&](const QStringList& extra, QString* err = nullptr) {
            QProcess p;
            p.setProcessEnvironment(env.processEnvironment(false));
            p.start(tftest::TestEnv::programPath(), QStringList{"find", "--dir", f.path(), "--find", "needle"} + extra);
            p.waitForFinished(60000);
            if (err) *err = QString::fromUtf8(p.readAllStandardError());
            return p.readAllStandardOutput();
        };
        // CSV (RFC 4180): a header, then one row per file; fields with commas, quotes or line ends quoted.
        QString err;
        const QByteArray csv = raw({"--format", "csv"}, &err);
        QVERIFY(csv.startsWith("path,name,folder,size,date,hits\r\n"));
        QVERIFY2(csv.contains("\"" + f.abs("sub/we,ird \"name\".txt").toUtf8().replace("\"", "\"\"") + "\",\"we,ird \"\"name\"\".txt\"," +
                              f.abs("sub").toUtf8() + ",9,"),
                 csv.constData());
        QVERIFY(csv.contains("\"" + f.abs("sub/new\nline.txt").toUtf8() + "\""));
        QVERIFY(csv.contains(",3\r\n"));
        QVERIFY(err.contains("files-total:3"));   // the summary goes to standard error
        QVERIFY(!csv.contains("files-total"));

        // JSON: every hit with its line, column, offset, length and line text (cut at 500 bytes).
        const QJsonObject json = QJsonDocument::fromJson(raw({"--format", "json"})).object();
        const QJsonArray files = json.value("files").toArray();
        QCOMPARE(files.size(), 3);
        QCOMPARE(json.value("summary").toObject().value("hits").toInt(), 5);
        for (const QJsonValue v : files) {
            const QJsonObject file = v.toObject();
            const QJsonArray hits = file.value("hits").toArray();
            if (file.value("path").toString() == f.abs("a.txt")) {
                QCOMPARE(hits.size(), 3);
                const QJsonObject third = hits.at(2).toObject();
                QCOMPARE(third.value("line").toInt(), 3);
                QCOMPARE(third.value("column").toInt(), 18);
                QCOMPARE(third.value("offset").toInt(), 36);
                QCOMPARE(third.value("length").toInt(), 6);
                QCOMPARE(third.value("text").toString(), QStringLiteral("needle, \"quoted\" needle"));
                QCOMPARE(file.value("size").toInt(), 43);
            } else if (file.value("path").toString() == f.abs("sub/new\nline.txt")) {
                QCOMPARE(hits.at(0).toObject().value("column").toInt(), 601);
                QCOMPARE(hits.at(0).toObject().value("text").toString(), QString(500, 'y'));
            } else {
                QCOMPARE(file.value("path").toString(), f.abs("sub/we,ird \"name\".txt"));
                QCOMPARE(hits.at(0).toObject().value("text").toString(), QStringLiteral("x\tneedle"));
            }
        }

        // NUL after each path: a name with a newline stays whole.
        QList<QByteArray> paths = raw({"--format", "null"}).split('\0');
        QCOMPARE(paths.takeLast(), QByteArray());
        QCOMPARE(paths.size(), 3);
        QVERIFY(paths.contains(f.abs("sub/new\nline.txt").toUtf8()));

        // Python's csv module reads it with the right columns.
        if (!QStandardPaths::findExecutable(QStringLiteral("python3")).isEmpty()) {
            QProcess py;
            py.start(QStringLiteral("python3"),
                     {QStringLiteral("-c"), QStringLiteral("import csv,sys\nr=list(csv.reader(sys.stdin))\nprint(len(r), r[0], sorted(x[1] for x in r[1:]))")});
            py.waitForStarted();
            py.write(csv);
            py.closeWriteChannel();
            QVERIFY(py.waitForFinished(30000));
            QCOMPARE(QString::fromUtf8(py.readAllStandardOutput()).trimmed(),
                     QStringLiteral("4 ['path', 'name', 'folder', 'size', 'date', 'hits'] ['a.txt', 'new\\nline.txt', 'we,ird \"name\".txt']"));
        }

        // Stop early: exactly N files, and the summary says so.
        const QByteArray two = raw({"--maxFiles", "2", "--format", "null"}, &err);
        QCOMPARE(two.count('\0'), 2);
        QVERIFY2(err.contains("find: stopped after 2 files with hits"), qPrintable(err));
        QVERIFY(run({"--dir", f.path(), "--find", "needle", "--format", "xml"}).err.contains("--format must be tsv, csv, json or null"));
    }
};

QTEST_GUILESS_MAIN(TestFindCommand)
#include "test_find_command.moc"
