// The result model and the results panel on their own: columns, sorting in
// both modes, the accessors for rows outside the model, the header-click rule
// and the HTML summary of a file-only search.
#include "common/TestEnv.h"

#include "base/find/XFindStats.h"
#include "base/util/Format.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/panel/XPanelStacked.h"
#include "gui/widgets/XBrowser.h"
#include "gui/widgets/XTableViewClassic.h"
#include "src/dir/XContainerPreviews.h"
#include "src/find/TavFind.h"
#include "src/gui/FileResultModel.h"
#include "src/gui/PanelResults.h"

#include <QDateTime>
#include <QFile>
#include "base/util/NaturalCompare.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QtTest>

using tavFinder::FileResult;
using tavFinder::FileResultModel;
using tavFinder::PanelResults;

namespace {
FileResult result(const QString& path, int hits) {
    tav::find::XRamLayer layer;
    for (int i = 0; i < hits; ++i) layer.add_mark(tav::find::XRam(i * 10, 3));
    return FileResult(layer, QFileInfo(path));
}
QStringList column(const QAbstractItemModel& m, int c) {
    QStringList out;
    for (int r = 0; r < m.rowCount(); ++r) out << m.data(m.index(r, c)).toString();
    return out;
}
QStringList names(const FileResultModel& m) {
    QStringList out;
    for (int r = 0; r < m.rowCount(); ++r) out << m.fromRow(r).fileName();
    return out;
}
}

class TestResultModel : public QObject {
    Q_OBJECT
    tftest::TestEnv env;
    tav::KernelGUI kernel{QStringLiteral("talvoEngine"), QStringLiteral("app"), QStringList(), true};
    tftest::TestDir dir;
    QString p(const QString& rel) const { return QFileInfo(dir.abs(rel)).absoluteFilePath(); }
    void setTime(const QString& rel, const QDateTime& t) {
        QFile f(p(rel));
        QVERIFY(f.open(QIODevice::ReadWrite));
        QVERIFY(f.setFileTime(t, QFileDevice::FileModificationTime));
    }

private slots:
    void initTestCase();
    void hitsModeColumnsAndSorting();
    void basicModeSortingAndAccessors();
    void panelSortsAndHidesHits();
    void headerClicksToggleTheOrder();
    void liveBatchesKeepSortAndSelection();
    void summaryOfAFileOnlySearch();
};

void TestResultModel::initTestCase() {
    dir.file(QStringLiteral("x/beta.txt"), QByteArray(1500, 'b'));
    dir.file(QStringLiteral("x/Alpha.txt"), QByteArray(20, 'a'));
    dir.file(QStringLiteral("y/gamma.txt"), QByteArray(7, 'g'));
    dir.file(QStringLiteral("y/a.txt"), "a");
    dir.file(QStringLiteral("y/A.TXT"), "A");
    setTime(QStringLiteral("x/beta.txt"), QDateTime(QDate(2020, 5, 1), QTime(10, 30)));
    setTime(QStringLiteral("x/Alpha.txt"), QDateTime(QDate(2022, 1, 2), QTime(8, 5)));
    setTime(QStringLiteral("y/gamma.txt"), QDateTime(QDate(2021, 7, 3), QTime(23, 59)));
}

