// The main window with real widgets: saved state across close and reopen,
// navigation history, key bindings, tray entry, tree root and colours.
#include "common/TestEnv.h"

#include "base/node/XNode.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/kernel/XInstanceChannel.h"
#include "gui/panel/XPanelStacked.h"
#include "gui/panel/XSplitter.h"
#include "gui/tools/XDragOut.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XBox.h"
#include "gui/widgets/XBrowser.h"
#include "gui/widgets/XComboBox.h"
#include "gui/widgets/XMenu.h"
#include "gui/widgets/XTreeViewFiles.h"
#include "gui/window/XBrowserWindow.h"
#include "src/gui/History.h"
#include "src/gui/NavigationBar.h"
#include "src/gui/WinFinder.h"
#include "src/gui/WinTray.h"
#include "src/gui/config/ConfigTavFinder.h"

#include <QAction>
#include <QDateEdit>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QStatusBar>
#include <QToolButton>
#include <QtTest>
#include <future>

using tavFinder::History;
using tavFinder::WinFinder;
using tavFinder::WinTray;

class TestWinFinder : public QObject {
    Q_OBJECT
    tftest::TestEnv env;
    tav::KernelGUI kernel{QStringLiteral("talvoEngine"), QStringLiteral("app"), QStringList(), true};
    tftest::TestDir tree;

    tav::XNode* windowNode() {
        return kernel.getCreateNodeApplication()->getCreateNode(QStringLiteral("GUI"))->getCreateNode(QStringLiteral("Window"));
    }
    WinFinder* open(const QString& select, bool activate = true) {
        auto* w = new WinFinder(true);
        w->init(&kernel, windowNode());
        w->setupTray();
        w->setUp(select);
        w->setGeometry(40, 40, 1000, 600);
        w->show();
        if (activate) {
            w->activateWindow();
            if (!QTest::qWaitForWindowActive(w)) qWarning("window not active");
        }
        return w;
    }
    static void closeNow(QPointer<WinFinder> w) {
        if (w) w->close();
        QTRY_VERIFY(w.isNull());
    }
    QString abs(const QString& rel) const { return QFileInfo(tree.abs(rel)).absoluteFilePath(); }

private slots:
    void initTestCase();
    void stateSurvivesCloseAndReopen();
    void historyRecordsVisits();
    void historyThroughTheWindow();
    void parentStopsBelowRoot();
    void keysReachTheirActions();
    void hideAndShowThroughTheTray();
    void thumbnailSizeSteps();
    void rootFolderAndTreeColours();
    void windowTextsFollowTheLanguage();
    void hoverPreviewOnlyInLaterWindows();
    void ctrlKeysAndSelectionsNeverDrag();
};

void TestWinFinder::initTestCase() {
    // These tests close and reopen windows; the program must not end meanwhile.
    WinTray::setWatchdogEnabled(false);
    tree.file(QStringLiteral("a/b/c/deep.txt"), "deep");
    tree.file(QStringLiteral("a/one.txt"), "one");
    tree.dir(QStringLiteral("d"));
    tree.dir(QStringLiteral("e"));
    tree.file(QStringLiteral(".hidden"), "h");
}

