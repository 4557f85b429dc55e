// The framework previews: hex view of a file far larger than memory, pictures
// with EXIF orientation and hostile sizes, XML trees and their bounds, the
// common preview interface, MIME types and thumbnails.
#include "common/TestEnv.h"

#include "base/text/TextFiles.h"
#include "gui/previews/PreviewAscii.h"
#include "gui/previews/PreviewHex.h"
#include "gui/previews/PreviewImage.h"
#include "gui/previews/PreviewXml.h"
#include "gui/previews/XHexView.h"
#include "gui/previews/XMimeType.h"
#include "gui/previews/XThumb.h"
#include "gui/previews/XView2D.h"
#include "gui/viewText/XTextView.h"

#include "base/node/XNode.h"

#include <QBuffer>
#include <QScrollBar>
#include <thread>
#include <QImageReader>
#include <QTreeWidget>
#include <QtTest>

using namespace tav;

namespace {

QByteArray jpegWithOrientation(int w, int h, quint8 orientation) {
    QImage img(w, h, QImage::Format_RGB32);
    img.fill(Qt::red);
    QByteArray jpg;
    QBuffer b(&jpg);
    b.open(QIODevice::WriteOnly);
    img.save(&b, "JPG");
    // An APP1 segment with one EXIF entry: Orientation (0x0112), SHORT, 1 value.
    const char exif[] = "\xFF\xE1\x00\x22"
                        "Exif\x00\x00"
                        "MM\x00\x2A\x00\x00\x00\x08"
                        "\x00\x01"
                        "\x01\x12\x00\x03\x00\x00\x00\x01\x00\x00\x00\x00"
                        "\x00\x00\x00\x00";
    QByteArray seg(exif, int(sizeof(exif) - 1));
    seg[4 + 6 + 8 + 2 + 9] = char(orientation);
    jpg.insert(2, seg);
    return jpg;
}

QByteArray pngHeaderClaiming(quint32 w, quint32 h) {
    // A PNG signature and an IHDR chunk that promise a huge picture, and nothing else.
    QByteArray d("\x89PNG\r\n\x1a\n", 8);
    QByteArray ihdr("IHDR");
    for (quint32 v : {w, h}) {
        for (int s = 24; s >= 0; s -= 8) ihdr += char((v >> s) & 0xFF);
    }
    ihdr += QByteArray("\x08\x06\x00\x00\x00", 5);
    d += QByteArray("\x00\x00\x00\x0d", 4) + ihdr + QByteArray("\x00\x00\x00\x00", 4);
    return d;
}

} // namespace

class TestPreviews : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

