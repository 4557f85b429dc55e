// The text view: line index against a plain scan, what rows show for awkward
// bytes, positions both ways, painted marks, pointer and keyboard behaviour.
#include "common/TestEnv.h"

#include "gui/previews/PreviewAscii.h"
#include "gui/previews/XHexView.h"
#include "gui/viewText/LineIndex.h"
#include "gui/viewText/TextUnits.h"
#include "gui/viewText/XTextView.h"
#include "gui/tools/XSearchMachines.h"
#include "gui/widgets/XMenu.h"

#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QtTest>

using namespace tav;
using namespace tav::viewText;
using tav::find::XRam;

namespace {

// Line starts by the obvious method.
std::vector<int64_t> naiveLineStarts(const QByteArray& b) {
    std::vector<int64_t> s{0};
    for (int i = 0; i < b.size(); ++i)
        if (b[i] == '\n' && i + 1 < b.size()) s.push_back(i + 1);
    return s;
}

QByteArray randomText(quint32 seed, int lines) {
    QRandomGenerator g(seed);
    QByteArray out;
    for (int i = 0; i < lines; ++i) {
        const int kind = g.bounded(20);
        int len = kind == 0 ? 0 : (kind == 1 ? 20000 + g.bounded(30000) : g.bounded(120));
        for (int k = 0; k < len; ++k) out += char('a' + g.bounded(26));
        out += (kind == 2) ? "\r\n" : "\n";
    }
    if (g.bounded(2)) out.chop(1);   // with and without a final newline
    return out;
}

QFont testFont() {
    QFont f(QStringLiteral("DejaVu Sans Mono"));
    f.setStyleHint(QFont::TypeWriter);
    f.setPixelSize(14);
    return f;
}

} // namespace

class TestTextView : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

    std::unique_ptr<XTextView> makeView(const QByteArray& bytes, QSize size = QSize(600, 300)) {
        auto v = std::make_unique<XTextView>();
        v->setFont(testFont());
        v->resize(size);
        v->set_line_info_pos(LINE_INFO_OFF);
        v->setBytes(bytes, QStringLiteral("test.txt"));
        v->show();
        return v;
    }

