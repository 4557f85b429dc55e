#include "base/checksum/CheckSum.h"
#include "base/env/Env.h"
#include "base/process/XProcess.h"
#include "base/text/XTokenizer.h"
#include "base/thread/XThread.h"
#include "common/TestEnv.h"

#include <QtTest>

namespace {
QString coreutilsSum(const QString& tool, const QString& path) {
    QProcess p;
    p.start(tool, QStringList{path});
    if (!p.waitForFinished(20000)) return QString();
    return QString::fromLatin1(p.readAllStandardOutput()).section(QLatin1Char(' '), 0, 0);
}
}

class TestChecksumTextProcess : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

private slots:
    void checksumsMatchTheSystemTools() {
        tftest::TestDir dir;
        QByteArray data;
        for (int i = 0; i < 300000; ++i) data += char(i * 7 + i / 13);   // > 1 block boundary not needed, odd bytes
        data += QByteArray(3 << 20, 'x');                                  // spans several read blocks
        const QString path = dir.file(QStringLiteral("data.bin"), data);
        const struct { int algo; const char* tool; const char* name; } cases[] = {
            {tav::CheckSum::MD5_ALGO, "md5sum", "MD5"},
            {tav::CheckSum::SHA1_ALGO, "sha1sum", "SHA-1"},
            {tav::CheckSum::SHA256_ALGO, "sha256sum", "SHA-256"},
        };
        for (const auto& c : cases) {
            tav::CheckSum cs;
            cs.set_algo(c.algo);
            QCOMPARE(cs.algo_as_string(), QString::fromLatin1(c.name));
            cs.set_file(QFileInfo(path));
            tav::XAtomic<bool> run(true);
            tav::XAtomic<int> pct(-1);
            QVERIFY(cs.calc(run, pct));
            QCOMPARE(pct.load(), 100);
            QCOMPARE(cs.toString(false), coreutilsSum(QString::fromLatin1(c.tool), path));
        }
        QCOMPARE(tav::MD5::ofFile(path), coreutilsSum(QStringLiteral("md5sum"), path));
        QCOMPARE(tav::MD5::ofBytes(QByteArray()), QStringLiteral("d41d8cd98f00b204e9800998ecf8427e"));

        // Cancelled before the first block: no result; a vanished file: no result.
        tav::CheckSum cs;
        cs.set_algo(tav::CheckSum::SHA256_ALGO);
        cs.set_file(QFileInfo(path));
        tav::XAtomic<bool> stop(false);
        tav::XAtomic<int> pct(0);
        QVERIFY(!cs.calc(stop, pct));
        QVERIFY(cs.wasCancelled() && !cs.hasResult());
        QVERIFY(cs.toString(false).isEmpty());
        cs.set_file(QFileInfo(dir.abs(QStringLiteral("gone.bin"))));
        tav::XAtomic<bool> run(true);
        QVERIFY(!cs.calc(run, pct));
        QVERIFY(!cs.hasResult());
    }

    void tokenizerSplitsAtDelimiters() {
        const QString line = QStringLiteral("Hello, world!  «quoted» a-b (x)");
        tav::XTokenizer t(line, tav::XDelimiter::sDelimAll, false, false);
        QCOMPARE(t.toStringList(), (QStringList{"Hello", "world", "quoted", "a", "b", "x"}));
        tav::XTokenizer empties(QStringLiteral("a,,b,"), QStringLiteral(","), true, false);
        QCOMPARE(empties.toStringList(), (QStringList{"a", "", "b"}));
        tav::XTokenizer delims(QStringLiteral("a+b"), QStringLiteral("+"), false, true);
        QCOMPARE(delims.toStringList(), (QStringList{"a", "+", "b"}));

        const tav::XUtf8_Info info = tav::XUtf8_Info::decode(QStringLiteral("ä"));
        QCOMPARE(info.codePoint(), 0xE4u);
        QVERIFY(info.text().startsWith(QStringLiteral("U+00E4  UTF-8: C3 A4")));
        QCOMPARE(info.toHTML(), QStringLiteral("&#228;"));
        QCOMPARE(tav::ArrayTools::qByteArray_to_hex_string(tav::XLineInfo::get_UTF8_Bytes(QChar(0x20AC)), 50, 5, 0),
                 QStringLiteral("E2 82 AC"));
    }

    void processArgumentsStayWholeAndListenersFire() {
        QCOMPARE(tav::XProcess::splitArgs(QStringLiteral(" a  \"b c\" 'd \"e\"' f\\g \"h\\\"i\" ")),
                 (QStringList{"a", "b c", "d \"e\"", "f\\g", "h\"i"}));
        QCOMPARE(tav::XProcess::splitArgs(QStringLiteral("\"\"")), QStringList{QString()});

        tftest::TestDir dir;
        const QString odd = dir.file(QStringLiteral("my file; rm -rf x $(y).txt"), "z");
        tav::fileInfo_to_env(QFileInfo(odd));
        auto* p = new tav::XProcess;
        p->setProgram(QStringLiteral("/bin/sh"));
        p->setArgsReplacingEnv(QStringLiteral("-c 'printf \"%s|%s|%s\" \"$1\" \"$TF_X\" \"$TF_Y\"' sh $(G_PATH)"));
        QCOMPARE(p->arguments().last(), odd);   // one argument, whatever the name holds
        p->addEnv(QStringLiteral("TF_X=1; TF_Y=a=b\nbroken"));
        int started = 0, errors = 0;
        bool crashed = true, done = false;
        p->addStartedListener([&]() { ++started; });
        p->addErrorListener([&]() { ++errors; });
        p->addFinishedListener([&](bool c) { crashed = c; done = true; });
        p->start();
        QTRY_VERIFY(done);
        QCOMPARE(started, 1);
        QCOMPARE(errors, 0);
        QVERIFY(!crashed);
        QCOMPARE(QString::fromUtf8(p->readAll()), odd + QStringLiteral("|1|a=b"));
        QVERIFY(p->processId_past() > 0);
        delete p;

        // A file's name cannot set other variables through an environment entry, and
        // the G_* variables reach the program without touching this process's environment.
        const QString trap = dir.file(QStringLiteral("notes;PATH=.;x.txt"), "z");
        tav::fileInfo_to_env(QFileInfo(trap));
        QVERIFY(!qEnvironmentVariableIsSet("G_PATH"));
        QCOMPARE(tav::getEnv(QStringLiteral("G_NAME")), QStringLiteral("notes;PATH=.;x.txt"));
        tav::XProcess env;
        env.setProgram(QStringLiteral("/bin/sh"));
        env.setArguments({QStringLiteral("-c"), QStringLiteral("printf '%s|%s|%s' \"$TF_F\" \"$PATH\" \"$G_PATH\"")});
        env.addEnv(QStringLiteral("TF_F=$(G_NAME)"));
        env.start();
        QVERIFY(env.waitForFinished(10000));
        QCOMPARE(QString::fromUtf8(env.readAll()),
                 QStringLiteral("notes;PATH=.;x.txt|") + QString::fromLocal8Bit(qgetenv("PATH")) + QLatin1Char('|') + trap);

        tav::XProcess missing;
        int missErrors = 0;
        missing.setErrorListener([&]() { ++missErrors; });
        missing.setProgram(QStringLiteral("/no/such/program"));
        missing.start();
        QVERIFY(!missing.waitForStarted(5000));
        QTRY_COMPARE(missErrors, 1);

        QCOMPARE(tav::XProcess::shellQuote(QStringLiteral("it's")), QStringLiteral("'it'\\''s'"));
    }
};

QTEST_GUILESS_MAIN(TestChecksumTextProcess)
#include "test_checksum_text_process.moc"
