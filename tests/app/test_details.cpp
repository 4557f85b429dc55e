// The text preview with search layers and the details window, with real
// widgets: marks of the search panels, slider and navigation, the settings
// bits and their menu, copy actions, pattern selection, the character
// information line, tab choice, zoom limits and saved state.
#include "common/TestEnv.h"

#include "base/find/XContentFilter.h"
#include "base/find/XRamLayer.h"
#include "base/node/XNode.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/panel/XPanelStacked.h"
#include "gui/previews/PreviewHex.h"
#include "gui/viewText/XTextView.h"
#include "gui/widgets/XColorLabel.h"
#include "gui/widgets/XComboBox.h"
#include "gui/widgets/XMenu.h"
#include "gui/widgets/XSlider.h"
#include "gui/widgets/XTabWidget.h"
#include "gui/widgets/XTypedComboBox.h"
#include "src/gui/WinDetails.h"
#include "src/gui/WinFinder.h"
#include "src/gui/WinTray.h"
#include "src/gui/config/ConfigTavFinder.h"
#include "src/gui/panPreview/PanPreviewHex.h"
#include "src/gui/panPreview/PanPreviewImg.h"
#include "src/gui/panPreview/PanPreviewXml.h"
#include "src/gui/panPreview/PanStats.h"
#include "src/gui/panPreview/asc/PanPreviewAsc.h"
#include "src/gui/panPreview/asc/PanelSearch.h"

#include <QAction>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QToolButton>
#include <QtTest>

using tav::find::XRam;
using tav::find::XRamLayer;
using tavFinder::PanelSearch;
using tavFinder::PanPreviewAsc;
using tavFinder::WinDetails;

namespace {
// A text panel with an owner panel for its menu button and information line.
struct Host {
    QWidget window;
    tav::XPanel* outside;
    PanPreviewAsc* pan;
    explicit Host(tav::XNode* node) {
        auto* box = new tav::XPanel(&window, tav::XPanel::VERTICAL);
        outside = box->createPanel(tav::XPanel::HORIZONTAL);
        pan = box->add(new PanPreviewAsc(box), 1);
        pan->ini();
        pan->from_node(node);
        pan->set_panel_from_outside(outside);
        window.resize(900, 600);
        box->resize(900, 600);
        window.show();
    }
};

std::vector<int64_t> positions(const XRamLayer* l) {
    std::vector<int64_t> p;
    if (l)
        for (const XRam& r : l->marks()) p.push_back(r.pos());
    return p;
}

// Notes whether a widget's style sheet ever turned red (a flash is short and
// may happen between two polls of a busy test run).
struct FlashWatch : QObject {
    QWidget* w;
    bool seen = false;
    explicit FlashWatch(QWidget* watched) : w(watched) { w->installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* e) override {
        if (e->type() == QEvent::StyleChange && w->styleSheet().contains(QStringLiteral("#d32f2f"))) seen = true;
        return false;
    }
};

QAction* actionByText(QMenu& m, const QString& text) {
    for (QAction* a : m.actions())
        if (a->text() == text) return a;
    return nullptr;
}
} // namespace

class TestDetails : public QObject {
    Q_OBJECT
    tftest::TestEnv env;
    tav::KernelGUI kernel{QStringLiteral("talvoEngine"), QStringLiteral("app"), QStringList(), true};
    tftest::TestDir dir;
    QString text;   // "alpha beta\nalpha gamma alpha\n"

    tav::XNode* viewNode() {
        return kernel.getCreateNodeApplication()->getCreateNode(QStringLiteral("GUI"))->getCreateNode(QStringLiteral("View"));
    }
    static void openText(PanPreviewAsc* pan, const QString& path) {
        QVERIFY(pan->preview()->open_file(QFileInfo(path)));
        QTRY_VERIFY(pan->textView()->lineCount() >= 0);
    }
    static void search(PanelSearch* p, PanPreviewAsc* pan, const QString& what, bool regEx = false) {
        p->buttonRegEx()->setChecked(regEx);
        p->comboSearch()->setEditText(what);
        QTest::mouseClick(p->buttonFind(), Qt::LeftButton);
        // The file is searched in the background; the hits come through the event loop.
        QTRY_COMPARE(pan->searchesRunning(), 0);
    }

private slots:
    void initTestCase() {
        tavFinder::WinTray::setWatchdogEnabled(false);
        text = dir.file(QStringLiteral("text.txt"), "alpha beta\nalpha gamma alpha\n");
    }
    void searchPanelsMarkAndNavigate();
    void settingsBitsMenuAndPersistence();
    void copyActionsFollowTheSelectionLength();
    void patternSelectionAndInformationLine();
    void detailsWindowChoosesTabsAndZooms();
};

