// The search in the real main window: the filter built from the panel, the
// history of the combo boxes, and whole searches started with Return on a
// generated folder, with their pages, summaries and result tables.
#include "common/TestEnv.h"

#include "base/node/XNode.h"
#include "base/thread/XThread.h"
#include "base/util/Format.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/panel/XPanelStacked.h"
#include "gui/previews/PreviewAscii.h"
#include "gui/previews/PreviewHex.h"
#include "gui/previews/XHexView.h"
#include "gui/tools/XTools.h"
#include "gui/viewText/XTextView.h"
#include "gui/window/AbstractWindow.h"
#include "gui/widgets/XBrowser.h"
#include "gui/widgets/XComboBox.h"
#include "gui/widgets/XMenu.h"
#include "gui/widgets/XTableViewClassic.h"
#include "gui/widgets/XTreeViewFiles.h"
#include "gui/widgets/XTypedComboBox.h"
#include "src/dir/XContainerPreviews.h"
#include "src/find/SavedSearches.h"
#include "src/find/SearchJob.h"
#include "src/find/TavFind.h"
#include "src/gui/FileResultModel.h"
#include "src/gui/PanelResults.h"
#include "src/gui/ThreadScanDir.h"
#include "src/gui/WinDetails.h"
#include "src/gui/panPreview/asc/PanPreviewAsc.h"
#include "src/gui/WinFinder.h"
#include "src/gui/WinTray.h"
#include "src/gui/config/ConfigTavFinder.h"

#include <QDateEdit>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QProcess>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QToolButton>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>
#include <QtTest>

using tavFinder::WinFinder;

class TestSearchWindow : public QObject {
    Q_OBJECT
    tftest::TestEnv env;
    tav::KernelGUI kernel{QStringLiteral("talvoEngine"), QStringLiteral("app"), QStringList(), true};
    tftest::TestDir tree;
    qint64 bytesSearched = 0;

    tav::XNode* windowNode() {
        return kernel.getCreateNodeApplication()->getCreateNode(QStringLiteral("GUI"))->getCreateNode(QStringLiteral("Window"));
    }
    WinFinder* open(const QString& select) {
        auto* w = new WinFinder(true);
        w->init(&kernel, windowNode());
        w->setupTray();
        w->setUp(select);
        w->setGeometry(40, 40, 1100, 600);
        w->show();
        w->activateWindow();
        if (!QTest::qWaitForWindowActive(w)) qWarning("window not active");
        return w;
    }
    static void closeNow(QPointer<WinFinder> w) {
        if (w) w->close();
        QTRY_VERIFY(w.isNull());
    }
    QString abs(const QString& rel) const { return QFileInfo(tree.abs(rel)).absoluteFilePath(); }
    // The window's bits, set the way the user's keys set them.
    static void setBits(WinFinder* w, uint32_t bits) { w->filterFlags().set_flags(bits); }

private slots:
    void initTestCase();
    void filterFromThePanel();
    void historySavedAndRestored();
    void comboMenus();
    void contentSearchEndToEnd();
    void escapeDuringContentSearch();
    void resultsKeepFirstMarksAndShowAll();
    void fileOnlySearch();
    void refusedAndCancelledSearches();
    void queryLanguageAndSwitchesInThePanel();
    void documentsAndArchives();
    void ignoreFilesSwitch();
    void savedSearches();
    void reportEscapesNamesAndLines();
};

void TestSearchWindow::initTestCase() {
    tavFinder::WinTray::setWatchdogEnabled(false);
    tavFinder::cfg().sRootFolder.clear();
    tavFinder::cfg().flagUseRootFolder = false;
    tavFinder::cfg().ext_from_string(QStringLiteral("txt,log,cpp"));
    // "docs": hits in a .log, a .txt and a binary file, a file without hits, a hidden one.
    const std::vector<std::pair<QString, QByteArray>> files{
        {"docs/one.txt", "needle\nhay\nneedle and needle\n"},
        {"docs/sub/most.log", QByteArray("filler line\n").repeated(400) + "needle needle needle\n\nneedle\nneedle\n"},
        {"docs/none.txt", "nothing to see\n"},
        {"docs/bin.dat", QByteArray("ab\0needle\0cd", 12)},
        {"docs/.hidden.txt", "needle\n"},
    };
    for (const auto& [rel, content] : files) {
        tree.file(rel, content);
        if (!rel.contains(QLatin1String(".hidden"))) bytesSearched += content.size();
    }
    // "many": enough files that a search with one worker is still running when Escape comes.
    for (int i = 0; i < 300; ++i) tree.file(QStringLiteral("many/f%1.txt").arg(i, 3, 10, QLatin1Char('0')), QByteArray("needle\n").repeated(200));
}

