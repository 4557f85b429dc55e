// Custom applications end to end: the "Open with ..." submenu, direct runs whose
// output comes back to the finder, terminal runs and the terminal in a folder
// (observed through a fake emulator first on PATH), and the applications editor.
#include "common/TestEnv.h"

#include "base/env/Env.h"
#include "base/node/XNode.h"
#include "base/tree/XTreeArray.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XBox.h"
#include "gui/widgets/XMenu.h"
#include "gui/widgets/XTreeViewFiles.h"
#include "src/dir/ContextPreviews.h"
#include "src/gui/WinFinder.h"
#include "src/gui/WinTray.h"
#include "src/gui/apps/ListModelPrograms.h"
#include "src/gui/apps/PanelProgram.h"
#include "src/gui/apps/Terminal.h"
#include "src/gui/apps/WinEditorApps.h"
#include "src/gui/apps/XAppManager.h"
#include "src/gui/apps/XAppRunner.h"
#include "src/gui/apps/XType_App.h"

#include <QAction>
#include <QCheckBox>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QToolButton>
#include <QApplication>
#include <QtTest>

using namespace tavFinder;

namespace {

QByteArray readFile(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void writeExecutable(const QString& path, const QByteArray& text) {
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(text);
    f.close();
    f.setPermissions(f.permissions() | QFileDevice::ExeOwner | QFileDevice::ExeUser);
}

// A stand-in emulator: writes its folder and arguments, one a line, to $TF_FAKE_OUT.
const QByteArray kFakeTerminal = "#!/bin/sh\n{ printf 'cwd=%s\\n' \"$PWD\"; for a in \"$@\"; do printf 'arg=%s\\n' \"$a\"; done; } > \"$TF_FAKE_OUT\"\n";

XApp record(const QString& name, const QString& title) {
    XApp a;
    a.set_name(name);
    a.set_title(title);
    return a;
}

tav::XTree appsTree(std::vector<XApp> apps) {
    tav::XTree t;
    tav::XTreeArray& arr = t.setArray(QLatin1String(XAppManager::KEY_PROGRAMS), tav::XTreeArray(0, XType_App::appType()));
    for (XApp& a : apps) arr.append(std::make_unique<XApp>(std::move(a)));
    return t;
}

QStringList storeTitles() {
    QStringList out;
    for (XApp* a : XAppManager::get_apps()) out << a->get_title(false);
    return out;
}

QStringList fileTitles() {
    tav::XTree t;
    if (!t.load_from_compressed_file(XAppManager::fileInfo(), XAppManager::types())) return {QStringLiteral("<no file>")};
    QStringList out;
    for (const auto& e : t.array(QLatin1String(XAppManager::KEY_PROGRAMS)).elements())
        out << e->getString(QLatin1String(XApp::KEY_TITLE));
    return out;
}

} // namespace

class TestProgramRunner : public QObject {
    Q_OBJECT
    tftest::TestEnv env;
    tav::KernelGUI kernel{QStringLiteral("talvoEngine"), QStringLiteral("app"), QStringList(), true};
    tftest::TestDir tree;
    QPointer<WinFinder> win;
    QByteArray savedPath;
    QString fakeDir, emptyDir, fakeOut;

    QString abs(const QString& rel) const { return QFileInfo(tree.abs(rel)).absoluteFilePath(); }
    void activate() {
        win->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(win));
    }
    // The lines the fake emulator wrote, once it has run.
    QStringList fakeLines() {
        if (!QTest::qWaitFor([this]() { return !readFile(fakeOut).isEmpty(); }, 10000)) return {QStringLiteral("<not started>")};
        const QStringList lines = QString::fromUtf8(readFile(fakeOut)).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        QFile::remove(fakeOut);
        return lines;
    }

private slots:
    void initTestCase() {
        WinTray::setWatchdogEnabled(false);
        tav::XTools::set_lang(QStringLiteral("en"));
        tree.file(QStringLiteral("docs/with blank.txt"), "target");
        tree.file(QStringLiteral("docs/plain.txt"), "plain");
        tree.file(QStringLiteral("emit.sh"), "echo 'working ...'\necho \"\\$OUTPUT=\\\"$1\\\"\"\n");
        fakeDir = tree.dir(QStringLiteral("bin"));
        emptyDir = tree.dir(QStringLiteral("nobin"));
        fakeOut = tree.abs(QStringLiteral("fake.out"));
        writeExecutable(fakeDir + QStringLiteral("/gnome-terminal"), kFakeTerminal);
        writeExecutable(fakeDir + QStringLiteral("/myterm"), kFakeTerminal);
        savedPath = qgetenv("PATH");
        tav::setEnv(QStringLiteral("TF_FAKE_OUT"), fakeOut);
        tav::setEnv(QStringLiteral("TF_SCRIPT"), abs(QStringLiteral("emit.sh")));

        WinFinder::register_process_output_consumer();
        tav::XNode* nWin = kernel.getCreateNodeApplication()->getCreateNode(QStringLiteral("GUI"))->getCreateNode(QStringLiteral("Window"));
        win = new WinFinder(true);
        win->init(&kernel, nWin);
        win->setUp(abs(QStringLiteral("docs")));
        win->setGeometry(40, 40, 1000, 600);
        win->show();
        activate();
    }
    void cleanupTestCase() {
        qputenv("PATH", savedPath);
        // The output files shown in the window go with it.
        const QStringList outputs = win ? win->output_files() : QStringList();
        QVERIFY(outputs.size() >= 2);
        for (const QString& f : outputs) QVERIFY(QFile::exists(f));
        if (win) win->close();
        QTRY_VERIFY(win.isNull());
        for (const QString& f : outputs) QVERIFY2(!QFile::exists(f), qPrintable(f));
    }
    void cleanup() {
        qputenv("PATH", savedPath);
        tav::unsetEnv(QStringLiteral("TERMINAL"));
        tav::XBox::setScriptedAnswer(-1);
    }

