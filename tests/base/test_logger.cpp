#include "base/log/Logger.h"
#include "common/TestEnv.h"

#include <QtTest>

class TestLogger : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

private slots:
    void templatesAreFilledArgumentByArgument() {
        QCOMPARE(tav::fill("a $ b $", 1, QStringLiteral("x")), QStringLiteral("a 1 b x"));
        QCOMPARE(tav::fill("flag:$", true), QStringLiteral("flag:true"));
        QCOMPARE(tav::fill("flag:$", false), QStringLiteral("flag:false"));
        // Surplus placeholders stay, surplus arguments are appended, not lost.
        QCOMPARE(tav::fill("a $ $", 7), QStringLiteral("a 7 $"));
        QCOMPARE(tav::fill("a", 1, 2), QStringLiteral("a 1 2"));
        // An argument containing '$' is not expanded again.
        QCOMPARE(tav::fill("<$> <$>", QStringLiteral("$"), 2), QStringLiteral("<$> <2>"));
        QCOMPARE(tav::fill("big:$", uint64_t(1) << 40), QStringLiteral("big:1099511627776"));
        QCOMPARE(tav::fill("<<<$>>>", QFileInfo(QStringLiteral("/tmp/x/../y"))), QStringLiteral("<<</tmp/y>>>"));
    }

    void simpleLevelSelectsBits() {
        tav::Logger::setLogLevelSimple(1);
        QCOMPARE(tav::Logger::logLevelBits(), 4u);
        QVERIFY(tav::Logger::isEnabled(4));
        QVERIFY(!tav::Logger::isEnabled(8));
        tav::Logger::setLogLevelSimple(3);
        QVERIFY(tav::Logger::isEnabled(16));
        QVERIFY(!tav::Logger::isEnabled(32));
        tav::Logger::setLogLevelSimple(5);
        QVERIFY(tav::Logger::isEnabled(64));
        tav::Logger::setLogLevelSimple(1);
    }

    void captureSeesEveryLevelAndAssertReportsLocation() {
        tav::Logger::setLogLevelSimple(1);
        tftest::LogCapture cap;
        tav::log(32, "WinFinder::on_find - <$> 404", QStringLiteral("/nope"));
        QVERIFY(cap.containsLine(QStringLiteral("WinFinder::on_find - </nope> 404")));
        QCOMPARE(cap.linesAtLevel(32).size(), 1);
        QCOMPARE(cap.linesAtLevel(4).size(), 0);

        const int* p = nullptr;
        const bool ok = X_ASSERT_MSG(p, "nEngine == NULL");
        QVERIFY(!ok);
        const QStringList errs = cap.linesAtLevel(4);
        QCOMPARE(errs.size(), 1);
        QVERIFY(errs[0].contains(QStringLiteral("test_logger.cpp")));
        QVERIFY(errs[0].endsWith(QStringLiteral("nEngine == NULL")));
        int v = 1;
        const int* q = &v;
        QVERIFY(X_ASSERT(q));
        QCOMPARE(cap.linesAtLevel(4).size(), 1);
        X_ASSERT(p);
        QVERIFY(cap.linesAtLevel(4).last().endsWith(QStringLiteral("p == NULL")));
    }
};

QTEST_GUILESS_MAIN(TestLogger)
#include "test_logger.moc"
