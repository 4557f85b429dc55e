#include "base/env/Env.h"
#include "base/io/XFileIO.h"
#include "base/io/XPaths.h"
#include "base/tree/XMem.h"
#include "base/tree/XTreeArray.h"
#include "base/tree/XTypeSupporter.h"
#include "common/TestEnv.h"
#include "gui/kernel/KernelGUI.h"
#include "src/FindApplication.h"
#include "src/gui/Bookmarks.h"
#include "src/gui/apps/ListModelPrograms.h"
#include "src/gui/apps/XAppManager.h"
#include "src/gui/apps/XType_App.h"

#include <QtTest>

using namespace tavFinder;
using tav::XTree;

namespace {

QString configFile(const char* name) { return tav::get_absolute_config_file_path(QLatin1String(name)).absoluteFilePath(); }

QByteArray readFile(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

XApp namedApp(const QString& name) {
    XApp a;
    a.set_name(name);
    a.set_title(name.toUpper());
    a.set_path(QStringLiteral("/usr/bin/") + name);
    return a;
}

XTree appsTree(const QStringList& names) {
    XTree t;
    tav::XTreeArray& arr = t.setArray(QLatin1String(XAppManager::KEY_PROGRAMS), tav::XTreeArray(0, XType_App::appType()));
    for (const QString& n : names) arr.append(std::make_unique<XApp>(namedApp(n)));
    return t;
}

QStringList names(const ListModelPrograms& m) {
    QStringList out;
    for (int r = 0; r < m.rowCount(); ++r) out << m.data(m.index(r), Qt::DisplayRole).toString();
    return out;
}

} // namespace

class TestUserData : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

private slots:
    void bookmarksKeepOrderAndOnePerPath() {
        XTree t;
        tftest::LogCapture cap;
        QVERIFY(!Bookmarks::contains_bookmark(t, QStringLiteral("/a")));
        QVERIFY(!Bookmarks::contains_bookmark(t, QString()));
        QVERIFY(Bookmarks::from_tree(t).isEmpty());
        QVERIFY(cap.containsLine(QStringLiteral("Bookmarks::from_tree - empty")));
        QCOMPARE(Bookmarks::get_bookmark(t, QStringLiteral("/a")), Bookmark());

        Bookmarks::add_bookmark(t, {QStringLiteral("A"), QStringLiteral("/a")});
        Bookmarks::add_bookmark(t, {QString(), QStringLiteral("/b")});
        Bookmarks::add_bookmark(t, {QStringLiteral("B"), QStringLiteral("/B")});    // case differs: another one
        Bookmarks::add_bookmark(t, {QStringLiteral("A2"), QStringLiteral("/a/")});  // trailing slash: another one
        Bookmarks::add_bookmark(t, {QStringLiteral("again"), QStringLiteral("/a")});
        QVERIFY(cap.containsLine(QStringLiteral("Bookmarks::add_bookmark, 'again' => '/a', already added !")));
        QCOMPARE(Bookmarks::from_tree(t), (QList<Bookmark>{{"A", "/a"}, {"", "/b"}, {"B", "/B"}, {"A2", "/a/"}}));
        QCOMPARE(Bookmarks::get_bookmark(t, QStringLiteral("/B")), (Bookmark{"B", "/B"}));

        cap.clear();
        Bookmarks::set_bookmark(t, {QStringLiteral("new title"), QStringLiteral("/b")});
        QVERIFY(cap.containsLine(QStringLiteral("Bookmarks::set_bookmark, got the right tree")));
        cap.clear();
        Bookmarks::set_bookmark(t, {QStringLiteral("x"), QStringLiteral("/nowhere")});
        QVERIFY(cap.lines().isEmpty());
        QCOMPARE(Bookmarks::get_bookmark(t, QStringLiteral("/b")).title, QStringLiteral("new title"));

        Bookmarks::remove_bookmark(t, QStringLiteral("/nowhere"));
        QVERIFY(cap.containsLine(QStringLiteral("Bookmarks::remove_bookmark, '/nowhere' ?")));
        Bookmarks::remove_bookmark(t, QStringLiteral("/b"));
        QCOMPARE(Bookmarks::from_tree(t), (QList<Bookmark>{{"A", "/a"}, {"B", "/B"}, {"A2", "/a/"}}));
        for (const QString& p : {QStringLiteral("/a"), QStringLiteral("/B"), QStringLiteral("/a/")}) Bookmarks::remove_bookmark(t, p);
        // Empty, but the key stays: the menu shows no entries rather than the "no bookmarks" box.
        QVERIFY(t.containsKey(QLatin1String(Bookmarks::KEY_BOOKMARKS)));
        QVERIFY(!t.isEmpty());
        QCOMPARE(Bookmarks::to_string({QStringLiteral("t"), QStringLiteral("/p")}), QStringLiteral("t,/p"));
    }

