#include "base/env/Env.h"
#include "base/kernel/CommandLine.h"
#include "base/util/Format.h"
#include "common/TestEnv.h"

#include <QtTest>

class TestEnvFormat : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

private slots:
    void environmentReferencesAreReplaced() {
        tav::setEnv(QStringLiteral("TF_A"), QStringLiteral("alpha"));
        tav::unsetEnv(QStringLiteral("TF_UNSET"));
        QCOMPARE(tav::replaceEnv(QStringLiteral("x $(TF_A) y $(TF_A)")), QStringLiteral("x alpha y alpha"));
        QCOMPARE(tav::replaceEnv(QStringLiteral("[$(TF_UNSET)]")), QStringLiteral("[]"));
        // Not references: a lone '$', an unclosed or empty reference.
        QCOMPARE(tav::replaceEnv(QStringLiteral("cost $5 $(TF_A")), QStringLiteral("cost $5 $(TF_A"));
        QCOMPARE(tav::replaceEnv(QStringLiteral("$()")), QStringLiteral("$()"));

        // Template variables replace only the names given.
        QCOMPARE(tav::replace_variables(QStringLiteral("background: $(BG); color: $(FG);"), QStringLiteral("BG"),
                                        QStringLiteral("#1d2125")),
                 QStringLiteral("background: #1d2125; color: $(FG);"));

        tftest::TestDir dir;
        const QString f = dir.file(QStringLiteral("a b/report.final.txt"), "12345");
        tav::fileInfo_to_env(QFileInfo(f));
        QCOMPARE(tav::getEnv(QStringLiteral("G_PATH")), f);
        QCOMPARE(tav::getEnv(QStringLiteral("G_NAME")), QStringLiteral("report.final.txt"));
        QCOMPARE(tav::getEnv(QStringLiteral("G_EXT")), QStringLiteral("txt"));
        QCOMPARE(tav::getEnv(QStringLiteral("G_DIR")), dir.abs(QStringLiteral("a b")));
        QCOMPARE(tav::getEnv(QStringLiteral("G_SIZE")), QStringLiteral("5"));
        QCOMPARE(tav::replaceEnv(QStringLiteral("\"$(G_PATH)\"")), QLatin1Char('"') + f + QLatin1Char('"'));
    }

    void byteNumbersParse() {
        QCOMPARE(tav::get_bytes_number(QStringLiteral("1234")), 1234ul);
        QCOMPARE(tav::get_bytes_number(QStringLiteral(" 10kb ")), 10240ul);
        QCOMPARE(tav::get_bytes_number(QStringLiteral("10 KB")), 10240ul);
        QCOMPARE(tav::get_bytes_number(QStringLiteral("3mb")), 3ul * 1024 * 1024);
        QCOMPARE(tav::get_bytes_number(QStringLiteral("2Gb")), 2ul * 1024 * 1024 * 1024);
        QCOMPARE(tav::get_bytes_number(QStringLiteral("1.5k")), 1536ul);
        QCOMPARE(tav::get_bytes_number(QStringLiteral("")), 0ul);
        QCOMPARE(tav::get_bytes_number(QStringLiteral("ten kb")), 0ul);
        QCOMPARE(tav::get_bytes_number(QStringLiteral("10 xb")), 0ul);
        QCOMPARE(tav::get_bytes_number(QStringLiteral("-5")), 0ul);
    }

    void numbersAndSizesFormat() {
        QCOMPARE(tav::format1000(uint64_t(0)), QStringLiteral("0"));
        QCOMPARE(tav::format1000(uint64_t(999)), QStringLiteral("999"));
        QCOMPARE(tav::format1000(uint64_t(1000)), QStringLiteral("1,000"));
        QCOMPARE(tav::format1000(uint64_t(1234567)), QStringLiteral("1,234,567"));
        QCOMPARE(tav::format1000(int64_t(-1234567)), QStringLiteral("-1,234,567"));
        QCOMPARE(tav::formatBytes(512), QStringLiteral("512 bytes"));
        QCOMPARE(tav::formatBytes(1536), QStringLiteral("1.50 KB"));
        QCOMPARE(tav::formatBytes(uint64_t(300) * 1024 * 1024), QStringLiteral("300 MB"));
        QCOMPARE(tav::formatMicrosecond_as_Sec(1234567), QStringLiteral("1.235"));
        QCOMPARE(tav::formatMicrosecond_as_Sec(0), QStringLiteral("0.000"));
    }

    void numberedNamesAlwaysDiffer() {
        QCOMPARE(tav::get_string_number(QStringLiteral("notepad"), 3), QStringLiteral("notepad001"));
        QCOMPARE(tav::get_string_number(QStringLiteral("notepad001"), 3), QStringLiteral("notepad002"));
        QCOMPARE(tav::get_string_number(QStringLiteral("a999"), 3), QStringLiteral("a1000"));
        QCOMPARE(tav::get_string_number(QString(), 3), QStringLiteral("001"));
        tav::MersenneTwister mt(true, 65536);
        const QString r = mt.randString(9);
        QCOMPARE(r.size(), 9);
        for (QChar c : r) QVERIFY(c.isLetterOrNumber());
        QVERIFY(mt.randString(9) != r);
    }

    void commandLineKeysAreChecked() {
        tav::CommandLine ok(QStringList{"--file", "/tmp/a b", "--treat", "Word", "--show", "20"});
        ok.addMustHaveKeys(QStringLiteral("file,treat"));
        ok.addOptionalKeys(QStringLiteral("lineLenMax,show"));
        QVERIFY(ok.checkKeys());
        QCOMPARE(ok.getString(QStringLiteral("file")), QStringLiteral("/tmp/a b"));
        QCOMPARE(ok.getUInt(QStringLiteral("show"), 0), 20u);
        QCOMPARE(ok.getUInt(QStringLiteral("lineLenMax"), 1048576), 1048576u);
        QVERIFY(!ok.hasKey(QStringLiteral("lineLenMax")));

        tav::CommandLine missing(QStringList{"--file", "/tmp/a"});
        missing.addMustHaveKeys(QStringLiteral("file,treat"));
        QVERIFY(!missing.checkKeys());

        tav::CommandLine emptyValue(QStringList{"--file", "--treat", "Word"});
        emptyValue.addMustHaveKeys(QStringLiteral("file,treat"));
        QVERIFY(!emptyValue.checkKeys());

        tav::CommandLine unknown(QStringList{"--file", "a", "--treet", "Word"});
        unknown.addMustHaveKeys(QStringLiteral("file"));
        unknown.addOptionalKeys(QStringLiteral("treat"));
        QVERIFY(!unknown.checkKeys());

        tav::CommandLine stray(QStringList{"word"});
        QVERIFY(!stray.checkKeys());

        tav::CommandLine flags(QStringList{"--regex", "true", "--hidden"});
        QVERIFY(flags.checkKeys());
        QVERIFY(flags.getBool(QStringLiteral("regex"), false));
        QVERIFY(flags.getBool(QStringLiteral("hidden"), false));
        QVERIFY(!flags.getBool(QStringLiteral("other"), false));
    }
};

QTEST_GUILESS_MAIN(TestEnvFormat)
#include "test_env_format.moc"
