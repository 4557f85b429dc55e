// How the program ends: the tray's watchdog when the last window is gone,
// and "Reset Configuration" with its restart. Each case runs the real event
// loop, which the end leaves with code 0.
#include "common/TestEnv.h"

#include "base/kernel/Kernel.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/widgets/XBox.h"
#include "gui/widgets/XMenu.h"
#include "src/gui/WinFinder.h"
#include "src/gui/WinTray.h"
#include "src/gui/config/ConfigTavFinder.h"

#include <QAction>
#include <QPointer>
#include <QtTest>

using tavFinder::WinFinder;
using tavFinder::WinTray;

class TestQuit : public QObject {
    Q_OBJECT
    tftest::TestEnv env;
    tav::KernelGUI kernel{QStringLiteral("talvoEngine"), QStringLiteral("app"), QStringList(), true};

    // Runs the event loop; a loop that is not ended within 10 s returns 77.
    static int runLoop() {
        QTimer guard;
        guard.setSingleShot(true);
        QObject::connect(&guard, &QTimer::timeout, []() { QCoreApplication::exit(77); });
        guard.start(10000);
        return QCoreApplication::exec();
    }
    WinFinder* open() {
        auto* w = new WinFinder(true);
        w->init(&kernel, kernel.getCreateNodeApplication()->getCreateNode(QStringLiteral("GUI"))->getCreateNode(QStringLiteral("Window")));
        w->setupTray();
        w->setUp(QString());
        w->show();
        return w;
    }

private slots:
    // As the program: the last window closing does not end the loop by itself.
    void initTestCase() { QGuiApplication::setQuitOnLastWindowClosed(false); }
    void watchdogEndsProgramWithoutWindows();
    void hiddenWindowKeepsProgramAlive();
    void resetConfigurationRestarts();
};

void TestQuit::watchdogEndsProgramWithoutWindows() {
    tftest::LogCapture logs;
    tavFinder::cfg().flagConfirmQuit = true;   // the watchdog never asks
    const int boxes = tav::XBox::countShown();
    QPointer<WinFinder> w = open();
    QVERIFY(WinTray::exists());
    // The window closes once the loop runs; the loop must then end by itself.
    QTimer::singleShot(200, w, [w]() { w->close(); });
    QCOMPARE(runLoop(), 0);
    QVERIFY(w.isNull());
    QVERIFY2(logs.containsLine(QStringLiteral("WinFinder::quit_the_app")), qPrintable(logs.lines().join("\n")));
    QCOMPARE(tav::XBox::countShown(), boxes);
    QVERIFY(!WinTray::get()->watchdog().isActive());
    tavFinder::cfg().flagConfirmQuit = false;
}

void TestQuit::hiddenWindowKeepsProgramAlive() {
    tftest::LogCapture logs;
    QPointer<WinFinder> w = open();
    // Hidden to the tray is not gone: the watchdog keeps ticking.
    QTimer::singleShot(100, w, [w]() { w->hide(); });
    WinTray::get()->watchdog().start();
    const int ticks = WinTray::get()->watchdog().countTicks();
    QTimer::singleShot(1600, []() { QCoreApplication::exit(5); });
    QCOMPARE(runLoop(), 5);
    QVERIFY(WinTray::get()->watchdog().countTicks() >= ticks + 2);
    QVERIFY(!logs.contains(QStringLiteral("WinFinder::quit_the_app")));
    QVERIFY(w);
    WinTray::get()->watchdog().stop();
    delete w.data();
}

void TestQuit::resetConfigurationRestarts() {
    QVERIFY(!tav::Kernel::isRebootProgram());
    tav::XBox::setScriptedAnswer(0);
    WinTray::get()->on_reset_configuration();
    QVERIFY(!kernel.isResetRequested());
    tav::XBox::setScriptedAnswer(1);
    WinTray::get()->on_reset_configuration();
    tav::XBox::setScriptedAnswer(-1);
    QCOMPARE(runLoop(), 0);
    QVERIFY(kernel.isResetRequested());
    QVERIFY(tav::Kernel::isRebootProgram());
    tav::Kernel::setRebootProgram(false);
}

QTEST_MAIN(TestQuit)
#include "test_quit.moc"
