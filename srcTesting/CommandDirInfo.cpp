// Developer command "dirInfo": a recursive scan of one folder and the time a
// copy of the scan takes.
#include "base/dir/XDirInfo.h"
#include "base/kernel/CommandLine.h"
#include "base/log/Logger.h"
#include "base/util/Format.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/kernel/XRuntime.h"

#include <QDir>

namespace {


int dirInfo(tav::KernelGUI& kernel) {
    tav::Logger::setLogLevelSimple(5);
    tav::CommandLine& cl = kernel.commandLine();
    if (!cl.checkKeys()) {
        cl.showExample(QStringLiteral("--open /data/myData"));
        return 6;
    }
    const QString dir = QFileInfo(QDir::current(), cl.getString(QStringLiteral("open"))).absoluteFilePath();
    tav::log(tav::LOG_TRACE, "Recursive scan <<<$>>>", dir);
    tav::XDirInfo di;
    di.flagStatFiles = true;
    int64_t t = tav::getMicroseconds();
    const bool ok = di.scan_dir(dir);
    di.setup_filtered_files(tav::XFileFilter(), true);
    tav::log(tav::LOG_TRACE, "Recursive scan within:$ sec, DirInfo:{$}", tav::formatMicrosecond_as_Sec(tav::getMicroseconds() - t),
             di.toString());
    t = tav::getMicroseconds();
    const tav::XDirInfo copy(di);
    tav::log(tav::LOG_TRACE, "Copy of DirInfo in $ sec, di:{$}", tav::formatMicrosecond_as_Sec(tav::getMicroseconds() - t),
             copy.toString());
    return ok ? 0 : 1;
}

const tav::TestGuiContextAdder kDirInfo(&dirInfo, QStringLiteral("dirInfo"), QString(), true,
                                         {QStringLiteral("open=folder"), QString()});

} // namespace