void TestResultModel::hitsModeColumnsAndSorting() {
    FileResultModel m;
    std::vector<FileResult> ar{result(p("x/beta.txt"), 2), result(p("x/Alpha.txt"), 1234), result(p("y/gamma.txt"), 7)};
    m.setRowCount(int(ar.size()));
    m.setColumnCount(FileResultModel::COLUMNS);
    m.setFileResults(std::move(ar));
    QVERIFY(ar.empty());
    QVERIFY(!m.isBasicMode());
    QCOMPARE(m.hits(), 1243u);

    // Row texts: name, grouped size, date, grouped hits, folder only.
    QCOMPARE(m.data(m.index(0, 0)).toString(), QStringLiteral("beta.txt"));
    QCOMPARE(m.data(m.index(0, 1)).toString(), tav::format1000(int64_t(1500)));
    QCOMPARE(m.data(m.index(0, 2)).toString(), QStringLiteral("2020/05/01 - 10:30"));
    QCOMPARE(m.data(m.index(1, 3)).toString(), tav::format1000(int64_t(1234)));
    QCOMPARE(m.data(m.index(0, 4)).toString(), p("x"));
    // Sizes and hits are right-aligned, other columns take the view's default.
    QCOMPARE(m.data(m.index(0, 1), Qt::TextAlignmentRole).toInt() & Qt::AlignHorizontal_Mask, int(Qt::AlignRight));
    QCOMPARE(m.data(m.index(0, 3), Qt::TextAlignmentRole).toInt() & Qt::AlignHorizontal_Mask, int(Qt::AlignRight));
    QVERIFY(!m.data(m.index(0, 0), Qt::TextAlignmentRole).isValid());
    // Rows alternate between two backgrounds; only the name has an icon.
    QCOMPARE(m.data(m.index(0, 2), Qt::BackgroundRole).value<QBrush>(), QApplication::palette().alternateBase());
    QCOMPARE(m.data(m.index(1, 2), Qt::BackgroundRole).value<QBrush>(), QApplication::palette().base());
    QVERIFY(!m.data(m.index(0, 0), Qt::DecorationRole).value<QIcon>().isNull());
    QVERIFY(!m.data(m.index(0, 1), Qt::DecorationRole).isValid());
    QVERIFY(!m.data(m.index(0, 0), Qt::ToolTipRole).isValid());
    QVERIFY(!m.data(m.index(3, 0)).isValid());
    QVERIFY(!m.data(QModelIndex()).isValid());

    m.sort(FileResultModel::COL_HITS, false);
    QCOMPARE(names(m), (QStringList{"Alpha.txt", "gamma.txt", "beta.txt"}));
    m.sort(FileResultModel::COL_HITS, true);
    QCOMPARE(names(m), (QStringList{"beta.txt", "gamma.txt", "Alpha.txt"}));
    // Names ignore case: "Alpha" before "beta" although 'A' < 'b' < 'a'.
    m.sort(FileResultModel::COL_NAME, true);
    QCOMPARE(names(m), (QStringList{"Alpha.txt", "beta.txt", "gamma.txt"}));
    m.sort(FileResultModel::COL_NAME, false);
    QCOMPARE(names(m), (QStringList{"gamma.txt", "beta.txt", "Alpha.txt"}));
    m.sort(FileResultModel::COL_SIZE, true);
    QCOMPARE(names(m), (QStringList{"gamma.txt", "Alpha.txt", "beta.txt"}));
    m.sort(FileResultModel::COL_DATE, false);
    QCOMPARE(names(m), (QStringList{"Alpha.txt", "gamma.txt", "beta.txt"}));
    // By path: the folder first, then the name within it.
    m.sort(FileResultModel::COL_PATH, true);
    QCOMPARE(names(m), (QStringList{"Alpha.txt", "beta.txt", "gamma.txt"}));
    // The hits travel with their rows.
    QCOMPARE(m.fileResultFromRow(0).layer.size(), 1234);
    QCOMPARE(column(m, 3), (QStringList{tav::format1000(int64_t(1234)), "2", "7"}));

    // Rows outside the model give shared empty values and a log line.
    tftest::LogCapture logs;
    FileResult& none = m.fileResultFromRow(3);
    QVERIFY(none.fileInfo.filePath().isEmpty() && none.layer.isEmpty());
    none.layer.add_mark(tav::find::XRam(1, 1));   // a caller scribbling on it must not spoil the next one
    QVERIFY(m.fileResultFromRow(-1).layer.isEmpty());
    QVERIFY(m.fromRow(7).filePath().isEmpty());
    QVERIFY(logs.contains(QStringLiteral("FileResultModel::fileResultFromRow, row:3, but rowCount():3")));
    QVERIFY(logs.contains(QStringLiteral("FileResultModel::fromRow, row:7, but rowCount():3")));
}