private slots:
    void hexViewOfFileLargerThanMemory() {
        tftest::TestDir d;
        const QString path = d.abs(QStringLiteral("huge.bin"));
        const qint64 size = 6LL * 1024 * 1024 * 1024 + 5;   // sparse: takes no disk space
        {
            QFile f(path);
            QVERIFY(f.open(QIODevice::WriteOnly));
            QVERIFY(f.resize(size));
            QVERIFY(f.seek(size - 5));
            f.write("TAIL!");
        }
        PreviewHex hex;
        hex.ini();
        XHexView* v = hex.hex_view();
        v->resize(700, 300);
        v->show();
        QVERIFY(hex.open_file(QFileInfo(path)));
        QCOMPARE(v->rowCount(), (size + 15) / 16);
        QVERIFY(v->rowText(0).startsWith(QStringLiteral("000000000000  00 00")));   // 12 offset digits above 4 GiB
        v->scrollToEnd();
        QCOMPARE(v->topRow() + v->visibleRows(), v->rowCount());
        QVERIFY(v->rowText(v->rowCount() - 1).endsWith(QStringLiteral("TAIL!")));
        QVERIFY(v->rowText(v->rowCount() - 1).startsWith(QStringLiteral("000180000000  54 41 49 4C 21")));
        QVERIFY(v->verticalScrollBar()->maximum() > 0);
        QCOMPARE(v->verticalScrollBar()->value(), v->verticalScrollBar()->maximum());
        // The scroll bar reaches the middle of the file.
        v->verticalScrollBar()->setValue(v->verticalScrollBar()->maximum() / 2);
        QVERIFY(std::abs(double(v->topRow()) / double(v->rowCount()) - 0.5) < 0.01);
        v->setCaretPos(size - 5);
        v->setCaretPos(size - 1, true);
        QCOMPARE(v->selectedHex(), QStringLiteral("54 41 49 4C 21"));
        QCOMPARE(v->selectedText(), QStringLiteral("TAIL!"));
        QCOMPARE(Preview::open_counter(), 1);
        hex.close_preview();
        QCOMPARE(Preview::open_counter(), 0);
        QVERIFY(!v->hasContent());
    }

    void hexViewMarksHitsAndStepsThroughThem() {
        // Hits far apart in a file of many rows: each step brings its row into view.
        QByteArray bytes(64 * 1024, '\0');
        const std::vector<std::pair<int64_t, int64_t>> hits{{40000, 6}, {100, 6}, {63000, 3}};
        for (auto [at, len] : hits) bytes.replace(int(at), int(len), QByteArray(int(len), 'x'));
        PreviewHex hex;
        hex.ini();
        XHexView* v = hex.hex_view();
        v->resize(600, 300);
        v->show();
        QVERIFY(hex.set_mem_file(XMemFile{QStringLiteral("hits.bin"), bytes}));
        v->setMarks(hits, QColor(0, 255, 0));
        QCOMPARE(v->markCount(), 3);
        QVERIFY(v->setActiveMark(0));
        QCOMPARE(v->caretPos(), int64_t(100));   // sorted by offset
        auto rowShown = [v](int64_t at) { return at / 16 >= v->topRow() && at / 16 < v->topRow() + v->visibleRows(); };
        QVERIFY(rowShown(100));
        // A marked byte is painted in the mark colour (its hex cell, away from the glyphs).
        const QImage img = v->viewport()->grab().toImage();
        const int y = int((100 / 16 - v->topRow()) * (img.height() / std::max(1, v->visibleRows()))) + 2;
        bool green = false;
        for (int x = 0; x < img.width() && !green; ++x) green = QColor(img.pixel(x, y)).green() > 150 && QColor(img.pixel(x, y)).red() < 100;
        QVERIFY(green);
        v->setFocus();
        QTest::keyClick(v, Qt::Key_N);
        QCOMPARE(v->activeMark(), 1);
        QCOMPARE(v->caretPos(), int64_t(40000));
        QVERIFY(rowShown(40000));
        QTest::keyClick(v, Qt::Key_F3);
        QVERIFY(rowShown(63000));
        QTest::keyClick(v, Qt::Key_F3);
        QCOMPARE(v->activeMark(), 0);   // past the last hit: the first again
        QTest::keyClick(v, Qt::Key_N, Qt::ShiftModifier);
        QCOMPARE(v->activeMark(), 2);
        QVERIFY(!v->setActiveMark(3));
        // Another file starts without marks.
        QVERIFY(hex.set_mem_file(XMemFile{QStringLiteral("other.bin"), QByteArray(100, 'a')}));
        QCOMPARE(v->markCount(), 0);
        QVERIFY(!v->moveActiveMark(true));
    }

    void hexViewBasics() {
        tftest::TestDir d;
        PreviewHex hex;
        const QString svg = d.file(QStringLiteral("pic.svg"),
                                   "<svg xmlns='http://www.w3.org/2000/svg' width='10' height='10'>"
                                   "<rect width='10' height='10' fill='#ff0000'/></svg>");
        hex.set_svg_default_image(svg);
        hex.set_font_size(11);
        hex.ini();
        XHexView* v = hex.hex_view();
        QVERIFY(v->hasDefaultImage());
        v->resize(400, 300);
        // Nothing open: the default picture is painted in the middle.
        const QImage empty = v->viewport()->grab().toImage();
        QCOMPARE(QColor(empty.pixel(empty.width() / 2, empty.height() / 2)), QColor(255, 0, 0));
        // set_font keeps the hex font size; the family follows.
        QFont f(QStringLiteral("DejaVu Sans Mono"));
        f.setPointSize(30);
        hex.set_font(f);
        QCOMPARE(hex.get_font().pointSize(), 11);
        QCOMPARE(hex.font_size(), 11);
        QVERIFY(hex.set_mem_file(XMemFile{QStringLiteral("m.bin"), QByteArray("Hello, hex\x00\x01\xff world!", 20)}));
        QCOMPARE(v->rowText(0), QStringLiteral("00000000  48 65 6C 6C 6F 2C 20 68  65 78 00 01 FF 20 77 6F  Hello, hex... wo"));
        QCOMPARE(v->rowText(1).left(31), QStringLiteral("00000010  72 6C 64 21          "));
        QVERIFY(hex.can_handle_file(QFileInfo(svg)));
        QVERIFY(hex.get_file_extensions().count(QStringLiteral("bin")));
        QVERIFY(hex.is_hex() && !hex.is_image() && !hex.is_xml());
        int activated = 0;
        hex.eventPreview().add([&](Preview* p) {
            QCOMPARE(p, static_cast<Preview*>(&hex));
            ++activated;
        });
        QTest::keyClick(v, Qt::Key_Return);
        QCOMPARE(activated, 1);
    }

    void imagesUprightAndBounded() {
        tftest::TestDir d;
        PreviewImage img;
        img.ini();
        img.img_view()->resize(400, 400);
        // EXIF orientation 6: stored 40 x 20, shown 20 x 40.
        const QString rotated = d.file(QStringLiteral("r.jpg"), jpegWithOrientation(40, 20, 6));
        QVERIFY(img.open_file(QFileInfo(rotated)));
        QTRY_VERIFY(!img.isLoading());
        QCOMPARE(img.img_view()->image().size(), QSize(20, 40));
        QCOMPARE(img.img_view()->zoom(), 1.0);   // small pictures are not enlarged to fit
        img.img_view()->on_zoom(true, 2);
        QVERIFY(std::abs(img.img_view()->zoom() - 1.5625) < 1e-9);
        img.img_view()->on_zoom(false, 1);
        QVERIFY(std::abs(img.img_view()->zoom() - 1.25) < 1e-9);
        // A header that promises 30000 x 30000 pixels is not decoded in full.
        const QString hostile = d.file(QStringLiteral("h.png"), pngHeaderClaiming(30000, 30000));
        img.open_file(QFileInfo(hostile));
        QTRY_VERIFY(!img.isLoading());
        QVERIFY(img.img_view()->image().isNull());
        QVERIFY(!img.img_view()->message().isEmpty());
        // Not a picture at all.
        QVERIFY(!img.open_file(QFileInfo(d.file(QStringLiteral("x.png"), "not a png"))));
        QVERIFY(!img.can_handle_file(QFileInfo(d.abs(QStringLiteral("x.png")))));
        QVERIFY(img.can_handle_file(QFileInfo(rotated)));
        // A load cancelled before it finished never shows.
        img.open_file(QFileInfo(rotated));
        img.cancel_loading();
        QTest::qWait(200);
        QVERIFY(img.img_view()->image().isNull());
        QCOMPARE(Preview::open_counter(), 0);
        QVERIFY(img.is_image() && img.get_file_extensions().count(QStringLiteral("jpg")));
    }

    void xmlTreesErrorsAndBounds() {
        tftest::TestDir d;
        PreviewXml xml;
        xml.ini();
        const QString good = d.file(QStringLiteral("a.xml"),
                                    "<?xml version='1.0'?>\n<root id='7'>\n  <item name='x'>text</item>\n"
                                    "  <item/>\n  <mixed>one<b>two</b>three</mixed>\n</root>\n");
        QVERIFY(xml.open_file(QFileInfo(good)));
        QTreeWidget* t = xml.tree();
        QCOMPARE(t->topLevelItemCount(), 1);
        QTreeWidgetItem* root = t->topLevelItem(0);
        QCOMPARE(root->text(0), QStringLiteral("root id=\"7\""));
        QCOMPARE(root->childCount(), 3);
        QCOMPARE(root->child(0)->text(0), QStringLiteral("item name=\"x\""));
        QCOMPARE(root->child(0)->text(1), QStringLiteral("text"));
        QTreeWidgetItem* mixed = root->child(2);
        QCOMPARE(mixed->text(1), QStringLiteral("one"));
        QCOMPARE(mixed->child(0)->text(0), QStringLiteral("b"));
        QCOMPARE(mixed->child(1)->text(1), QStringLiteral("three"));

        const QString bad = d.file(QStringLiteral("b.xml"), "<root><a></b></root>");
        QVERIFY(!xml.open_file(QFileInfo(bad)));
        QVERIFY(xml.lastError().contains(QStringLiteral("1:")));
        QVERIFY(!xml.open_file(QFileInfo(d.file(QStringLiteral("c.xml"), "just text"))));

        QByteArray many("<r>");
        for (int i = 0; i < 5000; ++i) many += "<e>" + QByteArray::number(i) + "</e>";
        many += "</r>";
        xml.set_limits(1000, 1 << 30);
        QVERIFY(xml.open_file(QFileInfo(d.file(QStringLiteral("many.xml"), many))));
        QVERIFY(xml.wasTruncated());
        QVERIFY(xml.tree()->topLevelItem(0)->childCount() < 1000);
        QCOMPARE(xml.tree()->topLevelItemCount(), 2);   // the tree and the note that it was cut

        QVERIFY(xml.can_handle_file(QFileInfo(good)));
        QVERIFY(xml.can_handle_file(QFileInfo(d.file(QStringLiteral("app.config"), "\xEF\xBB\xBF<?xml version='1.0'?><c/>"))));
        QVERIFY(!xml.can_handle_file(QFileInfo(d.file(QStringLiteral("page.html"), "<html></html>"))));
        QCOMPARE(Preview::open_counter(), 0);
    }

    void commonInterface() {
        tftest::TestDir d;
        PreviewAscii asc;
        // The extension list is the framework's text list, joined in sorted order.
        QCOMPARE(int(asc.get_file_extensions().size()), default_text_file_extensions().size());
        const QStringList joined = asc.file_extentions_as_string().split(QLatin1Char(','));
        QVERIFY(std::is_sorted(joined.begin(), joined.end()));
        QCOMPARE(joined.size(), default_text_file_extensions().size());
        QVERIFY(asc.get_XTextView() == nullptr);   // no widgets before ini()
        asc.set_ruler(false);
        asc.set_wrap(true);
        asc.set_line_info_pos(LINE_INFO_BOTTOM_RIGHT);
        asc.ini();
        viewText::XTextView* v = asc.get_XTextView();
        QVERIFY(v && !v->ruler() && v->wrap());
        QCOMPARE(v->line_info_pos(), LINE_INFO_BOTTOM_RIGHT);
        QCOMPARE(asc.widget_preview(), static_cast<QWidget*>(v));

        const QString txt = d.file(QStringLiteral("noext"), "line one\nline two\n");
        QVERIFY(asc.can_handle_file(QFileInfo(txt)));                   // no extension, but text
        QVERIFY(!asc.can_handle_file(QFileInfo(d.file(QStringLiteral("b"), QByteArray("\0\1", 2)))));
        QVERIFY(asc.open_file(QFileInfo(txt)));
        QCOMPARE(Preview::open_counter(), 1);
        QCOMPARE(asc.file_info().fileName(), QStringLiteral("noext"));
        QVERIFY(!asc.open_file(QFileInfo(d.abs(QStringLiteral("gone.txt")))));
        QCOMPARE(Preview::open_counter(), 0);
        asc.open_file(QFileInfo(txt));

        // Settings go to the node given by from_node and come back.
        auto node = XNode::createRoot(QStringLiteral("PreviewAscii"));
        asc.from_node(node.get());
        asc.set_auto_wrap(true);
        asc.to_node();
        PreviewAscii other;
        other.from_node(node.get());
        other.ini();
        QVERIFY(other.get_XTextView()->autoWrap());
        QVERIFY(other.get_XTextView()->wrap());
        QVERIFY(!other.get_XTextView()->ruler());

        // The layer-changed event and the preview event reach the preview's listeners.
        QList<int> layers;
        asc.eventLayerChanged().add([&](int id) { layers << id; });
        v->layers().add_layer(1001, 1)->add_mark(find::XRam(0, 4));
        v->resize(300, 200);
        v->show();
        QTest::mouseClick(v->viewport(), Qt::LeftButton, {}, v->cellRect(1).center());
        QCOMPARE(layers, QList<int>{1001});
        int events = 0;
        asc.eventPreview().add([&](Preview*) { ++events; });
        QTest::keyClick(v, Qt::Key_Enter);
        QCOMPARE(events, 1);
        asc.close_preview();
        QCOMPARE(Preview::open_counter(), 0);
        QVERIFY(!v->hasContent());
    }

    void mimeTypesAndThumbnails() {
        tftest::TestDir d;
        QImage red(300, 150, QImage::Format_RGB32);
        red.fill(Qt::red);
        const QString png = d.abs(QStringLiteral("pic.png"));
        QVERIFY(red.save(png));
        const QString noExt = d.abs(QStringLiteral("picture"));
        QVERIFY(red.save(noExt, "PNG"));
        const QString txt = d.file(QStringLiteral("t.cpp"), "int main() {}\n");
        QVERIFY(XMimeType::fromFile(QFileInfo(png)).isQtImage());
        QVERIFY(XMimeType::fromFile(QFileInfo(noExt)).isQtImage());   // by content
        QVERIFY(!XMimeType::fromFile(QFileInfo(txt)).isQtImage());
        QVERIFY(XMimeType::fromFile(QFileInfo(txt)).isText());

        XThumb thumb;
        int ready = 0;
        thumb.eventReady().add([&]() { ++ready; });
        thumb.set_file(png, 64);
        QVERIFY(thumb.is_ini());
        std::thread worker([job = thumb.job()]() { job->work(); });
        worker.join();
        QVERIFY(!thumb.is_ini());
        QCOMPARE(thumb.get_real_size(), QSize(300, 150));
        QCOMPARE(thumb.image().size(), QSize(64, 32));
        QTRY_COMPARE(ready, 1);
        thumb.work();   // a second work changes nothing
        QCOMPARE(thumb.image().size(), QSize(64, 32));

        thumb.set_file(txt, 64);   // not a picture: a drawn page, no real size
        thumb.work();
        QVERIFY(!thumb.image().isNull());
        QVERIFY(!thumb.get_real_size().isValid());
        thumb.set_file(d.path(), 64);
        thumb.work();
        QCOMPARE(thumb.image().size(), QSize(64, 64));

        // A worker that finishes after the widget is gone does no harm.
        auto t = std::make_unique<XThumb>();
        t->set_file(png, 32);
        auto job = t->job();
        t.reset();
        job->work();
        QTest::qWait(50);
        QVERIFY(!job->is_ini());
    }
};

QTEST_MAIN(TestPreviews)
#include "test_previews.moc"
