// The bookmark dialogs and the history editor with real widgets: what reaches
// the store (or the caller) on OK, what Cancel keeps, and the button rules.
#include "common/TestEnv.h"

#include "gui/tools/XTools.h"
#include "gui/widgets/XBox.h"
#include "base/node/XNode.h"
#include "gui/previews/Preview.h"
#include "gui/panel/XSplitter.h"
#include "src/dialogs/DiaSelectFile.h"
#include "src/dialogs/XFileDialogHelper.h"
#include "src/dir/XContainerPreviews.h"
#include "src/gui/Bookmarks.h"
#include "src/gui/dia/DiaBookmark.h"
#include "src/gui/dia/DiaEditBookmarks.h"
#include "src/gui/dia/DiaHistory.h"
#include "src/gui/dia/ListModelBookmarks.h"
#include "src/gui/dia/ListModelHistory.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>
#include <QtTest>
#include <functional>

using namespace tavFinder;

namespace {

// Runs 'f' on the next modal dialog of type T as soon as it is shown.
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

QList<Bookmark> sample() {
    return {{QStringLiteral("Alpha"), QStringLiteral("/data/alpha")},
            {QStringLiteral("Beta"), QStringLiteral("/data/beta")},
            {QStringLiteral("Gamma"), QStringLiteral("/data/Gamma dir/")}};
}

QStringList titles(const ListModelBookmarks& m) {
    QStringList out;
    for (int r = 0; r < m.rowCount(); ++r) out << m.data(m.index(r), Qt::DisplayRole).toString().section(QLatin1Char('\n'), 0, 0);
    return out;
}

QList<Bookmark> storedInFile() {
    tav::XTree t;
    Bookmarks::load(t);
    return Bookmarks::from_tree(t);
}

// A caller's own preview for one extension.
class PreviewProbe : public tav::Preview {
public:
    PreviewProbe() { set_file_extensions({QStringLiteral("zzz")}); }
    unsigned get_category() const override { return CATEGORY_OTHER; }
    void ini() override { set_widget(new QLabel()); }
    bool open_file(const QFileInfo& fi) override {
        fileInfo_ = fi;
        ++opened;
        return true;
    }
    QString type() override { return QStringLiteral("Probe"); }
    QString name() override { return QStringLiteral("Probe"); }
    int opened = 0;
};

// The file dialog inside DiaSelectFile moving its cursor to 'path'.
void cursorTo(DiaSelectFile* d, const QString& path) { emit d->fileDialog()->currentChanged(path); }

} // namespace

class TestUserDialogs : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

    void resetStore(const QList<Bookmark>& list) {
        Bookmarks::get_tree().clear();
        Bookmarks::to_tree(Bookmarks::get_tree(), list);
        Bookmarks::save(Bookmarks::get_tree());
    }

