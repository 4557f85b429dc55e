// The preview container and its selection contexts with real previews: which
// previews may show a file, what shift and control do, cycling and choosing by
// name, the extension table, the copy-to-search entry and saved settings.
#include "common/TestEnv.h"

#include "base/node/XNode.h"
#include "gui/previews/PreviewAscii.h"
#include "gui/previews/PreviewHex.h"
#include "gui/previews/PreviewImage.h"
#include "gui/previews/PreviewXml.h"
#include "gui/previews/XHexView.h"
#include "gui/tools/XDragOut.h"
#include "gui/tools/XTools.h"
#include "gui/viewText/XTextView.h"
#include "gui/widgets/XMenu.h"
#include "src/dir/ContextPreviews.h"
#include "src/dir/PreviewDir.h"
#include "src/dir/XContainerPreviews.h"

#include <QImage>
#include <QElapsedTimer>
#include <QtTest>

using namespace tavFinder;

namespace {
template <typename T>
tav::Preview* ofKind(XContainerPreviews& c) {
    for (tav::Preview* p : c.distinctPreviews())
        if (dynamic_cast<T*>(p)) return p;
    return nullptr;
}
QSet<QString> types(const std::vector<tav::Preview*>& ps) {
    QSet<QString> s;
    for (tav::Preview* p : ps) s << p->type();
    return s;
}
}

class TestContainer : public QObject {
    Q_OBJECT
    tftest::TestEnv env;
    tftest::TestDir dir;
    QString noExt, cpp, xml, png, bin, cppUpper;

    struct Setup {
        QWidget source;
        XContainerPreviews container;
        ContextPreviews context{QStringLiteral("CONTEXT-TEST")};
        Setup() {
            container.addStandardPreviews();
            container.resize(600, 400);
            context.ini(&source, &container);
        }
    };

private slots:
    void initTestCase() {
        noExt = dir.file(QStringLiteral("README"), "plain text without an extension\n");
        cpp = dir.file(QStringLiteral("main.cpp"), "int main() { return 0; }\n");
        cppUpper = dir.file(QStringLiteral("OLD.CPP"), "int x;\n");
        xml = dir.file(QStringLiteral("data.xml"), "<?xml version='1.0'?><r><a/></r>");
        bin = dir.file(QStringLiteral("blob.bin"), QByteArray("\0\1\2\3", 4));
        QImage img(20, 10, QImage::Format_RGB32);
        img.fill(Qt::blue);
        png = dir.abs(QStringLiteral("pic.png"));
        QVERIFY(img.save(png));
        tav::XTools::set_modifier(0);
    }

    void candidatesFollowTheKindOfFile() {
        Setup s;
        s.context.select_file(QFileInfo(noExt));
        QCOMPARE(types(s.context.candidates()), (QSet<QString>{"PreviewHex", "PreviewAscii"}));
        // A file without a known extension that looks like text opens as text.
        QCOMPARE(ContextPreviews::currentPreview(), s.container.textPreview());
        QCOMPARE(s.container.currentWidget(), s.container.textPreview()->widget_preview());

        // A file that is slow to answer (a hung share) does not hold the GUI thread: it shows
        // as bytes at once and as text when its first bytes have come.
        const QString slow = dir.file(QStringLiteral("SLOWREADME"), "plain words\n");
        auto& sniffer = ContextPreviews::textSniffer();
        const auto quick = sniffer;
        sniffer = [quick](const QFileInfo& fi) {
            QThread::msleep(400);
            return quick(fi);
        };
        QElapsedTimer t;
        t.start();
        s.context.select_file(QFileInfo(slow));
        QVERIFY2(t.elapsed() < 300, qPrintable(QString::number(t.elapsed())));
        QCOMPARE(ContextPreviews::currentPreview()->type(), QStringLiteral("PreviewHex"));
        QTRY_COMPARE(ContextPreviews::currentPreview(), s.container.textPreview());
        sniffer = quick;

        s.context.select_file(QFileInfo(cpp));
        QCOMPARE(types(s.context.candidates()), (QSet<QString>{"PreviewHex", "PreviewAscii"}));   // no XML for sources
        QCOMPARE(ContextPreviews::currentPreview()->type(), QStringLiteral("PreviewAscii"));
        // The source-text list is looked up with the extension as written: "CPP" is not in it.
        s.context.select_file(QFileInfo(cppUpper));
        QCOMPARE(types(s.context.candidates()), (QSet<QString>{"PreviewHex", "PreviewAscii", "PreviewXml"}));
        QCOMPARE(ContextPreviews::currentPreview()->type(), QStringLiteral("PreviewAscii"));   // table lookup lower-cased

        s.context.select_file(QFileInfo(xml));
        QCOMPARE(types(s.context.candidates()), (QSet<QString>{"PreviewHex", "PreviewAscii", "PreviewXml"}));
        QCOMPARE(ContextPreviews::currentPreview()->type(), QStringLiteral("PreviewXml"));

        s.context.select_file(QFileInfo(png));
        QCOMPARE(types(s.context.candidates()), (QSet<QString>{"PreviewHex", "PreviewImage"}));
        QCOMPARE(ContextPreviews::currentPreview()->type(), QStringLiteral("PreviewImage"));
        // The index points at the chosen preview among the candidates, in identity order.
        QCOMPARE(s.context.candidates()[size_t(s.context.currentIndex())]->type(), QStringLiteral("PreviewImage"));
        std::vector<tav::Preview*> sorted = s.context.candidates();
        QVERIFY(std::is_sorted(sorted.begin(), sorted.end()));

        s.context.select_file(QFileInfo(bin));
        QCOMPARE(ContextPreviews::currentPreview()->type(), QStringLiteral("PreviewHex"));
        // A folder goes to the directory preview and builds no candidates.
        s.context.select_file(QFileInfo(dir.path()));
        QVERIFY(s.context.candidates().empty());
        QCOMPARE(ContextPreviews::currentPreview(), static_cast<tav::Preview*>(s.container.previewDirectory()));
    }

