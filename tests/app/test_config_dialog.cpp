// The configuration dialog through the main window's on_config, with real
// widgets: what OK stores, what Cancel keeps, the theme and its cache, the
// restart question, and the single language editor of the settings menu.
#include "common/ModalDriver.h"
#include "common/TestEnv.h"

#include "base/io/XFileIO.h"
#include "base/kernel/Kernel.h"
#include "base/node/XNode.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XBox.h"
#include "gui/widgets/XTreeViewFiles.h"
#include "gui/widgets/XTypedComboBox.h"
#include "src/gui/WinFinder.h"
#include "src/gui/WinTray.h"
#include "src/gui/config/ConfigTavFinder.h"
#include "src/gui/config/DiaWinFinderConfig.h"
#include "src/gui/lang/WinLang.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QStatusBar>
#include <QTabWidget>
#include <QtTest>

using tavFinder::DiaTavFinderConfig;
using tavFinder::WinFinder;
using tavFinder::cfg;

class TestConfigDialog : public QObject {
    Q_OBJECT
    tftest::TestEnv env;
    tav::KernelGUI kernel{QStringLiteral("talvoEngine"), QStringLiteral("app"), QStringList(), true};
    QPointer<WinFinder> win;

    WinFinder* open() {
        auto* w = new WinFinder(true);
        w->init(&kernel, kernel.getCreateNodeApplication()->getCreateNode(QStringLiteral("GUI"))->getCreateNode(QStringLiteral("Window")));
        w->setUp(QString());
        w->setGeometry(40, 40, 1000, 600);
        w->show();
        return w;
    }
    // Runs on_config with 'edit' applied to the dialog, then OK (or Cancel).
    bool runConfig(std::function<void(DiaTavFinderConfig*)> edit, bool ok = true) {
        auto watch = tftest::onModal<DiaTavFinderConfig>([edit, ok](DiaTavFinderConfig* d) {
            if (edit) edit(d);
            (ok ? d->buttonOk() : d->buttonCancel())->click();
        });
        win->on_config();
        return watch->ran;
    }
    QString cacheFile() const { return tav::XTools::get_create_cache_dir().absoluteFilePath(QStringLiteral("thumb.png")); }

private slots:
    void initTestCase() {
        tavFinder::WinTray::setWatchdogEnabled(false);
        tav::XTools::set_lang_path(QStringLiteral(":/tf/lang/lang.xml"));
        tav::XTools::lang_ini(true);
        tav::XTools::set_lang(QStringLiteral("en"));
        cfg().fromNode(kernel.getCreateNodeApplication()->getCreateNode(QStringLiteral("Config")));
        win = open();
    }
    void init() { tav::XBox::setScriptedAnswer(0); }   // "no" to the restart
    void cleanupTestCase() {
        tav::XBox::setScriptedAnswer(-1);
        tav::KernelGUI::setTavStyleNewStandard();
        if (win) win->close();
    }

    void okWithoutChangesChangesNothingButAsksToRestart();
    void cancelKeepsEverything();
    void controlsReachTheRecord();
    void extensionsAreOnlyAdded();
    void themeChangeEmptiesTheCache();
    void statusBarOfEveryWindow();
    void oneLanguageEditorOnly();
};

void TestConfigDialog::okWithoutChangesChangesNothingButAsksToRestart() {
    cfg().countThreads = 9;   // a value the combo does not offer
    cfg().max_file_size_auto_calc_checksums = 7;
    const QString before = cfg().toString();
    const int boxes = tav::XBox::countShown();
    tftest::LogCapture logs;
    QVERIFY(runConfig(nullptr));
    QCOMPARE(cfg().toString(), before);
    QCOMPARE(tav::XBox::countShown(), boxes + 1);
    QVERIFY(logs.contains(QStringLiteral("XBox::ask_yes_no, title:'Restart'")));
    QVERIFY(!tav::Kernel::isRebootProgram());
    QVERIFY(logs.contains(QStringLiteral("WinFinder_config::on_config - STANDARD THEME")));
    QVERIFY(!logs.contains(QStringLiteral("THEME CHANGED !")));
    QCOMPARE(kernel.getNodeRoot()->get_lang(), QStringLiteral("en"));
}