void TestWinFinder::stateSurvivesCloseAndReopen() {
    tavFinder::cfg().flagTreeDateSize = false;
    QPointer<WinFinder> w = open(abs(QStringLiteral("a")));
    QVERIFY(w->treeView() && w->splitter());
    // Settings a user makes during a run.
    w->splitter()->setSizes({230, 770});
    QTRY_COMPARE(w->splitter()->sizes().at(0), 230);
    w->treeView()->sortByColumn(3, Qt::DescendingOrder);
    w->filterFlags().set_flags(WinFinder::FILTER_PATTERN | WinFinder::FILTER_TIME | WinFinder::FILTER_HIDDEN);
    QVERIFY(w->treeView()->isHiddenFiles());
    QVERIFY(w->comboPattern()->isVisible() && w->rowTime()->isVisible() && !w->rowSize()->isVisible());
    closeNow(w);

    QVERIFY(windowNode()->isBool(QStringLiteral("flagHiddenFiles"), false));
    QPointer<WinFinder> v = open(abs(QStringLiteral("a")));
    QTRY_COMPARE(v->splitter()->sizes().at(0), 230);
    QCOMPARE(v->treeView()->header()->sortIndicatorSection(), 3);
    QCOMPARE(v->treeView()->header()->sortIndicatorOrder(), Qt::DescendingOrder);
    QCOMPARE(v->filterFlags().flags(), uint32_t(WinFinder::FILTER_PATTERN | WinFinder::FILTER_TIME | WinFinder::FILTER_HIDDEN));
    QVERIFY(v->treeView()->isHiddenFiles());
    QVERIFY(v->comboPattern()->isVisible() && v->rowTime()->isVisible() && !v->comboNotPattern()->isVisible());

    // The configuration decides the detail columns over the saved node.
    v->treeView()->showHeaderDetails(true);
    closeNow(v);
    QVERIFY(windowNode()->query(QStringLiteral("XTreeView"))->isBool(QStringLiteral("header"), false));
    QPointer<WinFinder> u = open(QString(), false);
    QVERIFY(!u->treeView()->isHeaderDetails());
    // A second set-up changes nothing.
    tftest::LogCapture logs;
    tav::XTreeViewFiles* t = u->treeView();
    u->setUp(abs(QStringLiteral("d")));
    QCOMPARE(u->treeView(), t);
    QVERIFY(logs.contains(QStringLiteral("WinFinder::setUp, treeView")));
    u->filterFlags().reset_flags();
    closeNow(u);
}

void TestWinFinder::historyRecordsVisits() {
    tftest::LogCapture logs;
    History h;
    int notified = 0;
    h.listeners().add([&]() { ++notified; });
    QCOMPARE(h.stateToString(), QStringLiteral("NOT_INITIALIZED"));
    QVERIFY(!h.hasPrev() && !h.hasNext());
    QVERIFY(h.get_next().filePath().isEmpty());   // empty list: nothing to move to

    const QFileInfo a(abs(QStringLiteral("a"))), b(abs(QStringLiteral("a/b"))), c(abs(QStringLiteral("a/b/c"))),
        d(abs(QStringLiteral("d"))), e(abs(QStringLiteral("e")));
    h.addFile(a);
    QCOMPARE(h.stateToString(), QStringLiteral("NOT_ENABLED"));
    h.addFile(b);
    h.addFile(c);
    QCOMPARE(h.stateToString(), QStringLiteral("PREV"));
    QCOMPARE(h.get_prev().absoluteFilePath(), b.absoluteFilePath());
    QCOMPARE(h.stateToString(), QStringLiteral("PREV | NEXT"));
    QCOMPARE(h.get_prev().absoluteFilePath(), a.absoluteFilePath());
    QCOMPARE(h.stateToString(), QStringLiteral("NEXT"));
    QVERIFY(h.get_prev().filePath().isEmpty());
    QVERIFY(logs.contains(QStringLiteral("History::get_prev, index == 0")));
    // Back twice, then a new visit: the two forward entries are gone.
    h.addFile(d);
    QCOMPARE(h.count(), 2u);
    QCOMPARE(h.files()[1].absoluteFilePath(), d.absoluteFilePath());
    QCOMPARE(h.getIndex(), 1u);
    QVERIFY(!h.hasNext());
    QVERIFY(h.get_next().filePath().isEmpty());
    QVERIFY(logs.contains(QStringLiteral("History::get_next, index == history.arFiles.size()-1")));
    // The same folder twice is recorded twice.
    h.addFile(e);
    h.addFile(e);
    QCOMPARE(h.count(), 4u);
    // A vanished file is not recorded.
    h.addFile(QFileInfo(abs(QStringLiteral("gone"))));
    QCOMPARE(h.count(), 4u);
    QVERIFY(logs.contains(QStringLiteral("History::addFile, <<<") + abs(QStringLiteral("gone")) + QStringLiteral(">>> does not exist")));
    // setIndex keeps to the list and leaves the state alone.
    h.setIndex(9);
    QCOMPARE(h.getIndex(), 3u);
    h.setIndex(0);
    QCOMPARE(h.getIndex(), 0u);
    QCOMPARE(h.stateToString(), QStringLiteral("PREV"));
    const int before = notified;
    h.reset();
    QCOMPARE(notified, before + 1);   // a reset always tells
    QCOMPARE(h.count(), 0u);
    QCOMPARE(History::stateToString(8), QStringLiteral("unknown"));
}