    void malformedBookmarkElementsReadAsEmpty() {
        XTree t;
        tav::XTreeArray& arr = t.setArray(QLatin1String(Bookmarks::KEY_BOOKMARKS), tav::XTreeArray(2));
        arr.at(0)->setBool(QStringLiteral("path"), true);
        arr.at(0)->setTree(QStringLiteral("title"), XTree());
        arr.at(1)->setString(QStringLiteral("path"), QStringLiteral("/only/path"));
        tftest::LogCapture cap;
        QCOMPARE(Bookmarks::from_tree(t), (QList<Bookmark>{{"", ""}, {"", "/only/path"}}));
        QCOMPARE(cap.linesAtLevel(4).size(), 2);   // the two wrong types are warned about
        QVERIFY(Bookmarks::contains_bookmark(t, QStringLiteral("/only/path")));
        // A tree where "bookmarks" is not an array behaves as an empty store.
        XTree odd;
        odd.setString(QLatin1String(Bookmarks::KEY_BOOKMARKS), QStringLiteral("x"));
        QVERIFY(!Bookmarks::contains_bookmark(odd, QStringLiteral("x")));
        Bookmarks::add_bookmark(odd, {QStringLiteral("t"), QStringLiteral("/p")});
        QCOMPARE(Bookmarks::from_tree(odd).size(), 1);
    }

    void bookmarkFileInTheConfigFolder() {
        const QString file = configFile(BOOKMARKS_FILE);
        QFile::remove(file);
        tftest::LogCapture cap;
        XTree t;
        t.setString(QStringLiteral("keep"), QStringLiteral("me"));
        Bookmarks::load(t);   // no file: nothing changes
        QVERIFY(cap.containsLine(QStringLiteral("Bookmarks::load - empty ?")));
        QCOMPARE(t.getString(QStringLiteral("keep")), QStringLiteral("me"));

        XTree saved;
        Bookmarks::add_bookmark(saved, {QStringLiteral("Ünï €"), QStringLiteral("/home/u/a b")});
        Bookmarks::add_bookmark(saved, {QStringLiteral("B"), QStringLiteral("/b")});
        Bookmarks::save(saved);
        QVERIFY(QFile::exists(file));
        Bookmarks::load(t);
        QVERIFY(cap.containsLine(QStringLiteral("Bookmarks::load - ok")));
        QVERIFY(!t.containsKey(QStringLiteral("keep")));
        QCOMPARE(Bookmarks::from_tree(t), Bookmarks::from_tree(saved));

        // A tree the basic types cannot write leaves the file alone.
        const QByteArray before = readFile(file);
        XTree bad = appsTree({QStringLiteral("x")});
        Bookmarks::save(bad);
        QVERIFY(cap.containsLine(QStringLiteral("Bookmarks::save, mem ?")));
        QCOMPARE(readFile(file), before);

        // A damaged file gives an empty store and is kept aside, not overwritten later.
        QByteArray damaged = before;
        damaged[damaged.size() - 3] = char(damaged[damaged.size() - 3] ^ 0x55);
        QVERIFY(tav::XMem(damaged).saveToFile(file, 0));
        Bookmarks::load(t);
        QVERIFY(t.isEmpty());
        QVERIFY(!QFile::exists(file));
        const std::vector<tav::MovedAside> moved = tav::takeMovedAside();
        QCOMPARE(moved.size(), size_t(1));
        QCOMPARE(moved[0].path, file);
        QCOMPARE(readFile(moved[0].copy), damaged);
    }

