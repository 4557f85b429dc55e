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

    // The scan owns the file list the search reads; both live until the loop ends.
    auto dirInfo = std::make_unique<tav::XDirInfo>();
    const int64_t start = tav::getMicroseconds();
    dirInfo->scan_dir(sDir);
    dirInfo->setup_filtered_files(tav::XFileFilter(), true);
    auto find = std::make_unique<tavFinder::TavFind>();
    find->request.sPath = sDir;
    find->setContentFilter(filter);
    find->prepareFiles(dirInfo->ar_filtered_files);

    auto* panel = new tavFinder::PanelResults();
    tav::XTestWindow::setTestingStandard(panel, QStringLiteral("Results"), 1100, 700);
    tavFinder::TavFind* pFind = find.get();
    QPointer<tavFinder::PanelResults> guard(panel);
    find->addListener([pFind, guard, sDir, sFind, start]() {
        log(tav::LOG_TRACE, "stats:$", pFind->workerStats().toString());
        log(tav::LOG_TRACE, "$, '$', $ file hits, total hits:$", sDir, sFind, quint64(pFind->countResults()), pFind->countHits());
        log(tav::LOG_TRACE, "search within $ sec", tav::formatMicrosecond_as_Sec(tav::getMicroseconds() - start));
        if (!guard) return;
        guard->setFileResults(pFind->getResults());
        guard->showStack(1);
        if (pFind->hasResults()) guard->on_jump_to_result(0);
    });
    if (!find->start_search()) {
        log(tav::LOG_ERROR, "result_full_Window, the search did not start");
        return 1;
    }
    // The search, destroyed before the scan whose list it reads, stops and waits.
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
