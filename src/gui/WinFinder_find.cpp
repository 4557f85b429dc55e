// The search of the main window: folder and filter, the directory scan in the
// background, the content search, the progress pages and the results.
#include "base/io/XFileIO.h"
#include "base/log/Logger.h"
#include "base/thread/XThread.h"
#include "base/util/Format.h"
#include "gui/panel/XPanel.h"
#include "gui/panel/XPanelStacked.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XComboBox.h"
#include "gui/widgets/XMenu.h"
#include "gui/widgets/XTableViewClassic.h"
#include "gui/widgets/XTreeViewFiles.h"
#include "gui/widgets/XTypedComboBox.h"
#include "src/dir/XContainerPreviews.h"
#include "src/find/FileMarks.h"
#include "src/find/ResultExport.h"
#include "src/find/SearchJob.h"
#include "src/find/TavFind.h"
#include "src/gui/FileResultModel.h"
#include "src/gui/PanelResults.h"
#include "src/gui/ThreadScanDir.h"
#include "src/gui/apps/Terminal.h"
#include "src/gui/WinFinder.h"
#include "base/extract/XExtract.h"
#include "src/gui/WinDetails.h"
#include "src/gui/panPreview/asc/PanPreviewAsc.h"
#include "src/gui/ExpressionError.h"
#include "src/gui/config/ConfigTavFinder.h"

#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QTimer>
#include <QProgressBar>
#include <QSpinBox>
#include <QPushButton>
#include <QToolButton>

