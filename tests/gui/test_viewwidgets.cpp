// The small widgets the previews stand on: flow layout, elided label, glass
// stack, throttled scroll panel, table gestures, picture surface, and the
// filter for Qt's console messages.
#include "common/TestEnv.h"

#include "base/log/QtMessageFilter.h"
#include "gui/previews/XView2D.h"
#include "gui/table/XTableWidget.h"
#include "gui/thumbs/XElidedLabel.h"
#include "gui/thumbs/XFlowLayout.h"
#include "gui/thumbs/XPanelStackedGlas.h"
#include "gui/thumbs/XVScrollPanel.h"
#include "gui/tools/XTools.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QtTest>

using namespace tav;

class TestViewWidgets : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

private slots:
    void flowLayoutWrapsRows() {
        QWidget host;
        auto* flow = new XFlowLayout(&host, 4);
        flow->setContentsMargins(0, 0, 0, 0);
        QList<QWidget*> boxes;
        for (int i = 0; i < 7; ++i) {
            auto* w = new QWidget(&host);
            w->setFixedSize(100, 50);
            flow->addWidget(w);
            boxes << w;
        }
        host.resize(330, 400);   // three boxes and their gaps fit in a row
        host.show();
        QTRY_COMPARE(boxes[2]->geometry(), QRect(208, 0, 100, 50));
        QCOMPARE(boxes[3]->geometry().topLeft(), QPoint(0, 54));
        QCOMPARE(boxes[6]->geometry().topLeft(), QPoint(0, 108));
        QCOMPARE(flow->heightForWidth(330), 158);
        QCOMPARE(flow->heightForWidth(1000), 50);   // all in one row
        boxes[1]->hide();                          // hidden boxes take no place
        host.resize(331, 400);
        QTRY_COMPARE(boxes[2]->geometry().topLeft(), QPoint(104, 0));
    }

    void elidedLabelShortensEachLine() {
        XElidedLabel l;
        l.resize(80, 60);
        l.setText(QStringLiteral("400x300\na_rather_long_file_name_that_cannot_fit.png"));
        const QStringList lines = l.shownLines();
        QCOMPARE(lines.size(), 2);
        QCOMPARE(lines[0], QStringLiteral("400x300"));
        QVERIFY(lines[1].contains(QChar(0x2026)));
        QVERIFY(lines[1].endsWith(QStringLiteral("png")));   // cut in the middle
        QCOMPARE(l.toolTip(), QStringLiteral("a_rather_long_file_name_that_cannot_fit.png"));

        // An underscore hangs below the line in small sizes: it must still be painted.
        XElidedLabel u;
        QFont f(QStringLiteral("DejaVu Sans"));
        f.setPointSize(9);
        u.setFont(f);
        u.resize(80, 50);
        u.setText(QStringLiteral("___"));
        const QImage img = u.grab().toImage();
        const QColor bg = img.pixelColor(1, img.height() - 1);
        int ink = 0;
        for (int y = 0; y < img.height(); ++y)
            for (int x = 0; x < img.width(); ++x) ink += img.pixelColor(x, y) != bg ? 1 : 0;
        QVERIFY2(ink > 10, qPrintable(QString::number(ink)));
    }

    void glassTakesTheClicks() {
        XPanelStackedGlas g;
        auto* page = new QWidget();
        g.addUnderGlass(page);
        g.resize(100, 100);
        g.show();
        QVERIFY(page->isVisible());   // pages under the glass show too
        int clicks = 0, doubles = 0, menus = 0;
        g.eventClicked().add([&]() { ++clicks; });
        g.eventDoubleClicked().add([&]() { ++doubles; });
        g.eventContextMenu().add([&]() { ++menus; });
        QCOMPARE(g.childAt(50, 50), static_cast<QWidget*>(g.glass()));
        QTest::mouseClick(g.glass(), Qt::LeftButton);
        QTest::mouseDClick(g.glass(), Qt::LeftButton);
        QTest::mouseClick(g.glass(), Qt::RightButton);
        QCOMPARE(clicks, 1);
        QCOMPARE(doubles, 1);
        QCOMPARE(menus, 1);
    }

    void scrollPanelReportsVisibleChildren() {
        XVScrollPanel sp;
        sp.resize(200, 100);
        auto* layout = new QVBoxLayout(sp.panel());
        QList<QWidget*> rows;
        for (int i = 0; i < 20; ++i) {
            auto* w = new QWidget();
            w->setFixedHeight(40);
            layout->addWidget(w);
            rows << w;
        }
        sp.show();
        QTRY_VERIFY(sp.verticalScrollBar()->maximum() > 0);
        QList<QWidget*> vis = sp.visibleChildren();
        QVERIFY(vis.contains(rows[0]) && !vis.contains(rows[10]));
        int reports = 0;
        sp.eventScrolled().add([&]() { ++reports; });
        QTest::qWait(XVScrollPanel::kReportIntervalMs + 50);
        sp.verticalScrollBar()->setValue(sp.verticalScrollBar()->maximum());
        sp.verticalScrollBar()->setValue(10);
        sp.verticalScrollBar()->setValue(sp.verticalScrollBar()->maximum());
        QCOMPARE(reports, 1);
        QTRY_COMPARE(reports, 2);   // the last position comes when the interval is over
        QTest::qWait(XVScrollPanel::kReportIntervalMs + 100);
        QCOMPARE(reports, 2);
        vis = sp.visibleChildren();
        QVERIFY(vis.contains(rows[19]) && !vis.contains(rows[0]));
    }

    void tableGestures() {
        XTableWidget t;
        t.setColumnCount(2);
        t.setRowCount(5);
        t.setupRows(20);
        t.resize(300, 200);
        t.show();
        QList<int> headers, rows, doubles, hovers;
        t.eventHeaderClicked().add([&](int c) { headers << c; });
        t.eventRowClicked().add([&](int r) { rows << r; });
        t.eventRowDoubleClicked().add([&](int r) { doubles << r; });
        t.eventHover().add([&](int r) { hovers << r; });
        QTest::mouseClick(t.horizontalHeader()->viewport(), Qt::LeftButton, {},
                          QPoint(t.horizontalHeader()->sectionPosition(1) + 5, 5));
        QCOMPARE(headers, QList<int>{1});
        const QPoint cell = t.visualRect(t.model()->index(2, 0)).center();
        QTest::mouseClick(t.viewport(), Qt::LeftButton, {}, cell);
        QCOMPARE(rows, QList<int>{2});
        QMouseEvent move(QEvent::MouseMove, t.visualRect(t.model()->index(3, 0)).center(), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(t.viewport(), &move);
        QCOMPARE(t.hoveredRow(), 3);
        QCOMPARE(hovers, QList<int>{3});
        // The keys select as a click does; Return activates as a double click.
        QTest::keyClick(&t, Qt::Key_Down);
        QCOMPARE(rows.last(), 3);
        QTest::keyClick(&t, Qt::Key_Return);
        QCOMPARE(doubles, QList<int>{3});
        QCOMPARE(t.editTriggers(), QAbstractItemView::NoEditTriggers);
        QCOMPARE(t.verticalHeader()->defaultSectionSize(), 20);
    }

    void pictureSurfaceFitsAndZooms() {
        XView2D v;
        v.resize(200, 100);
        v.show();
        QImage big(800, 200, QImage::Format_RGB32);
        big.fill(Qt::red);
        v.setImage(big);
        QVERIFY(v.isFit());
        QCOMPARE(v.zoom(), v.viewport()->width() / 800.0);   // shrunk to the width
        v.on_zoom(true);
        QVERIFY(!v.isFit());
        QVERIFY(std::abs(v.zoom() - v.viewport()->width() / 800.0 * 1.25) < 1e-9);
        for (int i = 0; i < 100; ++i) v.on_zoom(true);
        QCOMPARE(v.zoom(), 32.0);   // bounded
        QTest::keyClick(&v, Qt::Key_0);
        QVERIFY(v.isFit());
        QTest::keyClick(&v, Qt::Key_1);
        QCOMPARE(v.zoom(), 1.0);
        QVERIFY(v.horizontalScrollBar()->maximum() > 0);   // larger than the view: it scrolls
        int activated = 0;
        v.eventActivated().add([&]() { ++activated; });
        QTest::mouseDClick(v.viewport(), Qt::LeftButton);
        QCOMPARE(activated, 1);
        v.setMessage(QStringLiteral("Cannot read"));
        QVERIFY(v.image().isNull());
        QCOMPARE(v.message(), QStringLiteral("Cannot read"));
    }

    void monospaceFontIsFixedPitchWithoutAPlatformTheme() {
        // The previews measure one cell per character; a proportional "fixed" font breaks them.
        const QFont f = XTools::getMonoFont(13);
        QVERIFY(QFontInfo(f).fixedPitch());
        QCOMPARE(f.pointSize(), 13);
        const QFontMetricsF fm(f);
        QCOMPARE(fm.horizontalAdvance(QStringLiteral("mmmm")), fm.horizontalAdvance(QStringLiteral("iiii")));
    }

    void qtMessagesWithListedTextsAreDropped() {
        addConsoleMessageFilter(QStringLiteral("libpng warning"));
        QVERIFY(isConsoleMessageFiltered(QStringLiteral("libpng warning: iCCP: known incorrect sRGB profile")));
        QVERIFY(!isConsoleMessageFiltered(QStringLiteral("something else")));
        installQtMessageHandler();
        installQtMessageHandler();   // once is enough; a second call changes nothing
        // The test framework's own handler still gets the other messages.
        QTest::ignoreMessage(QtWarningMsg, "a warning that stays");
        qWarning("a warning that stays");
        qWarning("libpng warning: dropped");
    }
};

QTEST_MAIN(TestViewWidgets)
#include "test_viewwidgets.moc"