void TestResultModel::basicModeSortingAndAccessors() {
    tftest::LogCapture logs;
    FileResultModel m;
    std::vector<QFileInfo> ar{QFileInfo(p("y/gamma.txt")), QFileInfo(p("y/a.txt")), QFileInfo(p("x/beta.txt")),
                              QFileInfo(p("y/A.TXT"))};
    m.setRowCount(int(ar.size()));
    m.setColumnCount(FileResultModel::COLUMNS);
    m.setFiles(std::move(ar));
    QVERIFY(m.isBasicMode() && ar.empty());

    m.sort(FileResultModel::COL_PATH, true);
    const QStringList byPath = names(m);
    QCOMPARE(byPath.first(), QStringLiteral("beta.txt"));
    QCOMPARE(byPath.last(), QStringLiteral("gamma.txt"));
    // a.txt and A.TXT are equal by path and by name; both are there, in either order.
    QCOMPARE(QSet<QString>(byPath.begin() + 1, byPath.begin() + 3), (QSet<QString>{"a.txt", "A.TXT"}));
    // The hits column means nothing here: its sort is ignored, its text is "0".
    m.sort(FileResultModel::COL_HITS, false);
    QCOMPARE(names(m), byPath);
    QCOMPARE(m.data(m.index(0, 3)).toString(), QStringLiteral("0"));
    QVERIFY(logs.contains(QStringLiteral("FileResultModel::data_simple, SHOULD NOT BE HERE")));
    m.sort(FileResultModel::COL_SIZE, false);
    QCOMPARE(names(m).first(), QStringLiteral("beta.txt"));
    QCOMPARE(m.data(m.index(0, 0)).toString(), QStringLiteral("beta.txt"));

    // Hit accessors are refused in basic mode.
    logs.clear();
    QVERIFY(m.fileResultFromRow(0).fileInfo.filePath().isEmpty());
    QCOMPARE(m.hits(), 0u);
    QCOMPARE(logs.linesAtLevel(4).size(), 2);
    QVERIFY(logs.contains(QStringLiteral("FileResultModel::fileResultFromRow, row:0 - BASIC MODE VORBIDDEN")));
    QVERIFY(logs.contains(QStringLiteral("FileResultModel::hits(), we are in basic mode !")));
    QCOMPARE(m.fromRow(0).fileName(), QStringLiteral("beta.txt"));

    // A view's own sort request reaches the vector and refreshes.
    QSignalSpy reset(&m, &QAbstractItemModel::modelReset);
    m.sort(FileResultModel::COL_NAME, Qt::DescendingOrder);
    QCOMPARE(names(m).first(), QStringLiteral("gamma.txt"));
    QCOMPARE(reset.count(), 1);
}

void TestResultModel::panelSortsAndHidesHits() {
    PanelResults panel;
    panel.resize(900, 400);
    panel.show();
    std::vector<FileResult> ar{result(p("x/beta.txt"), 2), result(p("y/gamma.txt"), 9), result(p("x/Alpha.txt"), 4)};
    panel.setFileResults(ar);
    QVERIFY(ar.empty());
    QVERIFY(panel.flagContent);
    tav::XTableViewClassic* t = panel.tableResult();
    QCOMPARE(t->model(), static_cast<QAbstractItemModel*>(panel.model()));
    QCOMPARE(column(*panel.model(), 3), (QStringList{"9", "4", "2"}));
    QCOMPARE(t->activeColumn(), 3);
    QVERIFY(!t->isColumnHidden(3));
    QCOMPARE(t->model()->headerData(4, Qt::Horizontal).toString(), QStringLiteral("Path"));
    // Columns fit the table: the hits in view whole, the name given what the others leave.
    QHeaderView* hh = t->horizontalHeader();
    QTRY_VERIFY(hh->sectionViewportPosition(3) + hh->sectionSize(3) <= t->viewport()->width());
    QVERIFY(hh->sectionSize(3) >= hh->fontMetrics().horizontalAdvance(QStringLiteral("Hits")));
    QVERIFY(hh->sectionSize(0) >= hh->fontMetrics().horizontalAdvance(QStringLiteral("abcde")));

    std::vector<QFileInfo> files{QFileInfo(p("y/gamma.txt")), QFileInfo(p("x/beta.txt"))};
    panel.setFileResultsSimple(files);
    QVERIFY(!panel.flagContent && files.empty());
    QCOMPARE(names(*panel.model()), (QStringList{"beta.txt", "gamma.txt"}));
    QVERIFY(t->isColumnHidden(3));
    QCOMPARE(t->activeColumn(), 4);
    QVERIFY(!t->isDescending());   // paths A to Z, and the arrow says so

    // A content search after a file-only one shows its hits again.
    std::vector<FileResult> again{result(p("y/a.txt"), 1)};
    panel.setFileResults(again);
    QVERIFY(!t->isColumnHidden(3));

    // The listeners get the row's result or file; rows outside the model nothing.
    std::vector<int> hits;
    QStringList opened;
    panel.eventContextMenuFileResult().add([&](const FileResult& r) { hits.push_back(r.layer.size()); });
    panel.eventOpenFile().add([&](const QFileInfo& fi) { opened << fi.fileName(); });
    panel.tableResult()->eventContextMenu().fire(0);
    panel.tableResult()->eventContextMenu().fire(5);
    QCOMPARE(hits, std::vector<int>{1});
    std::vector<QFileInfo> one{QFileInfo(p("y/gamma.txt"))};
    panel.setFileResultsSimple(one);
    panel.tableResult()->eventDoubleClick().fire(panel.model()->index(0, 0));
    panel.tableResult()->eventDoubleClick().fire(panel.model()->index(3, 0));
    QCOMPARE(opened, QStringList{"gamma.txt"});
}