private slots:
    void initTestCase() { tav::XTools::set_lang(QStringLiteral("en")); }
    void cleanup() {
        tav::XBox::setScriptedAnswer(-1);
        tav::XBoxInput::setScriptedText(QString());
    }

    void bookmarkModelRows() {
        tftest::LogCapture logs;
        ListModelBookmarks m(sample());
        QCOMPARE(titles(m), QStringList({"Alpha", "Beta", "Gamma"}));
        QVERIFY(!m.data(m.index(3, 0), Qt::DisplayRole).isValid());
        // Each row shows its path under the title (and as its tooltip).
        QCOMPARE(m.data(m.index(0, 0), Qt::DisplayRole).toString(), QStringLiteral("Alpha\n/data/alpha"));
        QCOMPARE(m.data(m.index(2, 0), Qt::ToolTipRole).toString(), QStringLiteral("/data/Gamma dir/"));

        QCOMPARE(m.bmark_at(5).path, QString());
        QVERIFY(logs.contains(QStringLiteral("ListModelBookmarks::bmark_at, row:5, range problems 0...3")));
        m.set_bmark_at(-1, Bookmark{QStringLiteral("x"), QStringLiteral("/x")});
        QVERIFY(logs.contains(QStringLiteral("ListModelBookmarks::set_bmark_at, row:-1, range problems 0...3")));
        QCOMPARE(m.bookmarks(), sample());

        logs.clear();
        m.swap(1, 1);
        m.swap(0, 3);
        QCOMPARE(m.bookmarks(), sample());
        QVERIFY(!logs.contains(QStringLiteral("ListModelBookmarks::swap")));
        QSignalSpy resets(&m, &QAbstractItemModel::modelReset);
        m.swap(0, 2);
        QCOMPARE(titles(m), QStringList({"Gamma", "Beta", "Alpha"}));
        QCOMPARE(resets.count(), 1);
        QVERIFY(!m.delete_row(3));
        QVERIFY(logs.contains(QStringLiteral("DiaEditBookmarks::delete_row, bounds ?")));
    }

    void singleBookmarkDialog() {
        DiaBookmark dia;
        dia.set_bookmark(Bookmark{QStringLiteral("old"), QStringLiteral("/p/a b")});
        QVERIFY(dia.editPath()->isReadOnly());
        QCOMPARE(dia.editPath()->text(), QStringLiteral("/p/a b"));
        dia.editTitle()->setText(QStringLiteral("  new title \t"));
        onModal<DiaBookmark>([](DiaBookmark* d) { click(d, "buttonOK"); });
        QVERIFY(dia.isExecOK(true));
        // Titles are trimmed, paths kept exactly.
        QCOMPARE(dia.get_bookmark(), (Bookmark{QStringLiteral("new title"), QStringLiteral("/p/a b")}));

        dia.editTitle()->setText(QStringLiteral("ignored"));
        onModal<DiaBookmark>([](DiaBookmark* d) { click(d, "buttonCancel"); });
        QVERIFY(!dia.isExecOK(true));
        QCOMPARE(dia.get_bookmark().title, QStringLiteral("new title"));
    }

    void editorMovesAndDeletes() {
        resetStore(sample());
        DiaEditBookmarks dia;
        dia.setup();
        ListModelBookmarks* m = dia.model();
        QVERIFY(m);
        QCOMPARE(m->rowCount(), 3);

        // Up on the first row and down on the last change nothing.
        dia.selectRow(0);
        click(&dia, "buttonUp");
        QCOMPARE(titles(*m), QStringList({"Alpha", "Beta", "Gamma"}));
        QCOMPARE(dia.selectedRow(), -1);
        dia.selectRow(2);
        click(&dia, "buttonDown");
        QCOMPARE(titles(*m), QStringList({"Alpha", "Beta", "Gamma"}));
        // Without a selection nothing moves.
        click(&dia, "buttonUp");
        QCOMPARE(titles(*m), QStringList({"Alpha", "Beta", "Gamma"}));

        dia.selectRow(1);
        click(&dia, "buttonUp");
        QCOMPARE(titles(*m), QStringList({"Beta", "Alpha", "Gamma"}));
        QCOMPARE(dia.selectedRow(), 0);
        click(&dia, "buttonDown");
        click(&dia, "buttonDown");
        QCOMPARE(titles(*m), QStringList({"Alpha", "Gamma", "Beta"}));
        QCOMPARE(dia.selectedRow(), 2);

        // Deleting the last row selects the new last row; the only row leaves no selection.
        click(&dia, "buttonDelete");
        QCOMPARE(titles(*m), QStringList({"Alpha", "Gamma"}));
        QCOMPARE(dia.selectedRow(), 1);
        dia.selectRow(0);
        click(&dia, "buttonDelete");
        QCOMPARE(titles(*m), QStringList({"Gamma"}));
        QCOMPARE(dia.selectedRow(), 0);
        click(&dia, "buttonDelete");
        QCOMPARE(m->rowCount(), 0);
        QCOMPARE(dia.selectedRow(), -1);

        // Cancel: the store and the file keep every bookmark.
        dia.reject();
        QCOMPARE(Bookmarks::from_tree(Bookmarks::get_tree()), sample());
        QCOMPARE(storedInFile(), sample());
    }

    void editorOkAndDeleteAll() {
        resetStore(sample());
        DiaEditBookmarks dia;
        dia.setup();
        // "No" keeps the list.
        tav::XBox::setScriptedAnswer(0);
        click(&dia, "buttonDeleteAll");
        QCOMPARE(dia.model()->rowCount(), 3);
        tav::XBox::setScriptedAnswer(1);
        click(&dia, "buttonDeleteAll");
        QCOMPARE(dia.model()->rowCount(), 0);
        click(&dia, "buttonOK");
        QCOMPARE(dia.result(), int(QDialog::Accepted));
        // An empty list is stored and saved; the key stays.
        QVERIFY(Bookmarks::get_tree().containsKey(QLatin1String(Bookmarks::KEY_BOOKMARKS)));
        QVERIFY(Bookmarks::from_tree(Bookmarks::get_tree()).isEmpty());
        QVERIFY(storedInFile().isEmpty());

        // A reordered list reaches the file in its new order.
        resetStore(sample());
        DiaEditBookmarks dia2;
        dia2.setup();
        dia2.selectRow(2);
        click(&dia2, "buttonUp");
        click(&dia2, "buttonOK");
        const QList<Bookmark> expected{sample()[0], sample()[2], sample()[1]};
        QCOMPARE(storedInFile(), expected);
    }

    void editorEditsTitles() {
        resetStore(sample());
        DiaEditBookmarks dia;
        dia.setup();
        dia.selectRow(1);
        onModal<DiaBookmark>([](DiaBookmark* d) {
            QCOMPARE(d->editPath()->text(), QStringLiteral("/data/beta"));
            d->editTitle()->setText(QStringLiteral(" Second "));
            click(d, "buttonOK");
        });
        click(&dia, "buttonEdit");
        QCOMPARE(dia.model()->bmark_at(1), (Bookmark{QStringLiteral("Second"), QStringLiteral("/data/beta")}));

        // Blanks keep the old title.
        onModal<DiaBookmark>([](DiaBookmark* d) {
            d->editTitle()->setText(QStringLiteral("   "));
            click(d, "buttonOK");
        });
        click(&dia, "buttonEdit");
        QCOMPARE(dia.model()->bmark_at(1).title, QStringLiteral("Second"));
        // The store sees nothing before OK.
        QCOMPARE(Bookmarks::from_tree(Bookmarks::get_tree()), sample());
        dia.on_accept();
        QCOMPARE(storedInFile().at(1).title, QStringLiteral("Second"));
    }

    void fileSelectionDialog() {
        tftest::TestDir dir;
        const QString text = QFileInfo(dir.file(QStringLiteral("a/readme.txt"), "hello")).absoluteFilePath();
        const QString odd = QFileInfo(dir.file(QStringLiteral("a/blob.q9x"), QByteArray("\x01\x02", 2))).absoluteFilePath();
        const QString probeFile = QFileInfo(dir.file(QStringLiteral("a/b/c.zzz"), "z")).absoluteFilePath();
        const QString folder = QFileInfo(dir.abs(QStringLiteral("a/b"))).absoluteFilePath();
        tav::XNode node(QStringLiteral("SelectFile"));

        // Cancel gives nothing, even after the cursor reached a file; an unknown
        // extension is shown in the hex preview.
        onModal<DiaSelectFile>([odd](DiaSelectFile* d) {
            cursorTo(d, odd);
            QCOMPARE(DiaSelectFile::selectedPath(), odd);
            XContainerPreviews* c = d->container();
            QCOMPARE(c->currentWidget(), c->hexPreview()->widget_preview());
            QCOMPARE(c->hexPreview()->file_info().absoluteFilePath(), odd);
            d->fileDialog()->reject();
        });
        QCOMPARE(DiaSelectFile::getSelectedFile(&node), QString());
        QVERIFY(!node.hasAttribute(QStringLiteral("path")));

        // Accepting with a folder under the cursor returns it and starts there next time.
        onModal<DiaSelectFile>([text, folder](DiaSelectFile* d) {
            cursorTo(d, text);
            QCOMPARE(d->container()->currentWidget(), d->container()->textPreview()->widget_preview());
            cursorTo(d, QString());      // ignored
            cursorTo(d, folder);
            QCOMPARE(d->windowTitle(), folder);
            d->fileDialog()->done(QDialog::Accepted);
        });
        QCOMPARE(DiaSelectFile::getSelectedFile(&node), folder);
        QCOMPARE(node.getString(QStringLiteral("path")), folder);
        QVERIFY(node.hasAttribute(QStringLiteral("splitter")));

        // A caller's preview takes its extension; a second set-up changes nothing.
        PreviewProbe* probe = nullptr;
        onModal<DiaSelectFile>([&probe, probeFile, folder](DiaSelectFile* d) {
            QCOMPARE(QFileInfo(d->fileDialog()->directory().absolutePath()).absoluteFilePath(), folder);
            tftest::LogCapture logs;
            d->setup(nullptr);
            QVERIFY(logs.contains(QStringLiteral("XFileDialogMultiPreview::setup, already setup!")));
            cursorTo(d, probeFile);
            QCOMPARE(probe->opened, 1);
            QCOMPARE(d->container()->currentWidget(), probe->widget_preview());
            d->fileDialog()->done(QDialog::Accepted);
        });
        const QString got = DiaSelectFile::getSelectedFile(&node, [&probe](DiaSelectFile& d) {
            probe = new PreviewProbe();
            d.add_preview(probe);
        });
        QCOMPARE(got, probeFile);
        QCOMPARE(node.getString(QStringLiteral("path")), folder);
    }

    void historyModelRows() {
        tftest::LogCapture logs;
        ListModelHistory m({QStringLiteral("a*"), QStringLiteral("b*"), QStringLiteral("a*")});
        QCOMPARE(m.rowCount(), 3);
        QCOMPARE(m.data(m.index(2, 0), Qt::DisplayRole).toString(), QStringLiteral("a*"));
        QVERIFY(m.data(m.index(0, 0), Qt::BackgroundRole).isValid());
        QVERIFY(!m.data(m.index(3, 0), Qt::DisplayRole).isValid());
        QCOMPARE(m.hist_at(7), QString());
        QVERIFY(logs.contains(QStringLiteral("ListModelHistory::hist_at, row:7, range problems 0...3")));
        m.set_hist_at(3, QStringLiteral("x"));
        QVERIFY(logs.contains(QStringLiteral("ListModelHistory::set_hist_at, row:3, range problems 0...3")));
        m.swap(0, 1);
        // Duplicates are neither created nor removed.
        QCOMPARE(m.items(), QStringList({"b*", "a*", "a*"}));
    }

    void historyEditorResult() {
        const QStringList list{QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three")};
        // Cancel returns no value, whatever happened in the dialog.
        onModal<DiaHistory>([](DiaHistory* d) {
            d->selectRow(0);
            click(d, "buttonDelete");
            click(d, "buttonCancel");
        });
        QVERIFY(!DiaHistory::edit_history(nullptr, list).has_value());

        onModal<DiaHistory>([](DiaHistory* d) {
            tav::XBox::setScriptedAnswer(1);
            click(d, "buttonDeleteAll");
            click(d, "buttonOK");
        });
        const std::optional<QStringList> cleared = DiaHistory::edit_history(nullptr, list);
        QVERIFY(cleared.has_value());
        QVERIFY(cleared->isEmpty());

        onModal<DiaHistory>([](DiaHistory* d) {
            tav::XBox::setScriptedAnswer(1);
            d->selectRow(0);
            click(d, "buttonUp");          // first row: nothing moves, the selection goes
            QCOMPARE(d->selectedRow(), -1);
            d->selectRow(0);
            click(d, "buttonDown");        // one, two -> two, one
            tav::XBoxInput::setScriptedText(QString(""));
            click(d, "buttonEdit");        // empty text keeps "one"
            d->selectRow(2);
            tav::XBoxInput::setScriptedText(QStringLiteral("3"));
            click(d, "buttonEdit");
            click(d, "buttonOK");
        });
        QCOMPARE(DiaHistory::edit_history(nullptr, list).value_or(QStringList()), QStringList({"two", "one", "3"}));
    }
};

QTEST_MAIN(TestUserDialogs)
#include "test_user_dialogs.moc"