void TestDetails::searchPanelsMarkAndNavigate() {
    tav::XNode node(QStringLiteral("PreviewAsc"));
    Host h(&node);
    PanPreviewAsc* pan = h.pan;
    openText(pan, text);
    PanelSearch* p0 = pan->get_panel_search(0);
    QCOMPARE(p0->color(), QColor(Qt::green));
    QCOMPARE(pan->get_panel_search(1)->color(), QColor(Qt::yellow));

    // Three hits: the right byte ranges, mark 0 active, slider at size - 1 (the top).
    search(p0, pan, QStringLiteral("alpha"));
    XRamLayer* l0 = pan->textView()->layers().layer_by_ID(1000);
    QVERIFY(l0);
    QCOMPARE(positions(l0), (std::vector<int64_t>{0, 11, 23}));
    QCOMPARE(l0->at(1).len(), int64_t(5));
    QCOMPARE(l0->color_background(), QColor(Qt::green).rgba());
    QCOMPARE(pan->activeSearchLayer(), l0);
    QCOMPARE(l0->active_mark_index(), 0);
    QCOMPARE(pan->slider()->maximum(), 2);
    QCOMPARE(pan->slider()->value(), 2);
    QCOMPARE(p0->labelHits()->text(), QStringLiteral("3"));
    QVERIFY(pan->panelNavigation()->isEnabled());
    QTRY_VERIFY(pan->slider()->styleSheet().contains(QStringLiteral("background: #00ff00")));

    // Buttons and slider move the active mark, and the slider follows.
    pan->on_mark_increment(false);
    QCOMPARE(l0->active_mark_index(), 1);
    QCOMPARE(pan->slider()->value(), 1);
    pan->on_mark_to_top(false);
    QCOMPARE(l0->active_mark_index(), 2);
    QCOMPARE(pan->slider()->value(), 0);
    pan->on_mark_increment(false);   // stays at the end
    QCOMPARE(l0->active_mark_index(), 2);
    pan->slider()->setValue(1, true);
    QCOMPARE(l0->active_mark_index(), 1);
    pan->on_mark_to_top(true);
    QCOMPARE(l0->active_mark_index(), 0);
    QCOMPARE(pan->slider()->value(), 2);

    // One hit: maximum 0 after the search, 1 after a click on the colour.
    search(p0, pan, QStringLiteral("gamma"));
    QCOMPARE(positions(l0), (std::vector<int64_t>{17}));
    QCOMPARE(pan->slider()->maximum(), 0);
    QTest::mouseClick(p0->colorLabel(), Qt::LeftButton);
    QCOMPARE(pan->slider()->maximum(), 1);
    QVERIFY(pan->slider()->isEnabled());

    // Two searches in a row, the first still running: only the newer one's hits show.
    p0->comboSearch()->setEditText(QStringLiteral("alpha"));
    QTest::mouseClick(p0->buttonFind(), Qt::LeftButton);
    p0->comboSearch()->setEditText(QStringLiteral("gamma"));
    QTest::mouseClick(p0->buttonFind(), Qt::LeftButton);
    QTRY_COMPARE(pan->searchesRunning(), 0);
    QCOMPARE(positions(l0), (std::vector<int64_t>{17}));
    QCOMPARE(p0->labelHits()->text(), QStringLiteral("1"));

    // A changed colour recolours the layer and makes it the active one.
    p0->colorLabel()->setColor(QColor(Qt::magenta), true);
    QCOMPARE(l0->color_background(), QColor(Qt::magenta).rgba());
    QVERIFY(pan->slider()->styleSheet().contains(QStringLiteral("#ff00ff")));

    // A broken expression and an empty text change nothing.
    tftest::LogCapture logs;
    FlashWatch flash(p0->comboSearch()->lineEdit());
    search(p0, pan, QStringLiteral("("), true);
    QVERIFY(logs.linesAtLevel(8).contains(QStringLiteral("PanPreviewAsc::on_search, problems with expression '('")));
    QTRY_VERIFY(flash.seen);
    QTRY_VERIFY(!p0->comboSearch()->lineEdit()->styleSheet().contains(QStringLiteral("#d32f2f")));
    QCOMPARE(positions(l0), (std::vector<int64_t>{17}));
    search(p0, pan, QStringLiteral("   "));
    QVERIFY(logs.contains(QStringLiteral("PanPreviewAsc::on_search, search for text but text ist empty")));
    QCOMPARE(positions(l0), (std::vector<int64_t>{17}));

    // The reason is shown at the field; the switches decide what is found.
    search(p0, pan, QStringLiteral("alpha (beta"));
    QCOMPARE(p0->comboSearch()->toolTip(), QStringLiteral("Character 7: unbalanced parenthesis"));
    QCOMPARE(positions(l0), (std::vector<int64_t>{17}));
    p0->buttonMatchCase()->setChecked(true);
    search(p0, pan, QStringLiteral("ALPHA"));
    QVERIFY(l0->isEmpty());
    p0->buttonMatchCase()->setChecked(false);
    search(p0, pan, QStringLiteral("alpha NEAR/0 gamma"));
    QCOMPARE(positions(l0), (std::vector<int64_t>{11, 17, 23}));
    p0->buttonWholeWords()->setChecked(true);
    search(p0, pan, QStringLiteral("alph"));
    QVERIFY(l0->isEmpty());
    {
        tav::XNode saved(QStringLiteral("pan0"));
        p0->to_node(&saved);
        p0->buttonWholeWords()->setChecked(false);
        p0->from_node(&saved);
        QVERIFY(p0->isWholeWords() && !p0->isMatchCase());
    }
    p0->buttonWholeWords()->setChecked(false);
    search(p0, pan, QStringLiteral("gamma"));

    // Regular expression with scope, in the second panel's own layer.
    PanelSearch* p1 = pan->get_panel_search(1);
    p1->comboScope()->setSelected(2);
    search(p1, pan, QStringLiteral("a\\b"), true);
    QCOMPARE(positions(pan->textView()->layers().layer_by_ID(1001)), (std::vector<int64_t>{4, 9, 15, 21, 27}));
    QCOMPARE(pan->activeSearchLayer(), pan->textView()->layers().layer_by_ID(1001));
    QCOMPARE(positions(l0), (std::vector<int64_t>{17}));

    // Nothing found: the layer empties and the navigation goes off.
    search(p1, pan, QStringLiteral("zzz"));
    QVERIFY(pan->textView()->layers().layer_by_ID(1001)->isEmpty());
    QVERIFY(!pan->panelNavigation()->isEnabled());
    QCOMPARE(p1->labelHits()->text(), QStringLiteral("0"));

    // The history keeps what was searched; delete clears layer, text and count.
    QVERIFY(p0->comboSearch()->get_string_items().contains(QStringLiteral("alpha")));
    QTest::mouseClick(p0->buttonDelete(), Qt::LeftButton);
    QVERIFY(l0->isEmpty());
    QVERIFY(p0->comboSearch()->currentText().isEmpty() && p0->labelHits()->text().isEmpty());

    // Return runs the search whose input has the focus.
    p0->comboSearch()->setEditText(QStringLiteral("beta"));
    p0->comboSearch()->setFocus();
    QTRY_VERIFY(p0->comboSearch()->hasFocus());
    pan->search_focused();
    QTRY_COMPARE(pan->searchesRunning(), 0);
    QCOMPARE(positions(l0), (std::vector<int64_t>{6}));

    QCOMPARE(pan->get_panel_search(3), p0);
    QVERIFY(logs.contains(QStringLiteral("PanPreviewAsc::get_panel_search, panel_no >= ar.size(), return first panel!")));
}

