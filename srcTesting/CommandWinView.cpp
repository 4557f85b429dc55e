// Developer command: the details window on its own, optionally with the hits
// of a text search and with the statistics tab.
#include "base/find/XContentFilter.h"
#include "base/kernel/CommandLine.h"
#include "base/log/Logger.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/kernel/XRuntime.h"
#include "src/find/TavFind.h"
#include "src/gui/WinDetails.h"
#include "srcTesting/CommandArgs.h"

namespace {

int winView(tav::KernelGUI& kernel) {
    tav::CommandLine& cl = kernel.commandLine();
    if (!tavFinder::devcmd::keysOk(cl, QStringLiteral("--file /data/myData/hello.jpg [--find Vector3]")))
        return 6;
    const QFileInfo fi = tavFinder::devcmd::callerPath(cl.getStringExt(QStringLiteral("file")));
    if (!tavFinder::devcmd::exists(fi, false, "file <<<$>>> does not exist")) return 1;
    tavFinder::devcmd::windowCommandSetup();
    tav::find::XContentFilter filter;
    tav::find::XRamLayer hits;
    const QString text = cl.getString(QStringLiteral("find"));
    if (!text.isEmpty()) {
        filter.setScope(tav::find::XContentFilter::SCOPE_FILE);
        if (filter.createSymbols(text, false)) hits = tavFinder::TavFind().find(fi, filter).layer;
        else tav::log(tav::LOG_REJECTED, "winView, problems with expression '$'", text);
    }
    if (!tavFinder::WinDetails::open_window(fi, hits, filter, cl.getBool(QStringLiteral("stats"), false))) return 1;
    return kernel.exec();
}

const tav::TestGuiContextAdder kWinView(&winView, QStringLiteral("winView"), QString(), false,
                                          {QStringLiteral("file=file"), QStringLiteral("find,stats=true|false")});

} // namespace
