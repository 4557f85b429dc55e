// Developer command: the properties window on its own.
#include "base/kernel/CommandLine.h"
#include "base/log/Logger.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/kernel/XRuntime.h"
#include "src/gui/WinProperties.h"

#include <QDir>
#include <QGuiApplication>

namespace {

// main() changes into the program's folder; relative paths mean the caller's folder.
const QString kStartDir = QDir::currentPath();

int winProperties(tav::KernelGUI& kernel) {
    tav::CommandLine& cl = kernel.commandLine();
    cl.addMustHaveKeys(QStringLiteral("file"));
    cl.addOptionalKeys(QStringLiteral("find"));
    if (!cl.checkKeys()) {
        cl.showExample(QStringLiteral("--file /data/myData/hello.jpg [--find Vector3]"));
        return 6;
    }
    const QFileInfo fi(QDir(kStartDir), cl.getStringExt(QStringLiteral("file")));
    if (!fi.isFile()) {
        tav::log(4, "file <<<$>>> does not exist", fi);
        return 1;
    }
    tav::Logger::setLogLevelSimple(5);
    QGuiApplication::setQuitOnLastWindowClosed(true);
    if (!tavFinder::WinProperties::open_window(fi)) return 1;
    return kernel.exec();
}
const tav::TestGuiContextAdder kWinProperties(&winProperties, QStringLiteral("winProperties"), QString());
}