void TestDetails::settingsBitsMenuAndPersistence() {
    tav::XNode node(QStringLiteral("PreviewAsc"));
    {
        Host h(&node);
        PanPreviewAsc* pan = h.pan;
        // Nothing saved: ruler, navigation and the first search panel.
        QCOMPARE(pan->bitsConfig().flags(), 1034u);
        QVERIFY(pan->textView()->ruler());
        QVERIFY(pan->panelNavigation()->isVisible());
        QVERIFY(pan->get_panel_search(0)->isVisible());
        QVERIFY(!pan->get_panel_search(1)->isVisible() && !pan->get_panel_search(2)->isVisible());
        QVERIFY(!pan->infoLine()->isVisible());

        tav::XMenu menu(nullptr, true);
        pan->build_menu_filter(menu);
        QStringList texts;
        for (QAction* a : menu.actions()) texts << (a->isSeparator() ? QStringLiteral("|") : a->text());
        QCOMPARE(texts, (QStringList{"Ruler", "Wrap", "Navigation", "|", "1.Search Layer", "2.Search Layer",
                                      "Mouse over Character", "Mouse over Character-INFO", "Mouse over Word", "Mouse over Line",
                                      "Mouse over Sentence", "Mouse over Paragraph", "|", "Reset All"}));
        QVERIFY(menu.actionById(2)->isChecked() && !menu.actionById(4)->isChecked());
        QCOMPARE(menu.actionById(4)->toolTip(), QStringLiteral("Wraps lines"));

        // Mouse over word adds its mark category to the mouse-over layer, and takes it away.
        menu.actionById(64)->trigger();
        QVERIFY(pan->textView()->mouseOverLayer().contains_mark(XRam::CATEGORY_WORD));
        menu.actionById(64)->trigger();
        QVERIFY(!pan->textView()->mouseOverLayer().contains_mark(XRam::CATEGORY_WORD));
        menu.actionById(4)->trigger();
        menu.actionById(2048)->trigger();
        menu.actionById(32)->trigger();
        QVERIFY(pan->textView()->wrap());
        QVERIFY(pan->get_panel_search(1)->isVisible() && pan->infoLine()->isVisible());

        // Colours and history are kept per panel.
        pan->get_panel_search(1)->colorLabel()->setColor(QColor(10, 20, 30), true);
        pan->get_panel_search(1)->comboSearch()->add_to_history(QStringLiteral("kept"));
        pan->to_node(&node);

        actionByText(menu, QStringLiteral("Reset All"))->trigger();
        QCOMPARE(pan->bitsConfig().flags(), 0u);
        QVERIFY(!pan->get_panel_search(0)->isVisible() && !pan->get_panel_search(1)->isVisible());
        QVERIFY(!pan->panelNavigation()->isVisible());
        QVERIFY(!pan->textView()->ruler());
    }
    QCOMPARE(node.getUInt(QStringLiteral("bitsConfig"), 0), uint32_t(1034 | 4 | 2048 | 32));
    tav::XNode* pan1 = node.query(QStringLiteral("PanSearch"), QStringLiteral("pan1"));
    QVERIFY(pan1 && node.query(QStringLiteral("PanSearch"), QStringLiteral("pan2")));
    Host again(&node);
    QCOMPARE(again.pan->bitsConfig().flags(), uint32_t(1034 | 4 | 2048 | 32));
    QCOMPARE(again.pan->get_panel_search(1)->color(), QColor(10, 20, 30));
    QCOMPARE(again.pan->get_panel_search(1)->comboSearch()->get_string_items(), QStringList{"kept"});
    QVERIFY(again.pan->get_panel_search(1)->isVisible() && again.pan->infoLine()->isVisible());
}

