#include "base/env/Env.h"
#include "base/io/XPaths.h"
#include "base/kernel/Kernel.h"
#include "base/log/Logger.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/kernel/XRuntime.h"
#include "src/FindApplication.h"

int main(int argc, char** argv, char** envp) {
    tav::signal_handler_memory_alarm();
    tav::TavLibraries::addLib(2070, QStringLiteral("FIND"));
    tavFinder::set_env_variables();
    if (tav::hasEnv(QStringLiteral("TAVALWAYS"))) tav::KernelGUI::set_generate_config_always();
    tav::Logger::setLogLevelSimple(1);
    tav::KernelGUIConfig::lang_ini = tavFinder::FindApplication::lang_initialiser;
    tav::setEnv(QStringLiteral("NOCONSOLE"), QStringLiteral("true"));
    return tav::XRuntime::runStandard(argc, argv, envp, QStringLiteral("talvoEngine"), QStringLiteral("app"), nullptr);
}