    void shiftAndControlWhileSelecting() {
        Setup s;
        tav::XTools::set_modifier(Qt::ShiftModifier);
        s.context.select_file(QFileInfo(xml));
        QCOMPARE(ContextPreviews::currentPreview()->type(), QStringLiteral("PreviewAscii"));
        QCOMPARE(s.container.currentWidget(), s.container.textPreview()->widget_preview());
        // The candidate index still names the XML preview.
        QCOMPARE(s.context.candidates()[size_t(s.context.currentIndex())]->type(), QStringLiteral("PreviewXml"));
        s.context.select_file(QFileInfo(bin));
        QCOMPARE(ContextPreviews::currentPreview()->type(), QStringLiteral("PreviewAscii"));
        s.context.select_file(QFileInfo(png));   // shift does not turn pictures into text
        QCOMPARE(ContextPreviews::currentPreview()->type(), QStringLiteral("PreviewImage"));

        // Control held while selecting is an ordinary selection: no drag.
        tav::XTools::set_modifier(Qt::ControlModifier);
        tftest::LogCapture logs;
        const int drags = tav::XDragOut::started();
        s.context.select_file(QFileInfo(cpp));
        QVERIFY(!logs.contains(QStringLiteral("XTools::drop_file")));
        QCOMPARE(tav::XDragOut::started(), drags);
        QCOMPARE(s.context.currentFile().fileName(), QFileInfo(cpp).fileName());
        QCOMPARE(ContextPreviews::currentPreview()->type(), QStringLiteral("PreviewAscii"));
        tav::XTools::set_modifier(0);
    }

    void cyclingAndChoosingByName() {
        Setup s;
        tftest::LogCapture logs;
        s.context.cycle_previews();   // before any selection: nothing
        QCOMPARE(s.context.currentIndex(), -1);
        QVERIFY(!logs.contains(QStringLiteral("cycle_previews, preview")));

        s.context.select_file(QFileInfo(xml));
        tav::Preview* current = ContextPreviews::currentPreview();
        const int start = s.context.currentIndex();
        const int n = int(s.context.candidates().size());
        QStringList seen;
        for (int i = 0; i < n; ++i) {
            s.context.cycle_previews();
            QCOMPARE(s.context.currentIndex(), (start + i + 1) % n);
            tav::Preview* p = s.context.candidates()[size_t(s.context.currentIndex())];
            QCOMPARE(s.container.currentWidget(), p->widget_preview());
            seen << p->type();
        }
        QCOMPARE(seen.last(), QStringLiteral("PreviewXml"));   // round trip
        QCOMPARE(ContextPreviews::currentPreview(), current);  // cycling leaves the current preview

        s.context.set_preview(QStringLiteral("PreviewHex"));
        QCOMPARE(s.container.currentWidget(), s.container.hexPreview()->widget_preview());
        QCOMPARE(s.context.currentIndex(), start);   // choosing by name keeps the index
        QWidget* shown = s.container.currentWidget();
        s.context.set_preview(QStringLiteral("PreviewImage"));   // no candidate of that name
        QCOMPARE(s.container.currentWidget(), shown);

        // A file that vanished is only logged.
        const QString gone = dir.file(QStringLiteral("gone.txt"), "x");
        s.context.select_file(QFileInfo(gone));
        QFile::remove(gone);
        logs.clear();
        s.context.cycle_previews();
        QVERIFY(logs.contains(QStringLiteral("cycle_previews, <<<") + QFileInfo(gone).absoluteFilePath() + QStringLiteral(">>> 404")));
        s.context.select_file(QFileInfo(dir.path()));
        logs.clear();
        s.context.cycle_previews();
        s.context.set_preview(QStringLiteral("PreviewHex"));
        QVERIFY(logs.contains(QStringLiteral("ContextPreviews@CONTEXT-TEST::cycle_previews, [")));
        QVERIFY(logs.contains(QStringLiteral("ContextPreviews@CONTEXT-TEST::set_preview, [")));
    }