void TestSearchWindow::filterFromThePanel() {
    QPointer<WinFinder> w = open(abs("docs"));
    tftest::LogCapture logs;
    w->comboPattern()->setEditText(QStringLiteral("  *.txt  "));
    w->comboNotPattern()->setEditText(QStringLiteral("none*"));
    w->comboContent()->setEditText(QStringLiteral("needle"));
    w->size1()->setText(QStringLiteral("10kb"));

    // Inputs without their bit count for nothing.
    setBits(w, 0);
    tav::find::XFilter f = w->filter_from_GUI();
    QVERIFY(f.fileFilter.isEmpty() && !f.has_content_filter() && f.isUsable());
    QCOMPARE(f.fileFilter.timeArea, 0u);
    QCOMPARE(f.fileFilter.sizeArea, 0u);

    // Patterns are trimmed; the excluded one lands on its own side.
    setBits(w, WinFinder::FILTER_PATTERN | WinFinder::FILTER_NOT_PATTERN | WinFinder::FILTER_HIDDEN);
    f = w->filter_from_GUI();
    QCOMPARE(f.pattern(false), QStringLiteral("*.txt"));
    QCOMPARE(f.pattern(true), QStringLiteral("none*"));
    QVERIFY(f.fileFilter.textFileExtensions.empty());
    w->comboPattern()->setEditText(QStringLiteral("   "));
    QVERIFY(!w->filter_from_GUI().has_pattern(false));

    // Time: "<=" takes the first date at local midnight; "year" the whole calendar year.
    setBits(w, WinFinder::FILTER_TIME);
    auto midnight = [](int y, int m, int d) { return QDateTime(QDate(y, m, d), QTime(0, 0)).toMSecsSinceEpoch(); };
    w->date1()->setDate(QDate(2021, 6, 17));
    w->date2()->setDate(QDate(2021, 8, 1));
    QVERIFY(w->comboTimeArea()->setSelected(tav::XFileFilter::LESS_EQUAL));
    f = w->filter_from_GUI();
    QCOMPARE(f.fileFilter.timeArea, uint32_t(tav::XFileFilter::LESS_EQUAL));
    QCOMPARE(f.fileFilter.time1, midnight(2021, 6, 17));
    QCOMPARE(f.fileFilter.time2, int64_t(0));
    QVERIFY(w->comboTimeArea()->setSelected(tav::XFileFilter::YEAR));
    QCOMPARE(w->date1()->displayFormat(), QStringLiteral("yyyy"));
    QVERIFY(!w->date2()->isVisibleTo(w));
    f = w->filter_from_GUI();
    QCOMPARE(f.fileFilter.timeArea, uint32_t(tav::XFileFilter::BETWEEN));
    QCOMPARE(f.fileFilter.time1, midnight(2021, 1, 1));
    QCOMPARE(f.fileFilter.time2, midnight(2022, 1, 1) - 1000);
    QCOMPARE(QDateTime::fromMSecsSinceEpoch(f.fileFilter.time2).toString("yyyy/MM/dd hh:mm:ss.zzz"),
             QStringLiteral("2021/12/31 23:59:59.000"));
    QVERIFY(w->comboTimeArea()->setSelected(tav::XFileFilter::BETWEEN));
    QCOMPARE(w->date1()->displayFormat(), QStringLiteral("MMMM dd yyyy"));
    QVERIFY(w->date2()->isVisibleTo(w));
    f = w->filter_from_GUI();
    QCOMPARE(f.fileFilter.time1, midnight(2021, 6, 17));
    QCOMPARE(f.fileFilter.time2, midnight(2021, 8, 1));

    // Size: the parser's value; "between" without a second value drops the condition.
    setBits(w, WinFinder::FILTER_SIZE);
    QVERIFY(w->comboSizeArea()->setSelected(tav::XFileFilter::GREATER_EQUAL));
    QVERIFY(!w->size2()->isVisibleTo(w));
    f = w->filter_from_GUI();
    QCOMPARE(f.fileFilter.sizeArea, uint32_t(tav::XFileFilter::GREATER_EQUAL));
    QCOMPARE(f.fileFilter.size1, uint64_t(tav::get_bytes_number(QStringLiteral("10kb"))));
    QVERIFY(f.fileFilter.size1 >= 10000);
    QVERIFY(w->comboSizeArea()->setSelected(tav::XFileFilter::BETWEEN));
    QVERIFY(w->size2()->isVisibleTo(w));
    logs.clear();
    f = w->filter_from_GUI();
    QCOMPARE(f.fileFilter.sizeArea, 0u);
    QCOMPARE(f.fileFilter.size1, uint64_t(tav::get_bytes_number(QStringLiteral("10kb"))));
    QCOMPARE(logs.linesAtLevel(8), QStringList{"WinFinder::filter_from_GUI, size 2 - empty"});
    w->size2()->setText(QStringLiteral("2mb"));
    f = w->filter_from_GUI();
    QCOMPARE(f.fileFilter.sizeArea, uint32_t(tav::XFileFilter::BETWEEN));
    QCOMPARE(f.fileFilter.size2, uint64_t(tav::get_bytes_number(QStringLiteral("2mb"))));
    w->size1()->setText(QStringLiteral(" "));
    logs.clear();
    QCOMPARE(w->filter_from_GUI().fileFilter.sizeArea, 0u);
    QCOMPARE(logs.linesAtLevel(8), QStringList{"WinFinder::filter_from_GUI, size 1 - empty"});

    // Content: the scope of the combo, the simple or the regular language, empty text = no content.
    setBits(w, WinFinder::FILTER_CONTENT | WinFinder::FILTER_TEXT_FILES);
    QVERIFY(w->comboScope()->setSelected(2));
    f = w->filter_from_GUI();
    QVERIFY(f.has_content_filter() && f.isUsable());
    QCOMPARE(f.contentFilter.text(), QStringLiteral("needle"));
    QCOMPARE(f.contentFilter.scope(), 2u);
    QVERIFY(!f.contentFilter.isRegEx());
    QCOMPARE(f.fileFilter.textFileExtensions, tavFinder::cfg().extSet());
    QVERIFY(!f.fileFilter.textFileExtensions.empty());
    w->comboContent()->setEditText(QStringLiteral("nee(d|x)le"));
    w->buttonRegEx()->click();
    QVERIFY(w->propRegEx().value());
    QCOMPARE(w->comboContent()->toolTip(), QStringLiteral("Type your regular expression"));
    f = w->filter_from_GUI();
    QVERIFY(f.has_content_filter() && f.contentFilter.isRegEx());
    w->comboContent()->setEditText(QStringLiteral("nee(dle"));
    logs.clear();
    f = w->filter_from_GUI();
    QCOMPARE(f.pErrorWidget, static_cast<QObject*>(w->comboContent()));
    QVERIFY(!f.has_content_filter());
    QVERIFY(logs.linesAtLevel(8).contains(QStringLiteral("WinFinder::filter_from_GUI, problems with expression 'nee(dle'")));
    w->buttonRegEx()->click();
    QCOMPARE(w->comboContent()->toolTip(), QStringLiteral("Type simple expression"));
    w->comboContent()->setEditText(QStringLiteral("  "));
    logs.clear();
    f = w->filter_from_GUI();
    QVERIFY(f.isUsable() && !f.has_content_filter());
    QCOMPARE(logs.linesAtLevel(8), QStringList{"WinFinder::filter_from_GUI, search for text but text ist empty"});
    // The simple language refuses an unbalanced quote as well.
    w->comboContent()->setEditText(QStringLiteral("\"needle"));
    QVERIFY(!w->filter_from_GUI().isUsable());

    w->comboScope()->setSelected(tavFinder::cfg().scope);
    setBits(w, 0);
    closeNow(w);
}

void TestSearchWindow::historySavedAndRestored() {
    tavFinder::cfg().scope = 2;
    windowNode()->removeNode(windowNode()->query(QStringLiteral("SearchHistory")), true);
    QPointer<WinFinder> w = open(abs("docs"));
    // An empty node: empty boxes and the configured scope.
    QCOMPARE(w->comboPattern()->count(), 0);
    QCOMPARE(w->comboContent()->count(), 0);
    QCOMPARE(w->comboScope()->currentIndex(), 2);

    tftest::LogCapture logs;
    // Case counts: "A*" beside "a*"; an exact repeat is not appended.
    w->manage_combo_History(w->comboPattern(), QStringLiteral("a*"));
    w->manage_combo_History(w->comboPattern(), QStringLiteral("A*"));
    w->manage_combo_History(w->comboPattern(), QStringLiteral("a*"));
    w->manage_combo_History(w->comboPattern(), QString());
    w->manage_combo_History(w->comboPattern(), QStringLiteral("*.cpp"));
    QCOMPARE(w->comboPattern()->get_string_items(), (QStringList{"a*", "A*", "*.cpp"}));
    QCOMPARE(logs.count(QStringLiteral("WinFinder::manage_combo_History, add:")), 3);
    w->comboNotPattern()->set_data({QStringLiteral("x1"), QStringLiteral("x2"), QStringLiteral("x3")});
    w->comboContent()->set_data({QStringLiteral("c1"), QStringLiteral("c2")});
    w->comboNotPattern()->setCurrentIndex(2);
    w->comboContent()->setCurrentIndex(0);
    w->comboPattern()->setCurrentIndex(1);
    w->comboScope()->setCurrentIndex(0);
    closeNow(w);

    tav::XNode* h = windowNode()->query(QStringLiteral("SearchHistory"));
    QVERIFY(h);
    QCOMPARE(h->query(QStringLiteral("PatternFile"))->get_string_array(QStringLiteral("pattern")), (QStringList{"a*", "A*", "*.cpp"}));
    QCOMPARE(h->query(QStringLiteral("NPatternFile"))->get_string_array(QStringLiteral("pattern")), (QStringList{"x1", "x2", "x3"}));
    // Every box saves the index of the pattern box.
    for (const char* name : {"PatternFile", "NPatternFile", "Content"}) QCOMPARE(h->query(name)->getInt(QStringLiteral("currIndex"), -9), 1);
    QCOMPARE(h->query(QStringLiteral("Content"))->getInt(QStringLiteral("scopeIndex"), -9), 0);

    w = open(abs("docs"));
    QCOMPARE(w->comboPattern()->get_string_items(), (QStringList{"a*", "A*", "*.cpp"}));
    QCOMPARE(w->comboPattern()->currentText(), QStringLiteral("A*"));
    QCOMPARE(w->comboNotPattern()->currentIndex(), 1);
    QCOMPARE(w->comboNotPattern()->currentText(), QStringLiteral("x2"));
    QCOMPARE(w->comboContent()->currentText(), QStringLiteral("c2"));
    QCOMPARE(w->comboScope()->currentIndex(), 0);

    // A search puts its texts first in their boxes.
    setBits(w, WinFinder::FILTER_PATTERN | WinFinder::FILTER_CONTENT);
    w->comboPattern()->setEditText(QStringLiteral("*.cpp"));
    w->comboContent()->setEditText(QStringLiteral("needle"));
    w->treeView()->setFocus();
    QTest::keyClick(w, Qt::Key_Return);
    QTRY_COMPARE(w->findState(), uint32_t(WinFinder::FIND_DONE));
    QCOMPARE(w->comboPattern()->get_string_items(), (QStringList{"*.cpp", "a*", "A*"}));
    QCOMPARE(w->comboContent()->itemText(0), QStringLiteral("needle"));
    QCOMPARE(w->labelDone()->text(), QStringLiteral("Nothing found"));   // no .cpp file holds it
    QVERIFY(!w->buttonResultsDone()->isEnabled());
    setBits(w, 0);
    closeNow(w);
    windowNode()->removeNode(windowNode()->query(QStringLiteral("SearchHistory")), true);
    tavFinder::cfg().scope = 1;
}