    void applicationRecordFields() {
        const XApp fresh;
        QCOMPARE(fresh.get_name(false).size(), 9);
        QVERIFY(fresh.get_name(false) != XApp().get_name(false));
        QVERIFY(!fresh.containsKey(QLatin1String(XApp::KEY_FLAG_ENABLED)));
        QVERIFY(fresh.is_flag_enabled());
        QVERIFY(fresh.containsKey(QLatin1String(XApp::KEY_TOOL_TIP)) && !fresh.is_flag_terminal());

        const XTree defaults = XAppManager::defaults();
        const tav::XTreeArray& programs = defaults.array(QLatin1String(XAppManager::KEY_PROGRAMS));
        // The defaults are programs a Linux desktop has.
        QCOMPARE(programs.size(), 2);
        const auto* notepad = dynamic_cast<const XApp*>(programs.at(0));
        const auto* editor = dynamic_cast<const XApp*>(programs.at(1));
        QVERIFY(notepad && editor);
        QCOMPARE(notepad->keys(), (QStringList{"arguments", "flagTerminal", "name", "path", "title", "toolTip"}));
        QCOMPARE(notepad->get_path(true), QStringLiteral("xdg-open"));
        QVERIFY(!notepad->is_flag_terminal() && editor->is_flag_terminal());
        QVERIFY(!QStandardPaths::findExecutable(editor->get_path(true)).isEmpty() || editor->get_path(true) == QStringLiteral("vi"));
        QVERIFY(notepad->is_flag_enabled());
        QCOMPARE(notepad->get_icon_path(true), QString());
        tav::unsetEnv(QStringLiteral("VISUAL"));
        tav::setEnv(QStringLiteral("EDITOR"), QStringLiteral("sh"));
        QCOMPARE(XAppManager::terminal_editor(), QStringLiteral("sh"));
        tav::setEnv(QStringLiteral("EDITOR"), QStringLiteral("no-such-editor-here"));
        QVERIFY(XAppManager::terminal_editor() != QStringLiteral("no-such-editor-here"));
        tav::unsetEnv(QStringLiteral("EDITOR"));

        tav::fileInfo_to_env(QFileInfo(QStringLiteral("/tmp/some dir/file.txt")));
        QCOMPARE(notepad->get_arguments(false), QStringLiteral("$(G_PATH)"));
        QCOMPARE(notepad->get_arguments(true), QStringLiteral("/tmp/some dir/file.txt"));
        QVERIFY(notepad->has_arguments());

        // Copies are deep; a moved-from record is left without keys.
        XApp copy(*notepad);
        copy.set_title(QStringLiteral("changed"));
        copy.set_flag_enabled(false);
        QCOMPARE(notepad->get_title(false), QStringLiteral("Desktop editor"));
        QVERIFY(!copy.is_flag_enabled());
        XApp moved = std::move(copy);
        QCOMPARE(moved.get_title(false), QStringLiteral("changed"));
        QVERIFY(copy.isEmpty());

        tftest::LogCapture cap;
        notepad->show(32);
        QCOMPARE(cap.linesAtLevel(32), (QStringList{"XApp@desktop", "title:'Desktop editor'", "path:'xdg-open'", "icon_path:''",
                                           "is_flag_terminal:'false'", "is_flag_keep_term_open:'false'",
                                           "is_flag_show_output:'false'", "environment:''",
                                           "arguments:'/tmp/some dir/file.txt'", "working_dir:''",
                                           "toolTip:'The desktop\'s program for the file (xdg-open)'"}));
    }

    void applicationStoreFile() {
        XAppManager::init_file();
        QCOMPARE(XAppManager::fileInfo().absoluteFilePath(), configFile(APPS_FILE));
        QFile::remove(XAppManager::fileInfo().absoluteFilePath());
        XAppManager::tree() = appsTree({QStringLiteral("keep")});
        QVERIFY(!XAppManager::load());   // no file: false, tree unchanged
        QCOMPARE(XAppManager::get_apps().size(), size_t(1));

        XAppManager::tree() = appsTree({QStringLiteral("vi"), QStringLiteral("less")});
        XAppManager::get_apps()[1]->set_flag_show_output(true);
        QVERIFY(XAppManager::save());
        XAppManager::set_defaults();
        QVERIFY(XAppManager::load());
        std::vector<XApp*> apps = XAppManager::get_apps();
        QCOMPARE(apps.size(), size_t(2));
        QVERIFY(apps[0]->is_name(QStringLiteral("vi")));
        QCOMPARE(apps[1]->get_path(false), QStringLiteral("/usr/bin/less"));
        QVERIFY(apps[1]->is_flag_show_output());

        XTree copy = XAppManager::get_copy();
        auto* copied = dynamic_cast<XApp*>(copy.array(QLatin1String(XAppManager::KEY_PROGRAMS)).at(0));
        QVERIFY(copied && copied != apps[0]);
        copied->set_name(QStringLiteral("other"));
        QVERIFY(apps[0]->is_name(QStringLiteral("vi")));

        // A damaged file is false (the caller sets the defaults) and is kept aside.
        const QString file = XAppManager::fileInfo().absoluteFilePath();
        QByteArray damaged = readFile(file);
        damaged[20] = char(damaged[20] ^ 0x01);
        QVERIFY(tav::XMem(damaged).saveToFile(file, 0));
        QVERIFY(!XAppManager::load());
        const std::vector<tav::MovedAside> moved = tav::takeMovedAside();
        QCOMPARE(moved.size(), size_t(1));
        QCOMPARE(moved[0].path, file);
        QCOMPARE(readFile(moved[0].copy), damaged);
    }