private slots:
    void lineIndexAgreesWithPlainScan() {
        for (quint32 seed : {1u, 2u, 3u, 4u}) {
            const QByteArray text = randomText(seed, 600);
            auto src = TextSource::fromBytes(text, QStringLiteral("x"));
            LineIndex idx(src);
            idx.start();
            QVERIFY(idx.isDone());
            const auto starts = naiveLineStarts(text);
            QCOMPARE(idx.lineCount(), int64_t(starts.size()));
            for (size_t i = 0; i < starts.size(); ++i) {
                QCOMPARE(idx.lineStartOfNumber(int64_t(i)), starts[i]);
                QCOMPARE(idx.lineNumberOf(starts[i]), int64_t(i));
                QCOMPARE(idx.nextLineStart(starts[i]), i + 1 < starts.size() ? starts[i + 1] : int64_t(text.size()));
                if (i > 0) QCOMPARE(idx.prevLineStart(starts[i]), starts[i - 1]);
            }
            // Every byte maps to the line that holds it.
            size_t line = 0;
            for (int64_t pos = 0; pos < text.size(); pos += 7) {
                while (line + 1 < starts.size() && starts[line + 1] <= pos) ++line;
                QCOMPARE(idx.lineStartContaining(pos), starts[line]);
            }
        }
        // Empty text: one empty line; a text of one newline: one empty line too.
        for (const QByteArray& t : {QByteArray(), QByteArray("\n")}) {
            LineIndex idx(TextSource::fromBytes(t, QStringLiteral("x")));
            idx.start();
            QCOMPARE(idx.lineCount(), int64_t(1));
            QCOMPARE(idx.lineContentEnd(0), int64_t(0));
        }
    }

    void backgroundIndexOfLargeFile() {
        tftest::TestDir dir;
        QByteArray text;
        text.reserve(9 * 1024 * 1024);
        int n = 0;
        while (text.size() < 8 * 1024 * 1024) text += QByteArray::number(n++) + " some text on this line\n";
        text += "the very last line";
        const QString path = dir.file(QStringLiteral("big.log"), text);
        XTextView v;
        v.setFont(testFont());
        v.resize(500, 200);
        v.show();
        QVERIFY(v.openFile(path));
        // The first screen needs no index.
        QCOMPARE(v.visibleRowTexts().value(0), QStringLiteral("0 some text on this line"));
        bool indexed = v.lineIndex()->isDone();
        v.eventIndexed().add([&indexed]() { indexed = true; });
        QTRY_VERIFY_WITH_TIMEOUT(indexed, 20000);
        QCOMPARE(v.lineCount(), int64_t(n + 1));
        v.scrollToEnd();
        QCOMPARE(v.visibleRowTexts().last(), QStringLiteral("the very last line"));
        QCOMPARE(v.firstVisibleLine() + v.fullyVisibleRows(), int64_t(n + 1));
        v.scrollToLine(123456);
        QCOMPARE(v.visibleRowTexts().value(0), QStringLiteral("123456 some text on this line"));
    }

    void lookupsWhileIndexingAgreeWithThePlainScan() {
        // Large enough to be indexed in the background; lines of varied length,
        // some longer than the anchor spacing.
        QRandomGenerator g(11);
        QByteArray text;
        text.reserve(12 * 1024 * 1024);
        while (text.size() < 10 * 1024 * 1024) {
            const int len = g.bounded(100) == 0 ? 20000 + g.bounded(20000) : g.bounded(90);
            text += QByteArray(len, 'x');
            text += '\n';
        }
        const auto starts = naiveLineStarts(text);
        auto src = TextSource::fromBytes(text, QStringLiteral("x"));
        LineIndex idx(src);
        idx.start();
        int checks = 0;
        // Ask while the worker publishes; every answer must be right or "unknown".
        while (!idx.isDone() || checks < 2000) {
            const int64_t pos = int64_t(g.bounded(text.size()));
            const size_t line = size_t(std::upper_bound(starts.begin(), starts.end(), pos) - starts.begin() - 1);
            QCOMPARE(idx.lineStartContaining(pos), starts[line]);
            const int64_t n = idx.lineNumberOf(starts[line]);
            QVERIFY(n == -1 || n == int64_t(line));
            const int64_t back = idx.lineStartOfNumber(int64_t(line));
            QVERIFY(back == -1 || back == starts[line]);
            QCOMPARE(idx.nextLineStart(starts[line]), line + 1 < starts.size() ? starts[line + 1] : int64_t(text.size()));
            ++checks;
        }
        QCOMPARE(idx.lineCount(), int64_t(starts.size()));
        // The index is small: far fewer anchors than lines.
        QVERIFY(idx.anchorCount() * 20 < starts.size());
    }

    void filesThatReportNoSizeAreRead() {
        // /proc files say size 0 but have content: they are read instead of mapped.
        XTextView v;
        v.resize(400, 200);
        if (!QFileInfo::exists(QStringLiteral("/proc/self/status"))) QSKIP("no /proc");
        QVERIFY(v.openFile(QStringLiteral("/proc/self/status")));
        QVERIFY(v.size() > 0);
        QVERIFY(v.visibleRowTexts().value(0).startsWith(QStringLiteral("Name:")));
    }

    void refreshKeepsThePlaceAndSkipsUnchangedFiles() {
        tftest::TestDir dir;
        QByteArray text;
        for (int i = 0; i < 500; ++i) text += "row " + QByteArray::number(i) + "\n";
        const QString path = dir.file(QStringLiteral("grow.log"), text);
        PreviewAscii p;
        p.ini();
        XTextView* v = p.get_XTextView();
        v->resize(400, 200);
        v->show();
        QVERIFY(p.open_file(QFileInfo(path)));
        v->scrollToLine(300);
        find::XRamLayer* l = v->layers().add_layer(1000, 1);
        l->add_mark(XRam(0, 3));
        p.refresh();   // unchanged on disk: nothing is reloaded, the marks stay
        QCOMPARE(l->size(), 1);
        {
            QFile f(path);
            QVERIFY(f.open(QIODevice::Append));
            f.write("row 500\nrow 501\n");
        }
        p.refresh();
        QCOMPARE(v->firstVisibleLine(), int64_t(300));
        QCOMPARE(v->lineCount(), int64_t(502));
        QCOMPARE(v->layers().layer_by_ID(1000)->size(), 0);   // marks were for the old content
    }

    void rowsShowCrlfInvalidBytesTabsAndControls() {
        const QByteArray text = QByteArray("alpha\r\nbe\tta\r\n") + "\xff\xfe ok \xe2\x82\r\n" + "a\x01z\xc3\xa9\r\n" +
                                "\xe6\x97\xa5\xe6\x9c\xac|\n" + "end";
        auto v = makeView(text);
        const QStringList rows = v->visibleRowTexts();
        QCOMPARE(rows.size(), 6);
        QCOMPARE(rows[0], QStringLiteral("alpha"));
        QCOMPARE(rows[1], QStringLiteral("be  ta"));
        // Each invalid byte is one replacement cell; a truncated sequence at the end too.
        QCOMPARE(rows[2], QStringLiteral("\uFFFD\uFFFD ok \uFFFD\uFFFD"));
        QCOMPARE(rows[3], QString::fromUtf8("a\u2401z\xc3\xa9"));
        QCOMPARE(rows[4], QString::fromUtf8("\xe6\x97\xa5\xe6\x9c\xac|"));
        QCOMPARE(rows[5], QStringLiteral("end"));
        // Wide characters take two columns: '|' sits at column 4.
        const int64_t bar = text.indexOf('|');
        QCOMPARE(v->positionOfByte(bar).column, int64_t(4));
        v->set_tab_width(8);
        QCOMPARE(v->visibleRowTexts()[1], QStringLiteral("be      ta"));
    }

    void bytePositionsAndLineColumnsMapBothWays() {
        const QByteArray text = QByteArray("ab\tc\r\n") + "\xc3\xa4\xe2\x82\xac x\n" + "\n" + "\x80q\n" + "tail";
        auto v = makeView(text);
        struct Case {
            int64_t byte, line, col;
        } cases[] = {
            {0, 0, 0}, {2, 0, 2}, {3, 0, 4},    // the tab ends at column 4
            {4, 0, 5}, {6, 1, 0}, {8, 1, 1},    // "ä" is two bytes, one column
            {11, 1, 2}, {12, 1, 3}, {14, 2, 0}, // the empty line
            {15, 3, 0}, {16, 3, 1}, {18, 4, 0}, {22, 4, 4},
        };
        for (const Case& c : cases) {
            const auto tp = v->positionOfByte(c.byte);
            QCOMPARE(tp.line, c.line);
            QCOMPARE(tp.column, c.col);
            QCOMPARE(v->byteOfPosition(c.line, c.col), c.byte);
        }
        // A byte inside a character maps to that character's column; a column inside
        // a tab to the tab; a column past the end to the end of the line.
        QCOMPARE(v->positionOfByte(7).column, int64_t(0));
        QCOMPARE(v->byteOfPosition(0, 3), int64_t(2));
        QCOMPARE(v->byteOfPosition(1, 99), int64_t(13));
        QCOMPARE(v->byteOfPosition(9, 0), int64_t(-1));
    }

    void veryLongLinesWrapAndScroll() {
        QByteArray longLine;
        for (int i = 0; i < 30000; ++i) longLine += QByteArray::number(i % 10);
        longLine += "\xc3\xa9";   // 'é' at column 30000
        const QByteArray text = "first\n" + longLine + "\nlast\n";
        auto v = makeView(text, QSize(400, 200));
        QStringList rows = v->visibleRowTexts();
        QCOMPARE(rows[0], QStringLiteral("first"));
        QVERIFY(rows[1].startsWith(QStringLiteral("0123456789")));
        QCOMPARE(rows[2], QStringLiteral("last"));
        // Horizontal scrolling shows a window of the long line.
        const int64_t e = text.indexOf("\xc3\xa9");
        QCOMPARE(v->positionOfByte(e).column, int64_t(30000));
        v->scrollToByte(e, true);
        QVERIFY(v->horizontalScrollColumn() > 29000);
        QVERIFY(v->visibleRowTexts()[0].isEmpty());   // "first" is shorter than the scroll offset
        // Wrapped: the long line fills rows of equal width, and the end is reachable.
        v->set_wrap(true);
        rows = v->visibleRowTexts();
        QCOMPARE(rows[0], QStringLiteral("first"));
        const int w = rows[1].size();
        QVERIFY(w > 10);
        QCOMPARE(rows[2].size(), w);
        QCOMPARE(rows[1], QString::fromLatin1(longLine.left(w)));
        QCOMPARE(rows[2], QString::fromLatin1(longLine.mid(w, w)));
        v->scrollToEnd();
        rows = v->visibleRowTexts();
        QCOMPARE(rows.last(), QStringLiteral("last"));
        QVERIFY(rows[rows.size() - 2].endsWith(QString::fromUtf8("\xc3\xa9")));
        // Scrolling into the middle of the long line shows the row that holds the byte.
        v->scrollToByte(15000, false);
        QVERIFY(v->topSubRow() > 0);
        QCOMPARE(v->topLineStart(), int64_t(6));
        const int64_t rowStartDigit = (15000 - 6) / w * w;
        QCOMPARE(v->visibleRowTexts()[0].left(3), QString::fromLatin1(longLine.mid(int(rowStartDigit), 3)));
        // Automatic wrap wraps a file with long lines even with wrap off.
        v->set_wrap(false);
        QVERIFY(!v->isWrapping());
        v->set_auto_wrap(true);
        QVERIFY(v->isWrapping());
        auto shortView = makeView("short\nlines\n");
        shortView->set_auto_wrap(true);
        QVERIFY(!shortView->isWrapping());
    }

    void marksOfLayersArePainted() {
        // Marks lie on blanks so no glyph covers the pixels looked at.
        const QByteArray text = "aaaa        bbbb        cccc\nline two          x\n";
        auto v = makeView(text);
        v->set_ruler(false);
        find::XRamLayer* l = v->layers().add_layer(1000, 1);
        l->set_color_background(qRgb(0, 200, 0));
        l->add_mark(XRam(5, 6));     // blanks after "aaaa"
        l->add_mark(XRam(17, 6));    // blanks after "bbbb"
        find::XRamLayer* other = v->layers().add_layer(1001, 1);
        other->set_color_background(qRgb(250, 250, 0));
        other->add_mark(XRam(38, 6));   // blanks on line two
        v->layers().setEnabled(1001, false);
        v->set_active_layer(l);
        l->set_active_mark_index(1);
        v->re_paint();
        const QImage img = v->viewport()->grab().toImage();
        auto centre = [&](int64_t byte) { return v->cellRect(byte).center(); };
        QCOMPARE(QColor(img.pixel(centre(7))), QColor(0, 200, 0));
        QCOMPARE(QColor(img.pixel(centre(19))), QColor(0, 200, 0));   // inside the active mark
        QVERIFY(QColor(img.pixel(centre(13))) != QColor(0, 200, 0));  // between the marks
        // The active mark has a frame at its left edge; the other mark has none.
        const QRect a = v->cellRect(17), b = v->cellRect(5);
        QCOMPARE(QColor(img.pixel(a.left() + 1, a.center().y())), QColor(255, 110, 0));
        QCOMPARE(QColor(img.pixel(b.left() + 1, b.center().y())), QColor(0, 200, 0));
        // A disabled layer is not painted; enabled, it is.
        QVERIFY(QColor(img.pixel(centre(40))) != QColor(250, 250, 0));
        v->layers().setEnabled(1001, true);
        v->re_paint();
        QCOMPARE(QColor(v->viewport()->grab().toImage().pixel(centre(40))), QColor(250, 250, 0));
        // Opening another file drops the marks but keeps the layers and their colours.
        v->setBytes("fresh text", QStringLiteral("y"));
        QVERIFY(v->layers().contains_layer(1000));
        QCOMPARE(v->layers().layer_by_ID(1000)->size(), 0);
        QCOMPARE(v->layers().layer_by_ID(1000)->color_background(), qRgb(0, 200, 0));
    }

    void aMillionMarksPaintOnlyWhatIsVisible() {
        QByteArray text;
        for (int i = 0; i < 200000; ++i) text += "word word word word word\n";
        auto v = makeView(text);
        find::XRamLayer* l = v->layers().add_layer(1000, 1);
        l->reserve(1000000);
        for (int64_t i = 0; i < 1000000; ++i) l->append_sorted(XRam(i * 5, 4));
        v->set_active_layer(l);
        l->set_active_mark_index(999999);
        v->scrollToRam(*l->active_mark());
        const QStringList rows = v->visibleRowTexts();
        QVERIFY(rows.contains(QStringLiteral("word word word word word")));
        QVERIFY(v->cellRect(999999 * 5).isValid());
        QCOMPARE(v->textFromMarkRam(*l->active_mark()), QStringLiteral("word"));
    }

    void pointerMarksAndClicks() {
        const QByteArray text = "Hello brave world. Next one!\nsecond line here\n\nnew paragraph\n";
        auto v = makeView(text);
        v->mouseOverLayer().add_mark(XRam(-1, 0, XRam::CATEGORY_WORD));
        v->mouseOverLayer().add_mark(XRam(-1, 0, XRam::CATEGORY_PARAGRAPH));
        MouseOverMark last;
        int events = 0;
        v->eventMouseOver().add([&](const MouseOverMark& m) {
            last = m;
            ++events;
        });
        QTest::mouseMove(v->viewport(), v->cellRect(8).center());   // inside "brave"
        QTRY_VERIFY(events > 0);
        QCOMPARE(last.word, XRam(6, 5, XRam::CATEGORY_WORD));
        QCOMPARE(last.character, XRam(8, 1, XRam::CATEGORY_CHAR));
        QCOMPARE(last.line, XRam(0, 28, XRam::CATEGORY_LINE));
        QCOMPARE(last.sentence, XRam(0, 18, XRam::CATEGORY_SENTENCE));
        QCOMPARE(last.paragraph, XRam(0, 45, XRam::CATEGORY_PARAGRAPH));
        // The view's own mouse-over marks follow the pointer.
        QCOMPARE(*v->mouseOverLayer().mark_by_category(XRam::CATEGORY_WORD), XRam(6, 5, XRam::CATEGORY_WORD));
        QCOMPARE(unitSentence(*v->lineIndex(), 22), XRam(19, 9, XRam::CATEGORY_SENTENCE));
        QVERIFY(!unitParagraph(*v->lineIndex(), 46).isValid());   // the blank line

        // A click on a mark of another layer makes that layer and mark active.
        find::XRamLayer* l0 = v->layers().add_layer(1000, 1);
        find::XRamLayer* l1 = v->layers().add_layer(1001, 1);
        l0->add_mark(XRam(0, 5));
        l1->add_mark(XRam(6, 5));
        l1->add_mark(XRam(12, 5));
        v->set_active_layer(l0);
        QList<int> layerEvents;
        XActiveMark am;
        v->eventLayerChanged().add([&](int id) { layerEvents << id; });
        v->eventActiveMark().add([&](const XActiveMark& m) { am = m; });
        QTest::mouseClick(v->viewport(), Qt::LeftButton, {}, v->cellRect(13).center());
        QCOMPARE(layerEvents, QList<int>{1001});
        QCOMPARE(am.layerId, 1001);
        QCOMPARE(am.index, 1);
        QCOMPARE(v->activeLayer(), l1);
        // n / N move the active mark of the active layer.
        v->setFocus();
        QTest::keyClick(v.get(), Qt::Key_N, Qt::ShiftModifier);
        QCOMPARE(l1->active_mark_index(), 0);
        QCOMPARE(am.index, 0);
        // A layer that was removed is no longer the active one.
        v->layers().remove_layer(1001);
        QCOMPARE(v->activeLayer(), nullptr);
    }

    void selectionKeyboardAndMenu() {
        const QByteArray text = "first line\nsecond\n\tthird line\nlast";
        auto v = makeView(text);
        v->setFocus();
        QStringList selections;
        v->eventSelectionChanged().add([&](const QString& s) { selections << s; });
        QTest::mousePress(v->viewport(), Qt::LeftButton, {}, v->cellRect(0).topLeft() + QPoint(1, 2));
        QTest::mouseMove(v->viewport(), v->cellRect(5).topLeft() + QPoint(1, 2));
        QTest::mouseRelease(v->viewport(), Qt::LeftButton, {}, v->cellRect(5).topLeft() + QPoint(1, 2));
        QCOMPARE(v->selectedText(), QStringLiteral("first"));
        QCOMPARE(selections, QStringList{QStringLiteral("first")});
        v->copy();
        QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("first"));
        // Double click selects the word.
        QTest::mouseDClick(v->viewport(), Qt::LeftButton, {}, v->cellRect(13).center());
        QCOMPARE(v->selectedText(), QStringLiteral("second"));

        // Down keeps the column; the tab counts as four columns.
        v->setCaretPos(3);
        QTest::keyClick(v.get(), Qt::Key_Down);
        QCOMPARE(v->caretPos(), int64_t(14));
        QTest::keyClick(v.get(), Qt::Key_Down);
        QCOMPARE(v->positionOfByte(v->caretPos()).line, int64_t(2));
        QCOMPARE(v->caretPos(), int64_t(18));   // first cell at or after column 3 is the tab
        QTest::keyClick(v.get(), Qt::Key_End, Qt::ShiftModifier);
        QCOMPARE(v->selectedText(), QStringLiteral("\tthird line"));
        QTest::keyClick(v.get(), Qt::Key_End, Qt::ControlModifier);
        QCOMPARE(v->caretPos(), int64_t(text.size()));
        QTest::keyClick(v.get(), Qt::Key_Left);
        QTest::keyClick(v.get(), Qt::Key_Home);
        QCOMPARE(v->caretPos(), int64_t(text.indexOf("last")));
        QTest::keyClick(v.get(), Qt::Key_Left);
        QCOMPARE(v->caretPos(), int64_t(text.indexOf("\nlast")));   // end of the line before
        QTest::keyClick(v.get(), Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(v->selectionEnd() - v->selectionStart(), int64_t(text.size()));

        // Return activates; the menu runs the extra builders with the selection.
        int activated = 0;
        v->eventActivated().add([&]() { ++activated; });
        QTest::keyClick(v.get(), Qt::Key_Return);
        QCOMPARE(activated, 1);
        v->setSelection(0, 5);
        QString seen;
        v->add_extra_context_menu([&](XMenu& m, const QString& sel) {
            seen = sel;
            m.addAction(QStringLiteral("extra"));
        });
        tftest::TestDir dir;
        tav::XSearchMachines::set_resource_file(
            dir.file(QStringLiteral("machines.txt"), "# list\nOne, https://one.example/?q=$\n-\nTwo, https://two.example/$\n"));
        v->add_extra_context_menu_web_search(QStringLiteral("Web Search"));
        XMenu menu;
        v->buildContextMenu(menu);
        QCOMPARE(seen, QStringLiteral("first"));
        QCOMPARE(menu.actions().last()->text(), QStringLiteral("extra"));
        QVERIFY(menu.actions().first()->isEnabled());   // Copy, with a selection
        QMenu* web = nullptr;
        for (QAction* a : menu.actions())
            if (a->menu() && a->text() == QStringLiteral("Web Search")) web = a->menu();
        QVERIFY(web && web->isEnabled());
        QStringList titles;
        for (QAction* a : web->actions())
            if (!a->isSeparator()) titles << a->text();
        QCOMPARE(titles, (QStringList{QStringLiteral("One"), QStringLiteral("Two")}));
    }

    void utf8DecodingKeepsEveryInvalidByte() {
        struct Case {
            QByteArray bytes;
            int len;
            bool valid;
            char32_t cp;
        } cases[] = {
            {"A", 1, true, 'A'},
            {"\xc3\xa9", 2, true, 0xE9},
            {"\xe2\x82\xac", 3, true, 0x20AC},
            {"\xf0\x9f\x98\x80", 4, true, 0x1F600},
            {"\xc0\xaf", 1, false, 0xC0},          // overlong '/'
            {"\xe0\x80\xaf", 1, false, 0xE0},      // overlong, three bytes
            {"\xed\xa0\x80", 1, false, 0xED},      // a surrogate
            {"\xf4\x90\x80\x80", 1, false, 0xF4}, // above U+10FFFF
            {"\xe2\x82", 1, false, 0xE2},          // cut short
            {"\x80", 1, false, 0x80},              // a lone continuation byte
            {"\xff", 1, false, 0xFF},
        };
        for (const Case& c : cases) {
            const auto* p = reinterpret_cast<const unsigned char*>(c.bytes.constData());
            char32_t cp;
            bool valid;
            QCOMPARE(decodeUtf8(p, p + c.bytes.size(), &cp, &valid), c.len);
            QCOMPARE(valid, c.valid);
            QCOMPARE(uint(cp), uint(c.cp));
        }
        QCOMPARE(codePointWidth(0x65E5), 2);   // CJK
        QCOMPARE(codePointWidth(0x0301), 0);   // combining acute
        QCOMPARE(codePointWidth('a'), 1);
    }

    void columnsOfLongLinesAgreeWithAPlainWalk() {
        // A line of 200 KB with tabs, multi-byte, wide and invalid characters.
        QRandomGenerator g(7);
        const char* pieces[] = {"a", "bc", "\t", "\xc3\xa9", "\xe6\x97\xa5", "\xff", "\xcc\x81", " "};
        QByteArray line;
        while (line.size() < 200000) line += pieces[g.bounded(8)];
        auto src = TextSource::fromBytes(line, QStringLiteral("x"));
        // Plain walk: column of every cell start.
        std::vector<int64_t> colOfByte(size_t(line.size()) + 1, -1);
        std::vector<Cell> cells;
        int64_t b = 0, col = 0;
        while (b < line.size()) {
            const Cell c = cellAt(*src, b, line.size(), col, 4);
            for (int k = 0; k < c.len; ++k) colOfByte[size_t(b + k)] = col;
            cells.push_back(c);
            b += c.len;
            col += c.width;
        }
        colOfByte[size_t(line.size())] = col;
        ColumnMapper m(4);
        int64_t total, lastCol;
        // Queries deep in the line first, then earlier ones: checkpoints are made on
        // the way and later walks start from them.
        for (int64_t pos : {int64_t(150000), int64_t(199999), int64_t(17), int64_t(100001), int64_t(65536), int64_t(3)})
            QCOMPARE(m.colAtByte(*src, 0, line.size(), pos), colOfByte[size_t(pos)]);
        for (int i = 0; i < 300; ++i) {
            size_t k = size_t(g.bounded(int(cells.size())));
            while (k > 0 && cells[k - 1].col == cells[k].col) --k;   // the first cell at that column
            const int64_t c = cells[k].col;
            int64_t cellCol;
            QCOMPARE(m.byteAtOrAfterCol(*src, 0, line.size(), c, &cellCol), cells[k].byte);
            QCOMPARE(cellCol, c);
            // The cell that covers the column is the first one there with a width.
            while (cells[k].width == 0) ++k;
            QCOMPARE(m.byteAtCol(*src, 0, line.size(), c), cells[k].byte);
            if (cells[k].width > 1) QCOMPARE(m.byteAtCol(*src, 0, line.size(), c + 1), cells[k].byte);
        }
        m.extent(*src, 0, line.size(), &total, &lastCol);
        QCOMPARE(total, col);
        QCOMPARE(lastCol, cells.back().col);
    }

    void scrollBarFollowsLinesThenBytes() {
        QByteArray text;
        for (int i = 0; i < 1000; ++i) text += "line " + QByteArray::number(i) + "\n";
        auto v = makeView(text, QSize(400, 200));
        QScrollBar* bar = v->verticalScrollBar();
        // Indexed and not wrapped: the bar counts lines.
        QCOMPARE(bar->maximum(), 1000 - v->fullyVisibleRows());
        bar->setValue(500);
        QCOMPARE(v->firstVisibleLine(), int64_t(500));
        QCOMPARE(v->visibleRowTexts().value(0), QStringLiteral("line 500"));
        v->scrollRows(-3);
        QCOMPARE(bar->value(), 497);
        // Wrapped: the bar follows bytes; its end shows the last line at the bottom.
        v->set_wrap(true);
        bar->setValue(bar->maximum());
        QCOMPARE(v->visibleRowTexts().value(v->fullyVisibleRows() - 1), QStringLiteral("line 999"));
        bar->setValue(bar->maximum() / 2);
        const int64_t mid = v->firstVisibleLine();
        QVERIFY(mid > 450 && mid < 550);
        // Scrolling never goes past the last screen.
        v->scrollRows(100000);
        QCOMPARE(v->firstVisibleLine(), int64_t(1000 - v->fullyVisibleRows()));
    }

    void wrappedRowsAndKeys() {
        const QByteArray text = QByteArray(95, 'x') + "\nshort\n";
        auto v = makeView(text, QSize(300, 200));
        v->set_ruler(false);
        v->set_wrap(true);
        const QStringList rows = v->visibleRowTexts();
        const int w = rows[0].size();
        QVERIFY(w > 5 && w < 95);
        const int wrapped = (95 + w - 1) / w;
        QCOMPARE(rows[wrapped], QStringLiteral("short"));
        QCOMPARE(rows[wrapped - 1].size(), 95 - (wrapped - 1) * w);
        v->setFocus();
        v->setCaretPos(2);
        QTest::keyClick(v.get(), Qt::Key_Down);   // to the next row of the same line
        QCOMPARE(v->caretPos(), int64_t(w + 2));
        QTest::keyClick(v.get(), Qt::Key_Home);   // start of that row
        QCOMPARE(v->caretPos(), int64_t(w));
        for (int i = 0; i < wrapped; ++i) QTest::keyClick(v.get(), Qt::Key_Down);
        QCOMPARE(v->positionOfByte(v->caretPos()).line, int64_t(1));
    }

    void statusLineFollowsHitsAndScrollingKeepsLineStart() {
        // Three hits: one far right on a long line, two near the start of short lines.
        QByteArray text;
        for (int i = 0; i < 40; ++i) text += "line " + QByteArray::number(i) + "\n";
        const int64_t far = text.size() + 300;
        text += QByteArray(300, 'x') + "needle" + QByteArray(300, 'y') + "\n";
        const int64_t nearA = text.size() + 30;
        text += QByteArray(30, 'a') + "needle tail\n";
        const int64_t nearB = text.size() + 2;
        text += "  needle\n";
        auto v = makeView(text, QSize(400, 200));
        v->set_line_info_pos(LINE_INFO_TOP_RIGHT);
        QWidget* status = v->statusLine();
        QVERIFY(status->isVisible());
        // Under the text, never over it.
        QVERIFY(!status->geometry().intersects(v->viewport()->geometry()));
        QVERIFY(status->geometry().top() > v->viewport()->geometry().top());
        v->setCaretPos(0);
        v->viewport()->repaint();
        QCOMPARE(v->statusText(), QStringLiteral("Line 1  Col 1  Byte 0"));

        find::XRamLayer* l = v->layers().add_layer(1000, 1);
        for (int64_t at : {far, nearA, nearB}) l->add_mark(XRam(at, 6));
        l->set_active_mark_index(0);
        v->set_active_layer(l);
        v->scrollToRam(l->at(0));
        v->viewport()->repaint();
        QCOMPARE(v->statusText(), QStringLiteral("Hit 1/3:  Line 41  Col 301  Byte %1").arg(far));
        // The far hit cannot sit beside the line start: it is centred.
        const int cols = v->horizontalScrollColumn();
        QVERIFY(cols > 0 && cols < 300);
        QVERIFY(v->visibleRowTexts().join(QString()).contains(QStringLiteral("needle")));
        // F3 / N step on; a hit that fits beside its line start brings the start back into view.
        v->setFocus();
        QTest::keyClick(v.get(), Qt::Key_F3);
        v->viewport()->repaint();
        QVERIFY2(v->statusText().startsWith(QStringLiteral("Hit 2/3:  Line 42  Col 31")), qPrintable(v->statusText()));
        QCOMPARE(v->horizontalScrollColumn(), 0);
        QTest::keyClick(v.get(), Qt::Key_N);
        v->viewport()->repaint();
        QVERIFY(v->statusText().startsWith(QStringLiteral("Hit 3/3:  Line 43  Col 3")));
        QTest::keyClick(v.get(), Qt::Key_F3, Qt::ShiftModifier);
        QTest::keyClick(v.get(), Qt::Key_N, Qt::ShiftModifier);
        v->viewport()->repaint();
        QVERIFY(v->statusText().startsWith(QStringLiteral("Hit 1/3:")));
        QVERIFY(v->horizontalScrollColumn() > 0);
        // Moving the cursor makes the line follow the cursor again.
        v->setCaretPos(7);
        QCOMPARE(v->statusText(), QStringLiteral("Line 2  Col 1  Byte 7"));
        // Off: no line and the text gets the whole height.
        const int withLine = v->viewport()->height();
        v->set_line_info_pos(LINE_INFO_OFF);
        QVERIFY(!status->isVisible());
        QVERIFY(v->viewport()->height() > withLine);
    }

    void aFileTruncatedWhileShownIsOpenedAgain() {
        // Log rotation may cut a file that is mapped; reading the lost pages would
        // end the process, so the views open such a file again first.
        tftest::TestDir dir;
        QByteArray text;
        for (int i = 0; i < 20000; ++i) text += "entry " + QByteArray::number(i) + " of the log\n";
        const QString path = dir.file(QStringLiteral("rotated.log"), text);
        XTextView v;
        v.setFont(testFont());
        v.resize(400, 200);
        v.show();
        QVERIFY(v.openFile(path));
        v.scrollToEnd();
        v.viewport()->grab();
        v.setSelection(text.size() - 4000, text.size());
        {
            QFile f(path);
            QVERIFY(f.open(QIODevice::ReadWrite));
            QVERIFY(f.resize(100));
        }
        // Copying a selection or a mark's text before the next paint reads the
        // file itself, not the lost pages.
        QVERIFY(v.selectedText().isEmpty());
        QCOMPARE(v.textFromMarkRam(tav::find::XRam(0, 7)), QStringLiteral("entry 0"));
        QVERIFY(v.textFromMarkRam(tav::find::XRam(text.size() - 100, 20)).isEmpty());
        const QImage img = v.viewport()->grab().toImage();   // would crash reading past the new end
        QVERIFY(!img.isNull());
        QCOMPARE(v.size(), int64_t(100));
        QCOMPARE(v.visibleRowTexts().value(0), QStringLiteral("entry 0 of the log"));

        tav::XHexView hex;
        hex.resize(400, 200);
        hex.show();
        QVERIFY(hex.openFile(path));
        hex.scrollToEnd();
        {
            QFile f(path);
            QVERIFY(f.open(QIODevice::ReadWrite));
            QVERIFY(f.resize(10));
        }
        hex.viewport()->grab();
        QCOMPARE(hex.size(), int64_t(10));
    }

    void unreadableInputsFailCleanly() {
        XTextView v;
        QVERIFY(!v.openFile(QStringLiteral("/nonexistent/file.txt")));
        QVERIFY(!v.hasContent());
        QVERIFY(!v.errorString().isEmpty());
        QVERIFY(!v.openFile(QDir::tempPath()));   // a directory
        tftest::TestDir dir;
        const QString empty = dir.file(QStringLiteral("empty.txt"));
        QVERIFY(v.openFile(empty));
        v.resize(300, 100);
        QCOMPARE(v.visibleRowTexts(), QStringList{QString()});
        v.scrollToEnd();
        v.scrollRows(5);
        QCOMPARE(v.positionOfByte(0).line, int64_t(0));
        v.closeFile();
        QVERIFY(!v.hasContent());
    }
};

QTEST_MAIN(TestTextView)
#include "test_textview.moc"
