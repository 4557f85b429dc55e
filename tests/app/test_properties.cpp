// The properties window with real widgets: checksums against the system tools,
// the automatic-calculation limit, cancel, switches and copy-all.
#include "common/TestEnv.h"

#include "base/node/XNode.h"
#include "base/util/Format.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/tools/XTools.h"
#include "src/gui/WinProperties.h"
#include "src/gui/WinTray.h"
#include "src/gui/config/ConfigTavFinder.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QProcess>
#include <QProgressBar>
#include <QPushButton>
#include <QtTest>

using tavFinder::WinProperties;

class TestProperties : public QObject {
    Q_OBJECT
    tftest::TestEnv env;
    tav::KernelGUI kernel{QStringLiteral("talvoEngine"), QStringLiteral("app"), QStringList(), true};
    tftest::TestDir dir;

    tav::XNode* propNode() {
        return kernel.getCreateNodeApplication()->getCreateNode(QStringLiteral("GUI"))->getCreateNode(QStringLiteral("Properties"));
    }
    // A file of 'size' bytes; sparse, so even gigabytes cost nothing to make.
    QString sizedFile(const QString& name, qint64 size) {
        const QString p = dir.file(name);
        QFile f(p);
        if (!f.open(QIODevice::ReadWrite) || !f.resize(size)) qWarning("cannot size %s", qPrintable(p));
        return p;
    }
    static QString tool(const QString& program, const QString& path) {
        QProcess p;
        p.start(program, {path});
        p.waitForFinished(30000);
        return QString::fromLatin1(p.readAllStandardOutput()).section(QLatin1Char(' '), 0, 0);
    }
    static void closeNow(QPointer<WinProperties> w) {
        if (w) w->close();
        QTRY_VERIFY(w.isNull());
    }

private slots:
    void initTestCase() {
        tavFinder::WinTray::setWatchdogEnabled(false);
        tavFinder::cfg().flagPropAutoLoad = true;
        tavFinder::cfg().max_file_size_auto_calc_checksums = 5;
    }
    void checksumsEqualTheSystemTools();
    void automaticLimitIsBinaryMegabytes();
    void cancelStopsAndEmpties();
    void switchesArePersistedAndRespected();
};

void TestProperties::checksumsEqualTheSystemTools() {
    // More than one read block, not a multiple of it, with every byte value.
    QByteArray data;
    for (int i = 0; i < 1500000; ++i) data.append(char((i * 7 + i / 251) & 0xff));
    const QString path = dir.file(QStringLiteral("known.bin"), data);

    QPointer<WinProperties> w = WinProperties::open_window(QFileInfo(path));
    QVERIFY(w);
    QCOMPARE(w->fieldPath()->text(), QFileInfo(path).absoluteFilePath());
    QCOMPARE(w->fieldSize()->text(), tav::formatBytes(1500000));
    QVERIFY(w->isCalculating());   // small enough: started by set_file
    QVERIFY(w->progressBar()->isVisibleTo(w));
    QTRY_VERIFY(!w->isCalculating());
    QVERIFY(!w->progressBar()->isVisibleTo(w));
    QTRY_COMPARE(w->fieldChecksum(0)->text(), tool(QStringLiteral("md5sum"), path));
    QTRY_COMPARE(w->fieldChecksum(1)->text(), tool(QStringLiteral("sha1sum"), path));
    QTRY_COMPARE(w->fieldChecksum(2)->text(), tool(QStringLiteral("sha256sum"), path));
    QVERIFY(!w->fieldChecksum(0)->text().isEmpty());

    // Copy all: path, size line, date, then the names right-aligned to the longest.
    w->on_copy_all();
    const QStringList lines = tav::XClipboard::text().split(QLatin1Char('\n'));
    QCOMPARE(lines.size(), 7);
    QCOMPARE(lines[0], QFileInfo(path).absoluteFilePath());
    QCOMPARE(lines[1], tav::formatBytes(1500000) + QStringLiteral(" - 1,500,000 bytes"));
    QCOMPARE(lines[2], QFileInfo(path).lastModified().toString(QStringLiteral("yyyy/MM/dd - hh:mm")));
    QCOMPARE(lines[3], QStringLiteral("    MD5: ") + tool(QStringLiteral("md5sum"), path));
    QCOMPARE(lines[4], QStringLiteral("  SHA-1: ") + tool(QStringLiteral("sha1sum"), path));
    QCOMPARE(lines[5], QStringLiteral("SHA-256: ") + tool(QStringLiteral("sha256sum"), path));

    // Only the enabled ones, aligned among themselves.
    w->switchChecksum(2)->setChecked(false);
    QVERIFY(w->fieldChecksum(2)->text().isEmpty());
    w->on_copy_all();
    QVERIFY(tav::XClipboard::text().endsWith(QStringLiteral("\n  MD5: ") + w->fieldChecksum(0)->text() +
                                             QStringLiteral("\nSHA-1: ") + w->fieldChecksum(1)->text() + QStringLiteral("\n")));
    w->switchChecksum(2)->setChecked(true);

    // A file that vanished copies nothing.
    tav::XClipboard::setText(QStringLiteral("before"));
    QFile::remove(path);
    w->on_copy_all();
    QCOMPARE(tav::XClipboard::text(), QStringLiteral("before"));
    closeNow(w);
}