void TestWinFinder::historyThroughTheWindow() {
    QPointer<WinFinder> w = open(QString());
    tav::XTreeViewFiles* t = w->treeView();
    auto* bar = w->naviBar();
    QVERIFY(t->selectFile(abs(QStringLiteral("a")), false));
    QVERIFY(t->selectFile(abs(QStringLiteral("a/b")), false));
    QVERIFY(t->selectFile(abs(QStringLiteral("d")), false));
    History& h = w->history();
    const uint32_t n = h.count();
    QVERIFY(bar->buttonBack()->isEnabled());
    QVERIFY(!bar->buttonForward()->isEnabled());
    QTest::keyClick(w, Qt::Key_Left, Qt::AltModifier);
    QCOMPARE(t->selectedFile().absoluteFilePath(), abs(QStringLiteral("a/b")));
    QCOMPARE(h.count(), n);   // moving back records nothing
    QVERIFY(bar->buttonForward()->isEnabled());
    // With no search running, Escape has nothing to cancel: selection and forward history stay.
    {
        tftest::LogCapture logs;
        QTest::keyClick(w, Qt::Key_Escape);
        QVERIFY(!logs.contains(QStringLiteral("WinFinder_find::on_escape_key")));
    }
    QCOMPARE(t->selectedFile().absoluteFilePath(), abs(QStringLiteral("a/b")));
    QVERIFY(bar->buttonForward()->isEnabled());
    QTest::keyClick(w, Qt::Key_Right, Qt::AltModifier);
    QCOMPARE(t->selectedFile().absoluteFilePath(), abs(QStringLiteral("d")));
    QCOMPARE(h.count(), n);
    // The next selection by the user is recorded again.
    QVERIFY(t->selectFile(abs(QStringLiteral("e")), false));
    QCOMPARE(h.count(), n + 1);
    QCOMPARE(bar->editPath()->text(), abs(QStringLiteral("e")));
    QCOMPARE(w->windowTitle(), QStringLiteral("TF ") + abs(QStringLiteral("e")));
    QCOMPARE(w->trayAction()->text(), QStringLiteral("TF ") + abs(QStringLiteral("e")));

    // A history entry chosen from the menu is selected without a new record.
    w->on_history_select(0);
    QCOMPARE(h.getIndex(), 0u);
    QCOMPARE(h.count(), n + 1);
    QVERIFY(!bar->buttonBack()->isEnabled());

    // "Clear History" leaves exactly the current selection.
    w->on_clear_history();
    QCOMPARE(h.count(), 1u);
    QCOMPARE(h.stateToString(), QStringLiteral("NOT_ENABLED"));
    QCOMPARE(h.files()[0].absoluteFilePath(), t->selectedFile().absoluteFilePath());
    QVERIFY(!bar->buttonBack()->isEnabled() && !bar->buttonForward()->isEnabled());
    // Disabled buttons look disabled in both styles: their icons are faded.
    auto ink = [](const QIcon& icon, QIcon::Mode mode) {
        const QImage img = icon.pixmap(16, 16, mode).toImage();
        int sum = 0;
        for (int y = 0; y < img.height(); ++y)
            for (int x = 0; x < img.width(); ++x) sum += qAlpha(img.pixel(x, y));
        return sum;
    };
    const QIcon back = bar->buttonBack()->icon();
    QVERIFY(ink(back, QIcon::Normal) > 0);
    QVERIFY(ink(back, QIcon::Disabled) * 2 < ink(back, QIcon::Normal));

    // The status bar shows the selected file.
    tftest::LogCapture logs;
    w->setup_status_bar();
    QVERIFY(logs.contains(QStringLiteral("WinFinder_status_bar::setup_status_bar, already set !")));
    QVERIFY(t->selectFile(abs(QStringLiteral("a/one.txt")), false));
    QTRY_COMPARE(w->statusLabel()->text(), abs(QStringLiteral("a/one.txt")) + QStringLiteral("  ( 3 bytes )"));
    closeNow(w);
}

