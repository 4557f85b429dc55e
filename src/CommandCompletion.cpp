// The command "completion": prints the bash completion script made from the
// command table. The build writes it once for the installation; a user may
// also run "source <(talvofinder completion)" in a shell.
#include "base/kernel/CommandLine.h"
#include "base/kernel/CompletionScript.h"
#include "base/log/Logger.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/kernel/XRuntime.h"

#include <cstdio>

namespace {

int completion(tav::KernelGUI& kernel) {
    tav::CommandLine& cl = kernel.commandLine();
    const QString shell = cl.getString(QStringLiteral("shell"), QStringLiteral("bash"));
    if (!cl.checkKeys() || shell != QLatin1String("bash")) {
        tav::Logger::printToCerr(QStringLiteral("usage: talvofinder completion [--shell bash]"));
        return 2;
    }
    const QByteArray script =
        tav::bashCompletionScript(QStringLiteral("talvofinder"), QStringLiteral("talvofinder-app"), QStringLiteral("app"))
            .toUtf8();
    return std::fwrite(script.constData(), 1, size_t(script.size()), stdout) == size_t(script.size()) ? 0 : 1;
}

const tav::TestGuiContextAdder kCompletion(&completion, QStringLiteral("completion"), QString(), true,
                                           {QString(), QStringLiteral("shell=bash"), true});

} // namespace
