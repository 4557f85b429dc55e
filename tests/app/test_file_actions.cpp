// The main window's file actions with real widgets: which entries the context
// menus offer, web search, bookmark entries and the bookmarks menu, rename and
// delete, and the history editor behind the filter combo boxes.
#include "common/TestEnv.h"

#include "base/node/XNode.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XBox.h"
#include "gui/widgets/XComboBox.h"
#include "gui/widgets/XMenu.h"
#include "gui/widgets/XTreeViewFiles.h"
#include "gui/previews/Preview.h"
#include "gui/viewText/XTextView.h"
#include "gui/previews/PreviewAscii.h"
#include "src/dir/ContextPreviews.h"
#include "base/find/XContentFilter.h"
#include "src/find/FileResult.h"
#include "src/gui/Bookmarks.h"
#include "src/gui/WinDetails.h"
#include "src/gui/WinFinder.h"
#include "src/gui/WinTray.h"
#include "src/gui/config/ConfigTavFinder.h"
#include "src/gui/dia/DiaBookmark.h"
#include "src/gui/dia/DiaHistory.h"

#include <QAction>
#include <QDir>
#include <fcntl.h>
#include <QApplication>
#include <QDesktopServices>
#include <QLineEdit>
#include <QPointer>
#include <QTimer>
#include <QToolButton>
#include <QtTest>
#include <functional>
#include <unistd.h>

using namespace tavFinder;

namespace {

template <typename T>
void onModal(std::function<void(T*)> f) {
    auto* timer = new QTimer(qApp);
    timer->setInterval(20);
    QObject::connect(timer, &QTimer::timeout, [timer, f]() {
        auto* d = qobject_cast<T*>(QApplication::activeModalWidget());
        if (!d || !d->isVisible()) return;
        timer->stop();
        timer->deleteLater();
        f(d);
    });
    timer->start();
}

void click(QWidget* dialog, const char* name) {
    auto* b = dialog->findChild<QAbstractButton*>(QString::fromLatin1(name));
    QVERIFY2(b, name);
    b->click();
}

QStringList entries(const QMenu& menu) {
    QStringList out;
    for (QAction* a : menu.actions())
        if (!a->isSeparator()) out << a->text();
    return out;
}

QAction* entry(const QMenu& menu, const QString& text) {
    for (QAction* a : menu.actions())
        if (a->text() == text) return a;
    return nullptr;
}

void writeSearchList(const QByteArray& text) {
    QFile f(tav::XTools::get_absolute_config_file_path(QStringLiteral("search_machines.txt")).absoluteFilePath());
    QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(text);
}

} // namespace

class TestFileActions : public QObject {
    Q_OBJECT
    tftest::TestEnv env;
    tav::KernelGUI kernel{QStringLiteral("talvoEngine"), QStringLiteral("app"), QStringList(), true};
    tftest::TestDir tree;
    QPointer<WinFinder> win;
    QList<QUrl> opened;

