#include "base/core/XMemory.h"
#include "base/env/Env.h"
#include "base/io/XPaths.h"
#include "base/kernel/Kernel.h"
#include "base/log/Logger.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/kernel/XRuntime.h"
#include "src/FindApplication.h"
#include "src/StartPath.h"

#include <vector>

int main(int argc, char** argv, char** envp) {
    tav::tune_allocator();
    tav::install_file_name_codec();
    QString logError;
    if (!tav::Logger::takeLogOption(argc, argv, &logError)) {
        tav::Logger::printToCerr(QStringLiteral("talvofinder: ") + logError);
        return 2;
    }
    // "talvofinder PATH" runs as "talvofinder app --dir PATH"; the words live
    // as long as the process, a restart re-executes them.
    QStringList words;
    for (int i = 0; i < argc; ++i) words << QString::fromLocal8Bit(argv[i]);
    const QStringList args = tavFinder::args_for_path(words);
    static std::vector<QByteArray> bytes;
    static std::vector<char*> ptrs;
    if (args != words) {
        for (const QString& a : args) bytes.push_back(a.toLocal8Bit());
        for (QByteArray& b : bytes) ptrs.push_back(b.data());
        ptrs.push_back(nullptr);
        argc = int(args.size());
        argv = ptrs.data();
    }
    tav::signal_handler_memory_alarm();
    tav::TavLibraries::addLib(2070, QStringLiteral("FIND"));
    tavFinder::set_env_variables();
    if (tav::hasEnv(QStringLiteral("TAVALWAYS"))) tav::KernelGUI::set_generate_config_always();
    tav::Logger::setLogLevelSimple(1);
    tav::KernelGUIConfig::lang_ini = tavFinder::FindApplication::lang_initialiser;
    tav::setEnv(QStringLiteral("NOCONSOLE"), QStringLiteral("true"));
    return tav::XRuntime::runStandard(argc, argv, envp, QStringLiteral("talvoEngine"), QStringLiteral("app"), nullptr);
}
