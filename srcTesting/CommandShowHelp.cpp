// Developer command: the help page in the help browser, on its own.
#include "gui/kernel/KernelGUI.h"
#include "gui/kernel/XRuntime.h"
#include "gui/window/XBrowserWindow.h"

#include <QGuiApplication>

namespace {
int showHelp(tav::KernelGUI& kernel) {
    QGuiApplication::setQuitOnLastWindowClosed(true);
    if (!tav::XBrowserWindow::showHelp(QStringLiteral(":/tf/html/index.en.html"), QStringLiteral("Talvo Finder"), 1)) return 1;
    return kernel.exec();
}
const tav::TestGuiContextAdder kShowHelp(&showHelp, QStringLiteral("misc.showShelp"), QString());
}