    void extensionTableAndPreviewsByWidget() {
        Setup s;
        tftest::LogCapture logs;
        s.container.addStandardPreviews();
        QVERIFY(logs.containsLine(QStringLiteral("XContainerPreviews::addStandardPreviews, already called")));
        QCOMPARE(s.container.distinctPreviews().size(), size_t(4));
        // The hex preview shows the program's picture while it has no file.
        QVERIFY(dynamic_cast<tav::PreviewHex*>(s.container.hexPreview())->hex_view()->hasDefaultImage());
        QCOMPARE(s.container.currentWidget(), s.container.hexPreview()->widget_preview());
        QCOMPARE(s.container.previewByExtension(QStringLiteral("XML")), ofKind<tav::PreviewXml>(s.container));
        // Registered earlier wins: the XML preview comes before the text preview.
        QCOMPARE(s.container.previewByExtension(QStringLiteral("svg")), ofKind<tav::PreviewXml>(s.container));
        QCOMPARE(s.container.previewByExtension(QStringLiteral("bin")), s.container.hexPreview());
        QCOMPARE(s.container.previewByExtension(QStringLiteral("jpg")), ofKind<tav::PreviewImage>(s.container));
        QCOMPARE(s.container.previewByExtension(QString()), nullptr);
        QCOMPARE(s.container.previewByExtension(QStringLiteral("nothing-known")), nullptr);
        tav::Preview* text = s.container.textPreview();
        QCOMPARE(s.container.previewByWidget(text->widget_preview()), text);
        QCOMPARE(s.container.previewByWidget(nullptr), nullptr);
        QVERIFY(logs.contains(QStringLiteral("XContainerFilePreviews::previewByWidget, widget == nullptr")));
        // A listener added to the previews is added once per extension entry.
        int calls = 0;
        s.container.addPreviewListener([&](tav::Preview*) { ++calls; });
        s.container.hexPreview()->fire_preview_event();
        QCOMPARE(calls, int(s.container.hexPreview()->get_file_extensions().size()));
        // Activating a preview asks for a window of its own, once.
        QList<QFileInfo> standAlone;
        s.container.eventOpenStandAlone().add([&](const QFileInfo& fi) { standAlone << fi; });
        s.context.select_file(QFileInfo(bin));
        s.container.hexPreview()->fire_preview_event();
        QCOMPARE(standAlone.size(), 1);
        QCOMPARE(standAlone.first().fileName(), QStringLiteral("blob.bin"));
    }

    void copyToContentSearch() {
        Setup s;
        auto* text = dynamic_cast<tav::PreviewAscii*>(s.container.textPreview());
        tav::viewText::XTextView* view = text->get_XTextView();
        const QString line(100, QLatin1Char('w'));
        view->setBytes(line.toUtf8(), QStringLiteral("t"));
        QStringList heard;
        s.container.copyToSearch().addListener([&](const QString& t) { heard << t; });
        std::vector<std::unique_ptr<tav::XMenu>> menus;
        auto copyAction = [&](int len) -> QAction* {
            view->setSelection(0, len);
            menus.push_back(std::make_unique<tav::XMenu>());
            view->buildContextMenu(*menus.back());
            return menus.back()->actionById(200);
        };
        QAction* a = copyAction(88);
        QVERIFY(a && a->isEnabled());
        QCOMPARE(a->text(), QStringLiteral("Copy \u2192 Content Search"));
        a->trigger();
        a->trigger();   // the same text again: listeners hear it once
        QCOMPARE(heard, QStringList{QString(88, QLatin1Char('w'))});
        QVERIFY(!copyAction(89)->isEnabled());
        QVERIFY(!copyAction(0)->isEnabled());
    }

    void settingsAreSavedAndRestored() {
        auto node = tav::XNode::createRoot(QStringLiteral("Previews"));
        {
            Setup s;
            s.container.from_node(node.get());
            dynamic_cast<tav::PreviewAscii*>(s.container.textPreview())->set_ruler(false);
            dynamic_cast<tav::PreviewHex*>(s.container.hexPreview())->set_font_size(21);
            s.container.to_node();
        }
        QVERIFY(node->query(QStringLiteral("PreviewAscii")));
        QVERIFY(node->query(QStringLiteral("PreviewDir")));
        Setup s;
        s.container.from_node(node.get());
        QVERIFY(!dynamic_cast<tav::PreviewAscii*>(s.container.textPreview())->get_XTextView()->ruler());
        QCOMPARE(dynamic_cast<tav::PreviewHex*>(s.container.hexPreview())->font_size(), 21);
    }

    void aDeletedContainerIsNoLongerCurrent() {
        auto s = std::make_unique<Setup>();
        s->context.select_file(QFileInfo(cpp));
        QVERIFY(ContextPreviews::currentPreview());
        s.reset();
        QCOMPARE(ContextPreviews::currentPreview(), nullptr);
        QCOMPARE(tav::Preview::open_counter(), 0);
    }
};

QTEST_MAIN(TestContainer)
#include "test_container.moc"
