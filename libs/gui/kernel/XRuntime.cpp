#include "gui/kernel/XRuntime.h"

#include "base/io/XPaths.h"
#include "base/log/Logger.h"
#include "base/thread/XThread.h"
#include "gui/kernel/KernelGUI.h"

#include <QApplication>
#include <QCoreApplication>
#include <memory>
#include <unistd.h>

namespace tav {

QString XRuntime::commandFromArgs(const QStringList& args, const QString& defaultCommand, QStringList* rest) {
    QStringList r = args.mid(1);
    QString command = defaultCommand;
    if (!r.isEmpty() && !r.first().startsWith(QLatin1Char('-'))) command = r.takeFirst();
    if (rest) *rest = r;
    return command;
}

static void printCommands() {
    Logger::printToCerr(QStringLiteral("commands:"));
    for (const CommandEntry& e : CommandRegistry::all())
        Logger::printToCerr(QStringLiteral("  %1%2").arg(e.name, e.description.isEmpty() ? QString() : QStringLiteral("  - ") + e.description));
}

int XRuntime::runStandard(int argc, char** argv, char** /*envp*/, const QString& engineName,
                          const QString& defaultCommand, void* /*extra*/) {
    QStringList args;
    for (int i = 0; i < argc; ++i) args << QString::fromLocal8Bit(argv[i]);
    QStringList rest;
    const QString command = commandFromArgs(args, defaultCommand, &rest);
    if (command == QLatin1String("help") || command == QLatin1String("--help")) {
        printCommands();
        return 0;
    }
    const CommandEntry* entry = CommandRegistry::find(command);
    if (!entry) {
        Logger::printToCerr(QStringLiteral("unknown command '%1'").arg(command));
        printCommands();
        return 2;
    }

    if (entry->needsDisplay && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY") &&
        qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
        Logger::printToCerr(QStringLiteral("command '%1' needs a display: set DISPLAY (or QT_QPA_PLATFORM=offscreen)").arg(command));
        return 2;
    }
    QCoreApplication::setApplicationName(QStringLiteral("talvofinder"));
    int result = 0;
    {
        std::unique_ptr<QCoreApplication> app;
        if (entry->needsDisplay) app = std::make_unique<QApplication>(argc, argv);
        else app = std::make_unique<QCoreApplication>(argc, argv);
        {
            KernelGUI kernel(engineName, command, rest, entry->needsDisplay);
            result = entry->run(kernel);
            // Work still queued must not outlive the kernel it may use.
            XThreadPool::wait_for_all(-1);
            if (entry->needsDisplay && kernel.isSaveOnExit()) kernel.save();
        }
    }
    if (Kernel::isRebootProgram()) {
        Logger::printToCerr(QStringLiteral("XRuntime::runStandard, restart"));
        std::fflush(nullptr);
        // argv[0] may be relative and the working folder may have changed.
        const QByteArray exe = get_exe_path(true).toLocal8Bit();
        ::execv(exe.constData(), argv);
        Logger::printToCerr(QStringLiteral("XRuntime::runStandard, restart failed"));
    }
    return result;
}

TestGuiContextAdder::TestGuiContextAdder(std::function<int(KernelGUI&)> f, const QString& name,
                                         const QString& description, bool console) {
    CommandRegistry::add({name, description,
                          [f = std::move(f)](Kernel& k) { return f(static_cast<KernelGUI&>(k)); }, !console});
}

} // namespace tav