void TestResultModel::headerClicksToggleTheOrder() {
    PanelResults panel;
    panel.resize(900, 400);
    panel.show();
    QVERIFY(QTest::qWaitForWindowExposed(&panel));
    std::vector<FileResult> ar{result(p("x/beta.txt"), 2), result(p("y/gamma.txt"), 9), result(p("x/Alpha.txt"), 4)};
    panel.setFileResults(ar);
    QHeaderView* h = panel.tableResult()->horizontalHeader();
    auto click = [h](int section) {
        const int x = h->sectionViewportPosition(section) + h->sectionSize(section) / 2;
        QTest::mouseClick(h->viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(x, h->height() / 2));
    };
    tftest::LogCapture logs;
    // Largest first at the start, and the arrow says so.
    QVERIFY(panel.tableResult()->isDescending());
    // The first click on a column sorts it its natural way, the next one reverses it.
    click(3);
    QCOMPARE(column(*panel.model(), 3), (QStringList{"9", "4", "2"}));
    QVERIFY(panel.tableResult()->isDescending());
    QVERIFY(logs.contains(QStringLiteral("PanelResults::onTableHeaderSelected, column:3, sort:DOWN")));
    click(3);
    QCOMPARE(column(*panel.model(), 3), (QStringList{"2", "4", "9"}));
    QVERIFY(!panel.tableResult()->isDescending());
    QVERIFY(logs.contains(QStringLiteral("PanelResults::onTableHeaderSelected, column:3, sort:UP")));
    // Names A to Z whatever the order of the column clicked before.
    click(0);
    QCOMPARE(panel.tableResult()->activeColumn(), 0);
    QCOMPARE(names(*panel.model()), (QStringList{"Alpha.txt", "beta.txt", "gamma.txt"}));
    QVERIFY(!panel.tableResult()->isDescending());
    click(0);
    QCOMPARE(names(*panel.model()), (QStringList{"gamma.txt", "beta.txt", "Alpha.txt"}));
    QVERIFY(panel.tableResult()->isDescending());
    // Sizes and dates largest / newest first on their first click.
    click(1);
    QCOMPARE(names(*panel.model()), (QStringList{"beta.txt", "Alpha.txt", "gamma.txt"}));
    QVERIFY(panel.tableResult()->isDescending());
    click(2);
    QCOMPARE(names(*panel.model()), (QStringList{"Alpha.txt", "gamma.txt", "beta.txt"}));
    QCOMPARE(panel.tableResult()->activeColumn(), 2);
    click(2);
    QCOMPARE(names(*panel.model()).first(), QStringLiteral("beta.txt"));

    // Reading order: case ignored, numbers by value, a total order.
    QStringList words{"file10", "File2", "file1", "b", "A", "a", "file02"};
    std::sort(words.begin(), words.end(), tav::naturalLess);
    QCOMPARE(words, (QStringList{"A", "a", "b", "file1", "File2", "file02", "file10"}));
}

