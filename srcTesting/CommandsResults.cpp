// Developer commands for the results panel on its own: a content search over a
// folder, and a file-name scan, each shown in the panel when it is done.
#include "base/dir/XDirInfo.h"
#include "base/find/XContentFilter.h"
#include "base/kernel/CommandLine.h"
#include "base/log/Logger.h"
#include "base/text/TextFiles.h"
#include "base/util/Format.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/kernel/XRuntime.h"
#include "gui/window/XTestWindow.h"
#include "src/find/SearchJob.h"
#include "src/find/TavFind.h"
#include "src/gui/FileResultModel.h"
#include "src/gui/PanelResults.h"
#include "srcTesting/CommandArgs.h"

#include <QPointer>
#include <memory>

namespace {

using tav::log;

using tavFinder::devcmd::keysOk;

QString absoluteDir(const QString& path) { return tavFinder::devcmd::callerPath(path).absoluteFilePath(); }

int resultFullWindow(tav::KernelGUI& kernel) {
    tav::CommandLine& cl = kernel.commandLine();
    if (!keysOk(cl, QStringLiteral("--open /data/myData --find hallo")))
        return 6;
    tavFinder::devcmd::windowCommandSetup();
    const QString sDir = absoluteDir(cl.getString(QStringLiteral("open")));
    const QString sFind = cl.getString(QStringLiteral("find"));
    log(tav::LOG_TRACE, "sDir <<<$>>>", sDir);
    log(tav::LOG_TRACE, "sFind <<<$>>>", sFind);
    if (!tavFinder::devcmd::exists(QFileInfo(sDir), true, "folder <<<$>>> does not exist")) return 1;
    tav::find::XContentFilter filter;
    filter.setScope(tav::find::XContentFilter::SCOPE_FILE);
    if (!filter.createSymbols(sFind, cl.getBool(QStringLiteral("regex"), false))) {
        log(tav::LOG_REJECTED, "result_full_Window, problems with expression '$'", sFind);
        return 1;
    }

    // The panel is a sink of the search job: it shows the results when the search is done.
    struct PanelSink : tavFinder::SearchSink {
        QPointer<tavFinder::PanelResults> panel;
        std::vector<tavFinder::FileResult> results;
        tavFinder::SearchJob* job = nullptr;
        QString dir, find;
        int64_t start = 0;
        void searchResults(std::vector<tavFinder::FileResult>& batch) override {
            results.insert(results.end(), std::make_move_iterator(batch.begin()), std::make_move_iterator(batch.end()));
        }
        void searchDone(bool, const QStringList&, uint64_t, uint64_t) override {
            tavFinder::TavFind& f = job->search();
            log(tav::LOG_TRACE, "stats:$", f.workerStats().toString());
            log(tav::LOG_TRACE, "$, '$', $ file hits, total hits:$", dir, find, quint64(f.countResults()), f.countHits());
            log(tav::LOG_TRACE, "search within $ sec", tav::formatMicrosecond_as_Sec(tav::getMicroseconds() - start));
            if (!panel) return;
            panel->setFileResults(results);
            panel->showStack(1);
            if (!results.empty()) panel->on_jump_to_result(0);
        }
    };
    auto sink = std::make_unique<PanelSink>();
    auto job = std::make_unique<tavFinder::SearchJob>(*sink);
    sink->job = job.get();
    sink->dir = sDir;
    sink->find = sFind;
    sink->start = tav::getMicroseconds();
    auto* panel = new tavFinder::PanelResults();
    tav::XTestWindow::setTestingStandard(panel, QStringLiteral("Results"), 1100, 700);
    sink->panel = panel;
    tavFinder::SearchParams params;
    params.dir = sDir;
    params.filter.contentFilter = filter;
    job->start(params);
    return kernel.exec();
}

int resultScanWindow(tav::KernelGUI& kernel) {
    tav::CommandLine& cl = kernel.commandLine();
    if (!keysOk(cl, QStringLiteral("--dir /data/myData [--sPattern *bla* --snPattern mist --flagTextFiles true]")))
        return 6;
    tavFinder::devcmd::windowCommandSetup();
    const QString dir = absoluteDir(cl.getString(QStringLiteral("dir")));
    const QString sPattern = cl.getString(QStringLiteral("sPattern"));
    const QString snPattern = cl.getString(QStringLiteral("snPattern"));
    const bool flagTextFiles = cl.getBool(QStringLiteral("flagTextFiles"), false);
    log(tav::LOG_TRACE, "dir <<<$>>>", dir);
    log(tav::LOG_TRACE, "sPattern <<<$>>>", sPattern);
    log(tav::LOG_TRACE, "snPattern <<<$>>>", snPattern);
    log(tav::LOG_TRACE, "flagTextFiles <<<$>>>", flagTextFiles);
    if (!tavFinder::devcmd::exists(QFileInfo(dir), true, "folder <<<$>>> does not exist")) return 1;
    tav::XFileFilter ff;
    ff.setPattern(sPattern, false);
    ff.setPattern(snPattern, true);
    if (flagTextFiles)
        for (const QString& e : tav::default_text_file_extensions()) ff.textFileExtensions.insert(e);

    const int64_t start = tav::getMicroseconds();
    tav::XDirInfo dirInfo;
    dirInfo.scan_dir(dir, &ff);
    const tav::XFindStats stats = dirInfo.setup_filtered_files(ff, true);
    log(tav::LOG_TRACE, "stats:$", stats.toString());
    std::vector<QFileInfo> files;
    files.reserve(dirInfo.ar_filtered_files.size());
    for (const QFileInfo* fi : dirInfo.ar_filtered_files) files.push_back(*fi);

    auto* panel = new tavFinder::PanelResults();
    tavFinder::FindRequest request;
    request.sPath = dir;
    request.sPattern = sPattern;
    panel->setFileResultsSimple(files);
    panel->setResultSummaryHtml(start, stats, request);
    panel->showStack(0);
    tav::XTestWindow::setTestingStandard(panel, QStringLiteral("Scan Results"), 1100, 700);
    return kernel.exec();
}

const tav::TestGuiContextAdder kFull(&resultFullWindow, QStringLiteral("result_full_Window"), QString(), false,
                                    {QStringLiteral("open=folder,find"), QStringLiteral("regex=true|false")});
const tav::TestGuiContextAdder kScan(&resultScanWindow, QStringLiteral("result_scan_Window"), QString(), false,
                                    {QStringLiteral("dir=folder"), QStringLiteral("sPattern,snPattern,flagTextFiles=true|false")});

} // namespace