    QString abs(const QString& rel) const { return QFileInfo(tree.abs(rel)).absoluteFilePath(); }

public slots:
    // Stands in for the browser: web searches end here.
    void openUrl(const QUrl& url) { opened << url; }

private slots:
    void initTestCase() {
        WinTray::setWatchdogEnabled(false);
        tav::XTools::set_lang(QStringLiteral("en"));
        QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "openUrl");
        tree.file(QStringLiteral("docs/deep/er/Report 2024.txt"), "report");
        tree.file(QStringLiteral("docs/note.txt"), "note");
        tree.file(QStringLiteral("docs/other.txt"), "other");
        tree.dir(QStringLiteral("folder/sub"));
        tree.file(QStringLiteral("folder/sub/x.txt"), "x");
        tav::XNode* nWin = kernel.getCreateNodeApplication()->getCreateNode(QStringLiteral("GUI"))->getCreateNode(QStringLiteral("Window"));
        win = new WinFinder(true);
        win->init(&kernel, nWin);
        win->setUp(abs(QStringLiteral("docs")));
        win->setGeometry(40, 40, 1000, 600);
        win->show();
        win->activateWindow();
        QVERIFY(QTest::qWaitForWindowExposed(win));
    }
    void cleanupTestCase() {
        QDesktopServices::unsetUrlHandler(QStringLiteral("https"));
        if (win) win->close();
    }
    void cleanup() {
        tav::XBox::setScriptedAnswer(-1);
        tav::XBoxInput::setScriptedText(QString());
        cfg().flag_tf_read_only = true;
    }

    void menusFollowTheirConditions() {
        Bookmarks::get_tree().clear();
        const QFileInfo file(abs(QStringLiteral("docs/note.txt")));
        const QFileInfo dir(abs(QStringLiteral("folder")));
        const QStringList tail{"Window", "File Manager", "Terminal", "Copy Path to Clipboard", "Copy Filename to Clipboard",
                               "Web Search", "Add Bookmark"};
        QVERIFY(cfg().flag_tf_read_only);   // the default
        {
            tav::XMenu m;
            win->fill_contextMenu(m, file, nullptr, false);
            QCOMPARE(entries(m), QStringList({"View", "View with ...", "Tree", "Open with ...", "Open With Default Program"}) + tail +
                                     QStringList{"Properties"});
            // One entry per preview of the main container.
            QVERIFY(entry(m, QStringLiteral("View with ..."))->menu()->actions().size() >= 3);
        }
        {
            // Folders: no View, no Open with, no Properties; the count of the directory preview.
            tav::XMenu m;
            win->fill_contextMenu(m, dir, nullptr, false);
            QCOMPARE(entries(m), QStringList{"Tree"} + tail + QStringList{"Deep Info"});
            QCOMPARE(entry(m, QStringLiteral("Deep Info"))->toolTip(), QStringLiteral("Count files recursively"));
        }
        cfg().flag_tf_read_only = false;
        {
            tav::XMenu m;
            win->fill_contextMenu(m, file, nullptr, true);
            QCOMPARE(entries(m), QStringList({"View", "View with ...", "Open with ...", "Open With Default Program", "Rename", "Delete"}) +
                                     tail + QStringList{"Properties"});
            QCOMPARE(entry(m, QStringLiteral("Rename"))->data().toInt(), 200);
        }
        {
            tav::XMenu m;
            win->fill_contextMenu(m, dir, nullptr, true);
            QCOMPARE(entries(m), QStringList({"Rename", "Delete"}) + tail + QStringList{"Deep Info"});
            // The tree's count runs on the folder the menu was opened for.
            tftest::LogCapture logs;
            entry(m, QStringLiteral("Deep Info"))->trigger();
            QVERIFY(logs.contains(QStringLiteral("WinFinder::on_contextMenu_treeView - deep view")));
            QCOMPARE(win->contextMain()->currentFile().absoluteFilePath(), dir.absoluteFilePath());
            QVERIFY(logs.contains(QStringLiteral("onDeepInfo")));
        }
        // A bookmarked entry offers edit and remove instead of add.
        Bookmarks::add_bookmark(Bookmarks::get_tree(), Bookmark{QStringLiteral("F"), dir.absoluteFilePath()});
        tav::XMenu m;
        win->context_menu_bookmark(m, dir);
        QCOMPARE(entries(m), QStringList({"Edit Bookmark", "Remove Bookmark"}));
        Bookmarks::get_tree().clear();
    }

    void resultsMenu() {
        const QFileInfo file(abs(QStringLiteral("docs/other.txt")));
        tav::find::XRamLayer layer;
        layer.add_mark(tav::find::XRam{0, 5, 0});
        tav::find::XContentFilter filter;
        QVERIFY(filter.createSymbols(QStringLiteral("other"), false));
        tav::XMenu m;
        win->fill_contextMenu_FileResults(m, FileResult(layer, file), filter);
        // The file menu of a file, the same as beside the tree, and the export of all results.
        tav::XMenu plain;
        win->fill_contextMenu(plain, file, nullptr, false);
        QCOMPARE(entries(m), entries(plain) << QStringLiteral("Export..."));
        QCOMPARE(entries(m), QStringList({"View", "View with ...", "Tree", "Open with ...", "Open With Default Program", "Window",
                                          "File Manager", "Terminal", "Copy Path to Clipboard", "Copy Filename to Clipboard",
                                          "Web Search", "Add Bookmark", "Properties", "Export..."}));
        // Rename and delete when the program may change files.
        cfg().flag_tf_read_only = false;
        {
            tav::XMenu writable;
            win->fill_contextMenu_FileResults(writable, FileResult(layer, file), filter);
            QVERIFY(entries(writable).contains(QStringLiteral("Rename")) && entries(writable).contains(QStringLiteral("Delete")));
        }
        cfg().flag_tf_read_only = true;
        // "View" opens the details window on the file.
        const int before = int(tav::XTools::getAbstractWindows(true, true).size());
        entry(m, QStringLiteral("View"))->trigger();
        QTRY_COMPARE(int(tav::XTools::getAbstractWindows(true, true).size()), before + 1);
        auto* details = qobject_cast<WinDetails*>(tav::XTools::getAbstractWindows(true, true).back()->widget());
        QVERIFY(details);
        QCOMPARE(details->getCurrentFile().absoluteFilePath(), file.absoluteFilePath());
        details->close();
    }

    void clipboardAndTreeEntries() {
        const QFileInfo file(abs(QStringLiteral("docs/deep/er/Report 2024.txt")));
        tav::XMenu m;
        win->fill_contextMenu(m, file, nullptr, false);
        entry(m, QStringLiteral("Copy Path to Clipboard"))->trigger();
        QCOMPARE(tav::XClipboard::text(), file.absoluteFilePath());
        entry(m, QStringLiteral("Copy Filename to Clipboard"))->trigger();
        QCOMPARE(tav::XClipboard::text(), QStringLiteral("Report 2024.txt"));
        entry(m, QStringLiteral("Tree"))->trigger();
        QTRY_COMPARE(win->treeView()->selectedFile().absoluteFilePath(), file.absoluteFilePath());
    }

    void webSearchReadsTheListEachTime() {
        writeSearchList("# comment\nAlpha, https://alpha.example/s?q=$\n-\nComma, https://comma.example/s?a=1,2&q=$&x=y\n");
        const QFileInfo file(abs(QStringLiteral("docs/deep/er/Report 2024.txt")));
        tav::XMenu m;
        win->context_menu_webSearchFile(m, file);
        QMenu* web = entry(m, QStringLiteral("Web Search"))->menu();
        QVERIFY(web);
        QCOMPARE(entries(*web), QStringList({"Alpha", "Comma"}));
        QVERIFY(web->actions().first()->isSeparator());
        opened.clear();
        entry(*web, QStringLiteral("Comma"))->trigger();
        // The phrase is the file name alone, percent-encoded; the URL keeps its own comma.
        QCOMPARE(opened.size(), 1);
        QCOMPARE(opened.first().toString(QUrl::FullyEncoded), QStringLiteral("https://comma.example/s?a=1,2&q=Report%202024.txt&x=y"));

        // An edited list applies at the next opening.
        writeSearchList("Beta, https://beta.example/?q=$\n");
        tav::XMenu m2;
        win->context_menu_webSearchFile(m2, file);
        QCOMPARE(entries(*entry(m2, QStringLiteral("Web Search"))->menu()), QStringList({"Beta"}));
    }

    void bookmarksMenuAndEntries() {
        Bookmarks::get_tree().clear();
        // An empty store: the information box, no menu.
        tav::XBox::setScriptedAnswer(1);
        tftest::LogCapture logs;
        const int before = tav::XBox::countShown();
        win->on_bookmarks();
        QCOMPARE(tav::XBox::countShown(), before + 1);
        QVERIFY(logs.contains(QStringLiteral("XBox::info, title:'Bookmarks'")));
        tav::XBox::setScriptedAnswer(-1);

        // Add through the context entry: the dialog's title is trimmed, the store saved.
        const QFileInfo dir(abs(QStringLiteral("folder/sub")));
        onModal<DiaBookmark>([dir](DiaBookmark* d) {
            QCOMPARE(d->editTitle()->text(), QStringLiteral("sub"));
            QCOMPARE(d->editPath()->text(), dir.absoluteFilePath());
            d->editTitle()->setText(QStringLiteral("  Sub folder "));
            click(d, "buttonOK");
        });
        win->on_add_bookmark(dir);
        tav::XTree fromFile;
        Bookmarks::load(fromFile);
        QCOMPARE(Bookmarks::from_tree(fromFile), QList<Bookmark>{(Bookmark{QStringLiteral("Sub folder"), dir.absoluteFilePath()})});

        // Editing to blanks keeps the old title.
        onModal<DiaBookmark>([](DiaBookmark* d) {
            d->editTitle()->setText(QStringLiteral("  "));
            click(d, "buttonOK");
        });
        win->on_edit_bookmark(dir);
        QCOMPARE(Bookmarks::get_bookmark(Bookmarks::get_tree(), dir.absoluteFilePath()).title, QStringLiteral("Sub folder"));

        const QFileInfo file(abs(QStringLiteral("docs/other.txt")));
        Bookmarks::add_bookmark(Bookmarks::get_tree(), Bookmark{QStringLiteral("Other"), file.absoluteFilePath()});
        tav::XMenu menu(nullptr, true);
        QVERIFY(win->fill_bookmarks_menu(menu));
        QCOMPARE(entries(menu), QStringList({"Sub folder", "Other", "Edit Bookmarks"}));
        QCOMPARE(entry(menu, QStringLiteral("Other"))->toolTip(), file.absoluteFilePath());
        entry(menu, QStringLiteral("Other"))->trigger();
        QTRY_COMPARE(win->treeView()->selectedFile().absoluteFilePath(), file.absoluteFilePath());

        // Removing is not saved at once; removing everything leaves an empty menu, not the box.
        win->on_remove_bookmark(dir);
        win->on_remove_bookmark(file);
        tav::XTree stillInFile;
        Bookmarks::load(stillInFile);
        QVERIFY(Bookmarks::contains_bookmark(stillInFile, dir.absoluteFilePath()));
        tav::XMenu empty(nullptr, true);
        QVERIFY(win->fill_bookmarks_menu(empty));
        QCOMPARE(entries(empty), QStringList{"Edit Bookmarks"});
    }

    void renameAndDelete() {
        cfg().flag_tf_read_only = false;
        const QString note = abs(QStringLiteral("docs/note.txt"));
        const QString other = abs(QStringLiteral("docs/other.txt"));
        tav::XBox::setScriptedAnswer(1);
        tftest::LogCapture logs;

        // An existing name (or the current one) is refused and nothing changes.
        for (const QString& name : {QStringLiteral("other.txt"), QStringLiteral("note.txt")}) {
            logs.clear();
            tav::XBoxInput::setScriptedText(name);
            win->rename_file(QFileInfo(note));
            QVERIFY(logs.contains(QStringLiteral("XBox::warn, title:'Error'")));
            QVERIFY(QFileInfo::exists(note));
        }
        QVERIFY(tav::XBox::lastText().contains(QStringLiteral("already exists")));
        QFile f(other);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.readAll(), QByteArray("other"));
        f.close();

        // A name is only a name: separators and the dot folders are refused with a
        // reason, and nothing moves into another folder.
        for (const QString& name : {QStringLiteral("../note.txt"), QStringLiteral("deep/note.txt"), QStringLiteral(".."),
                                    QStringLiteral(".")}) {
            logs.clear();
            tav::XBoxInput::setScriptedText(name);
            win->rename_file(QFileInfo(note));
            QVERIFY2(logs.contains(QStringLiteral("XBox::warn, title:'Error'")), qPrintable(name));
            QVERIFY(tav::XBox::lastText().contains(QStringLiteral("'/'")));
            QVERIFY(QFileInfo::exists(note));
        }
        QVERIFY(!QFileInfo::exists(abs(QStringLiteral("note.txt"))) && !QFileInfo::exists(abs(QStringLiteral("docs/deep/note.txt"))));
        // A folder the user may not write to says so (root may write anywhere).
        if (::geteuid() != 0) {
            QFile::setPermissions(abs(QStringLiteral("docs/deep")), QFileDevice::ReadOwner | QFileDevice::ExeOwner);
            tav::XBoxInput::setScriptedText(QStringLiteral("renamed.txt"));
            win->rename_file(QFileInfo(abs(QStringLiteral("docs/deep/er"))));
            QVERIFY(tav::XBox::lastText().contains(QStringLiteral("permission denied")));
            QFile::setPermissions(abs(QStringLiteral("docs/deep")), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        }

        // Cancelling the input changes nothing.
        tav::XBox::setScriptedAnswer(0);
        win->rename_file(QFileInfo(note));
        QVERIFY(QFileInfo::exists(note));
        tav::XBox::setScriptedAnswer(1);

        // Through the menu entry; the parent is selected afterwards.
        tav::XBoxInput::setScriptedText(QStringLiteral("renamed.txt"));
        tav::XMenu m;
        win->fill_contextMenu(m, QFileInfo(note), nullptr, false);
        entry(m, QStringLiteral("Rename"))->trigger();
        QVERIFY(!QFileInfo::exists(note));
        QVERIFY(QFileInfo::exists(abs(QStringLiteral("docs/renamed.txt"))));
        QTRY_COMPARE(win->treeView()->selectedFile().absoluteFilePath(), abs(QStringLiteral("docs")));

        // F2 renames the file of the current preview.
        const QString renamed = abs(QStringLiteral("docs/renamed.txt"));
        QVERIFY(win->treeView()->selectFile(renamed, false));
        QTRY_COMPARE(win->contextMain()->currentFile().absoluteFilePath(), renamed);
        QVERIFY(ContextPreviews::currentPreview());
        QCOMPARE(ContextPreviews::currentPreview()->file_info().absoluteFilePath(), renamed);
        tav::XBoxInput::setScriptedText(QStringLiteral("viaF2.txt"));
        win->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(win));
        QTest::keyClick(win, Qt::Key_F2);
        QVERIFY(!QFileInfo::exists(renamed));
        const QString viaF2 = abs(QStringLiteral("docs/viaF2.txt"));
        QVERIFY(QFileInfo::exists(viaF2));

        // Deleting the previewed file lets the preview go first.
        QVERIFY(win->treeView()->selectFile(viaF2, false));
        QTRY_COMPARE(ContextPreviews::currentPreview()->file_info().absoluteFilePath(), viaF2);
        QTRY_VERIFY(tav::Preview::open_counter() > 0);
        logs.clear();
        win->on_delete(QFileInfo(viaF2));
        QVERIFY(logs.contains(QStringLiteral("WinFinder_modify::on_delete, Preview-Open-Counter:0")));
        QVERIFY(!QFileInfo::exists(viaF2));

        const QString trash = env.dataHome() + QStringLiteral("/Trash/files/");
        QVERIFY(QFile::exists(trash + QStringLiteral("viaF2.txt")));

        // Delete: "no" keeps the file; "yes" moves a file, or a folder with everything
        // in it, to the trash; the question counts the folder's files.
        tav::XBox::setScriptedAnswer(0);
        win->on_delete(QFileInfo(other));
        QVERIFY(QFileInfo::exists(other));
        tav::XBox::setScriptedAnswer(1);
        win->on_delete(QFileInfo(other));
        QVERIFY(!QFileInfo::exists(other));
        QVERIFY(QFile::exists(trash + QStringLiteral("other.txt")));
        tree.file(QStringLiteral("folder/sub/y.txt"), "y");
        tav::XBox::setScriptedAnswer(0);
        win->on_delete(QFileInfo(abs(QStringLiteral("folder"))));
        QVERIFY(tav::XBox::lastText().contains(QStringLiteral("everything in it (2 files)")));
        tav::XBox::setScriptedAnswer(1);
        win->on_delete(QFileInfo(abs(QStringLiteral("folder"))));
        QVERIFY(!QFileInfo::exists(abs(QStringLiteral("folder"))));
        QVERIFY(QFile::exists(trash + QStringLiteral("folder/sub/y.txt")));
        // A file that is already gone gives the warning, with the reason.
        logs.clear();
        win->on_delete(QFileInfo(other));
        QVERIFY(logs.contains(QStringLiteral("XBox::warn, title:'Error'")));
        QVERIFY(tav::XBox::lastText().contains(QStringLiteral("no longer exists")));

        // Without a trash the user is asked a second time; "no" there keeps the file.
        WinFinder::set_trash_enabled(false);
        const QString gone = abs(QStringLiteral("docs/gone.txt"));
        tree.file(QStringLiteral("docs/gone.txt"), "g");
        tav::XBox::setScriptedAnswer(1);
        const int asked = tav::XBox::countShown();
        win->on_delete(QFileInfo(gone));
        QCOMPARE(tav::XBox::countShown() - asked, 2);
        QVERIFY(tav::XBox::lastText().contains(QStringLiteral("for good")));
        QVERIFY(!QFileInfo::exists(gone));
        QVERIFY(!QFile::exists(trash + QStringLiteral("gone.txt")));
        WinFinder::set_trash_enabled(true);
    }

    // Names that are not UTF-8 (old Latin-1 names): previewed, renamed and deleted by their own bytes.
    void namesThatAreNotUtf8() {
        cfg().flag_tf_read_only = false;
        tree.file(QStringLiteral("latin/keep.txt"), "k");
        const QByteArray folder = QFile::encodeName(abs(QStringLiteral("latin")));
        const auto make = [&](const QByteArray& name, const QByteArray& content) {
            const int fd = ::open((folder + '/' + name).constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
            const bool ok = fd >= 0 && ::write(fd, content.constData(), size_t(content.size())) == content.size();
            if (fd >= 0) ::close(fd);
            return ok;
        };
        QVERIFY(make("caf\xe9.txt", "latin one\n"));
        QVERIFY(make("na\xefve.txt", "latin two\n"));
        const auto exists = [&](const QByteArray& name) { return ::access((folder + '/' + name).constData(), F_OK) == 0; };
        // Qt's own listing gives names that lead back to the bytes.
        const QStringList names = QDir(abs(QStringLiteral("latin"))).entryList(QDir::Files, QDir::Name);
        QCOMPARE(names.size(), 3);
        QString cafe;
        for (const QString& n : names)
            if (QFile::encodeName(n) == QByteArray("caf\xe9.txt")) cafe = abs(QStringLiteral("latin/")) + n;
        QVERIFY(!cafe.isEmpty());
        QVERIFY(QFileInfo(cafe).isFile());
        QCOMPARE(QFileInfo(cafe).size(), qint64(10));

        // The preview shows its text.
        QVERIFY(win->treeView()->selectFile(cafe, false));
        QTRY_COMPARE(ContextPreviews::currentPreview() ? ContextPreviews::currentPreview()->file_info().absoluteFilePath() : QString(), cafe);
        auto* text = dynamic_cast<tav::PreviewAscii*>(ContextPreviews::currentPreview());
        QVERIFY(text && text->get_XTextView());
        QTRY_VERIFY(text->get_XTextView()->hasContent());
        QCOMPARE(text->get_XTextView()->textFromMarkRam(tav::find::XRam(0, 9)), QStringLiteral("latin one"));

        // Rename gives it a new name; the old bytes are gone.
        tav::XBox::setScriptedAnswer(1);
        tav::XBoxInput::setScriptedText(QStringLiteral("cafe.txt"));
        win->rename_file(QFileInfo(cafe));
        QVERIFY(!exists("caf\xe9.txt"));
        QVERIFY(exists("cafe.txt"));
        // Delete moves the other one to the trash under its own bytes.
        QString naive;
        for (const QString& n : QDir(abs(QStringLiteral("latin"))).entryList(QDir::Files))
            if (QFile::encodeName(n) == QByteArray("na\xefve.txt")) naive = abs(QStringLiteral("latin/")) + n;
        QVERIFY(!naive.isEmpty());
        win->on_delete(QFileInfo(naive));
        QVERIFY(!exists("na\xefve.txt"));
        const QByteArray trash = QFile::encodeName(env.dataHome() + QStringLiteral("/Trash/files/"));
        QVERIFY(::access((trash + "na\xefve.txt").constData(), F_OK) == 0);
    }

    void comboHistoryEditor() {
        tav::XComboBox* combo = win->comboPattern();
        combo->set_data({QStringLiteral("*.txt"), QStringLiteral("*.cpp"), QStringLiteral("*.h")});
        combo->setCurrentText(QStringLiteral("*.cpp"));
        QMenu menu;
        win->fill_combo_menu(menu, combo);
        QCOMPARE(entries(menu), QStringList{"Edit History"});

        onModal<DiaHistory>([](DiaHistory* d) {
            d->selectRow(0);
            click(d, "buttonDelete");
            click(d, "buttonOK");
        });
        entry(menu, QStringLiteral("Edit History"))->trigger();
        QCOMPARE(combo->get_string_items(), QStringList({"*.cpp", "*.h"}));
        QCOMPARE(combo->currentText(), QStringLiteral("*.cpp"));

        // Cancel keeps the list.
        onModal<DiaHistory>([](DiaHistory* d) {
            tav::XBox::setScriptedAnswer(1);
            click(d, "buttonDeleteAll");
            click(d, "buttonCancel");
        });
        DiaHistory::edit_combo_history(win, combo);
        QCOMPARE(combo->get_string_items(), QStringList({"*.cpp", "*.h"}));

        // In regular-expression mode the expressions go to the content box.
        auto* regex = win->findChild<QToolButton*>();
        for (QToolButton* b : win->findChildren<QToolButton*>())
            if (b->toolTip() == QStringLiteral("Regular Expressions")) regex = b;
        regex->setChecked(true);
        QMenu withRegex;
        win->fill_combo_menu(withRegex, combo);
        QMenu* sub = entry(withRegex, QStringLiteral("Regular Expression"))->menu();
        QCOMPARE(entries(*sub), QStringList({"EMails", "HTML Title", "XML Entities"}));
        entry(*sub, QStringLiteral("HTML Title"))->trigger();
        QCOMPARE(win->comboContent()->currentText(), QStringLiteral("<title[^>]*>([^<]+)</title>"));
        QCOMPARE(combo->currentText(), QStringLiteral("*.cpp"));
        regex->setChecked(false);
    }

    void settingsMenu() {
        tav::XMenu m(nullptr, true);
        win->fill_settings_menu(m);
        QStringList got = entries(m);
        QCOMPARE(got.mid(0, 2), QStringList({"Mouse Over Info", "Status Bar"}));
        const bool before = cfg().flagStatusBar;
        entry(m, QStringLiteral("Status Bar"))->trigger();
        QCOMPARE(cfg().flagStatusBar, !before);
        entry(m, QStringLiteral("Status Bar"))->trigger();
        QCOMPARE(cfg().flagStatusBar, before);
    }
};

QTEST_MAIN(TestFileActions)
#include "test_file_actions.moc"