void TestDetails::copyActionsFollowTheSelectionLength() {
    const QString line = QString(100, QLatin1Char('x'));
    const QString path = dir.file(QStringLiteral("long.txt"), (line + "\n").toUtf8());
    tav::XNode node(QStringLiteral("PreviewAsc"));
    Host h(&node);
    openText(h.pan, path);
    tav::viewText::XTextView* v = h.pan->textView();
    const QString copy1 = QStringLiteral("Copy → Search Field &1"), copy2 = QStringLiteral("Copy → Search Field &2");

    h.pan->get_panel_search(1)->buttonRegEx()->setChecked(false);   // a plain search: a quoted phrase
    v->setSelection(0, 88);
    {
        tav::XMenu m(nullptr);
        v->buildContextMenu(m);
        QVERIFY(actionByText(m, copy1)->isEnabled() && actionByText(m, copy2)->isEnabled());
        actionByText(m, copy2)->trigger();
        QCOMPARE(h.pan->get_panel_search(1)->comboSearch()->currentText(), QLatin1Char('"') + QString(88, 'x') + QLatin1Char('"'));
    }
    tftest::LogCapture logs;
    v->setSelection(0, 89);
    {
        tav::XMenu m(nullptr);
        v->buildContextMenu(m);
        QVERIFY(!actionByText(m, copy1)->isEnabled() && !actionByText(m, copy2)->isEnabled());
    }
    v->clearSelection();
    {
        tav::XMenu m(nullptr);
        v->buildContextMenu(m);
        QVERIFY(!actionByText(m, copy1)->isEnabled());
    }
    QCOMPARE(logs.count(QStringLiteral("PanPreviewAsc::ini - no selection")), 2);

    // The copy finds exactly the selected text in the panel's mode, also when the
    // text holds characters that mean something to a pattern or to the language.
    const QString odd = QStringLiteral("a.b (c)* d|-e");
    const QString oddPath = dir.file(QStringLiteral("odd.txt"), "x a.b (c)* d|-e y\naxb (c)* d e\n");
    openText(h.pan, oddPath);
    for (bool regEx : {true, false}) {
        for (unsigned n = 0; n < 2; ++n) {
            PanelSearch* p = h.pan->get_panel_search(n);
            p->buttonRegEx()->setChecked(regEx);
            h.pan->bitsConfig().set_flag(n == 0 ? PanPreviewAsc::BIT_SEARCH_LAYER_1 : PanPreviewAsc::BIT_SEARCH_LAYER_2, false, 1, 1);
            QVERIFY(!p->isVisible());
            v->setSelection(2, odd.size());
            tav::XMenu m(nullptr);
            v->buildContextMenu(m);
            actionByText(m, n == 0 ? copy1 : copy2)->trigger();
            QVERIFY(p->isVisible());   // a hidden panel is shown
            QTRY_VERIFY2(p->labelHits()->text() == QStringLiteral("1"), qPrintable(p->comboSearch()->currentText()));
        }
    }
}

