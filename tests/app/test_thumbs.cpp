// Thumbnails and the main window's use of the previews: only tiles in view are
// queued, a produced tile never again, scroll reports are throttled; Ctrl+1 and
// Ctrl+2, thumbnail sizes, the status text, cycling from the tree, copy to the
// content search and refresh in a real main window.
#include "common/TestEnv.h"

#include "base/node/XNode.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/previews/PreviewAscii.h"
#include "gui/previews/XThumb.h"
#include "gui/thumbs/XElidedLabel.h"
#include "gui/thumbs/XVScrollPanel.h"
#include "gui/tools/XTools.h"
#include "gui/viewText/XTextView.h"
#include "gui/widgets/XComboBox.h"
#include "gui/widgets/XTreeViewFiles.h"
#include "src/dir/ContextPreviews.h"
#include "src/dir/PreviewDir.h"
#include "src/dir/XContainerPreviews.h"
#include "src/gui/NavigationBar.h"
#include "src/gui/PanThumb.h"
#include "src/gui/PanelThumbs.h"
#include "src/gui/ThumbLoader.h"
#include "src/gui/WinFinder.h"
#include "src/gui/WinTray.h"

#include <QImage>
#include <QLabel>
#include <QPointer>
#include <QScrollBar>
#include <QToolButton>
#include <QtTest>

using namespace tavFinder;

class TestThumbs : public QObject {
    Q_OBJECT
    tftest::TestEnv env;
    tav::KernelGUI kernel{QStringLiteral("talvoEngine"), QStringLiteral("app"), QStringList(), true};
    tftest::TestDir pics;

    int produced(const QList<PanThumb*>& tiles) {
        int n = 0;
        for (PanThumb* t : tiles) n += t->thumb()->is_ini() ? 0 : 1;
        return n;
    }

private slots:
    void initTestCase() {
        WinTray::setWatchdogEnabled(false);
        QImage img(40, 30, QImage::Format_RGB32);
        img.fill(Qt::darkGreen);
        for (int i = 0; i < 150; ++i) QVERIFY(img.save(pics.abs(QStringLiteral("p%1.png").arg(i, 3, 10, QLatin1Char('0')))));
        pics.file(QStringLiteral("notes.txt"), "text");
    }

    void loaderQueuesVisibleTilesOnlyAndNeverAProducedOne() {
        PanelThumbs panel;
        panel.resize(500, 300);
        panel.show();
        panel.set_directory(nullptr, pics.path(), 64);
        QCOMPARE(panel.tiles().size(), 151);
        QTRY_VERIFY(!panel.visibleTiles().isEmpty());
        const QList<PanThumb*> visible = panel.visibleTiles();
        QVERIFY(visible.size() < 60);
        ThumbLoader loader;
        for (PanThumb* t : visible) loader.add(t);
        QCOMPARE(loader.queued(), visible.size());
        loader.add(nullptr);   // reported, not queued
        QCOMPARE(loader.queued(), visible.size());
        loader.run();
        QCOMPARE(loader.queued(), 0);
        QCOMPARE(produced(visible), visible.size());
        QCOMPARE(produced(panel.tiles()), visible.size());   // nothing outside the view
        QCOMPARE(loader.tasksStarted(), visible.size());
        // A produced tile is not queued again; next() of an empty queue gives nothing.
        loader.add(visible.first());
        QCOMPARE(loader.queued(), 0);
        QVERIFY(!loader.next());
        // The picture's own size goes into the name label; other files keep their name.
        QCOMPARE(visible.first()->file().fileName(), QStringLiteral("notes.txt"));
        QTRY_COMPARE(visible[1]->nameLabel()->text(), QStringLiteral("40x30\n") + visible[1]->file().fileName());
        QCOMPARE(visible.first()->nameLabel()->text(), QStringLiteral("notes.txt"));
        // Without a main window the context gesture only writes its log line.
        tftest::LogCapture logs;
        visible.first()->eventContextMenu().fire();
        QVERIFY(logs.containsLine(QStringLiteral("NO WINFINDER")));
    }

    void scrollingLoadsTheNextTilesAndReportsAreThrottled() {
        PreviewDir p;
        p.ini();
        p.widget_preview()->resize(900, 300);
        p.widget_preview()->show();
        p.on_active_win_view(PreviewDir::VIEW_THUMB);
        p.open_file(QFileInfo(pics.path()));
        PanelThumbs* panel = p.thumbPanel();
        QTRY_COMPARE_WITH_TIMEOUT(panel->tiles().size(), 151, 3000);
        QTRY_VERIFY_WITH_TIMEOUT(!panel->visibleTiles().isEmpty() && produced(panel->visibleTiles()) == panel->visibleTiles().size(), 5000);
        const int first = produced(panel->tiles());
        QVERIFY(first > 0 && first < 151);
        PanThumb* last = panel->tiles().last();
        QVERIFY(last->thumb()->is_ini());
        // Many scroll steps in a row make one report now and one when 500 ms are over.
        tav::XVScrollPanel* sp = panel->scrollPanel();
        const int reportsBefore = sp->reportCount();
        QTest::qWait(600);
        for (int i = 0; i < 30; ++i) sp->verticalScrollBar()->setValue(sp->verticalScrollBar()->maximum() * (i + 1) / 30);
        QCOMPARE(sp->reportCount(), reportsBefore + 1);
        QTRY_COMPARE_WITH_TIMEOUT(sp->reportCount(), reportsBefore + 2, 2000);
        QTRY_VERIFY_WITH_TIMEOUT(!last->thumb()->is_ini(), 5000);
        QVERIFY(produced(panel->tiles()) < 151);   // the middle was never in view when reported
        // A click on a tile shows it in the inner container.
        last->eventClicked().fire();
        QCOMPARE(p.context()->currentFile().fileName(), last->file().fileName());
    }