namespace tavFinder {

using tav::log;
using tav::xt;

void WinFinder::ThreadScanDir::runCustom() {
    if (X_ASSERT_MSG(pFilterCurrent, "pFilterCurrent == NULL")) {
        // Name-only searches (content searches walk in their job): with the filter the scan
        // skips excluded folders and stats files only for its bounds.
        dirInfo.flagStatFiles = false;
        dirInfo.scan_dir(dirInfo.sPath, &pFilterCurrent->fileFilter);
        stats = dirInfo.setup_filtered_files(pFilterCurrent->fileFilter, true);
    }
    runDone = runNumber.load();
}

namespace {
// The window as a sink of its search job.
class WindowSink : public SearchSink {
public:
    explicit WindowSink(WinFinder* w) : w_(w) {}
    void searchResults(std::vector<FileResult>& batch) override { w_->on_search_results(batch); }
    void searchProgress(const SearchProgress& p) override { w_->on_search_progress(p); }
    void searchDone(bool cancelled, const QStringList& unreadable, uint64_t badDirs, uint64_t badFiles) override {
        w_->on_search_done(cancelled, unreadable, badDirs, badFiles);
    }

private:
    WinFinder* w_;
};
} // namespace

TavFind& WinFinder::tavFind() { return job_->search(); }

void WinFinder::setup_panel_find_pages() {
    thScanDir = std::make_unique<ThreadScanDir>();
    searchSink_ = std::make_unique<WindowSink>(this);
    job_ = std::make_unique<SearchJob>(*searchSink_);
    thScanDir->prepareListener(true);
    thScanDir->enableListener(true);
    thScanDir->addListener([this]() {
        // A scan that a newer one replaced, or an end already handled.
        const uint32_t done = thScanDir->runDone.load();
        if (done != scanStarted_ || done == scanHandled_) {
            log(tav::LOG_TRACE, "WinFinder::setup_thread_scan_dir, scan done, replaced by a newer one");
            return;
        }
        scanHandled_ = done;
        log(tav::LOG_TRACE, "WinFinder::setup_thread_scan_dir, scan done!");
        on_find_dir_scanned();
    });
    timer_.addListener([this]() { on_timer_progress(); });

    auto page = [this](const QString& name) {
        auto* p = new tav::XPanel(panelFind_, tav::XPanel::HORIZONTAL, name);
        p->setMargins(2, 2, 2, 2);
        panelFind_->addPanel(p);
        return p;
    };

    // scanning
    tav::XPanel* scan = page(QStringLiteral("pageScan"));
    scan->createButton(xt("Cancel"), [this]() { on_escape_key(); });
    labelScan_ = scan->createLabel(QString());
    labelScan_->setObjectName(QStringLiteral("labelScan"));
    scan->addSpacer();

    // file results
    tav::XPanel* files = page(QStringLiteral("pageFileResults"));
    files->createButton(xt("Back"), [this]() { on_escape_key(); });
    files->createButton(xt("Results"), [this]() { show_results_panel("WinFinder::setup_panel_scanDir_result, Results"); });
    labelFileTotals_ = files->createLabel(QString());
    labelFileTotals_->setObjectName(QStringLiteral("labelFileTotals"));
    files->addSpacer();
    labelFileFilter_ = files->createLabel(QString());
    labelFileFilter_->setObjectName(QStringLiteral("labelFileFilter"));
    labelFileFilter_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    labelFileFilter_->setContentsMargins(0, 0, 8, 0);

    // content progress
    tav::XPanel* content = page(QStringLiteral("pageContent"));
    content->createButton(xt("Cancel"), [this]() { on_escape_key(); });
    progressFind_ = content->add(new QProgressBar(content), 1);
    progressFind_->setRange(0, 100);
    progressFind_->setValue(0);
    labelContent_ = content->createLabel(xt("...find contents"));
    labelContent_->setObjectName(QStringLiteral("labelContent"));

    // done
    tav::XPanel* done = page(QStringLiteral("pageDone"));
    done->createButton(xt("Back"), [this]() { on_escape_key(); });
    buttonResultsDone_ = done->createButton(xt("Results"), [this]() {
        show_results_panel("WinFinder::setup_panel_findContents_result, Content Find Results");
    });
    QPushButton* exportButton = done->createButton(xt("Export..."), [this]() { on_export_results(); });
    exportButton->setObjectName(QStringLiteral("buttonExport"));
    exportButton->setToolTip(xt("Write the results as CSV, JSON or an HTML report"));
    labelDone_ = done->createLabel(QString());
    labelDone_->setObjectName(QStringLiteral("labelDone"));
    done->addSpacer();
    buttonScope_ = done->createButton(xt("Paragraph"), nullptr);
    buttonScope_->setToolTip(xt("Scope"));
    buttonScope_->setEnabled(false);
    editPattern_ = done->createLineEdit();
    editPattern_->setReadOnly(true);
    editPattern_->setMinimumWidth(200);
    editPattern_->setToolTip(xt("Pattern"));
    QToolButton* full = done->createImageButton(icon(QStringLiteral("expand.svg")), xt("Toggle Full Screen"), nullptr, true);
    connect(full, &QToolButton::toggled, this, [this](bool on) {
        if (on) showFullScreen();
        else showNormal();
    });
    done->createImageButton(icon(QStringLiteral("hide.svg")), xt("Hide to Tray Menu"), [this]() { hideToTray(); });

    panelFind_->setCurrentIndex(PAGE_FILTER);
}

int WinFinder::findPage() const { return panelFind_ ? panelFind_->currentIndex() : -1; }

void WinFinder::show_results_panel(const char* logLine) {
    if (logLine) log(tav::LOG_TRACE, logLine);
    stacked_->showPanel(findResults_);
}

void WinFinder::on_find() {
    timeStartFind = tav::getMicroseconds();
    log(tav::LOG_TRACE, "*******************************");
    log(tav::LOG_TRACE, "*** WinFinder::on_find");
    log(tav::LOG_TRACE, "*******************************");
    if (!panelFind_ || !thScanDir) return;

    QFileInfo folder = treeView_->selectedFile();
    if (!folder.exists()) {
        folder = QFileInfo(cfg().sRootFolder);
        log(tav::LOG_TRACE, "WinFinder::on_find - folder set to <$>", cfg().sRootFolder);
        if (cfg().sRootFolder.isEmpty() || !folder.exists()) {
            log(tav::LOG_TRACE, "WinFinder::on_find - <$> 404", cfg().sRootFolder);
            return;
        }
    }
    if (!folder.isDir()) {
        log(tav::LOG_TRACE, "WinFinder::on_find - <$> not dir, go one level up", folder);
        folder = QFileInfo(folder.absolutePath());
    }
    log(tav::LOG_TRACE, "WinFinder::on_find - <$>", folder);

    tav::find::XFilter filter = filter_from_GUI();
    if (filter.pErrorWidget) {
        log(tav::LOG_REJECTED, "WinFinder::on_find, !filter");
        auto* combo = qobject_cast<QComboBox*>(filter.pErrorWidget);
        if (combo == comboContent_)
            show_expression_error(combo, filter.sError, propRegEx_.value() ? xt("Type your regular expression") : xt("Type simple expression"));
        else
            tav::XTools::flash_combobox_editable(combo, 2);   // 4 x 150 ms
        set_status_text(filter.sError);
        return;
    }
    // A content search walks and searches at once in its job; one still running is replaced.
    if (filter.has_content_filter()) {
        if (thScanDir->isActive()) thScanDir->dirInfo.flagStop = true;
        filterCurrent = filter;
        start_content_search(folder);
        return;
    }
    job_->discard();
    // A scan still under way reads the filter and its folder: it is told to stop, and this
    // search starts a moment later from the event loop once it has (never waiting here).
    if (thScanDir->isActive()) {
        thScanDir->dirInfo.flagStop = true;
        log(tav::LOG_TRACE, "WinFinder::on_find, waiting for the previous scan to stop");
        QPointer<WinFinder> self(this);
        QTimer::singleShot(10, this, [self]() {
            if (self) self->on_find();
        });
        return;
    }

    filterCurrent = filter;
    timeStartScan = tav::getMicroseconds();
    log(tav::LOG_TRACE, "WinFinder::on_find, <<<$>>>", folder);
    log(tav::LOG_TRACE, "filterCurrent:$", filterCurrent.toString(true));

    stateFind = FIND_SCAN;
    labelScan_->clear();
    panelFind_->setCurrentIndex(PAGE_SCAN);
    timer_.start();

    thScanDir->dirInfo.sPath = folder.absoluteFilePath();
    thScanDir->dirInfo.flagHiddenFiles = treeView_->isHiddenFiles();
    thScanDir->dirInfo.flagIgnoreFiles = buttonIgnoreFiles_ && buttonIgnoreFiles_->isChecked();
    thScanDir->pFilterCurrent = &filterCurrent;

    if (filterCurrent.has_pattern(false)) comboPattern_->add_to_history(filterCurrent.pattern(false));
    if (filterCurrent.has_pattern(true)) comboNotPattern_->add_to_history(filterCurrent.pattern(true));
    if (!filterCurrent.contentFilter.text().isEmpty()) comboContent_->add_to_history(filterCurrent.contentFilter.text());

    thScanDir->runNumber = ++scanStarted_;
    tav::XThreadPool::start_global(thScanDir.get(), false);
}

void WinFinder::start_content_search(const QFileInfo& folder) {
    log(tav::LOG_TRACE, "WinFinder::start_content_search <<<$>>> $", folder, filterCurrent.contentFilter.toString(false));
    if (!filterCurrent.contentFilter.text().isEmpty()) comboContent_->add_to_history(filterCurrent.contentFilter.text());
    if (filterCurrent.has_pattern(false)) comboPattern_->add_to_history(filterCurrent.pattern(false));
    if (filterCurrent.has_pattern(true)) comboNotPattern_->add_to_history(filterCurrent.pattern(true));
    stateFind = FIND_CONTENT;
    findCancelled_ = false;
    // Rows come into the table while the search runs.
    findResults_->beginLiveResults(buttonDocuments_ && buttonDocuments_->isChecked());
    {
        tav::find::XContentFilter shown = filterCurrent.contentFilter;
        shown.setScope(comboScope_->selected());
        findResults_->setResultFilter(shown);
    }
    // Busy until the walk has found every file: a share of the files known so far would mislead.
    progressFind_->setRange(0, 0);
    progressFind_->setValue(0);
    labelContent_->setText(xt("...find contents"));
    panelFind_->setCurrentIndex(PAGE_CONTENT);
    timer_.stop();
    SearchParams params;
    params.dir = folder.absoluteFilePath();
    params.filter = filterCurrent;
    params.filter.contentFilter.setScope(comboScope_->selected());
    params.hidden = treeView_->isHiddenFiles();
    params.threads = cfg().countThreads;
    params.statFiles = true;   // the bar shows a share of all the bytes
    params.documents = buttonDocuments_ && buttonDocuments_->isChecked();
    params.ignoreFiles = buttonIgnoreFiles_ && buttonIgnoreFiles_->isChecked();
    params.maxFiles = spinMaxFiles_ ? uint64_t(spinMaxFiles_->value()) : 0;
    params.limits.maxOutput = uint64_t(cfg().documentsMaxMemberMB) << 20;
    params.limits.ratioFrom = uint64_t(cfg().documentsRatioFromMB) << 20;
    params.limits.maxRatio = cfg().documentsMaxRatio;
    job_->start(params);
}

void WinFinder::on_search_results(std::vector<FileResult>& batch) {
    if (batch.empty()) return;
    // The first rows bring the table into view; later ones join it in its order.
    if (findResults_->model()->rowCount() == 0) show_results_panel(nullptr);
    findResults_->addFileResults(batch);
}

void WinFinder::on_search_progress(const SearchProgress& p) {
    if (stateFind != FIND_CONTENT) return;
    labelContent_->setText(tav::fill(xt("Folders: $, files: $"), tav::format1000(p.folders), tav::format1000(p.filesSearched)) +
                           QStringLiteral(" — ") + tav::formatBytes(p.bytesRead));
    if (!p.walkDone) return;
    if (progressFind_->maximum() == 0) progressFind_->setRange(0, 100);
    // 64-bit sums; the bar never runs backwards.
    if (p.bytesToRead != 0) {
        const int pct = int(std::min<uint64_t>(100, p.bytesRead * 100 / p.bytesToRead));
        if (pct > progressFind_->value()) progressFind_->setValue(pct);
    }
}

void WinFinder::on_timer_progress() {
    if (stateFind == FIND_SCAN) {
        const tav::XDirInfo& d = thScanDir->dirInfo;
        // Sizes are not known while walking: folders and files found so far.
        const QString text = tav::fill(xt("Folders: $, files: $"), tav::format1000(d.countDirs.load()), tav::format1000(d.countFiles.load()));
        QPointer<QLabel> label(labelScan_);
        tav::qt::run_in_Gui_Thread([label, text]() {
            if (label) label->setText(text);
        });
    }
}

void WinFinder::on_find_dir_scanned() {
    tav::XDirInfo& dirInfo = thScanDir->dirInfo;
    if (dirInfo.isStopped()) {
        log(tav::LOG_TRACE, "WinFinder_find::on_find_dir_scanned - CANCEL");
        return;
    }
    log(tav::LOG_TRACE, "WinFinder::on_find_dir_scanned within $ sec", tav::formatMicrosecond_as_Sec(tav::getMicroseconds() - timeStartScan));

    // file-only search
    timer_.stop();
    tav::XFindStats stats = thScanDir->stats;
    const tav::XView<QFileInfo*> view = dirInfo.get_view_filtered_files();
    log(tav::LOG_TRACE, "view:$", view.toString());
    std::vector<QFileInfo> files;
    files.reserve(view.size());
    for (QFileInfo* fi : view) files.push_back(*fi);
    stats.countMatch.store(uint64_t(files.size()));

    FindRequest shown;
    shown.sPath = dirInfo.sPath;
    shown.contentFilter = tav::find::XContentFilter();
    findResults_->setResultSummaryHtml(timeStartScan, stats, shown);
    findResults_->showStack(0);
    findResults_->setFileResultsSimple(files);

    const QString totals = tav::fill(xt("files: total:$, files match:$"), tav::format1000(stats.countFiles.load()),
                                     tav::format1000(stats.countMatch.load()));
    QPointer<QLabel> label(labelFileTotals_);
    tav::qt::run_in_Gui_Thread([label, totals]() {
        if (label) label->setText(totals);
    });
    labelFileFilter_->setText(filterCurrent.toString(false));

    show_results_panel(nullptr);
    panelFind_->setCurrentIndex(PAGE_FILE_RESULTS);

    if (filterCurrent.has_pattern(false)) manage_combo_History(comboPattern_, filterCurrent.pattern(false));
    if (filterCurrent.has_pattern(true)) manage_combo_History(comboNotPattern_, filterCurrent.pattern(true));
}

void WinFinder::on_search_done(bool cancelledByJob, const QStringList& unreadableList, uint64_t badDirs, uint64_t badFiles) {
    TavFind* pTavFind = &job_->search();
    const tav::find::XContentFilter& cf = pTavFind->contentFilter();
    buttonScope_->setText(xt(cf.scope_as_string()));
    editPattern_->setText(cf.text());

    const bool cancelled = findCancelled_ || cancelledByJob;
    findCancelled_ = false;
    const QString seconds = tav::formatMicrosecond_as_Sec(tav::getMicroseconds() - timeStartFind);
    // A cancelled search says so, and how much of the folder it searched.
    const QString searched = tav::fill(xt("Cancelled: $ of $ files searched"), tav::format1000(pTavFind->workerStats().countFiles.load()),
                                       tav::format1000(quint64(pTavFind->countTextFiles())));
    // What could not be read is said, and named in the tooltip.
    QString unreadable;
    QStringList named = unreadableList;
    if (badDirs + badFiles > 0) {
        unreadable = QStringLiteral("  —  ") + tav::fill(xt("$ folders and $ files could not be read"), tav::format1000(badDirs),
                                                             tav::format1000(badFiles));
        if (named.size() > 50) named = named.mid(0, 50) << QStringLiteral("…");
    }
    labelDone_->setToolTip(named.join(QLatin1Char('\n')));
    // A search that ended at its "stop after" says so.
    if (pTavFind->limitReached())
        unreadable = QStringLiteral("  —  ") + tav::fill(xt("stopped after $ files with hits"), tav::format1000(pTavFind->maxResults)) + unreadable;
    if (pTavFind->hasResults()) {
        buttonResultsDone_->setEnabled(true);
        const QString totals =
            cancelled ? tav::fill(xt("$ => $, files-match:$, match-total:$ - $ sec"), searched, tav::formatBytes(pTavFind->getBytesRead()),
                                  tav::format1000(quint64(pTavFind->countResults())), tav::format1000(pTavFind->countHits()), seconds)
                      : tav::fill(xt("files-total:$ => $, files-match:$, match-total:$ - $ sec"),
                                  tav::format1000(quint64(pTavFind->countTextFiles())), tav::formatBytes(pTavFind->getBytesToRead()),
                                  tav::format1000(quint64(pTavFind->countResults())), tav::format1000(pTavFind->countHits()), seconds);
        QPointer<QLabel> label(labelDone_);
        const QString text = totals + unreadable;
        tav::qt::run_in_Gui_Thread([label, text]() {
            if (label) label->setText(text);
        });
        show_results_panel(nullptr);
        stateFind = FIND_DONE;
        panelFind_->setCurrentIndex(PAGE_DONE);
        findResults_->endLiveResults();
        findResults_->tableResult()->setFocus();   // Up / Down go through the results at once
    } else {
        log(tav::LOG_TRACE, "WinFinder_find::on_find_done - nothing found");
        stateFind = FIND_DONE;
        panelFind_->setCurrentIndex(PAGE_DONE);
        labelDone_->setText((cancelled ? tav::fill(xt("$, nothing found"), searched) : xt("Nothing found")) + unreadable);
        buttonResultsDone_->setEnabled(false);
    }
}

void WinFinder::on_escape_key() {
    log(tav::LOG_TRACE, "WinFinder_find::on_escape_key");
    const QFileInfo fi = treeView_ ? treeView_->selectedFile() : QFileInfo();
    if (thScanDir && !thScanDir->dirInfo.flagStop.load()) thScanDir->dirInfo.flagStop = true;
    if (job_) job_->cancel();
    if (stateFind == FIND_CONTENT) findCancelled_ = true;
    stateFind = FIND_IDLE;
    timer_.stop();
    if (panelFind_) panelFind_->setCurrentIndex(PAGE_FILTER);
    if (fi.exists()) on_treeView_selectFile(fi);
}

void WinFinder::on_export_results() {
    if (!findResults_ || findResults_->model()->rowCount() == 0 || !findResults_->flagContent) {
        set_status_text(xt("No results to export"));
        return;
    }
    const QString suggested = QDir::home().filePath(QStringLiteral("talvofinder-results.csv"));
    const QString path = QFileDialog::getSaveFileName(this, xt("Export..."), suggested,
                                                      QStringLiteral("CSV (*.csv);;JSON (*.json);;HTML (*.html)"));
    if (path.isEmpty()) return;
    export_results(path, [this](bool, const QString& message) { set_status_text(message); });
}

void WinFinder::export_results(const QString& path, std::function<void(bool, const QString&)> done) {
    // A copy in the table's order: the table may change while the pool thread writes.
    auto rows = std::make_shared<std::vector<FileResult>>(findResults_->model()->fileResults());
    exporting::Summary sum;
    TavFind& f = tavFind();
    sum.folder = job_->params().dir;
    sum.query = f.contentFilter().text();
    sum.filesSearched = uint64_t(f.countTextFiles());
    sum.bytes = f.getBytesToRead();
    sum.filesMatched = uint64_t(rows->size());
    for (const FileResult& r : *rows) sum.hits += r.hits();
    sum.filter = f.contentFilter();
    const bool documents = findResults_->documentsMode();
    const QString lower = path.toLower();
    const int kind = lower.endsWith(QLatin1String(".json")) ? 1 : lower.endsWith(QLatin1String(".html")) || lower.endsWith(QLatin1String(".htm")) ? 2 : 0;
    log(tav::LOG_NAVIGATION, "WinFinder::export_results, $ files to <<<$>>>", quint64(rows->size()), path);
    QPointer<WinFinder> self(this);
    tav::XThreadPool::start_global([rows, sum, documents, kind, path, self, done]() {
        std::vector<const FileResult*> ptrs;
        ptrs.reserve(rows->size());
        for (const FileResult& r : *rows) ptrs.push_back(&r);
        QByteArray data;
        const exporting::Out out = [&data](const QByteArray& piece) { data += piece; };
        if (kind == 1) exporting::writeJson(ptrs, sum, documents, out);
        else if (kind == 2) exporting::writeHtml(ptrs, sum, documents, out);
        else exporting::writeCsv(ptrs, out);
        QString error;
        const bool ok = tav::writeFileAtomic(path, data, &error);
        if (!ok) log(tav::LOG_ERROR, "WinFinder::export_results, cannot write <<<$>>>: $", path, error);
        const quint64 count = quint64(rows->size());
        tav::run_in_gui_thread([self, done, ok, path, error, count]() {
            const QString message = ok ? tav::fill(xt("Exported $ files to $"), tav::format1000(count), path)
                                       : tav::fill(xt("Cannot write $: $"), path, error);
            if (self && done) done(ok, message);
        });
    });
}

void WinFinder::on_contextMenu_fileResult(const FileResult& fr) {
    log(tav::LOG_TRACE, "WinFinder::onContextMenu_rightSide_FileResults, fResult:$", fr.toString());
    tav::XMenu menu(this);
    fill_contextMenu_FileResults(menu, fr, tavFind().contentFilter());
    menu.execAt();
}

namespace {
// A details window shows a result's kept marks at once and all of them once its
// file has been searched again on a pool thread (stopped when the window closes).
void completeDetailMarks(WinDetails* w, const FileResult& fr, const tav::find::XContentFilter& filter) {
    if (!w || fr.layer.isComplete() || !filter.isValid()) return;
    auto cancel = std::make_shared<std::atomic<bool>>(false);
    QObject::connect(w, &QObject::destroyed, [cancel]() { cancel->store(true); });
    QPointer<WinDetails> guard(w);
    tav::XThreadPool::start_global([guard, fr, filter, cancel]() {
        tav::find::XRamLayer all = allMarks(fr, filter, cancel.get());
        if (cancel->load() || !all.isComplete()) return;
        tav::run_in_gui_thread(
            [guard, cancel, filter, all = std::move(all)]() {
                if (guard && !cancel->load()) guard->panelText()->update_search_results(all, filter, 0);
            },
            0);
    });
}
} // namespace

void WinFinder::on_open_fileResult(const FileResult& fr) {
    log(tav::LOG_TRACE, "WinFinder::setUp - double click file result ....");
    const tav::find::XContentFilter& filter = tavFind().contentFilter();
    // A member or document: its extracted text, where the hits were found.
    if (findResults_ && findResults_->documentsMode() && (fr.isMember() || PanelResults::extractable(fr.fileInfo))) {
        tav::extract::XExtractor ex;
        tav::extract::Part part;
        if (ex.partOf(fr.fileInfo.absoluteFilePath(), fr.member, part)) {
            completeDetailMarks(WinDetails::open_extracted(fr, part.text, part.pageStarts, filter), fr, filter);
            return;
        }
        log(tav::LOG_ERROR, "WinFinder::on_open_fileResult, no text of <<<$>>>", fr.displayPath());
    }
    // The filter that found these hits, so the details window can mark them again.
    if (!fr.fileInfo.isFile()) return;
    completeDetailMarks(WinDetails::open_window(fr.fileInfo, fr.layer, filter), fr, filter);
}

} // namespace tavFinder