    void outputProtocol() {
        QCOMPARE(WinFinder::output_target(QStringLiteral("a\nb $OUTPUT = \"/x/y z.txt\" \nrest")), QStringLiteral("/x/y z.txt"));
        QCOMPARE(WinFinder::output_target(QStringLiteral("$OUTPUT='/a'b'")), QStringLiteral("/ab"));
        QCOMPARE(WinFinder::output_target(QStringLiteral("$output=/a")), QString());
        QCOMPARE(WinFinder::output_target(QStringLiteral("$OUTPUT /a")), QString());
    }

    void openWithRunsAndSelectsTheNamedFile() {
        XApp emitter = record(QStringLiteral("emit"), QStringLiteral("  "));
        emitter.set_path(QStringLiteral("/bin/sh"));
        // The file name has a blank: it must stay one argument.
        emitter.set_arguments(QStringLiteral("$(TF_SCRIPT) $(G_PATH)"));
        emitter.set_flag_show_output(true);
        XApp off = record(QStringLiteral("off"), QStringLiteral("Disabled one"));
        off.set_flag_enabled(false);
        XAppManager::tree() = appsTree({emitter, off});

        const QFileInfo target(abs(QStringLiteral("docs/with blank.txt")));
        tav::XMenu menu;
        win->create_open_with_app(menu, target);
        QMenu* sub = menu.actions().first()->menu();
        QVERIFY(sub);
        QCOMPARE(sub->title(), QStringLiteral("Open with ..."));
        QStringList texts;
        for (QAction* a : sub->actions())
            if (!a->isSeparator()) texts << a->text();
        // A blank title falls back to the raw name.
        QCOMPARE(texts, QStringList({"emit", "Disabled one", "Application Editor"}));
        QVERIFY(sub->actions().at(0)->isEnabled());
        QVERIFY(!sub->actions().at(1)->isEnabled());

        activate();
        sub->actions().at(0)->trigger();
        QTRY_COMPARE_WITH_TIMEOUT(win->treeView()->selectedFile().absoluteFilePath(), target.absoluteFilePath(), 10000);
    }

    void directRunOutputShownAsText() {
        activate();
        tftest::LogCapture logs;
        XApp silent = record(QStringLiteral("silent"), QStringLiteral("Silent"));
        silent.set_path(QStringLiteral("/bin/true"));
        silent.set_flag_show_output(true);
        QVERIFY(XAppRunner::start_program(silent));
        QTRY_VERIFY_WITH_TIMEOUT(win->contextMain()->currentFile().fileName().startsWith(QLatin1String("tavFind-output-")), 10000);
        QCOMPARE(readFile(win->contextMain()->currentFile().absoluteFilePath()), QByteArray("Process result is empty!"));
        QVERIFY(logs.contains(QStringLiteral("WinRunProgram::on_exec, no terminal")));

        // A target that does not exist: the output itself is shown.
        XApp missing = record(QStringLiteral("missing"), QStringLiteral("Missing"));
        missing.set_path(QStringLiteral("/bin/sh"));
        missing.set_arguments(QStringLiteral("-c \"echo '$OUTPUT=/no/such/file'\""));
        missing.set_flag_show_output(true);
        const QFileInfo before = win->contextMain()->currentFile();
        XAppRunner::start_program(missing);
        QTRY_VERIFY_WITH_TIMEOUT(win->contextMain()->currentFile() != before, 10000);
        QCOMPARE(readFile(win->contextMain()->currentFile().absoluteFilePath()), QByteArray("$OUTPUT=/no/such/file\n"));

        // A program that cannot start reports an error through the same way.
        QStringList received;
        const int id = XAppRunner::eventProcessOutput().add([&received](const QString& t) { received << t; });
        XApp broken = record(QStringLiteral("broken"), QStringLiteral("Broken"));
        broken.set_path(abs(QStringLiteral("nobin/none")));
        XAppRunner::start_program(broken);
        const QString none = abs(QStringLiteral("nobin/none"));
        QTRY_COMPARE_WITH_TIMEOUT(received, QStringList{QStringLiteral("Process Error\nThe program '%1' was not found.\n").arg(none)}, 5000);
        // One on PATH that is missing is named too; a file that may not run says so.
        received.clear();
        broken.set_path(QStringLiteral("no-such-program-anywhere"));
        XAppRunner::start_program(broken);
        QTRY_COMPARE_WITH_TIMEOUT(received, QStringList{QStringLiteral("Process Error\nThe program 'no-such-program-anywhere' was not found.\n")}, 5000);
        XAppRunner::eventProcessOutput().remove(id);
        tree.file(QStringLiteral("nobin/plain"), "#!/bin/sh\n");
        QCOMPARE(XAppRunner::start_error_text(abs(QStringLiteral("nobin/plain")), QProcess::FailedToStart, QStringLiteral("x")),
                 QStringLiteral("The program '%1' may not be run (permission denied).").arg(abs(QStringLiteral("nobin/plain"))));
    }