    void mainWindowUsesThePreviews() {
        tav::XNode* nWin =
            kernel.getCreateNodeApplication()->getCreateNode(QStringLiteral("GUI"))->getCreateNode(QStringLiteral("Window"));
        QPointer<WinFinder> w = new WinFinder(true);
        w->init(&kernel, nWin);
        w->setupTray();
        w->setUp(QString());
        w->setGeometry(40, 40, 1100, 600);
        w->show();
        tftest::LogCapture logs;
        const QString txt = pics.abs(QStringLiteral("notes.txt"));
        w->on_treeView_selectFile(QFileInfo(txt));
        XContainerPreviews* c = w->containerPreview();
        QCOMPARE(c->currentWidget(), c->textPreview()->widget_preview());
        QVERIFY(logs.contains(QStringLiteral("WinFinder::setUp, will appear:Text Viewer")));
        QTRY_COMPARE(w->statusLabel()->text(), QStringLiteral("%1  ( 4 bytes )").arg(QFileInfo(txt).absoluteFilePath()));

        // The cycle hotkey path: from the tree to its context.
        const int index = w->contextMain()->currentIndex();
        w->key_cycle_previews(w->treeView());
        QVERIFY(w->contextMain()->currentIndex() != index);
        w->select_preview(w->treeView(), QStringLiteral("PreviewAscii"));
        QCOMPARE(c->currentWidget(), c->textPreview()->widget_preview());
        // From inside the text view the walk stops there: nothing cycles.
        logs.clear();
        QWidget* shown = c->currentWidget();
        w->key_cycle_previews(dynamic_cast<tav::PreviewAscii*>(c->textPreview())->get_XTextView()->viewport());
        QVERIFY(logs.containsLine(QStringLiteral("WinFinder::key_cycle_previews, TextView-Result")));
        QCOMPARE(c->currentWidget(), shown);

        // Copy to the content search reaches the filter panel's field.
        auto* text = dynamic_cast<tav::PreviewAscii*>(c->textPreview());
        c->set_copy_to_search(QStringLiteral("needle"));
        QCOMPARE(w->comboContent()->currentText(), QStringLiteral("needle"));
        Q_UNUSED(text);

        logs.clear();
        w->on_refresh();
        QVERIFY(logs.contains(QStringLiteral("WinFinder::on_refresh, prevCurr@Text Viewer")));

        // A folder, then Ctrl+1: thumbnails; the size buttons step through the sizes; Ctrl+2: the table.
        w->on_treeView_selectFile(QFileInfo(pics.path()));
        auto* dir = dynamic_cast<PreviewDir*>(c->previewDirectory());
        QCOMPARE(c->currentWidget(), dir->widget_preview());
        QTest::keyClick(w, Qt::Key_1, Qt::ControlModifier);
        QCOMPARE(w->viewFlags().flags(), 2u);
        QCOMPARE(dir->activeView(), int(PreviewDir::VIEW_THUMB));
        QVERIFY(w->naviBar()->buttonThumbs()->isChecked());
        QTRY_COMPARE_WITH_TIMEOUT(dir->thumbPanel()->tiles().size(), 151, 3000);
        const unsigned before = dir->thumbPanel()->thumbSize();
        w->on_thumb_size(true);
        QCOMPARE(dir->thumbPanel()->thumbSize(), WinFinder::thumb_size_step(before, true));
        QCOMPARE(dir->thumbPanel()->tiles().first()->thumb()->sizeHint().width(), int(dir->thumbPanel()->thumbSize()));
        w->on_thumb_size(false);
        QCOMPARE(dir->thumbPanel()->thumbSize(), before);
        QTest::keyClick(w, Qt::Key_2, Qt::ControlModifier);
        QCOMPARE(w->viewFlags().flags(), 0u);
        QCOMPARE(dir->activeView(), int(PreviewDir::VIEW_TABLE));
        QVERIFY(!w->naviBar()->buttonThumbs()->isChecked());

        // Hidden files: the folder table follows the window's switch.
        pics.file(QStringLiteral(".hidden.txt"), "h");
        w->on_hidden_files(true);
        bool hiddenListed = false;
        for (const QFileInfo& fi : dir->entries()) hiddenListed |= fi.fileName() == QStringLiteral(".hidden.txt");
        QVERIFY(hiddenListed);
        w->on_hidden_files(false);
        QFile::remove(pics.abs(QStringLiteral(".hidden.txt")));

        w->close();
        QTRY_VERIFY(w.isNull());
        QCOMPARE(ContextPreviews::currentPreview(), nullptr);
    }
};

QTEST_MAIN(TestThumbs)
#include "test_thumbs.moc"