void TestConfigDialog::cancelKeepsEverything() {
    const QString before = cfg().toString();
    const int boxes = tav::XBox::countShown();
    tftest::LogCapture logs;
    QVERIFY(runConfig([](DiaTavFinderConfig* d) {
        // The boxes that write into the dialog's copy at once.
        d->checkDarkTheme()->setChecked(true);
        d->checkStatusBar()->setChecked(!d->checkStatusBar()->isChecked());
        d->checkDirsOnly()->setChecked(!d->checkDirsOnly()->isChecked());
        d->comboLang()->setCurrentText(QStringLiteral("ru"));
    }, false));
    QVERIFY(logs.containsLine(QStringLiteral("dia cancel")));
    QCOMPARE(cfg().toString(), before);
    QVERIFY(!cfg().flagDarkTheme && !tav::XTools::isTavStyleDark());
    QCOMPARE(tav::XBox::countShown(), boxes);
    QCOMPARE(kernel.getNodeRoot()->get_lang(), QStringLiteral("en"));
}

void TestConfigDialog::controlsReachTheRecord() {
    cfg().fontSize = 99;   // out of range: shown and stored as 16
    cfg().filterBits = 2 | 128;
    QVERIFY(runConfig([](DiaTavFinderConfig* d) {
        QCOMPARE(d->tabs()->count(), 4);
        QCOMPARE(d->tabs()->tabText(3), QStringLiteral("Text View"));
        d->checkCtrl()->setChecked(false);
        d->checkShift()->setChecked(false);
        d->checkAlt()->setChecked(false);
        d->comboThreads()->setSelected(16);
        d->comboScale()->setSelected(150);
        d->groupLinePos().button(2)->click();
        d->comboScope()->setSelected(2);
        for (unsigned bit : {2u, 4u, 8u, 16u, 64u, 128u}) d->checkFilterBit(bit)->setChecked(false);
        d->checkFilterBit(32)->setChecked(true);
        d->comboLang()->setCurrentText(QStringLiteral("ru"));
        d->checkUseStartFolder()->setChecked(true);
        d->editStartFolder()->setText(QStringLiteral("  /tmp/start  "));
        d->textFilter()->setPlainText(QStringLiteral("/opt;/srv"));
        d->checkPropAutoLoad()->setChecked(false);
        QVERIFY(!d->comboAutoLoad()->isEnabled());
    }));
    QCOMPARE(cfg().HotkeyCyclePreviews, 0u);
    QVERIFY(!tav::XTools::is_modifier(cfg().HotkeyCyclePreviews));
    QCOMPARE(cfg().countThreads, 16u);
    QCOMPARE(cfg().li_pos, 2);
    QCOMPARE(cfg().scope, 2u);
    QCOMPARE(cfg().filterBits, 32u);
    QCOMPARE(cfg().fontSize, 16);
    QVERIFY(cfg().flagUseStartFolder);
    QCOMPARE(cfg().sStartFolder, QStringLiteral("/tmp/start"));
    QCOMPARE(cfg().filter_to_string(), QStringLiteral("/opt;/srv"));
    QVERIFY(!cfg().flagPropAutoLoad);
    // The language and the scale wait for the next start.
    QCOMPARE(kernel.getNodeRoot()->get_lang(), QStringLiteral("ru"));
    QCOMPARE(tav::XTools::lang(), QStringLiteral("en"));
    QCOMPARE(kernel.getNodeRoot()->fontScale(), 150);

    // Only Alt: the Alt bit alone; the dialog shows what is stored.
    QVERIFY(runConfig([](DiaTavFinderConfig* d) {
        QVERIFY(!d->checkCtrl()->isChecked() && !d->checkShift()->isChecked() && !d->checkAlt()->isChecked());
        QCOMPARE(d->comboScale()->selected(), 150u);
        QVERIFY(d->groupLinePos().button(2)->isChecked());
        d->checkAlt()->setChecked(true);
        d->comboLang()->setCurrentText(QStringLiteral("en"));
        d->comboScale()->setSelected(100);
    }));
    QCOMPARE(cfg().HotkeyCyclePreviews, 0x08000000u);
    QCOMPARE(kernel.getNodeRoot()->get_lang(), QStringLiteral("en"));
}

void TestConfigDialog::extensionsAreOnlyAdded() {
    QVERIFY(cfg().hasExt(QStringLiteral("txt")));
    QVERIFY(runConfig([](DiaTavFinderConfig* d) {
        QStringList ext = d->textExtensions()->toPlainText().split(QStringLiteral(", "));
        QVERIFY(ext.contains(QStringLiteral("txt")));
        QStringList sorted = ext;
        sorted.sort();
        QCOMPARE(ext, sorted);
        ext.removeAll(QStringLiteral("txt"));
        ext << QStringLiteral("zzz\nyyy");
        d->textExtensions()->setPlainText(ext.join(QStringLiteral(", ")));
    }));
    QVERIFY(cfg().hasExt(QStringLiteral("txt")));
    QVERIFY(cfg().hasExt(QStringLiteral("zzz")) && cfg().hasExt(QStringLiteral("yyy")));
    // An emptied box changes nothing either.
    const QStringList before = cfg().ext;
    QVERIFY(runConfig([](DiaTavFinderConfig* d) { d->textExtensions()->clear(); }));
    QCOMPARE(cfg().ext, before);
}