void TestResultModel::liveBatchesKeepSortAndSelection() {
    PanelResults panel;
    panel.resize(900, 200);
    panel.show();
    tav::XTableViewClassic* t = panel.tableResult();
    panel.beginLiveResults(false);
    QCOMPARE(panel.model()->rowCount(), 0);
    std::vector<FileResult> first{result(p("x/beta.txt"), 2), result(p("y/gamma.txt"), 9)};
    panel.addFileResults(first);
    QVERIFY(first.empty());
    QCOMPARE(column(*panel.model(), 3), (QStringList{"9", "2"}));   // most hits first, as the table shows
    // The user picks a row; rows that sort in above it do not take its place on screen.
    t->selectRow(1, false);
    QCOMPARE(panel.model()->fromRow(t->currentRow()).fileName(), QStringLiteral("beta.txt"));
    std::vector<FileResult> more;
    for (int i = 0; i < 40; ++i) more.push_back(result(p("y/a.txt"), 100 + i));
    for (int i = 0; i < 40; ++i) more.push_back(result(p("x/Alpha.txt"), 1));
    const int scrollBefore = t->verticalScrollBar()->value();
    const int yBefore = t->rowViewportPosition(t->currentRow());
    panel.addFileResults(more);
    QCOMPARE(panel.model()->rowCount(), 82);
    QCOMPARE(panel.model()->fromRow(t->currentRow()).fileName(), QStringLiteral("beta.txt"));
    QCOMPARE(t->currentRow(), 41);
    QCOMPARE(t->verticalScrollBar()->value(), scrollBefore + 40);
    QCOMPARE(t->rowViewportPosition(t->currentRow()), yBefore);
    QStringList hits = column(*panel.model(), 3);
    QCOMPARE(hits.first(), QStringLiteral("139"));
    QCOMPARE(hits.mid(40, 3), (QStringList{"9", "2", "1"}));
    // The user's own sort holds for later batches: names A to Z after a click on "Name".
    panel.onTableHeaderSelected(FileResultModel::COL_NAME);
    // A header click keeps the chosen row chosen in the new order.
    QCOMPARE(panel.model()->fromRow(t->currentRow()).fileName(), QStringLiteral("beta.txt"));
    QCOMPARE(t->currentRow(), names(*panel.model()).indexOf(QStringLiteral("beta.txt")));
    std::vector<FileResult> last{result(p("y/A.TXT"), 5)};
    panel.addFileResults(last);
    const QStringList sortedNames = names(*panel.model());
    QCOMPARE(sortedNames.first().toLower(), QStringLiteral("a.txt"));
    QVERIFY(sortedNames.indexOf(QStringLiteral("A.TXT")) < sortedNames.indexOf(QStringLiteral("beta.txt")));
    QCOMPARE(panel.model()->fromRow(t->currentRow()).fileName(), QStringLiteral("beta.txt"));
    // At the end a row the user chose stays chosen.
    panel.endLiveResults();
    QCOMPARE(panel.model()->fromRow(t->currentRow()).fileName(), QStringLiteral("beta.txt"));
}

void TestResultModel::summaryOfAFileOnlySearch() {
    tav::KernelGUI::setTavStyleNewStandard();
    PanelResults panel;
    tav::XFindStats stats;
    stats.countFiles = 12345;
    stats.countHits = 3;
    stats.countMatch = 0;
    tavFinder::FindRequest request;
    panel.setResultSummaryHtml(tav::getMicroseconds() - 1500000, stats, request);
    QString html = panel.browser()->toHtml();
    const QString text = panel.browser()->toPlainText();
    // No content: the files found, no empty pattern.
    QVERIFY2(text.contains(QStringLiteral("0 files found")) && !text.contains(QStringLiteral("Pattern")), qPrintable(text));
    QVERIFY(text.contains(QStringLiteral("Files total:") + tav::format1000(uint64_t(12345))));
    QVERIFY(!text.contains(QStringLiteral("found in files")));
    QVERIFY(text.contains(QStringLiteral("Search Results")));
    QRegularExpression time(QStringLiteral("Time:(\\d+\\.\\d{3}) sec"));
    const QRegularExpressionMatch m = time.match(text);
    QVERIFY(m.hasMatch());
    QVERIFY(m.captured(1).toDouble() >= 1.5);
    QVERIFY(html.contains(QStringLiteral("#dedede")));

    stats.countMatch = 2;
    request.contentFilter.createSymbols(QStringLiteral("needle"), false);
    tav::KernelGUI::setTavStyleNewDark();
    panel.setResultSummaryHtml(tav::getMicroseconds(), stats, request);
    html = panel.browser()->toHtml();
    QVERIFY(panel.browser()->toPlainText().contains(QStringLiteral("Pattern 'needle' found 3 times")));
    QVERIFY(panel.browser()->toPlainText().contains(QStringLiteral(", found in files:2")));
    QVERIFY(html.contains(QStringLiteral("#2d3339")));
    tav::KernelGUI::setTavStyleNewStandard();

    panel.showStack(0);
    QCOMPARE(panel.stack()->currentWidget(), static_cast<QWidget*>(panel.summaryPanel()));
    panel.showStack(7);
    QCOMPARE(panel.stack()->currentWidget(), static_cast<QWidget*>(panel.summaryPanel()));
    panel.showStack(1);
    QCOMPARE(panel.stack()->currentWidget(), static_cast<QWidget*>(panel.container()));
}

QTEST_MAIN(TestResultModel)
#include "test_result_model.moc"