void TestDetails::patternSelectionAndInformationLine() {
    QByteArray body;
    for (int i = 0; i < 20; ++i) body += QByteArray(50, 'a' + char(i % 3)) + "\n";
    body += "x\xc3\xa4y\n";   // 'ä' at byte 1,021
    const QString path = dir.file(QStringLiteral("chars.txt"), body);
    tav::XNode node(QStringLiteral("PreviewAsc"));
    node.setUInt(QStringLiteral("bitsConfig"), 1034 | 16 | 32);
    Host h(&node);
    PanPreviewAsc* pan = h.pan;
    openText(pan, path);
    tav::viewText::XTextView* v = pan->textView();

    // The character under the pointer: text, description, HTML and byte position.
    QVERIFY(v->mouseOverLayer().contains_mark(XRam::CATEGORY_CHAR));
    QRect cell;
    QTRY_VERIFY(!(cell = v->cellRect(1021)).isEmpty());
    QTest::mouseMove(v->viewport(), cell.center());
    QTRY_VERIFY(pan->infoLine()->text().endsWith(QStringLiteral(" byte-pos:1,021")));
    QVERIFY(pan->infoLine()->text().startsWith(QString::fromUtf8("\xc3\xa4  ")));
    QVERIFY(pan->infoLine()->text().contains(QStringLiteral("&#228;")));

    // Pattern selection mode off: a selection marks nothing.
    pan->on_direct_mark_search(QStringLiteral("bbbbb"));
    QVERIFY(!v->layers().contains_layer(1002) || v->layers().layer_by_ID(1002)->isEmpty());

    // On (as the preview's own gesture does): every occurrence, in panel 2's colour.
    pan->preview()->fire_preview_event();
    QVERIFY(pan->patternSelectionMode().value());
    pan->on_direct_mark_search(QString::fromUtf8("x\xc3\xa4"));
    XRamLayer* direct = v->layers().layer_by_ID(1002);
    QCOMPARE(positions(direct), (std::vector<int64_t>{1020}));
    QCOMPARE(pan->activeSearchLayer(), direct);
    QCOMPARE(direct->color_background(), PanelSearch::defaultColor(2).rgba());
    pan->on_direct_mark_search(QString(50, QLatin1Char('c')));
    QCOMPARE(direct->size(), 6);
    QCOMPARE(direct->active_mark_index(), 0);

    // Off again: the direct marks go.
    pan->patternSelectionMode().set(false);
    QVERIFY(direct->isEmpty());
}

