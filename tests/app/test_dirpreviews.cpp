// Directory previews: the simple page's counts, the recursive count and its
// cancel, the folder table with hidden entries and sorting, the limited
// container that never nests a full directory preview.
#include "common/TestEnv.h"

#include "gui/table/XTableWidget.h"
#include "gui/widgets/XBrowser.h"
#include "src/dir/ContextPreviews.h"
#include "src/dir/LimitedPreviewContainer.h"
#include "src/dir/PDirInfo.h"
#include "src/dir/PreviewDir.h"
#include "src/dir/PreviewDirSimple.h"

#include <QHeaderView>
#include <QSemaphore>
#include <QtTest>
#include <sys/stat.h>

using namespace tavFinder;

namespace {
QString pair(const QString& label, int value) {
    return QStringLiteral("<td style=\"padding-right:20px;padding-left:20px;\">%1</td><td>%2</td>").arg(label).arg(value);
}
QStringList names(const QList<QFileInfo>& l) {
    QStringList out;
    for (const QFileInfo& fi : l) out << fi.fileName();
    return out;
}
}

class TestDirPreviews : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

private slots:
    void simplePageCountsWhatTheListingShows() {
        tftest::TestDir d;
        d.file(QStringLiteral("a.txt"), "1");
        d.file(QStringLiteral("b.cpp"), "22");
        d.file(QStringLiteral(".hidden"), "333");
        d.dir(QStringLiteral("sub"));
        d.dir(QStringLiteral(".git"));
        d.file(QStringLiteral("sub/deep.txt"), "4444");
        PreviewDirSimple p;
        p.ini();
        // Hidden entries are counted only when the listing shows them.
        QVERIFY(p.open_file(QFileInfo(d.path())));
        QVERIFY(p.html().contains(pair(QStringLiteral("Subdirs"), 1)));
        QVERIFY(p.html().contains(pair(QStringLiteral("Files"), 2)));
        p.set_show_hidden(true);
        QVERIFY(p.open_file(QFileInfo(d.path())));
        QVERIFY(p.html().contains(pair(QStringLiteral("Subdirs"), 2)));
        QVERIFY(p.html().contains(pair(QStringLiteral("Files"), 3)));
        QVERIFY(p.html().contains(QStringLiteral("<h2>Directory \"") + QFileInfo(d.path()).absoluteFilePath()));
        QVERIFY(p.html().startsWith(QStringLiteral("<!DOCTYPE HTML PUBLIC")));
        QVERIFY(p.html().contains(QStringLiteral("<tableResult><tr>")));
        const QString empty = d.dir(QStringLiteral("empty"));
        p.open_file(QFileInfo(empty));
        QVERIFY(p.html().contains(pair(QStringLiteral("Subdirs"), 0)));
        QVERIFY(p.html().contains(pair(QStringLiteral("Files"), 0)));
        QCOMPARE(p.type(), QStringLiteral("PreviewDirSimple"));
        QCOMPARE(p.toString(), QStringLiteral("simpleDirViewer: can handle directories "));
    }

    void recursiveCountAndItsCancel() {
        tftest::TestDir d;
        d.file(QStringLiteral("a.txt"), "12345");
        d.file(QStringLiteral("x/b.TXT"), "123");
        d.file(QStringLiteral("x/y/c.bin"), "1234567");
        d.file(QStringLiteral("x/.h/d.md"), "12");
        PDirInfo info;
        info.textExtensions = {QStringLiteral("txt"), QStringLiteral("md")};
        info.scan_dir(d.path());
        QVERIFY(!info.running);
        QCOMPARE(info.dirs.load(), 3u);      // x, x/y, x/.h
        QCOMPARE(info.files.load(), 4u);
        QCOMPARE(info.textFiles.load(), 3u);
        QCOMPARE(info.textBytes.load(), uint64_t(5 + 3 + 2));
        // Folders count with their own size in the byte total.
        uint64_t dirBytes = 0;
        for (const QString& s : {QStringLiteral("x"), QStringLiteral("x/y"), QStringLiteral("x/.h")})
            dirBytes += uint64_t(QFileInfo(d.abs(s)).size());
        QCOMPARE(info.bytes.load(), uint64_t(5 + 3 + 7 + 2) + dirBytes);

        // Links count as what they point to: a file link as a file of its target's size, a folder
        // link as a folder that is not entered (a loop ends); broken links and pipes are left out.
        {
            tftest::TestDir l;
            l.file(QStringLiteral("a.txt"), "12345");
            l.file(QStringLiteral("y/c.bin"), "1234567");
            QVERIFY(QFile::link(l.abs(QStringLiteral("a.txt")), l.abs(QStringLiteral("y/to-a.txt"))));
            QVERIFY(QFile::link(l.abs(QStringLiteral("y")), l.abs(QStringLiteral("y/loop"))));
            QVERIFY(QFile::link(l.abs(QStringLiteral("gone")), l.abs(QStringLiteral("broken.txt"))));
            QCOMPARE(::mkfifo(QFile::encodeName(l.abs(QStringLiteral("pipe.txt"))).constData(), 0600), 0);
            PDirInfo links;
            links.textExtensions = {QStringLiteral("txt")};
            links.scan_dir(l.path());
            QCOMPARE(links.dirs.load(), 2u);        // y, y/loop
            QCOMPARE(links.files.load(), 3u);       // a.txt, y/c.bin, y/to-a.txt
            QCOMPARE(links.textFiles.load(), 2u);
            QCOMPARE(links.textBytes.load(), uint64_t(5 + 5));
            QCOMPARE(links.bytes.load(), uint64_t(5 + 7 + 5) + 2 * uint64_t(QFileInfo(l.abs(QStringLiteral("y"))).size()));
        }

        // The preview: Deep Info runs in the background and shows the totals.
        PreviewDirSimple p;
        p.ini();
        p.set_text_file_extensions({QStringLiteral("txt")});
        p.open_file(QFileInfo(d.path()));
        tftest::LogCapture logs;
        p.onDeepInfo();
        QTRY_VERIFY(!p.isScanning());
        QTRY_VERIFY(p.html().contains(QStringLiteral("Total (recursive)")));
        QVERIFY(p.html().contains(pair(QStringLiteral("Files"), 4)));
        QVERIFY(p.html().contains(pair(QStringLiteral("Text Files"), 2)));
        QVERIFY(logs.contains(QStringLiteral("PreviewDirSimple::ini, done")));

        // A second Deep Info while the count runs cancels it: the page shows partial totals.
        // The count is held after its third entry until the cancel was given.
        for (int i = 0; i < 30; ++i) d.file(QStringLiteral("many/%1/f.txt").arg(i), "x");
        QSemaphore third, resume;
        std::atomic<bool> held{false};
        p.setScanProgress([&](const PDirInfo& info) {
            if (info.files.load() + info.dirs.load() >= 3 && !held.exchange(true)) {
                third.release();
                resume.acquire();
            }
        });
        p.open_file(QFileInfo(d.path()));
        logs.clear();
        p.onDeepInfo();
        QVERIFY(third.tryAcquire(1, 5000));
        p.onDeepInfo();
        resume.release();
        QVERIFY(logs.containsLine(QStringLiteral("PreviewDirSimple::onDeepInfo - Cancelled")));
        QTRY_VERIFY(!p.isScanning());
        QTRY_VERIFY(p.html().contains(QStringLiteral("Total (recursive)")));
        QVERIFY(!p.html().contains(pair(QStringLiteral("Files"), 34)));   // not the full count
        // Cancelled before it began, a count ends at once.
        PDirInfo early;
        early.cancel();
        early.scan_dir(d.path());
        QCOMPARE(early.files.load() + early.dirs.load(), 0u);
    }

    void tableListsSortsAndHidesHiddenEntries() {
        tftest::TestDir d;
        d.file(QStringLiteral("small.txt"), "1");
        d.file(QStringLiteral("big.txt"), QByteArray(3000, 'b'));
        d.file(QStringLiteral("middle.txt"), QByteArray(200, 'm'));
        d.file(QStringLiteral(".secret"), "s");
        d.dir(QStringLiteral("zdir"));
        d.dir(QStringLiteral("adir"));
        PreviewDir p;
        p.ini();
        p.widget_preview()->resize(900, 400);
        QVERIFY(p.open_file(QFileInfo(d.path())));
        // Folders first, then names A to Z; hidden entries only on request.
        QCOMPARE(names(p.entries()), (QStringList{"adir", "zdir", "big.txt", "middle.txt", "small.txt"}));
        QCOMPARE(p.table()->rowCount(), 5);
        QCOMPARE(p.table()->item(2, 1)->text(), QStringLiteral("3,000"));
        QCOMPARE(p.table()->horizontalHeaderItem(1)->text(), QStringLiteral("Size"));
        p.set_show_hidden(true);
        p.refresh();
        QVERIFY(names(p.entries()).contains(QStringLiteral(".secret")));
        p.set_show_hidden(false);
        p.refresh();

        // "Size" once: largest first; twice: smallest first; folders stay first.
        p.table()->horizontalHeader()->sectionClicked(1);
        QCOMPARE(names(p.entries()).mid(2), (QStringList{"big.txt", "middle.txt", "small.txt"}));
        QVERIFY(names(p.entries()).startsWith(QStringLiteral("adir")) || names(p.entries()).startsWith(QStringLiteral("zdir")));
        p.table()->horizontalHeader()->sectionClicked(1);
        QCOMPARE(names(p.entries()).mid(2), (QStringList{"small.txt", "middle.txt", "big.txt"}));
        QVERIFY(QSet<QString>({names(p.entries())[0], names(p.entries())[1]}) == QSet<QString>({"adir", "zdir"}));
        // Back to names, reversed on the second click.
        p.table()->horizontalHeader()->sectionClicked(0);
        p.table()->horizontalHeader()->sectionClicked(0);
        QCOMPARE(names(p.entries()), (QStringList{"zdir", "adir", "small.txt", "middle.txt", "big.txt"}));

        // A click on a row tells the listeners and shows the entry in the inner container.
        QList<QFileInfo> selected;
        p.eventFileSelected().add([&](const QFileInfo& fi) { selected << fi; });
        p.table()->eventRowClicked().fire(4);
        QCOMPARE(selected.size(), 1);
        QCOMPARE(selected.first().fileName(), QStringLiteral("big.txt"));
        QCOMPARE(p.context()->currentFile().fileName(), QStringLiteral("big.txt"));
        p.table()->eventRowClicked().fire(99);   // outside the list: nothing
        QCOMPARE(selected.size(), 1);
        // A folder clicked inside is shown with the simple page: previews never nest.
        p.table()->eventRowClicked().fire(0);
        LimitedPreviewContainer* inner = p.limitedContainer();
        QVERIFY(dynamic_cast<PreviewDirSimple*>(inner->existingPreviewDirectory()));
        QCOMPARE(inner->currentWidget(), inner->existingPreviewDirectory()->widget_preview());
        QCOMPARE(p.type(), QStringLiteral("PreviewDir"));
        QCOMPARE(p.name(), QStringLiteral("dirViewer"));
    }

    void viewSwitchesBetweenTableAndThumbnails() {
        tftest::TestDir d;
        d.file(QStringLiteral("a.txt"), "a");
        PreviewDir p;
        p.ini();
        p.open_file(QFileInfo(d.path()));
        tftest::LogCapture logs;
        p.on_active_win_view(PreviewDir::VIEW_THUMB);
        QCOMPARE(p.activeView(), int(PreviewDir::VIEW_THUMB));
        QVERIFY(logs.containsLine(QStringLiteral("PreviewDir::on_active_win_view, dView:THUMB")));
        QVERIFY(logs.containsLine(QStringLiteral("private_PreviewDir::on_active_win_view, da thumb")));
        p.on_active_win_view(7);
        QVERIFY(logs.containsLine(QStringLiteral("PreviewDir::on_active_win_view, dView:UNKNOWN_VIEW")));
        QCOMPARE(p.activeView(), int(PreviewDir::VIEW_THUMB));
        p.on_active_win_view(PreviewDir::VIEW_TABLE);
        QCOMPARE(p.activeView(), int(PreviewDir::VIEW_TABLE));
        // Deep Info of the full preview runs the inner simple page's count.
        p.table()->eventRowClicked().fire(0);
        logs.clear();
        p.onDeepInfo();
        QVERIFY(logs.containsLine(QStringLiteral("PreviewDirSimple::onDeepInfo")));
        QTRY_VERIFY(!dynamic_cast<PreviewDirSimple*>(p.limitedContainer()->previewDirectory())->isScanning());
    }
};

QTEST_MAIN(TestDirPreviews)
#include "test_dirpreviews.moc"