    void terminalRunArguments() {
        qputenv("PATH", fakeDir.toLocal8Bit());
        XApp app = record(QStringLiteral("term"), QStringLiteral("Term"));
        app.set_path(QStringLiteral("/bin/echo"));
        app.set_flag_terminal(true);
        XAppRunner::start_program(app);
        // Empty arguments still leave the blank; no folder, no folder option.
        QCOMPARE(fakeLines().mid(1), QStringList({"arg=--", "arg=bash", "arg=-c", "arg='/bin/echo' "}));

        const QString wd = abs(QStringLiteral("docs"));
        tav::setEnv(QStringLiteral("TF_WD"), wd);
        tav::fileInfo_to_env(QFileInfo(abs(QStringLiteral("docs/with blank.txt"))));
        app.set_working_dir(QStringLiteral("$(TF_WD)"));
        app.set_arguments(QStringLiteral("-n $(G_PATH)"));
        app.set_flag_keep_term_open(true);
        XAppRunner::start_program(app);
        QCOMPARE(fakeLines(), QStringList({"cwd=" + wd, "arg=--working-directory", "arg=" + wd, "arg=--", "arg=bash", "arg=-c",
                                           "arg='/bin/echo' '-n' '" + abs(QStringLiteral("docs/with blank.txt")) + "'; exec bash"}));

        // A name with a quote stays one quoted word for bash.
        tav::setEnv(QStringLiteral("TF_ODD"), QStringLiteral("it's; rm x"));
        app.set_arguments(QStringLiteral("$(TF_ODD)"));
        app.set_flag_keep_term_open(false);
        QCOMPARE(XAppRunner::terminal_command_line(app), QStringLiteral("'/bin/echo' 'it'\\''s; rm x'"));
    }

    void terminalInAFolder() {
        qputenv("PATH", fakeDir.toLocal8Bit());
        const QString folder = abs(QStringLiteral("docs"));
        Terminal::open_here(QFileInfo(abs(QStringLiteral("docs/plain.txt"))));
        QCOMPARE(fakeLines(), QStringList({"cwd=" + folder, "arg=--working-directory", "arg=" + folder}));

        // $TERMINAL comes first; an emulator of unknown kind gets the folder as its working folder.
        tav::setEnv(QStringLiteral("TERMINAL"), fakeDir + QStringLiteral("/myterm --hold"));
        Terminal::open_here(QFileInfo(folder));
        QCOMPARE(fakeLines(), QStringList({"cwd=" + folder, "arg=--hold"}));

        // Nothing found: a log line, nothing started.
        tav::unsetEnv(QStringLiteral("TERMINAL"));
        qputenv("PATH", emptyDir.toLocal8Bit());
        tftest::LogCapture logs;
        Terminal::open_here(QFileInfo(folder));
        QVERIFY(logs.contains(QStringLiteral("no terminal emulator found")));
        QVERIFY(!QFileInfo::exists(fakeOut));
    }