void TestDetails::detailsWindowChoosesTabsAndZooms() {
    const QString xml = dir.file(QStringLiteral("data.xml"), "<?xml version=\"1.0\"?>\n<root><a x=\"1\"/></root>\n");
    QImage img(8, 8, QImage::Format_RGB32);
    img.fill(Qt::red);
    const QString png = dir.abs(QStringLiteral("pic.png"));
    QVERIFY(img.save(png));
    QByteArray raw;
    for (int i = 0; i < 4096; ++i) raw.append(char((i * 37) & 0xff));
    const QString bin = dir.file(QStringLiteral("blob.qqq"), raw);

    QPointer<WinDetails> w = WinDetails::open_window(QFileInfo(xml), XRamLayer(), tav::find::XContentFilter());
    QVERIFY(w);
    QCOMPARE(w->currentPanel(), static_cast<tavFinder::PanPreview*>(w->panelXml()));
    QVERIFY(w->toolbarStack()->currentWidget() != w->toolbarTextPage());
    w->set_file(QFileInfo(png), false);
    QCOMPARE(w->currentPanel(), static_cast<tavFinder::PanPreview*>(w->panelImage()));
    w->set_file(QFileInfo(text), false);
    QCOMPARE(w->currentPanel(), static_cast<tavFinder::PanPreview*>(w->panelText()));
    QCOMPARE(w->toolbarStack()->currentWidget(), static_cast<QWidget*>(w->toolbarTextPage()));
    w->set_file(QFileInfo(text), true);
    QCOMPARE(w->currentPanel(), static_cast<tavFinder::PanPreview*>(w->panelStats()));

    // An unknown binary goes to the hex tab; zoom stops at 6 and 64.
    w->set_file(QFileInfo(bin), false);
    QCOMPARE(w->currentPanel(), static_cast<tavFinder::PanPreview*>(w->panelHex()));
    for (int i = 0; i < 80; ++i) w->on_zoom(true);
    QCOMPARE(w->panelHex()->previewHex().font_size(), 64);
    for (int i = 0; i < 80; ++i) w->on_zoom(false);
    QCOMPARE(w->panelHex()->previewHex().font_size(), 6);

    // A tab that cannot show the file is disabled and named in the log.
    tftest::LogCapture logs;
    w->tabs()->setCurrentPanel(w->panelImage());
    QVERIFY(!w->tabs()->isTabEnabled(w->tabs()->indexOf(w->panelImage())));
    QVERIFY(logs.contains(QStringLiteral("WinDetails::on_tab_changed - CANNOT open file with:PanPreviewImg")));

    // A search result's hits land in layer 1000 of the text tab.
    tav::find::XContentFilter filter;
    QVERIFY(filter.createSymbols(QStringLiteral("gamma"), false));
    XRamLayer hits;
    hits.add_mark(XRam(17, 5));
    w->set_file(QFileInfo(text), false);
    w->set_file_result(tavFinder::FileResult(hits, QFileInfo(text)), filter);
    QCOMPARE(positions(w->panelText()->textView()->layers().layer_by_ID(1000)), (std::vector<int64_t>{17}));
    QCOMPARE(w->panelText()->get_panel_search(0)->comboSearch()->currentText(), QStringLiteral("gamma"));

    // The pattern button and the mode are one switch.
    QTest::mouseClick(w->buttonPattern(), Qt::LeftButton);
    QVERIFY(w->panelText()->patternSelectionMode().value());
    w->panelText()->patternSelectionMode().set(false);
    QVERIFY(!w->buttonPattern()->isChecked());

    // Closing saves the text panel's settings under "PreviewAsc".
    w->panelText()->bitsConfig().set_flag(PanPreviewAsc::BIT_WRAP, true);
    w->close();
    QTRY_VERIFY(w.isNull());
    tav::XNode* nAsc = viewNode()->query(QStringLiteral("PreviewAsc"));
    QVERIFY(nAsc);
    QCOMPARE(nAsc->getUInt(QStringLiteral("bitsConfig"), 0), uint32_t(1034 | 4));
    QVERIFY(viewNode()->hasAttribute(QStringLiteral("geometry")));

    // The main window opens the details of a result with its hits.
    QPointer<tavFinder::WinFinder> main = tavFinder::WinFinder::new_win(dir.path());
    QVERIFY(main);
    main->open_stand_alone_preview(QFileInfo(text), hits, filter);
    WinDetails* opened = nullptr;
    for (QWidget* t : QApplication::topLevelWidgets())
        if (auto* d = qobject_cast<WinDetails*>(t)) opened = d;
    QVERIFY(opened);
    QCOMPARE(opened->getCurrentFile().absoluteFilePath(), QFileInfo(text).absoluteFilePath());
    QCOMPARE(positions(opened->panelText()->textView()->layers().layer_by_ID(1000)), (std::vector<int64_t>{17}));
    QPointer<WinDetails> guard(opened);
    opened->close();
    main->close();
    QTRY_VERIFY(guard.isNull() && main.isNull());
}

QTEST_MAIN(TestDetails)
#include "test_details.moc"