void TestSearchWindow::comboMenus() {
    QPointer<WinFinder> w = open(abs("docs"));
    auto entries = [](QMenu& m) {
        QStringList out;
        for (QAction* a : m.actions())
            if (!a->isSeparator()) out << a->text();
        return out;
    };
    QMenu plain;
    w->fill_combo_menu(plain, w->comboPattern());
    QVERIFY(entries(plain).contains(QStringLiteral("Edit History")));
    QVERIFY(!entries(plain).contains(QStringLiteral("Regular Expression")));

    w->buttonRegEx()->click();
    QMenu regex;
    w->fill_combo_menu(regex, w->comboNotPattern());
    QAction* sub = nullptr;
    for (QAction* a : regex.actions())
        if (a->text() == QStringLiteral("Regular Expression")) sub = a;
    QVERIFY(sub && sub->menu());
    QCOMPARE(entries(*sub->menu()), (QStringList{"EMails", "HTML Title", "XML Entities"}));
    // Opened on the excluded-pattern box, the expression still goes to the content box.
    w->comboNotPattern()->setEditText(QStringLiteral("keep"));
    sub->menu()->actions().at(1)->trigger();
    QCOMPARE(w->comboContent()->currentText(), QStringLiteral("<title[^>]*>([^<]+)</title>"));
    QCOMPARE(w->comboNotPattern()->currentText(), QStringLiteral("keep"));
    sub->menu()->actions().at(0)->trigger();
    QCOMPARE(w->comboContent()->currentText(), QStringLiteral("([\\w\\.-]+@[\\w\\.-]+)"));
    sub->menu()->actions().at(2)->trigger();
    QCOMPARE(w->comboContent()->currentText(), QStringLiteral("&#([0-9]+);"));
    w->buttonRegEx()->click();
    closeNow(w);
}

