#include "gui/kernel/XRuntime.h"
#include "gui/kernel/XQuitSignals.h"

#include "base/io/XPaths.h"
#include "base/log/Logger.h"
#include "base/thread/XThread.h"
#include "gui/kernel/KernelGUI.h"

#include <QApplication>
#include <QCoreApplication>
#include <QDialog>
#include <QMenu>
#include <QTimer>
#include <QWidget>
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

// TAV_AUTO_CLOSE_MS=N: N ms after start, close what a command shows, as a user
// would (modal dialogs first), then end the loop if nothing is left. Lets a whole
// command set run unattended; every window closed is reported on standard error.
static void armAutoClose() {
    bool ok = false;
    const int ms = qEnvironmentVariableIntValue("TAV_AUTO_CLOSE_MS", &ok);
    if (!ok || ms <= 0 || !qobject_cast<QApplication*>(QCoreApplication::instance())) return;
    auto* timer = new QTimer(QCoreApplication::instance());
    QObject::connect(timer, &QTimer::timeout, [timer, idle = 0, rounds = 0]() mutable {
        timer->setInterval(200);
        if (++rounds > 50) {
            // Something refuses to close: end with a code of our own rather than hang.
            Logger::printToCerr(QStringLiteral("auto-close: windows refuse to close"));
            QCoreApplication::exit(3);
            return;
        }
        auto report = [](QWidget* w) {
            Logger::printToCerr(QStringLiteral("auto-close: %1 '%2'").arg(QString::fromLatin1(w->metaObject()->className()),
                                                                          w->windowTitle()));
        };
        if (QWidget* popup = QApplication::activePopupWidget()) {
            popup->close();
            idle = 0;
            return;
        }
        if (QWidget* modal = QApplication::activeModalWidget()) {
            report(modal);
            if (auto* d = qobject_cast<QDialog*>(modal)) d->reject();
            else modal->close();
            idle = 0;
            return;
        }
        QList<QWidget*> open;
        for (QWidget* w : QApplication::topLevelWidgets())
            if (w->isVisible() && w->isWindow() && !qobject_cast<QMenu*>(w)) open << w;
        if (!open.isEmpty()) {
            for (QWidget* w : open) {
                report(w);
                w->close();
            }
            idle = 0;
            return;
        }
        if (++idle >= 10) QCoreApplication::exit(0);
    });
    timer->start(ms);
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
            armAutoClose();
            kernel.commandLine().addMustHaveKeys(entry->keys.must);
            kernel.commandLine().addOptionalKeys(entry->keys.optional);
            // Log-out and kill close the windows as the user would, so their state is saved.
            if (entry->needsDisplay)
                XQuitSignals::install([](int) {
                    for (QWidget* w : QApplication::topLevelWidgets()) w->close();
                    QCoreApplication::exit(0);
                });
            result = entry->run(kernel);
            XQuitSignals::uninstall();
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
                                         const QString& description, bool console, CommandKeys keys) {
    CommandRegistry::add({name, description,
                          [f = std::move(f)](Kernel& k) { return f(static_cast<KernelGUI&>(k)); }, !console, false,
                          std::move(keys)});
}

} // namespace tav