    void editorApplyCancelAndOk() {
        tav::setEnv(QStringLiteral("TF_TOOLS"), QStringLiteral("/opt/tools"));
        XApp a = record(QStringLiteral("a"), QStringLiteral("A"));
        a.set_path(QStringLiteral("$(TF_TOOLS)/viewer"));
        a.set_arguments(QStringLiteral("--open $(G_PATH)"));
        XAppManager::init_file();
        XAppManager::tree() = appsTree({a, record(QStringLiteral("b"), QStringLiteral("B")), record(QStringLiteral("c"), QStringLiteral("C"))});
        QVERIFY(XAppManager::save());

        QPointer<WinEditorApps> ed = new WinEditorApps();
        ed->setup(XAppManager::get_copy());
        ed->show();
        QVERIFY(WinEditorApps::isOpen());
        // While one is open, the menu entry is disabled and opening does nothing.
        tav::XMenu menu;
        win->create_open_with_app(menu, QFileInfo(abs(QStringLiteral("docs/plain.txt"))));
        QVERIFY(!menu.actions().first()->menu()->actions().last()->isEnabled());
        WinFinder::on_app_editor(nullptr);
        int editors = 0;
        for (QWidget* w : QApplication::topLevelWidgets()) editors += qobject_cast<WinEditorApps*>(w) ? 1 : 0;
        QCOMPARE(editors, 1);

        // Apply without a selection does nothing.
        ed->form()->editTitle()->setText(QStringLiteral("nothing"));
        ed->findChild<QPushButton*>(QStringLiteral("buttonApply"))->click();
        QCOMPARE(storeTitles(), QStringList({"A", "B", "C"}));

        // The form keeps references in the arguments and shows the path expanded.
        ed->selectRow(0);
        QCOMPARE(ed->form()->editName()->text(), QStringLiteral("a"));
        QCOMPARE(ed->form()->editArguments()->text(), QStringLiteral("--open $(G_PATH)"));
        QCOMPARE(ed->form()->editPath()->text(), QStringLiteral("/opt/tools/viewer"));
        ed->form()->editTitle()->setText(QStringLiteral("Viewer"));
        ed->checkEnabled()->setChecked(false);
        ed->findChild<QPushButton*>(QStringLiteral("buttonApply"))->click();
        QCOMPARE(storeTitles(), QStringList({"Viewer", "B", "C"}));
        XApp* applied = XAppManager::get_apps().front();
        QVERIFY(!applied->is_flag_enabled());
        QCOMPARE(applied->get_arguments(false), QStringLiteral("--open $(G_PATH)"));
        QCOMPARE(applied->get_path(false), QStringLiteral("/opt/tools/viewer"));
        QCOMPARE(ed->selectedRow(), 0);
        // Apply does not write the file.
        QCOMPARE(fileTitles(), QStringList({"A", "B", "C"}));

        // Copies get names of their own.
        ed->findChild<QToolButton*>(QStringLiteral("buttonCopy"))->click();
        ed->findChild<QToolButton*>(QStringLiteral("buttonCopy"))->click();
        QStringList names;
        for (int r = 0; r < ed->model()->rowCount(); ++r) names << ed->model()->app_at(r).get_name(false);
        QCOMPARE(names.size(), 5);
        QCOMPARE(QSet<QString>(names.begin(), names.end()).size(), 5);

        // Reset returns to the list at opening.
        tav::XBox::setScriptedAnswer(1);
        ed->findChild<QToolButton*>(QStringLiteral("buttonReset"))->click();
        QCOMPARE(ed->model()->rowCount(), 3);
        QCOMPARE(ed->model()->app_at(0).get_title(false), QStringLiteral("A"));
        // Deleting the last row selects the new last row.
        ed->selectRow(2);
        ed->findChild<QToolButton*>(QStringLiteral("buttonDelete"))->click();
        QCOMPARE(ed->model()->rowCount(), 2);
        QCOMPARE(ed->selectedRow(), 1);

        // Cancel undoes the Apply and writes the list of the opening again.
        QVERIFY(QFile::remove(XAppManager::fileInfo().absoluteFilePath()));
        ed->findChild<QPushButton*>(QStringLiteral("buttonCancel"))->click();
        QTRY_VERIFY(ed.isNull());
        QVERIFY(!WinEditorApps::isOpen());
        QCOMPARE(storeTitles(), QStringList({"A", "B", "C"}));
        QCOMPARE(fileTitles(), QStringList({"A", "B", "C"}));

        // OK puts the edited list into the store and the file.
        QPointer<WinEditorApps> ed2 = new WinEditorApps();
        ed2->setup(XAppManager::get_copy());
        ed2->show();
        ed2->selectRow(1);
        ed2->findChild<QToolButton*>(QStringLiteral("buttonUp"))->click();
        ed2->findChild<QToolButton*>(QStringLiteral("buttonNew"))->click();
        QCOMPARE(ed2->model()->rowCount(), 4);
        QCOMPARE(ed2->selectedRow(), 0);
        ed2->findChild<QPushButton*>(QStringLiteral("buttonOK"))->click();
        QTRY_VERIFY(ed2.isNull());
        QCOMPARE(storeTitles(), QStringList({"", "B", "A", "C"}));
        QCOMPARE(fileTitles(), QStringList({"", "B", "A", "C"}));
    }
};

QTEST_MAIN(TestProgramRunner)
#include "test_program_runner.moc"