void TestSearchWindow::contentSearchEndToEnd() {
    QPointer<WinFinder> w = open(abs("docs"));
    QTRY_COMPARE(w->treeView()->selectedFile().absoluteFilePath(), abs("docs"));
    setBits(w, WinFinder::FILTER_CONTENT);
    QVERIFY(w->rowContent()->isVisible());
    w->comboContent()->setEditText(QStringLiteral("needle"));
    tftest::LogCapture logs;
    // Return with the focus in the content box starts the search.
    QCOMPARE(QApplication::focusWidget(), static_cast<QWidget*>(w->comboContent()));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    // The walk and the search run at once: straight to the progress page.
    QCOMPARE(w->findPage(), int(WinFinder::PAGE_CONTENT));
    QTRY_COMPARE(w->findPage(), int(WinFinder::PAGE_DONE));
    QCOMPARE(w->findState(), uint32_t(WinFinder::FIND_DONE));
    QVERIFY(logs.contains(QStringLiteral("WinFinder::on_find - <") + abs("docs") + QStringLiteral(">")));
    QVERIFY(logs.contains(QStringLiteral("SearchJob::start <<<") + abs("docs") + QStringLiteral(">>> needle")));

    // Four files searched (the hidden one is not), three with hits, nine hits.
    const QString expected = QStringLiteral("files-total:4 => %1, files-match:3, match-total:9 - ").arg(tav::formatBytes(uint64_t(bytesSearched)));
    QTRY_VERIFY2(w->labelDone()->text().startsWith(expected), qPrintable(w->labelDone()->text()));
    QVERIFY(QRegularExpression(QStringLiteral(" - \\d+\\.\\d{3} sec$")).match(w->labelDone()->text()).hasMatch());
    QVERIFY(w->buttonResultsDone()->isEnabled());
    QCOMPARE(w->editPattern()->text(), QStringLiteral("needle"));
    QCOMPARE(w->buttonScope()->text(), tav::find::XContentFilter::scope_to_string(tavFinder::cfg().scope));

    // The table: most hits first, the .log file included, the Hits column shown.
    tavFinder::PanelResults* panel = w->panelResults();
    QVERIFY(w->stacked()->isShowing(panel));
    tavFinder::FileResultModel* m = panel->model();
    QCOMPARE(m->rowCount(), 3);
    QStringList rows;
    for (int r = 0; r < 3; ++r) rows << m->fromRow(r).fileName() + QLatin1Char(':') + m->data(m->index(r, 3)).toString();
    QCOMPARE(rows, (QStringList{"most.log:5", "one.txt:3", "bin.dat:1"}));
    // The window and the find command are sinks of the same search job: the same files and hits.
    QStringList windowRows;
    for (int r = 0; r < 3; ++r) windowRows << m->data(m->index(r, 3)).toString() + '\t' + m->fromRow(r).absoluteFilePath();
    QProcess findCommand;
    findCommand.setProcessEnvironment(env.processEnvironment(false));
    findCommand.start(tftest::TestEnv::programPath(), {"find", "--dir", abs("docs"), "--find", "needle", "--scope",
                                                       tav::find::XContentFilter::scope_to_string(tavFinder::cfg().scope)});
    QVERIFY(findCommand.waitForFinished(30000));
    QStringList printed = QString::fromUtf8(findCommand.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    printed.removeLast();   // the summary
    windowRows.sort();
    printed.sort();
    QCOMPARE(printed, windowRows);

    // Export: the table's rows in its order, as CSV, JSON with every hit, or an HTML report, written whole.
    tftest::TestDir out;
    const auto exportTo = [&](const QString& name, bool* okOut) {
        bool finished = false;
        QString message;
        w->export_results(out.abs(name), [&](bool ok, const QString& m) {
            finished = true;
            *okOut = ok;
            message = m;
        });
        if (!QTest::qWaitFor([&]() { return finished; }, 20000)) return QStringLiteral("timeout");
        return message;
    };
    bool ok = false;
    QCOMPARE(exportTo("r.csv", &ok), QStringLiteral("Exported 3 files to ") + out.abs("r.csv"));
    QVERIFY(ok);
    QFile csv(out.abs("r.csv"));
    QVERIFY(csv.open(QIODevice::ReadOnly));
    const QList<QByteArray> csvLines = csv.readAll().split('\n');
    QCOMPARE(csvLines.value(0), QByteArray("path,name,folder,size,date,hits\r"));
    QVERIFY2(csvLines.value(1).startsWith(abs("docs/sub/most.log").toUtf8() + ",most.log," + abs("docs/sub").toUtf8() + ","), csvLines.value(1).constData());
    QVERIFY(csvLines.value(1).endsWith(",5\r"));
    exportTo("r.json", &ok);
    QFile json(out.abs("r.json"));
    QVERIFY(json.open(QIODevice::ReadOnly));
    const QJsonObject j = QJsonDocument::fromJson(json.readAll()).object();
    int jsonHits = 0;
    for (const QJsonValue f : j.value("files").toArray()) jsonHits += f.toObject().value("hits").toArray().size();
    QCOMPARE(jsonHits, 9);
    QCOMPARE(j.value("summary").toObject().value("query").toString(), QStringLiteral("needle"));
    exportTo("r.html", &ok);
    QFile report(out.abs("r.html"));
    QVERIFY(report.open(QIODevice::ReadOnly));
    const QByteArray html = report.readAll();
    QVERIFY(html.contains("<mark>needle</mark>") && html.contains(abs("docs/one.txt").toUtf8()) && html.endsWith("</html>\n"));
    // A place that cannot be written says so and leaves nothing behind.
    out.file("plain", "a file, not a folder");
    QVERIFY(exportTo("plain/r.csv", &ok).startsWith(QStringLiteral("Cannot write ") + out.abs("plain/r.csv")));
    QVERIFY(!ok);
    QVERIFY(!QFileInfo::exists(out.abs("plain/r.csv")));
    QCOMPARE(m->data(m->index(0, 4)).toString(), abs("docs/sub"));
    QVERIFY(!panel->tableResult()->isColumnHidden(3));
    QCOMPARE(panel->tableResult()->currentRow(), 0);
    QVERIFY(panel->flagContent);
    // At 1200×600 (and narrower) the hits column is in view whole, the name elided in the middle.
    for (int width : {1200, 900}) {
        w->resize(width, 600);
        // The window stops at its minimum width.
        QTRY_COMPARE(w->width(), std::max(width, w->minimumSizeHint().width()));
        QHeaderView* hh = panel->tableResult()->horizontalHeader();
        const int view = panel->tableResult()->viewport()->width();
        QVERIFY(view > 200);
        QTRY_VERIFY2(hh->sectionViewportPosition(3) + hh->sectionSize(3) <= view,
                     qPrintable(QStringLiteral("hits at %1+%2 in %3").arg(hh->sectionViewportPosition(3)).arg(hh->sectionSize(3)).arg(view)));
        QVERIFY(hh->sectionViewportPosition(3) >= 0);
        QVERIFY(hh->sectionSize(3) >= QFontMetrics(hh->font()).horizontalAdvance(m->headerData(3, Qt::Horizontal).toString()));
        QVERIFY(hh->sectionSize(0) >= 60);
    }
    QCOMPARE(panel->tableResult()->textElideMode(), Qt::ElideMiddle);
    // The window took every result from the search; the search keeps only its totals.
    QVERIFY(w->tavFind().takeResults().empty());
    QCOMPARE(w->tavFind().countResults(), size_t(3));
    // The walk fed the four files to the workers.
    QVERIFY(logs.contains(QStringLiteral("TavFind::endFeed, files:4")));

    // Row 0 is open in the text preview (a .log file too), its hits in layer 1000, green,
    // and the first hit scrolled into view a moment later.
    tavFinder::XContainerPreviews* c = panel->container();
    QCOMPARE(panel->stack()->currentWidget(), static_cast<QWidget*>(c));
    auto* text = dynamic_cast<tav::PreviewAscii*>(c->previewByExtension(QStringLiteral("txt")));
    QVERIFY(text && text->get_XTextView());
    QCOMPARE(c->currentWidget(), text->widget_preview());
    QCOMPARE(text->file_info().absoluteFilePath(), abs("docs/sub/most.log"));
    tav::viewText::XTextView* view = text->get_XTextView();
    tav::find::XRamLayer* layer = view->layers().layer_by_ID(tavFinder::PanelResults::LAYER_RESULT);
    QVERIFY(layer);
    QCOMPARE(layer->size(), 5);
    QCOMPARE(layer->at(0).pos(), qint64(400 * 12));
    QCOMPARE(QColor::fromRgba(layer->color_background()), QColor(Qt::green));
    QCOMPARE(layer->active_mark_index(), 0);
    QCOMPARE(view->activeLayer(), layer);
    QVERIFY(view->layers().isEnabled(tavFinder::PanelResults::LAYER_RESULT));
    QTRY_VERIFY(view->firstVisibleLine() > 300);
    QVERIFY(view->firstVisibleLine() <= 400);

    // Another row replaces the layer's marks; a binary file goes to the hex preview.
    QVERIFY(panel->tableResult()->selectRow(1, true));
    QCOMPARE(text->file_info().absoluteFilePath(), abs("docs/one.txt"));
    QCOMPARE(layer->size(), 3);
    QCOMPARE(layer->at(1).pos(), qint64(11));
    logs.clear();
    QVERIFY(panel->tableResult()->selectRow(2, true));
    QVERIFY(logs.contains(QStringLiteral("PanelResults::on_jump_to_result, BIN FILE !")));
    QCOMPARE(c->currentWidget(), c->hexPreview()->widget_preview());
    QCOMPARE(c->hexPreview()->file_info().absoluteFilePath(), abs("docs/bin.dat"));
    // The binary hit is marked in the hex view, the first one at the cursor.
    tav::XHexView* hexView = dynamic_cast<tav::PreviewHex*>(c->hexPreview())->hex_view();
    QCOMPARE(hexView->markCount(), 1);
    QCOMPARE(hexView->activeMark(), 0);
    QCOMPARE(hexView->caretPos(), int64_t(3));

    // Keys: the focus stays in the table; Up / Down change the file, N / Shift+N and
    // F3 / Shift+F3 step through the hits of the file shown.
    QTRY_COMPARE(QApplication::focusWidget(), static_cast<QWidget*>(panel->tableResult()));
    QTest::keyClick(panel->tableResult(), Qt::Key_Up);
    QCOMPARE(panel->tableResult()->currentRow(), 1);
    QCOMPARE(text->file_info().absoluteFilePath(), abs("docs/one.txt"));
    QCOMPARE(QApplication::focusWidget(), static_cast<QWidget*>(panel->tableResult()));
    QCOMPARE(layer->active_mark_index(), 0);
    QTest::keyClick(panel->tableResult(), Qt::Key_N);
    QCOMPARE(layer->active_mark_index(), 1);
    QCOMPARE(panel->tableResult()->currentRow(), 1);   // N is no jump to a name starting with n
    QTest::keyClick(w, Qt::Key_F3);
    QCOMPARE(layer->active_mark_index(), 2);
    QTest::keyClick(w, Qt::Key_F3, Qt::ShiftModifier);
    QTest::keyClick(panel->tableResult(), Qt::Key_N, Qt::ShiftModifier);
    QCOMPARE(layer->active_mark_index(), 0);
    view->viewport()->repaint();
    QVERIFY2(view->statusText().startsWith(QStringLiteral("Hit 1/3:  Line 1")), qPrintable(view->statusText()));
    QTest::keyClick(panel->tableResult(), Qt::Key_Down);
    QCOMPARE(c->hexPreview()->file_info().absoluteFilePath(), abs("docs/bin.dat"));
    QTest::keyClick(panel->tableResult(), Qt::Key_F3);
    QCOMPARE(hexView->activeMark(), 0);   // one hit: stepping wraps around to it
    QCOMPARE(QApplication::focusWidget(), static_cast<QWidget*>(panel->tableResult()));
    // With Control held the row is still shown, never dragged (that takes a mouse gesture).
    logs.clear();
    tav::XTools::set_modifier(Qt::ControlModifier);
    QVERIFY(panel->tableResult()->selectRow(0, true));
    QVERIFY(!logs.contains(QStringLiteral("XTools::drop_file")));
    QCOMPARE(c->currentWidget(), text->widget_preview());
    QCOMPARE(text->file_info().absoluteFilePath(), abs("docs/sub/most.log"));
    tav::XTools::set_modifier(0);


    // The menu of a hit file.
    {
        tav::XMenu menu(nullptr);
        w->fill_contextMenu_FileResults(menu, m->fileResultFromRow(0), w->tavFind().contentFilter());
        QStringList entries;
        for (QAction* a : menu.actions())
            if (!a->isSeparator()) entries << a->text();
        // The whole file menu: open with, copy path and name, web search, bookmark …
        for (const char* e : {"View", "Tree", "Open with ...", "Open With Default Program", "Window", "File Manager", "Terminal",
                              "Copy Path to Clipboard", "Copy Filename to Clipboard", "Web Search", "Add Bookmark", "Properties"})
            QVERIFY2(entries.contains(QString::fromLatin1(e)), e);
        for (QAction* a : menu.actions())
            if (a->text() == QStringLiteral("Tree")) a->trigger();
        QCOMPARE(w->treeView()->selectedFile().absoluteFilePath(), abs("docs/sub/most.log"));
    }

    // A double click opens the details window on the file of the row.
    const size_t windows = tav::XTools::getAbstractWindows(true, true).size();
    logs.clear();
    panel->tableResult()->eventDoubleClick().fire(m->index(1, 0));
    QVERIFY(logs.contains(QStringLiteral("PanelResults::setup, double click, fileResult <<<3>>>")));
    QCOMPARE(tav::XTools::getAbstractWindows(true, true).size(), windows + 1);
    QPointer<tavFinder::WinDetails> details = qobject_cast<tavFinder::WinDetails*>(tav::XTools::getAbstractWindows(true, true).back()->widget());
    QVERIFY(details);
    QCOMPARE(details->getCurrentFile().absoluteFilePath(), abs("docs/one.txt"));
    details->close();
    QTRY_VERIFY(details.isNull());

    // "Back" returns to the filter page and the previews of the tree.
    logs.clear();
    QPushButton* back = w->panelFind()->widget(WinFinder::PAGE_DONE)->findChild<QPushButton*>();
    QVERIFY(back);
    back->click();
    QCOMPARE(w->findPage(), int(WinFinder::PAGE_FILTER));
    QCOMPARE(w->findState(), uint32_t(WinFinder::FIND_IDLE));
    QVERIFY(!w->stacked()->isShowing(panel));
    QVERIFY(!w->searchJob().isRunning());
    // "Results" brings the table back.
    w->buttonResultsDone()->click();
    QVERIFY(w->stacked()->isShowing(panel));
    QCOMPARE(m->rowCount(), 3);
    setBits(w, 0);
    closeNow(w);
}

void TestSearchWindow::escapeDuringContentSearch() {
    const unsigned threads = tavFinder::cfg().countThreads;
    tavFinder::cfg().countThreads = 1;
    QPointer<WinFinder> w = open(abs("many"));
    QTRY_COMPARE(w->treeView()->selectedFile().absoluteFilePath(), abs("many"));
    setBits(w, WinFinder::FILTER_CONTENT);
    w->comboContent()->setEditText(QStringLiteral("needle"));

    // The worker is held after its third file until the search is stopped, so
    // Escape always lands in the middle of the search.
    std::atomic<int> filesDone{0};
    w->searchJob().onFileDone = [&]() {
        if (++filesDone < 3) return;
        QElapsedTimer t;
        t.start();
        while (w->tavFind().isRunning() && t.elapsed() < 10000) tav::xSleep(1);
    };
    tftest::LogCapture logs;
    QTest::keyClick(w, Qt::Key_Return);
    QCOMPARE(w->findState(), uint32_t(WinFinder::FIND_CONTENT));
    QTRY_VERIFY(filesDone.load() >= 3);
    // While the worker is held, its results are in the table already, and the progress page keeps
    // reporting what was walked and searched.
    QTRY_COMPARE(w->panelResults()->model()->rowCount(), 3);
    QVERIFY(w->stacked()->isShowing(w->panelResults()));
    QCOMPARE(w->findState(), uint32_t(WinFinder::FIND_CONTENT));
    QTRY_VERIFY2(w->labelContent()->text().startsWith(QStringLiteral("Folders: 1, files: 3")), qPrintable(w->labelContent()->text()));
    const bool wasRunning = w->tavFind().isRunning();
    QTest::keyClick(w, Qt::Key_Escape);
    const int pageAfterEscape = w->findPage();
    const uint32_t stateAfterEscape = w->findState();
    QVERIFY(wasRunning);
    QCOMPARE(pageAfterEscape, int(WinFinder::PAGE_FILTER));
    QCOMPARE(stateAfterEscape, uint32_t(WinFinder::FIND_IDLE));
    QVERIFY(logs.contains(QStringLiteral("TavFind::stop_search - will stop now")));
    // The stopped search still ends on the done page, with what it found so far.
    QTRY_COMPARE(w->findPage(), int(WinFinder::PAGE_DONE));
    QCOMPARE(w->findState(), uint32_t(WinFinder::FIND_DONE));
    const int found = w->panelResults()->model()->rowCount();
    // Each worker holds once three files are done: at most one more file per further worker.
    QVERIFY2(found >= 2 && found <= 3 + QThread::idealThreadCount(), qPrintable(QString::number(found)));
    w->searchJob().onFileDone = nullptr;
    // The summary says the search was cancelled and how much of it was searched.
    const QString searchedFiles = QString::number(w->tavFind().workerStats().countFiles.load());
    QTRY_VERIFY2(w->labelDone()->text().startsWith(QStringLiteral("Cancelled: %1 of 300 files searched => ").arg(searchedFiles)),
                 qPrintable(w->labelDone()->text()));
    QVERIFY(w->labelDone()->text().contains(QStringLiteral(", files-match:%1, match-total:%2 - ").arg(found).arg(tav::format1000(found * 200))));
    QVERIFY(w->stacked()->isShowing(w->panelResults()));
    tavFinder::cfg().countThreads = threads;
    setBits(w, 0);
    closeNow(w);
}

// A result holds its first marks only; the preview and an export show every hit.
void TestSearchWindow::resultsKeepFirstMarksAndShowAll() {
    QPointer<WinFinder> w = open(abs("many"));
    QTRY_COMPARE(w->treeView()->selectedFile().absoluteFilePath(), abs("many"));
    setBits(w, WinFinder::FILTER_CONTENT);
    w->comboContent()->setEditText(QStringLiteral("needle"));
    QTest::keyClick(w, Qt::Key_Return);
    QTRY_COMPARE(w->findPage(), int(WinFinder::PAGE_DONE));
    tavFinder::PanelResults* panel = w->panelResults();
    tavFinder::FileResultModel* m = panel->model();
    QCOMPARE(m->rowCount(), 300);
    QCOMPARE(m->data(m->index(0, 3)).toString(), QStringLiteral("200"));
    QCOMPARE(m->hits(), uint64_t(300 * 200));
    QTRY_VERIFY2(w->labelDone()->text().contains(QStringLiteral("match-total:60,000")), qPrintable(w->labelDone()->text()));
    const tavFinder::FileResult& held = m->fileResultFromRow(1);
    QCOMPARE(held.layer.size(), int(tavFinder::SearchParams::kResultMarks));
    QCOMPARE(held.hits(), uint64_t(200));

    QVERIFY(panel->tableResult()->selectRow(1, true));
    auto* text = dynamic_cast<tav::PreviewAscii*>(panel->container()->previewByExtension(QStringLiteral("txt")));
    QVERIFY(text && text->get_XTextView());
    QCOMPARE(text->file_info().absoluteFilePath(), held.fileInfo.absoluteFilePath());
    tav::find::XRamLayer* layer = text->get_XTextView()->layers().layer_by_ID(tavFinder::PanelResults::LAYER_RESULT);
    QVERIFY(layer);
    QTRY_COMPARE(layer->size(), 200);
    QVERIFY(layer->isComplete());
    QCOMPARE(layer->at(199).pos(), qint64(199 * 7));
    QCOMPARE(layer->active_mark_index(), 0);
    QCOMPARE(QColor::fromRgba(layer->color_background()), QColor(Qt::green));

    tftest::TestDir out;
    bool finished = false;
    w->export_results(out.abs("all.json"), [&](bool, const QString&) { finished = true; });
    QTRY_VERIFY_WITH_TIMEOUT(finished, 20000);
    QFile json(out.abs("all.json"));
    QVERIFY(json.open(QIODevice::ReadOnly));
    int hits = 0;
    for (const QJsonValue f : QJsonDocument::fromJson(json.readAll()).object().value("files").toArray())
        hits += f.toObject().value("hits").toArray().size();
    QCOMPARE(hits, 300 * 200);
    setBits(w, 0);
    closeNow(w);
}

void TestSearchWindow::fileOnlySearch() {
    // A fresh window: no content search before, so the summary's pattern is empty.
    QPointer<WinFinder> w = open(abs("docs/one.txt"));
    QTRY_COMPARE(w->treeView()->selectedFile().absoluteFilePath(), abs("docs/one.txt"));
    setBits(w, WinFinder::FILTER_PATTERN);
    w->comboPattern()->setEditText(QStringLiteral("*.txt"));
    tftest::LogCapture logs;
    w->on_find();
    // A selected file searches its folder.
    QVERIFY(logs.contains(QStringLiteral("WinFinder::on_find - <") + abs("docs/one.txt") + QStringLiteral("> not dir, go one level up")));
    QTRY_COMPARE(w->findPage(), int(WinFinder::PAGE_FILE_RESULTS));
    QTRY_COMPARE(w->labelFileTotals()->text(), QStringLiteral("files: total:4, files match:2"));
    QCOMPARE(w->labelFileFilter()->text(), w->currentFilter().toString(false));
    QVERIFY(w->labelFileFilter()->text().contains(QStringLiteral("*.txt")));
    QVERIFY(!w->timerProgress().isActive());

    tavFinder::PanelResults* panel = w->panelResults();
    QVERIFY(w->stacked()->isShowing(panel));
    QVERIFY(!panel->flagContent);
    QCOMPARE(panel->stack()->currentWidget(), static_cast<QWidget*>(panel->summaryPanel()));
    tavFinder::FileResultModel* m = panel->model();
    QCOMPARE(m->rowCount(), 2);
    QCOMPARE(m->fromRow(0).absoluteFilePath(), abs("docs/none.txt"));
    QCOMPARE(m->fromRow(1).absoluteFilePath(), abs("docs/one.txt"));
    QVERIFY(panel->tableResult()->isColumnHidden(3));
    QCOMPARE(panel->tableResult()->activeColumn(), 4);
    const QString summary = panel->browser()->toPlainText();
    // A search by name reports files, and the folder it searched.
    QVERIFY2(summary.contains(QStringLiteral("2 files found")) && !summary.contains(QStringLiteral("Pattern")), qPrintable(summary));
    QVERIFY(summary.contains(QStringLiteral("Path:") + abs("docs")));
    QVERIFY(summary.contains(QStringLiteral("Files total:4, found in files:2")));
    QVERIFY(w->comboPattern()->get_string_items().contains(QStringLiteral("*.txt")));
    QVERIFY(logs.contains(QStringLiteral("view:[2] {0x")));

    // Nothing matching: the page still comes, with 0 files.
    w->comboPattern()->setEditText(QStringLiteral("*.nothing"));
    w->treeView()->setFocus();
    QTest::keyClick(w, Qt::Key_Return);
    QTRY_COMPARE(w->labelFileTotals()->text(), QStringLiteral("files: total:4, files match:0"));
    QCOMPARE(m->rowCount(), 0);
    QTRY_COMPARE(w->findPage(), int(WinFinder::PAGE_FILE_RESULTS));

    // Selecting a listed file shows it in the panel's previews; "Back" ends it.
    w->comboPattern()->setEditText(QStringLiteral("one*"));
    QTest::keyClick(w, Qt::Key_Return);
    QTRY_COMPARE(m->rowCount(), 1);
    logs.clear();
    QVERIFY(panel->tableResult()->selectRow(0, true));
    QVERIFY(logs.contains(QStringLiteral("PanelResults::on_jump_to_result_simple")));
    QCOMPARE(panel->stack()->currentWidget(), static_cast<QWidget*>(panel->container()));
    w->on_escape_key();
    QCOMPARE(w->findPage(), int(WinFinder::PAGE_FILTER));
    setBits(w, 0);
    closeNow(w);
}

void TestSearchWindow::refusedAndCancelledSearches() {
    QPointer<WinFinder> w = open(abs("docs"));
    QTRY_COMPARE(w->treeView()->selectedFile().absoluteFilePath(), abs("docs"));
    setBits(w, WinFinder::FILTER_CONTENT);
    w->buttonRegEx()->click();
    w->comboContent()->setEditText(QStringLiteral("([a-z]"));
    tftest::LogCapture logs;
    QTest::keyClick(w, Qt::Key_Return);
    // Refused: no scan, the filter page stays, the box blinks red and comes back.
    QVERIFY(logs.containsLine(QStringLiteral("WinFinder::on_find, !filter")));
    QVERIFY(!logs.contains(QStringLiteral("filterCurrent:")));
    QCOMPARE(w->findPage(), int(WinFinder::PAGE_FILTER));
    QCOMPARE(w->findState(), uint32_t(WinFinder::FIND_IDLE));
    QVERIFY(!w->threadScanDir().isActive());
    QLineEdit* edit = w->comboContent()->lineEdit();
    QTRY_VERIFY(edit->styleSheet().contains(QStringLiteral("#d32f2f")));
    QVERIFY(QApplication::focusWidget() == edit || QApplication::focusWidget() == w->comboContent());
    QTRY_VERIFY_WITH_TIMEOUT(!edit->styleSheet().contains(QStringLiteral("#d32f2f")), 2000);
    QVERIFY(w->comboContent()->get_string_items().isEmpty() || !w->comboContent()->get_string_items().contains("([a-z]"));
    w->buttonRegEx()->click();

    // Escape after the scan, before its end is handled: the end only logs.
    setBits(w, 0);
    logs.clear();
    w->on_find();
    QVERIFY(w->threadScanDir().waitDone(10000));
    w->on_escape_key();
    QTRY_VERIFY(logs.contains(QStringLiteral("WinFinder_find::on_find_dir_scanned - CANCEL")));
    QCOMPARE(w->findPage(), int(WinFinder::PAGE_FILTER));
    QCOMPARE(w->findState(), uint32_t(WinFinder::FIND_IDLE));
    QVERIFY(!logs.contains(QStringLiteral("PanelResults::setFileResultsSimple")));

    // Nothing selected and no root folder: nothing happens.
    w->treeView()->setCurrentIndex(QModelIndex());
    QVERIFY(!w->treeView()->selectedFile().exists());
    {
        logs.clear();
        w->on_find();
        QVERIFY(logs.contains(QStringLiteral("WinFinder::on_find - folder set to <>")));
        QVERIFY(logs.contains(QStringLiteral("WinFinder::on_find - <> 404")));
        QCOMPARE(w->findPage(), int(WinFinder::PAGE_FILTER));
        // The configured root takes over.
        tavFinder::cfg().sRootFolder = abs("docs/sub");
        w->on_find();
        QVERIFY(logs.contains(QStringLiteral("WinFinder::on_find - <") + abs("docs/sub") + QStringLiteral(">")));
        QTRY_COMPARE(w->findPage(), int(WinFinder::PAGE_FILE_RESULTS));
        QTRY_COMPARE(w->labelFileTotals()->text(), QStringLiteral("files: total:1, files match:1"));
        tavFinder::cfg().sRootFolder.clear();
    }
    closeNow(w);
}

void TestSearchWindow::ignoreFilesSwitch() {
    tree.file(QStringLiteral("repo/.gitignore"), "skip.txt\nbuild/\n");
    tree.file(QStringLiteral("repo/keep.txt"), "needle\n");
    tree.file(QStringLiteral("repo/skip.txt"), "needle\n");
    tree.file(QStringLiteral("repo/build/out.txt"), "needle\n");
    QPointer<WinFinder> w = open(abs("repo"));
    QTRY_COMPARE(w->treeView()->selectedFile().absoluteFilePath(), abs("repo"));
    setBits(w, WinFinder::FILTER_CONTENT);
    w->comboContent()->setEditText(QStringLiteral("needle"));
    const auto found = [&]() {
        w->on_find();
        if (!QTest::qWaitFor([&]() { return w->findPage() == WinFinder::PAGE_DONE; }, 20000)) return QStringList{"timeout"};
        QStringList names;
        for (int r = 0; r < w->panelResults()->model()->rowCount(); ++r) names << w->panelResults()->model()->fromRow(r).fileName();
        names.sort();
        return names;
    };
    QCOMPARE(found(), (QStringList{"keep.txt", "out.txt", "skip.txt"}));
    // On, what the ignore file names is left out, its folders not entered; the choice is kept with the window.
    QVERIFY(w->buttonIgnoreFiles()->isCheckable() && !w->buttonIgnoreFiles()->isChecked());
    w->buttonIgnoreFiles()->click();
    QCOMPARE(found(), QStringList{"keep.txt"});
    // A name-only search obeys it too.
    setBits(w, WinFinder::FILTER_PATTERN);
    w->comboPattern()->setEditText(QStringLiteral("*.txt"));
    w->on_find();
    QTRY_COMPARE(w->labelFileTotals()->text(), QStringLiteral("files: total:1, files match:1"));
    w->buttonIgnoreFiles()->click();
    w->comboPattern()->setEditText(QString());
    // Stop after N files: the search ends with N rows and says why.
    setBits(w, WinFinder::FILTER_CONTENT);
    w->spinMaxFiles()->setValue(2);
    QCOMPARE(found().size(), 2);
    QTRY_VERIFY2(w->labelDone()->text().contains(QStringLiteral("stopped after 2 files with hits")), qPrintable(w->labelDone()->text()));
    w->spinMaxFiles()->setValue(0);
    QCOMPARE(found().size(), 3);
    QTRY_VERIFY2(w->labelDone()->text().contains(QStringLiteral("files-match:3,")), qPrintable(w->labelDone()->text()));
    QVERIFY2(!w->labelDone()->text().contains(QStringLiteral("stopped")), qPrintable(w->labelDone()->text()));
    setBits(w, 0);
    closeNow(w);
}

void TestSearchWindow::savedSearches() {
    QPointer<WinFinder> w = open(abs("docs"));
    QTRY_COMPARE(w->treeView()->selectedFile().absoluteFilePath(), abs("docs"));
    setBits(w, WinFinder::FILTER_CONTENT | WinFinder::FILTER_PATTERN | WinFinder::FILTER_SIZE);
    w->comboContent()->setEditText(QStringLiteral("needle"));
    w->comboPattern()->setEditText(QStringLiteral("*.txt,*.log"));
    w->comboSizeArea()->setSelected(tav::XFileFilter::GREATER_EQUAL);
    w->size1()->setText(QStringLiteral("10"));
    w->buttonMatchCase()->setChecked(true);
    QVERIFY(w->save_search(QStringLiteral("needles")));
    // Everything the panel says is kept under the name, in a store of its own.
    QList<tavFinder::SavedSearch> all = tavFinder::SavedSearches::load();
    QCOMPARE(all.size(), 1);
    const tavFinder::SavedSearch kept = all.first();
    QCOMPARE(kept.folder, abs("docs"));
    QCOMPARE(kept.content, QStringLiteral("needle"));
    QCOMPARE(kept.pattern, QStringLiteral("*.txt,*.log"));
    QCOMPARE(kept.sizeArea, uint32_t(tav::XFileFilter::GREATER_EQUAL));
    QCOMPARE(kept.size1, uint64_t(10));
    QVERIFY(kept.matchCase && !kept.wholeWords);
    // The menu lists it; choosing it fills a changed panel again and starts the search.
    QMenu menu;
    w->fill_saved_searches_menu(menu);
    QAction* entry = nullptr;
    for (QAction* a : menu.actions())
        if (a->text() == QStringLiteral("needles")) entry = a;
    QVERIFY(entry);
    setBits(w, 0);
    w->comboContent()->setEditText(QStringLiteral("other"));
    w->buttonMatchCase()->setChecked(false);
    entry->trigger();
    QCOMPARE(w->comboContent()->currentText(), QStringLiteral("needle"));
    QCOMPARE(w->filterFlags().flags() & WinFinder::FILTER_SIZE, uint32_t(WinFinder::FILTER_SIZE));
    QVERIFY(w->buttonMatchCase()->isChecked());
    QTRY_COMPARE(w->findPage(), int(WinFinder::PAGE_DONE));
    QStringList names;
    for (int r = 0; r < w->panelResults()->model()->rowCount(); ++r) names << w->panelResults()->model()->fromRow(r).fileName();
    names.sort();
    QCOMPARE(names, (QStringList{"most.log", "one.txt"}));
    // The find command runs it without a window, with the same files.
    QProcess find;
    find.setProcessEnvironment(env.processEnvironment(false));
    find.start(tftest::TestEnv::programPath(), {"find", "--saved", "needles"});
    QVERIFY(find.waitForFinished(30000));
    QStringList printed = QString::fromUtf8(find.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    QVERIFY(!printed.isEmpty());
    printed.removeLast();
    QCOMPARE(printed.size(), 2);
    QVERIFY(printed.join('\n').contains(abs("docs/sub/most.log")) && printed.join('\n').contains(abs("docs/one.txt")));
    // Renamed and deleted as the editor does; a store that does not parse is moved aside.
    QVERIFY(tavFinder::SavedSearches::rename(all, QStringLiteral("needles"), QStringLiteral("pins")));
    QVERIFY(!tavFinder::SavedSearches::rename(all, QStringLiteral("missing"), QStringLiteral("x")));
    QVERIFY(tavFinder::SavedSearches::save(all));
    QCOMPARE(tavFinder::SavedSearches::load().first().name, QStringLiteral("pins"));
    QVERIFY(tavFinder::SavedSearches::remove(all, QStringLiteral("pins")) && tavFinder::SavedSearches::save(all));
    QVERIFY(tavFinder::SavedSearches::load().isEmpty());
    QFile broken(tavFinder::SavedSearches::storePath());
    QVERIFY(broken.open(QIODevice::WriteOnly) && broken.write("<SavedSearches><Search name=") > 0);
    broken.close();
    QVERIFY(tavFinder::SavedSearches::load().isEmpty());
    QVERIFY(!QFileInfo::exists(tavFinder::SavedSearches::storePath()));
    const QStringList aside = QFileInfo(tavFinder::SavedSearches::storePath()).dir().entryList({QStringLiteral("saved-searches.xml*.bad")});
    QCOMPARE(aside.size(), 1);
    setBits(w, 0);
    closeNow(w);
}

void TestSearchWindow::reportEscapesNamesAndLines() {
    // The report escapes what file names and lines hold: no script of theirs runs, and the
    // page parses with its tags balanced.
    tree.file(QStringLiteral("scr/<script>x.txt"), "<script>alert(1)</script> needle\n");
    tree.file(QStringLiteral("scr/plain.txt"), "a needle & more\n");
    QPointer<WinFinder> w = open(abs("scr"));
    QTRY_COMPARE(w->treeView()->selectedFile().absoluteFilePath(), abs("scr"));
    setBits(w, WinFinder::FILTER_CONTENT);
    w->comboContent()->setEditText(QStringLiteral("needle"));
    w->on_find();
    QTRY_COMPARE(w->findPage(), int(WinFinder::PAGE_DONE));
    QTRY_COMPARE(w->panelResults()->model()->rowCount(), 2);
    tftest::TestDir out;
    bool finished = false;
    w->export_results(out.abs("s.html"), [&](bool, const QString&) { finished = true; });
    QTRY_VERIFY(finished);
    QFile scripted(out.abs("s.html"));
    QVERIFY(scripted.open(QIODevice::ReadOnly));
    const QByteArray page = scripted.readAll();
    QVERIFY(!page.contains("<script"));
    QVERIFY(page.contains("&lt;script&gt;x.txt") && page.contains("&lt;script&gt;alert(1)&lt;/script&gt; <mark>needle</mark>"));
    if (!QStandardPaths::findExecutable(QStringLiteral("python3")).isEmpty()) {
        QProcess py;
        py.start(QStringLiteral("python3"), {QStringLiteral("-c"), QStringLiteral(
            "import sys\nfrom html.parser import HTMLParser\nvoid={'meta','br'}\nst=[]\nbad=[]\n"
            "class P(HTMLParser):\n"
            "  def handle_starttag(s,t,a):\n    (t in void) or st.append(t)\n"
            "  def handle_endtag(s,t):\n    (st and st[-1]==t and st.pop()) or bad.append(t)\n"
            "P().feed(sys.stdin.read())\nprint('ok' if not st and not bad else ('bad', st, bad))")});
        py.waitForStarted();
        py.write(page);
        py.closeWriteChannel();
        QVERIFY(py.waitForFinished(30000));
        QCOMPARE(QString::fromUtf8(py.readAllStandardOutput()).trimmed(), QStringLiteral("ok"));
    }
    QVERIFY(page.contains("a <mark>needle</mark> &amp; more"));
    setBits(w, 0);
    closeNow(w);

}

QTEST_MAIN(TestSearchWindow)
void TestSearchWindow::documentsAndArchives() {
    // A compressed log and a member of a compressed tar, made with the system's tools.
    tree.file("arch/src/inner/a.txt", "needle here needle\n");
    tree.file("arch/notes.log", "alpha needle beta\n");
    QProcess tar;
    tar.setWorkingDirectory(abs("arch/src"));
    tar.start(QStringLiteral("tar"), {QStringLiteral("czf"), abs("arch/pack.tar.gz"), QStringLiteral("inner")});
    QVERIFY(tar.waitForFinished(20000) && tar.exitCode() == 0);
    QProcess gz;
    gz.start(QStringLiteral("gzip"), {abs("arch/notes.log")});
    QVERIFY(gz.waitForFinished(20000) && gz.exitCode() == 0);
    QDir(abs("arch/src")).removeRecursively();

    QPointer<WinFinder> w = open(abs("arch"));
    QTRY_COMPARE(w->treeView()->selectedFile().absoluteFilePath(), abs("arch"));
    setBits(w, WinFinder::FILTER_CONTENT);
    w->comboContent()->setEditText(QStringLiteral("needle"));
    // Off: the compressed bytes hold no "needle".
    w->buttonDocuments()->setChecked(false);
    QTest::keyClick(w->comboContent(), Qt::Key_Return);
    QTRY_COMPARE(w->findPage(), int(WinFinder::PAGE_DONE));
    QCOMPARE(w->labelDone()->text(), QStringLiteral("Nothing found"));
    w->on_escape_key();
    // On: a row for the member (its name, the archive in its path) and one for the log.
    w->buttonDocuments()->setChecked(true);
    QTest::keyClick(w->comboContent(), Qt::Key_Return);
    QTRY_COMPARE(w->findPage(), int(WinFinder::PAGE_DONE));
    tavFinder::PanelResults* panel = w->panelResults();
    tavFinder::FileResultModel* m = panel->model();
    QTRY_COMPARE(m->rowCount(), 2);
    QCOMPARE(m->data(m->index(0, 0)).toString(), QStringLiteral("a.txt"));
    QCOMPARE(m->data(m->index(0, 3)).toString(), QStringLiteral("2"));
    QCOMPARE(m->data(m->index(0, 4)).toString(), abs("arch/pack.tar.gz") + QStringLiteral("!/inner"));
    QCOMPARE(m->data(m->index(1, 0)).toString(), QStringLiteral("notes.log.gz"));
    // Sorted by name, the member goes by its own name ("a.txt" before "notes.log.gz", not "pack…").
    m->sort(0, true);
    QCOMPARE(m->data(m->index(0, 0)).toString(), QStringLiteral("a.txt"));
    m->sort(0, false);
    QCOMPARE(m->data(m->index(0, 0)).toString(), QStringLiteral("notes.log.gz"));
    m->sort(3, false);
    // The member's text is shown with its hits marked where they were found.
    QVERIFY(panel->tableResult()->selectRow(0, true));
    auto* text = dynamic_cast<tav::PreviewAscii*>(panel->container()->previewByExtension(QStringLiteral("txt")));
    QVERIFY(text && text->get_XTextView());
    QTRY_COMPARE(text->get_XTextView()->visibleRowTexts().value(0), QStringLiteral("needle here needle"));
    tav::find::XRamLayer* layer = text->get_XTextView()->layers().layer_by_ID(tavFinder::PanelResults::LAYER_RESULT);
    QVERIFY(layer && layer->size() == 2);
    QCOMPARE(layer->at(1).pos(), qint64(12));
    QVERIFY(panel->tableResult()->selectRow(1, true));
    QTRY_COMPARE(text->get_XTextView()->visibleRowTexts().value(0), QStringLiteral("alpha needle beta"));
    // A double click opens the details window on the member's text, hits marked.
    const size_t windows = tav::XTools::getAbstractWindows(true, true).size();
    panel->tableResult()->eventDoubleClick().fire(m->index(0, 0));
    QTRY_COMPARE(tav::XTools::getAbstractWindows(true, true).size(), windows + 1);
    QPointer<tavFinder::WinDetails> details = qobject_cast<tavFinder::WinDetails*>(tav::XTools::getAbstractWindows(true, true).back()->widget());
    QVERIFY(details);
    QCOMPARE(details->windowTitle(), abs("arch/pack.tar.gz") + QStringLiteral("!/inner/a.txt"));
    tav::viewText::XTextView* dv = details->panelText()->textView();
    QTRY_COMPARE(dv->visibleRowTexts().value(0), QStringLiteral("needle here needle"));
    QVERIFY(dv->layers().layer_by_ID(1000) && dv->layers().layer_by_ID(1000)->size() == 2);
    details->close();
    QTRY_VERIFY(details.isNull());
    // Actions on a member as a file of its own are off; copying the path takes the archive.
    tavFinder::cfg().flag_tf_read_only = false;
    {
        tav::XMenu menu(nullptr);
        w->fill_contextMenu_FileResults(menu, m->fileResultFromRow(0), w->tavFind().contentFilter());
        for (QAction* a : menu.actions()) {
            if (a->text() == QStringLiteral("Rename") || a->text() == QStringLiteral("Delete") || a->text() == QStringLiteral("Terminal"))
                QVERIFY2(!a->isEnabled(), qPrintable(a->text()));
            if (a->text() == QStringLiteral("Copy Path to Clipboard")) QVERIFY(a->isEnabled());
        }
    }
    tavFinder::cfg().flag_tf_read_only = true;
    w->buttonDocuments()->setChecked(false);
    setBits(w, 0);
    closeNow(w);
}

#include "test_search_window.moc"

// The query language from the panel: a bad expression says where and why, the
// two switches reach the filter, are kept with the window and decide the hits.
void TestSearchWindow::queryLanguageAndSwitchesInThePanel() {
    QPointer<WinFinder> w = open(abs("docs"));
    QTRY_COMPARE(w->treeView()->selectedFile().absoluteFilePath(), abs("docs"));
    setBits(w, WinFinder::FILTER_CONTENT);
    QVERIFY(w->buttonWholeWords()->isVisible() && w->buttonMatchCase()->isVisible());
    QVERIFY(w->buttonWholeWords()->isCheckable() && !w->buttonWholeWords()->toolTip().isEmpty());
    QVERIFY(w->buttonMatchCase()->toolTip().startsWith(QStringLiteral("Match case")));

    w->comboContent()->setEditText(QStringLiteral("needle NEAR (hay"));
    tftest::LogCapture logs;
    QTest::keyClick(w, Qt::Key_Return);
    QCOMPARE(w->findState(), uint32_t(WinFinder::FIND_IDLE));
    QVERIFY(!w->threadScanDir().isActive());
    QCOMPARE(w->comboContent()->toolTip(), QStringLiteral("Character 13: unbalanced parenthesis"));
    QCOMPARE(w->statusLabel()->text(), QStringLiteral("Character 13: unbalanced parenthesis"));
    QVERIFY(logs.linesAtLevel(8).contains(QStringLiteral("WinFinder::filter_from_GUI, character 13: unbalanced parenthesis")));
    // Editing the text brings the usual tip back.
    w->comboContent()->setEditText(QStringLiteral("Needle"));
    QCOMPARE(w->comboContent()->toolTip(), QStringLiteral("Type simple expression"));

    w->buttonMatchCase()->click();
    tav::find::XFilter f = w->filter_from_GUI();
    QVERIFY(f.isUsable() && f.contentFilter.isMatchCase() && !f.contentFilter.isWholeWords());
    w->buttonMatchCase()->click();
    w->buttonWholeWords()->click();
    QVERIFY(w->comboScope()->setSelected(0));
    // Two needles with no word between them: only the .log file has such pairs.
    w->comboContent()->setEditText(QStringLiteral("needle NEAR/0 needle -nothing"));
    QTest::keyClick(w, Qt::Key_Return);
    QTRY_COMPARE(w->findPage(), int(WinFinder::PAGE_DONE));
    QTRY_VERIFY2(w->labelDone()->text().contains(QStringLiteral("files-match:1, match-total:5")), qPrintable(w->labelDone()->text()));
    tavFinder::FileResultModel* m = w->panelResults()->model();
    QCOMPARE(m->rowCount(), 1);
    QCOMPARE(m->fromRow(0).fileName(), QStringLiteral("most.log"));

    // The switches stay with the window.
    closeNow(w);
    QVERIFY(windowNode()->isBool(QStringLiteral("flagWholeWords"), false));
    QVERIFY(!windowNode()->isBool(QStringLiteral("flagMatchCase"), true));
    QPointer<WinFinder> again = open(abs("docs"));
    QVERIFY(again->buttonWholeWords()->isChecked());
    QVERIFY(!again->buttonMatchCase()->isChecked());
    again->buttonWholeWords()->click();
    again->comboScope()->setSelected(tavFinder::cfg().scope);
    setBits(again, 0);
    closeNow(again);
    windowNode()->removeNode(windowNode()->query(QStringLiteral("SearchHistory")), true);
}