    void programListOperations() {
        ListModelPrograms m(appsTree({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}), &XType_App::forEditor());
        QSignalSpy resets(&m, &QAbstractItemModel::modelReset);
        QCOMPARE(names(m), (QStringList{"a", "b", "c"}));
        QVERIFY(m.data(m.index(0), Qt::BackgroundRole) != m.data(m.index(1), Qt::BackgroundRole));
        QVERIFY(!m.data(m.index(0), Qt::ToolTipRole).isValid());
        QVERIFY(!m.data(QModelIndex(), Qt::DisplayRole).isValid());

        tftest::LogCapture cap;
        m.copyApp(0);
        m.copyApp(1);   // "a" again, now one row lower
        QCOMPARE(names(m), (QStringList{"a001", "a002", "a", "b", "c"}));
        QCOMPARE(m.app_at(1).get_path(false), QStringLiteral("/usr/bin/a"));
        m.copyApp(7);
        QCOMPARE(m.rowCount(), 5);
        QCOMPARE(resets.count(), 2);

        cap.clear();
        m.swap(1, 1);
        m.swap(0, 5);
        m.swap(-1, 0);
        QVERIFY(cap.lines().isEmpty());
        m.swap(0, 4);
        QVERIFY(cap.containsLine(QStringLiteral("ListModelPrograms::swap")));
        QCOMPARE(names(m), (QStringList{"c", "a002", "a", "b", "a001"}));

        m.delete_row(5);
        QVERIFY(cap.containsLine(QStringLiteral("ListModelPrograms::delete_row, bounds ?")));
        m.delete_row(1);
        QCOMPARE(names(m), (QStringList{"c", "a", "b", "a001"}));

        QVERIFY(m.app_at(9).isEmpty());
        QVERIFY(cap.containsLine(QStringLiteral("ListModelPrograms::app_at, row:9, range problems 0...4")));
        m.set_app_at(4, namedApp(QStringLiteral("z")));
        QVERIFY(cap.containsLine(QStringLiteral("ListModelPrograms::set_app_at, row:4, range problems 0...4")));
        QCOMPARE(m.rowCount(), 4);
        m.set_app_at(0, namedApp(QStringLiteral("z")));
        QCOMPARE(names(m).first(), QStringLiteral("z"));

        m.newApp(1);
        QVERIFY(cap.containsLine(QStringLiteral("ListModelPrograms::newApp, program:a")));
        QCOMPARE(m.rowCount(), 5);
        QCOMPARE(names(m)[2], QStringLiteral("a"));
        QCOMPARE(names(m)[1].size(), 9);

        const XTree out = m.to_tree();
        const tav::XTreeArray& arr = out.array(QLatin1String(XAppManager::KEY_PROGRAMS));
        QCOMPARE(arr.elementType(), XType_App::appType());
        QCOMPARE(arr.size(), 5);
        QVERIFY(dynamic_cast<XApp*>(arr.at(4))->is_name(QStringLiteral("a001")));

        m.delete_all();
        QCOMPARE(m.rowCount(), 0);
        m.newApp(3);   // an empty list takes the new record at row 0
        QCOMPARE(m.rowCount(), 1);
        m.from_tree(out);
        QCOMPARE(m.rowCount(), 5);
    }

    // Two runs of the application in this process, with the real configuration
    // folder of the test: the bookmark added in the first is there in the second.
    void bookmarksReachTheNextRun() {
        QFile::remove(configFile(BOOKMARKS_FILE));
        QFile::remove(configFile(APPS_FILE));
        Bookmarks::get_tree() = XTree();
        env.markFirstRunDone();
        auto run = [](std::function<void()> whileRunning) {
            tav::KernelGUI kernel(QStringLiteral("talvoEngine"), QStringLiteral("app"), {}, true);
            QTimer::singleShot(100, [whileRunning]() {
                whileRunning();
                FindApplication::quit_the_app();
            });
            const int rc = FindApplication::tavFind(kernel);
            kernel.save();   // as the runtime does at the end of a command
            return rc;
        };
        tftest::LogCapture cap;
        QCOMPARE(run([] { Bookmarks::add_bookmark(Bookmarks::get_tree(), {QStringLiteral("Home"), QDir::homePath()}); }), 0);
        QVERIFY(cap.containsLine(QStringLiteral("FindApplication::tavFind, XAppManager::load() == false, after defaults")));
        QVERIFY(!QFile::exists(configFile(APPS_FILE)));   // the defaults are not written at start
        QVERIFY(QFile::exists(configFile(BOOKMARKS_FILE)));

        Bookmarks::get_tree() = XTree();   // a new process starts with an empty store
        QList<Bookmark> seen;
        QCOMPARE(run([&seen] { seen = Bookmarks::from_tree(Bookmarks::get_tree()); }), 0);
        QCOMPARE(seen, (QList<Bookmark>{{QStringLiteral("Home"), QDir::homePath()}}));
        Bookmarks::get_tree() = XTree();
        Bookmarks::load(Bookmarks::get_tree());   // the second run's exit kept it too
        QCOMPARE(Bookmarks::from_tree(Bookmarks::get_tree()), seen);
    }
};

QTEST_MAIN(TestUserData)
#include "test_userdata.moc"