void TestConfigDialog::themeChangeEmptiesTheCache() {
    QVERIFY(tav::writeFileAtomic(cacheFile(), "old theme"));
    tftest::LogCapture logs;
    // The new theme is stored for the next start; the running windows keep theirs whole.
    QVERIFY(!tav::XTools::isTavStyleDark());
    QVERIFY(runConfig([](DiaTavFinderConfig* d) { d->checkDarkTheme()->setChecked(true); }));
    QVERIFY(!tav::XTools::isTavStyleDark());
    QVERIFY(tav::KernelGUI::tavStyleAtNextStart());
    QVERIFY(logs.contains(QStringLiteral("THEME CHANGED !")));
    QVERIFY(!QFile::exists(cacheFile()));
    QVERIFY(tav::XTools::get_create_cache_dir().exists());

    // Same choice again: the dialog shows it, and the cache stays.
    QVERIFY(tav::writeFileAtomic(cacheFile(), "dark theme"));
    logs.clear();
    QVERIFY(runConfig([](DiaTavFinderConfig* d) { QVERIFY(d->checkDarkTheme()->isChecked()); }));
    QVERIFY(QFile::exists(cacheFile()));
    QVERIFY(logs.contains(QStringLiteral("WinFinder_config::on_config - DARK THEME")));
    QVERIFY(!logs.contains(QStringLiteral("THEME CHANGED !")));

    // A start in the dark theme shows its dialog with the box ticked.
    tav::KernelGUI::setTavStyleNewDark();
    QVERIFY(runConfig([](DiaTavFinderConfig* d) { QVERIFY(d->checkDarkTheme()->isChecked()); }));
    QVERIFY(runConfig([](DiaTavFinderConfig* d) { d->checkDarkTheme()->setChecked(false); }));
    QVERIFY(!tav::KernelGUI::tavStyleAtNextStart());
    QVERIFY(!QFile::exists(cacheFile()));
    tav::KernelGUI::setTavStyleNewStandard();
}

void TestConfigDialog::statusBarOfEveryWindow() {
    QPointer<WinFinder> second = open();
    cfg().flagStatusBar = false;
    win->statusBar()->hide();
    second->statusBar()->hide();
    QVERIFY(runConfig([](DiaTavFinderConfig* d) { d->checkStatusBar()->setChecked(true); }));
    QVERIFY(cfg().flagStatusBar);
    QVERIFY(win->statusBar()->isVisible());
    QVERIFY(second->statusBar()->isVisible());
    // The tree follows the "Directories only" box at once.
    QVERIFY(runConfig([](DiaTavFinderConfig* d) { d->checkDirsOnly()->setChecked(true); }));
    QVERIFY(win->treeView()->isDirsOnly());
    QVERIFY(runConfig([](DiaTavFinderConfig* d) { d->checkDirsOnly()->setChecked(false); }));
    QVERIFY(!win->treeView()->isDirsOnly());
    second->close();
    QTRY_VERIFY(second.isNull());
}

void TestConfigDialog::oneLanguageEditorOnly() {
    auto editors = []() {
        int n = 0;
        for (QWidget* w : QApplication::topLevelWidgets())
            if (qobject_cast<tavFinder::WinLang*>(w) && w->isVisible()) ++n;
        return n;
    };
    tftest::LogCapture logs;
    win->on_lang_editor();
    QCOMPARE(editors(), 1);
    win->on_lang_editor();
    QCOMPARE(editors(), 1);
    QVERIFY(logs.contains(QStringLiteral("WinFinder_config::on_lang_editor, one instance only!")));
    QPointer<tavFinder::WinLang> editor;
    for (QWidget* w : QApplication::topLevelWidgets())
        if (auto* l = qobject_cast<tavFinder::WinLang*>(w)) editor = l;
    QCOMPARE(editor->geometry().size(), QSize(800, 500));
    QVERIFY(kernel.getCreateNodeApplication()->query(QStringLiteral("GUI"))->query(QStringLiteral("WinLang")));
    editor->close();
    QTRY_VERIFY(editor.isNull());
    win->on_lang_editor();
    QCOMPARE(editors(), 1);
}

QTEST_MAIN(TestConfigDialog)
#include "test_config_dialog.moc"