void TestWinFinder::parentStopsBelowRoot() {
    QPointer<WinFinder> w = open(QString());
    tav::XTreeViewFiles* t = w->treeView();
    tftest::LogCapture logs;
    QVERIFY(t->selectFile(abs(QStringLiteral("a/b/c")), false));
    QTest::keyClick(w, Qt::Key_Up, Qt::AltModifier);
    QVERIFY(logs.contains(QStringLiteral("WinFinder::setup_hotkeys - UP")));
    QCOMPARE(t->selectedFile().absoluteFilePath(), abs(QStringLiteral("a/b")));
    w->naviBar()->buttonParent()->click();
    QCOMPARE(t->selectedFile().absoluteFilePath(), abs(QStringLiteral("a")));
    // A folder directly below the root stays selected.
    const QString top = QStringLiteral("/") + QDir::cleanPath(tree.path()).section(QLatin1Char('/'), 1, 1);
    QVERIFY(t->selectFile(top, false));
    QTest::keyClick(w, Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(t->selectedFile().absoluteFilePath(), top);
    QVERIFY(t->selectFile(QStringLiteral("/"), false));
    QTest::keyClick(w, Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(t->selectedFile().absoluteFilePath(), QStringLiteral("/"));
    closeNow(w);
}

void TestWinFinder::keysReachTheirActions() {
    QPointer<WinFinder> w = open(abs(QStringLiteral("a")));
    tftest::LogCapture logs;
    auto& flags = w->filterFlags();
    // A new user's panel: the name pattern and the content field, each saying what it is for.
    QCOMPARE(tavFinder::WinFinderConfig().filterBits, uint32_t(WinFinder::FILTER_PATTERN | WinFinder::FILTER_TEXT_FILES | WinFinder::FILTER_CONTENT));
    QCOMPARE(w->comboPattern()->lineEdit()->placeholderText(), QStringLiteral("Name pattern, e.g. *.cpp"));
    QCOMPARE(w->comboNotPattern()->lineEdit()->placeholderText(), QStringLiteral("Exclude, e.g. build"));
    QCOMPARE(w->comboContent()->lineEdit()->placeholderText(), QStringLiteral("Text to find"));
    flags.set_flags(WinFinder::FILTER_CONTENT);
    QTRY_VERIFY(w->rowContent()->isVisible());
    QApplication::processEvents();
    const int panelHeight = w->panelFind()->height();
    flags.reset_flags();
    const std::vector<std::pair<Qt::Key, uint32_t>> toggles{
        {Qt::Key_P, WinFinder::FILTER_PATTERN}, {Qt::Key_N, WinFinder::FILTER_NOT_PATTERN}, {Qt::Key_T, WinFinder::FILTER_TIME},
        {Qt::Key_S, WinFinder::FILTER_SIZE}, {Qt::Key_C, WinFinder::FILTER_CONTENT}};
    uint32_t expected = 0;
    for (auto [key, bit] : toggles) {
        QTest::keyClick(w, key, Qt::AltModifier);
        expected |= bit;
        QCOMPARE(flags.flags(), expected);
    }
    QVERIFY(w->comboPattern()->isVisible() && w->comboNotPattern()->isVisible() && w->rowTime()->isVisible() &&
            w->rowSize()->isVisible() && w->rowContent()->isVisible());
    QCOMPARE(QApplication::focusWidget(), static_cast<QWidget*>(w->comboContent()));   // the last set bit holds the focus
    QTest::keyClick(w, Qt::Key_T, Qt::AltModifier);
    QCOMPARE(flags.flags(), expected & ~uint32_t(WinFinder::FILTER_TIME));
    QVERIFY(!w->rowTime()->isVisible());
    QTest::keyClick(w, Qt::Key_0, Qt::AltModifier);
    QCOMPARE(flags.flags(), 0u);
    QVERIFY(!w->comboPattern()->isVisible() && !w->rowContent()->isVisible());
    // Rows come and go, the panel keeps its height (the buttons stay under the pointer).
    QApplication::processEvents();
    QCOMPARE(w->panelFind()->height(), panelHeight);

    w->treeView()->setFocus();
    // Boxes that the keys open (no bookmarks yet) answer at once.
    tav::XBox::setScriptedAnswer(1);
    for (auto [key, mod, line] : std::vector<std::tuple<Qt::Key, Qt::KeyboardModifiers, QString>>{
             {Qt::Key_R, Qt::AltModifier, "WinFinder::on_navi_root"},
             {Qt::Key_F5, Qt::NoModifier, "WinFinder::on_refresh"},
             {Qt::Key_Down, Qt::AltModifier, "WinFinder::setup_hotkeys - DOWN"},
             {Qt::Key_Return, Qt::NoModifier, "*** WinFinder::on_find"},
             {Qt::Key_B, Qt::AltModifier, "WinFinder::on_bookmarks"},
             {Qt::Key_F2, Qt::NoModifier, "WinFinder::on_rename"}}) {
        logs.clear();
        QTest::keyClick(w, key, mod);
        QVERIFY2(logs.contains(line), qPrintable(line));
    }
    tav::XBox::setScriptedAnswer(-1);
    // Alt+R selected the root.
    QCOMPARE(w->treeView()->selectedFile().absoluteFilePath(), QStringLiteral("/"));

    // Return in the path field opens the typed path instead of searching.
    w->naviBar()->editPath()->setFocus();
    w->naviBar()->editPath()->setText(abs(QStringLiteral("a/b/c")));
    logs.clear();
    QTest::keyClick(w->naviBar()->editPath(), Qt::Key_Return);
    QVERIFY(logs.contains(QStringLiteral("WinFinder::setup_hotkeys - FOCUS ON EDIT PATH")));
    QVERIFY(!logs.contains(QStringLiteral("WinFinder::on_find")));
    QCOMPARE(w->treeView()->selectedFile().absoluteFilePath(), abs(QStringLiteral("a/b/c")));
    // A path that does not exist says so at the field and changes nothing.
    w->naviBar()->editPath()->setText(abs(QStringLiteral("a/none")));
    QTest::keyClick(w->naviBar()->editPath(), Qt::Key_Return);
    QCOMPARE(w->naviBar()->editPath()->toolTip(), QStringLiteral("'%1' does not exist.").arg(abs(QStringLiteral("a/none"))));
    QCOMPARE(w->treeView()->selectedFile().absoluteFilePath(), abs(QStringLiteral("a/b/c")));
    w->treeView()->selectFile(abs(QStringLiteral("a")), false);
    w->naviBar()->editPath()->setText(abs(QStringLiteral("a/b/c")));
    QTest::keyClick(w->naviBar()->editPath(), Qt::Key_Return);
    QVERIFY(w->naviBar()->editPath()->toolTip().isEmpty());
    QCOMPARE(w->treeView()->selectedFile().absoluteFilePath(), abs(QStringLiteral("a/b/c")));

    // Ctrl+Q asks first when configured; "no" keeps everything open.
    tavFinder::cfg().flagConfirmQuit = true;
    tav::XBox::setScriptedAnswer(0);
    logs.clear();
    QTest::keyClick(w, Qt::Key_Q, Qt::ControlModifier);
    QVERIFY(logs.contains(QStringLiteral("WinFinder::quit_application - CANCEL")));
    QVERIFY(w->isVisible());
    tav::XBox::setScriptedAnswer(-1);
    tavFinder::cfg().flagConfirmQuit = false;

    // Ctrl+N opens a second window at the selection; F3 the hints page.
    const size_t windows = tav::XTools::getAbstractWindows(true, true).size();
    QTest::keyClick(w, Qt::Key_N, Qt::ControlModifier);
    QCOMPARE(tav::XTools::getAbstractWindows(true, true).size(), windows + 1);
    QPointer<WinFinder> second = qobject_cast<WinFinder*>(tav::XTools::getAbstractWindows(true, true).back()->widget());
    QVERIFY(second);
    QTRY_COMPARE(second->treeView()->selectedFile().absoluteFilePath(), abs(QStringLiteral("a/b/c")));
    closeNow(second);
    w->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(w));
    QTest::keyClick(w, Qt::Key_F3);
    auto* help = qobject_cast<tav::XBrowserWindow*>(tav::XTools::getAbstractWindows(true, true).back()->widget());
    QVERIFY(help);
    QCOMPARE(help->browser()->source().toString(), QStringLiteral("qrc:/tf/html/FirstMessage.html"));
    QVERIFY(!help->browser()->toPlainText().isEmpty());
    QPointer<tav::XBrowserWindow> helpGuard(help);
    help->close();
    QTRY_VERIFY(helpGuard.isNull());
    closeNow(w);
}

void TestWinFinder::hideAndShowThroughTheTray() {
    tav::KernelGUI::setTavStyleNewStandard();
    WinFinder::setTrayAvailableOverride(1);
    QPointer<WinFinder> w = open(abs(QStringLiteral("d")));
    QVERIFY(WinTray::exists());
    WinTray* tray = WinTray::get();
    QAction* action = w->trayAction();
    QVERIFY(action);
    QVERIFY(tray->menu()->actions().contains(action));
    QTRY_COMPARE(action->icon().cacheKey(), tray->iconHide().cacheKey());

    QTest::keyClick(w, Qt::Key_H, Qt::AltModifier);
    QVERIFY(!w->isVisible());
    QTRY_COMPARE(action->icon().cacheKey(), tray->iconShow().cacheKey());
    action->trigger();
    QVERIFY(w->isVisible());
    QTRY_COMPARE(action->icon().cacheKey(), tray->iconHide().cacheKey());
    QCOMPARE(action->text(), QStringLiteral("WinFinder ") + abs(QStringLiteral("d")));

    // A second tray set-up keeps the one entry and says so.
    tftest::LogCapture logs;
    const int entries = tray->menu()->actions().size();
    w->setupTray();
    QCOMPARE(tray->menu()->actions().size(), entries);
    QCOMPARE(logs.linesAtLevel(4), QStringList{QStringLiteral("WindowBase::setupTray, actionShow already exists")});

    // Without a system tray hiding would lose the window: it is minimised instead,
    // and a request on the instance channel (a second start) brings it back.
    WinFinder::setTrayAvailableOverride(0);
    QTest::keyClick(w, Qt::Key_H, Qt::AltModifier);
    QVERIFY(w->isVisible());
    QTRY_VERIFY(w->isMinimized());
    tav::XInstanceChannel channel(QStringLiteral("testRaise"));
    QVERIFY(channel.listen());
    channel.eventRequest().add([](const QByteArray& r) {
        if (r == "show") WinFinder::showAllWindows();
    });
    auto answered = std::async(std::launch::async, [] { return tav::XInstanceChannel::send(QStringLiteral("testRaise"), "show"); });
    QTRY_VERIFY(!w->isMinimized());
    QVERIFY(w->isVisible());
    QVERIFY(answered.get());
    QVERIFY(!tav::XInstanceChannel::send(QStringLiteral("nobodyListens"), "show", 500));
    WinFinder::setTrayAvailableOverride(-1);
    // Closing the window takes its entry out of the menu.
    closeNow(w);
    QCOMPARE(tray->menu()->actions().size(), entries - 1);
}

void TestWinFinder::thumbnailSizeSteps() {
    QCOMPARE(WinFinder::thumb_size_step(100, true), 128u);
    QCOMPARE(WinFinder::thumb_size_step(100, false), 90u);
    QCOMPARE(WinFinder::thumb_size_step(256, true), 256u);
    QCOMPARE(WinFinder::thumb_size_step(64, false), 64u);
    QCOMPARE(WinFinder::thumb_size_step(128, true), 160u);
    QCOMPARE(WinFinder::thumb_size_step(128, false), 90u);
    QCOMPARE(WinFinder::thumb_size_step(300, false), 256u);
    QCOMPARE(WinFinder::thumb_size_step(10, true), 64u);
}

void TestWinFinder::rootFolderAndTreeColours() {
    auto& c = tavFinder::cfg();
    c.flagUseRootFolder = true;
    c.sRootFolder = QStringLiteral("/");   // one character: ignored
    QPointer<WinFinder> w = open(QString(), false);
    QVERIFY(w->treeView()->isAtRoot());
    QCOMPARE(w->colorTree(), QColor(Qt::white));
    closeNow(w);

    tftest::LogCapture logs;
    c.sRootFolder = tree.path() + QStringLiteral("/a/../a");
    w = open(QString(), false);
    QVERIFY(!w->treeView()->isAtRoot());
    QCOMPARE(w->treeView()->rootPath(), abs(QStringLiteral("a")));
    QCOMPARE(c.sRootFolder, abs(QStringLiteral("a")));
    QCOMPARE(w->colorTree(), QColor(QStringLiteral("#f3e7e3")));
    QVERIFY(w->treeView()->styleSheet().contains(QStringLiteral("#f3e7e3")));
    QVERIFY(logs.contains(QStringLiteral("WinFinder::on_root_changed, is_root:false")));
    closeNow(w);
    c.flagUseRootFolder = false;
    c.sRootFolder.clear();

    tav::KernelGUI::setTavStyleNewDark();
    w = open(QString(), false);
    QCOMPARE(w->colorTree(), QColor(QStringLiteral("#1d2125")));
    QVERIFY(w->treeView()->setRoot(abs(QStringLiteral("d"))));
    QCOMPARE(w->colorTree(), QColor(QStringLiteral("#212245")));
    QCOMPARE(c.sRootFolder, abs(QStringLiteral("d")));
    closeNow(w);
    tav::KernelGUI::setTavStyleNewStandard();
    c.sRootFolder.clear();
}

void TestWinFinder::windowTextsFollowTheLanguage() {
    tav::XTools::set_lang_path(QStringLiteral(":/tf/lang/lang.xml"));
    QVERIFY(tav::XTools::lang_ini(true));
    tav::XTools::set_lang(QStringLiteral("de"));
    QPointer<WinFinder> w = open(QString(), false);
    // Multi-line texts of the catalogue match with their line breaks.
    QCOMPARE(w->naviBar()->buttonBack()->toolTip(),
             QStringLiteral("Ein Verzeichnis zurück  [ Alt + Pfeil links ]\nRechtsklick für das Kontextmenü !"));
    QCOMPARE(w->naviBar()->buttonRefresh()->toolTip(), QStringLiteral("Aktualisieren [ F5 ]"));
    QCOMPARE(w->comboPattern()->toolTip(), QStringLiteral("Filter: Dateimuster"));
    w->date1()->setDate(QDate(2024, 3, 5));
    QCOMPARE(w->date1()->text(), QStringLiteral("M\u00e4rz 05 2024"));
    closeNow(w);
    tav::XTools::set_lang(QStringLiteral("ru"));
    QCOMPARE(tav::xt("Reset Talvo Finder Configuration\nConfirm to bring Talvo Finder\nto initial state and restart program"),
             QStringLiteral("Сбросить конфигурацию Talvo Finder\nПодтвердите, чтобы вернуть Talvo Finder\nв начальное состояние и перезапустить"));
    QCOMPARE(tav::xt("A text nobody translated"), QStringLiteral("A text nobody translated"));
    tav::XTools::set_lang(QStringLiteral("en"));
}

void TestWinFinder::hoverPreviewOnlyInLaterWindows() {
    tftest::LogCapture logs;
    QPointer<WinFinder> first = open(abs(QStringLiteral("a")));
    QVERIFY(first->modifierListenerId(0) >= 0 && first->modifierListenerId(1) >= 0);
    // What the application does after the first window's set-up.
    kernel.replaceModifierListener(0, []() {});
    QPointer<WinFinder> second = open(abs(QStringLiteral("a")));
    auto hoverAndPressCtrl = [&](WinFinder* w, const QString& rel) {
        tav::XTreeViewFiles* t = w->treeView();
        QTRY_VERIFY(t->indexOfPath(abs(rel)).isValid());
        t->scrollTo(t->indexOfPath(abs(rel)));
        const QRect r = t->visualRect(t->indexOfPath(abs(rel)));
        // A real pointer move (the test's cursor moves do not reach offscreen windows).
        QMouseEvent move(QEvent::MouseMove, r.center(), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(t->viewport(), &move);
        QTRY_COMPARE(t->hoveredFile().absoluteFilePath(), abs(rel));
        logs.clear();
        QTest::keyPress(w, Qt::Key_Control, Qt::ControlModifier);
        QTest::keyRelease(w, Qt::Key_Control, Qt::NoModifier);
    };
    const QString prefix = QStringLiteral("WinFinder::setUp_shift_control, TREE-LEFT, fi:");
    hoverAndPressCtrl(second, QStringLiteral("a/one.txt"));
    QVERIFY(logs.contains(prefix + abs(QStringLiteral("a/one.txt"))));
    // The status bar follows the file shown.
    QTRY_VERIFY2(second->statusLabel()->text().startsWith(abs(QStringLiteral("a/one.txt"))), qPrintable(second->statusLabel()->text()));
    // A hovered folder is shown as if the user had selected it.
    hoverAndPressCtrl(second, QStringLiteral("a/b"));
    QCOMPARE(second->getCurrentFile().absoluteFilePath(), abs(QStringLiteral("a/b")));
    first->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(first));
    hoverAndPressCtrl(first, QStringLiteral("a/b/c"));
    QVERIFY(!logs.contains(prefix + abs(QStringLiteral("a/b/c"))));
    QCOMPARE(first->getCurrentFile().absoluteFilePath(), abs(QStringLiteral("a")));
    // Closing takes the listeners off the kernel.
    const int listeners = kernel.eventModifier(0).size();
    closeNow(second);
    QCOMPARE(kernel.eventModifier(0).size(), listeners - 1);
    QCOMPARE(kernel.eventModifier(1).size(), 1);
    kernel.eventModifier(0).clear();
    kernel.eventModifier(1).clear();
    closeNow(first);
}

namespace {
QStringList gWarnings;
void keepWarnings(QtMsgType type, const QMessageLogContext&, const QString& msg) {
    if (type != QtDebugMsg && type != QtInfoMsg) gWarnings << msg;
}
}

void TestWinFinder::ctrlKeysAndSelectionsNeverDrag() {
    gWarnings.clear();
    const QtMessageHandler before = qInstallMessageHandler(keepWarnings);
    tftest::LogCapture logs;
    const QString one = abs(QStringLiteral("a/one.txt"));
    QPointer<WinFinder> w = open(one);
    QTRY_COMPARE(w->treeView()->selectedFile().absoluteFilePath(), one);
    const int drags = tav::XDragOut::started();
    // Ctrl+N with a selected file, Escape in the new window, many times over:
    // each new window selects the file, nothing drags, nothing crashes.
    for (int i = 0; i < 20; ++i) {
        w->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(w));
        const size_t windows = tav::XTools::getAbstractWindows(true, true).size();
        QTest::keyClick(w, Qt::Key_N, Qt::ControlModifier);
        QCOMPARE(tav::XTools::getAbstractWindows(true, true).size(), windows + 1);
        QPointer<WinFinder> second = qobject_cast<WinFinder*>(tav::XTools::getAbstractWindows(true, true).back()->widget());
        QVERIFY(second);
        QTest::keyClick(second, Qt::Key_Escape, Qt::ControlModifier);
        QTRY_COMPARE(second->treeView()->selectedFile().absoluteFilePath(), one);
        if (i % 5 == 4) QTest::qWait(50);   // let the file model load in between
        closeNow(second);
    }
    // Ctrl+2 and selecting a folder or a file while Ctrl is held preview, never drag.
    QTest::keyPress(w, Qt::Key_Control, Qt::ControlModifier);
    QTest::keyClick(w, Qt::Key_2, Qt::ControlModifier);
    QVERIFY(w->treeView()->selectFile(abs(QStringLiteral("a/b")), true));
    QTRY_COMPARE(w->getCurrentFile().absoluteFilePath(), abs(QStringLiteral("a/b")));
    QVERIFY(w->treeView()->selectFile(one, false));
    QTRY_COMPARE(w->getCurrentFile().absoluteFilePath(), one);
    QTest::keyRelease(w, Qt::Key_Control, Qt::NoModifier);
    QCOMPARE(tav::XDragOut::started(), drags);
    QVERIFY(!logs.contains(QStringLiteral("XTools::drop_file")));

    // A real gesture does drag: pressed on the item, moved past the drag distance with Ctrl.
    tav::XTreeViewFiles* t = w->treeView();
    const QRect r = t->visualRect(t->indexOfPath(one));
    QVERIFY(r.isValid());
    const QPoint far = r.center() + QPoint(QApplication::startDragDistance() + 5, 0);
    QTest::mousePress(t->viewport(), Qt::LeftButton, Qt::NoModifier, r.center());
    QMouseEvent plainMove(QEvent::MouseMove, far, Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(t->viewport(), &plainMove);
    QCOMPARE(tav::XDragOut::started(), drags);   // without Ctrl: a selection, no drag
    QMouseEvent ctrlMove(QEvent::MouseMove, far, Qt::NoButton, Qt::LeftButton, Qt::ControlModifier);
    QApplication::sendEvent(t->viewport(), &ctrlMove);
    QCOMPARE(tav::XDragOut::started(), drags + 1);
    QVERIFY(logs.contains(QStringLiteral("XTools::drop_file, <<<") + one));
    QTest::mouseRelease(t->viewport(), Qt::LeftButton, Qt::NoModifier, far);

    closeNow(w);
    qInstallMessageHandler(before);
    for (const QString& m : gWarnings) QVERIFY2(!m.contains(QStringLiteral("wrong model")), qPrintable(m));
}

QTEST_MAIN(TestWinFinder)
#include "test_winfinder.moc"