void TestProperties::automaticLimitIsBinaryMegabytes() {
    tavFinder::cfg().max_file_size_auto_calc_checksums = 5;
    // The same megabytes as the sizes the window shows ("5.00 MB").
    const QString exact = sizedFile(QStringLiteral("exact.bin"), 5 * 1024 * 1024);
    const QString over = sizedFile(QStringLiteral("over.bin"), 5 * 1024 * 1024 + 1);
    QCOMPARE(tav::formatBytes(5 * 1024 * 1024), QStringLiteral("5.00 MB"));
    tftest::LogCapture logs;
    QPointer<WinProperties> w = WinProperties::open_window(QFileInfo(over));
    QVERIFY(!w->isCalculating());
    QVERIFY(logs.contains(QStringLiteral("WinProperties::set_file, flagAutoCalc:false")));
    QVERIFY(w->fieldChecksum(0)->text().isEmpty());

    w->set_file(QFileInfo(exact));
    QVERIFY(w->isCalculating());
    QVERIFY(logs.contains(QStringLiteral("WinProperties::set_file, flagAutoCalc:true")));
    QTRY_VERIFY(!w->isCalculating());
    QTRY_COMPARE(w->fieldChecksum(0)->text(), tool(QStringLiteral("md5sum"), exact));

    // The user's button on the large file; a new file clears the old results first.
    w->set_file(QFileInfo(over));
    QVERIFY(w->fieldChecksum(0)->text().isEmpty());
    QTest::mouseClick(w->buttonCalc(), Qt::LeftButton);
    QTRY_COMPARE(w->fieldChecksum(2)->text(), tool(QStringLiteral("sha256sum"), over));
    QTRY_VERIFY(!w->isCalculating());   // the other checksums may still be finishing

    // Switched off in the configuration: never automatic.
    tavFinder::cfg().flagPropAutoLoad = false;
    w->set_file(QFileInfo(exact));
    QVERIFY(!w->isCalculating());
    tavFinder::cfg().flagPropAutoLoad = true;
    closeNow(w);
}

