// Developer command: the properties window on its own.
#include "base/kernel/CommandLine.h"
#include "base/log/Logger.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/kernel/XRuntime.h"
#include "src/gui/WinProperties.h"
#include "srcTesting/CommandArgs.h"

namespace {

int winProperties(tav::KernelGUI& kernel) {
    tav::CommandLine& cl = kernel.commandLine();
    if (!tavFinder::devcmd::keysOk(cl, QStringLiteral("--file /data/myData/hello.jpg [--find Vector3]")))
        return 6;
    const QFileInfo fi = tavFinder::devcmd::callerPath(cl.getStringExt(QStringLiteral("file")));
    if (!tavFinder::devcmd::exists(fi, false, "file <<<$>>> does not exist")) return 1;
    tavFinder::devcmd::windowCommandSetup();
    if (!tavFinder::WinProperties::open_window(fi)) return 1;
    return kernel.exec();
}
const tav::TestGuiContextAdder kWinProperties(&winProperties, QStringLiteral("winProperties"), QString(), false,
                                                {QStringLiteral("file=file"), QStringLiteral("find")});
}
