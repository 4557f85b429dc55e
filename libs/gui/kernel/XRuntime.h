#pragma once
// Runs a process: picks the command named on the command line (or the default),
// builds the application object and the kernel, runs the command, saves, and
// restarts the program when a reboot was requested.
#include "base/kernel/CommandRegistry.h"

#include <QString>
#include <functional>

namespace tav {

class KernelGUI;

class XRuntime {
public:
    static int runStandard(int argc, char** argv, char** envp, const QString& engineName,
                           const QString& defaultCommand, void* extra);
    // The command name and its arguments as runStandard reads them from argv.
    static QString commandFromArgs(const QStringList& args, const QString& defaultCommand, QStringList* rest);
};

// Registers a command that runs with the GUI kernel. 'console' commands need no
// display: they run under a core application (over ssh, in CI).
class TestGuiContextAdder {
public:
    TestGuiContextAdder(std::function<int(KernelGUI&)> f, const QString& name, const QString& description,
                        bool console = false, CommandKeys keys = {});
};

} // namespace tav
