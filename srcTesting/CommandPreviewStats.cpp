// Developer command: the statistics preview on one file.
#include "base/kernel/CommandLine.h"
#include "base/log/Logger.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/kernel/XRuntime.h"
#include "gui/window/XTestWindow.h"
#include "src/gui/stats/Stats.h"
#include "srcTesting/CommandArgs.h"

#include <memory>

namespace {

int previewStats(tav::KernelGUI& kernel) {
    tav::CommandLine& cl = kernel.commandLine();
    if (!tavFinder::devcmd::keysOk(cl, QStringLiteral("--file /tmp/bla.txt")))
        return 6;
    const QFileInfo fi = tavFinder::devcmd::callerPath(cl.getStringExt(QStringLiteral("file")));
    if (!tavFinder::devcmd::exists(fi, false, "file '$' does not exist")) return 1;
    tavFinder::devcmd::windowCommandSetup();
    auto stats = std::make_unique<tavFinder::Stats>();
    stats->ini();
    stats->open_file(fi);
    tav::XTestWindow::setTestingStandard(stats->widget_preview(), QStringLiteral("Stats"), 1000, 700);
    const int rc = kernel.exec();
    return rc;
}

const tav::TestGuiContextAdder kPreviewStats(&previewStats, QStringLiteral("preview.stats"), QString(), false,
                                              {QStringLiteral("file=file"), QString()});

} // namespace