void TestProperties::cancelStopsAndEmpties() {
    // Large enough that no checksum is done before the cancel.
    const QString big = sizedFile(QStringLiteral("big.bin"), qint64(3) * 1024 * 1024 * 1024);
    QPointer<WinProperties> w = WinProperties::open_window(QFileInfo(big));
    QVERIFY(!w->isCalculating());
    w->on_calc_all();
    QVERIFY(w->isCalculating());
    QVERIFY(w->isAnyThreadRunning());
    QTRY_VERIFY(w->progressBar()->value() > 0);

    // Copy all while calculating: only path, size and date.
    w->on_copy_all();
    QCOMPARE(tav::XClipboard::text().count(QLatin1Char('\n')), 3);
    QVERIFY(!tav::XClipboard::text().contains(QStringLiteral("MD5")));

    // The same button cancels; every thread leaves within a block or so.
    QTest::mouseClick(w->buttonCalc(), Qt::LeftButton);
    QVERIFY(!w->isCalculating());
    QVERIFY(!w->progressBar()->isVisibleTo(w));
    QCOMPARE(w->progressBar()->value(), 0);
    for (int i = 0; i < 3; ++i) QTRY_VERIFY_WITH_TIMEOUT(!w->thread(i).isActive(), 3000);
    QTest::qWait(100);   // the completion listeners run on this thread
    for (int i = 0; i < 3; ++i) {
        QVERIFY(w->fieldChecksum(i)->text().isEmpty());
        QVERIFY(!w->thread(i).hasResult());
    }

    // A restart after the cancel runs again; closing mid-run cancels and the window goes.
    w->on_calc_all();
    QVERIFY(w->isCalculating());
    tftest::LogCapture logs;
    closeNow(w);
    QVERIFY(logs.contains(QStringLiteral("WinProperties::on_close")));
    QVERIFY(propNode()->hasAttribute(QStringLiteral("geometry")));
}

void TestProperties::switchesArePersistedAndRespected() {
    const QString small = dir.file(QStringLiteral("small.txt"), "hello\n");
    tavFinder::cfg().flagPropAutoLoad = false;
    QPointer<WinProperties> w = WinProperties::open_window(QFileInfo(small));
    for (int i = 0; i < 3; ++i) QVERIFY(w->switchChecksum(i)->isChecked());   // default on

    // Off through the check box and through a click on the name.
    w->switchChecksum(0)->setChecked(false);
    QLabel* nameLabel = nullptr;
    for (QLabel* l : w->findChildren<QLabel*>())
        if (l->text() == QStringLiteral("SHA-1")) nameLabel = l;
    QVERIFY(nameLabel);
    QTest::mouseClick(nameLabel, Qt::LeftButton);
    QVERIFY(!w->switchChecksum(1)->isChecked());
    QVERIFY(!w->thread(1).enabled);

    // Only SHA-256 is computed.
    w->on_calc_all();
    QTRY_VERIFY(!w->isCalculating());
    QTRY_COMPARE(w->fieldChecksum(2)->text(), tool(QStringLiteral("sha256sum"), small));
    QVERIFY(w->fieldChecksum(0)->text().isEmpty() && w->fieldChecksum(1)->text().isEmpty());

    // All off: the button does nothing.
    w->switchChecksum(2)->setChecked(false);
    QVERIFY(w->fieldChecksum(2)->text().isEmpty());
    QTest::mouseClick(w->buttonCalc(), Qt::LeftButton);
    QVERIFY(!w->isCalculating());
    QVERIFY(!w->isAnyThreadRunning());
    w->switchChecksum(2)->setChecked(true);
    closeNow(w);

    tav::XNode* n = propNode()->query(QStringLiteral("CHECKSUMS"));
    QVERIFY(n);
    QVERIFY(!n->isBool(QStringLiteral("MD5"), true));
    QVERIFY(!n->isBool(QStringLiteral("SHA-1"), true));
    QVERIFY(n->isBool(QStringLiteral("SHA-256"), false));

    // A new window (a restart reads the same node) starts with the saved switches.
    QPointer<WinProperties> v = WinProperties::open_window(QFileInfo(small));
    QVERIFY(!v->switchChecksum(0)->isChecked() && !v->switchChecksum(1)->isChecked() && v->switchChecksum(2)->isChecked());
    QVERIFY(!v->thread(0).enabled && v->thread(2).enabled);
    closeNow(v);
    tavFinder::cfg().flagPropAutoLoad = true;
}

QTEST_MAIN(TestProperties)
#include "test_properties.moc"
