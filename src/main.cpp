// The program's entry. The search command "find" runs right here, in a process
// that loads only the core libraries: it needs no display, and loading the
// window libraries would cost a short search a good part of its time.
// Every other command (the finder's window first) is the windowed program
// next to this one, which replaces this process.
#include "base/core/XMemory.h"
#include "base/io/XPaths.h"
#include "base/kernel/CommandLine.h"
#include "base/log/Logger.h"
#include "src/find/CommandFind.h"

#include <QCoreApplication>
#include <QStringList>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

namespace {
// The folder of this executable, from the kernel's link (argv[0] may be relative or a link).
std::string exeDir() {
    char buf[PATH_MAX];
    const ssize_t n = ::readlink("/proc/self/exe", buf, sizeof buf - 1);
    if (n <= 0) return std::string(".");
    std::string p(buf, size_t(n));
    const size_t slash = p.rfind('/');
    return slash == std::string::npos ? std::string(".") : p.substr(0, slash);
}
}

int main(int argc, char** argv) {
    tav::tune_allocator();
    tav::install_file_name_codec();
    // "--log N" belongs to every command; the windowed program gets it through TAV_LOG.
    QString logError;
    if (!tav::Logger::takeLogOption(argc, argv, &logError)) {
        std::fprintf(stderr, "talvofinder: %s\n", logError.toLocal8Bit().constData());
        return 2;
    }
    if (tav::Logger::pinnedLogLevel() >= 0) ::setenv("TAV_LOG", std::to_string(tav::Logger::pinnedLogLevel()).c_str(), 1);
    if (argc >= 2 && std::strcmp(argv[1], "find") == 0) {
        QCoreApplication app(argc, argv);
        QCoreApplication::setApplicationName(QStringLiteral("talvofinder"));
        tav::Logger::setLogLevelSimple(1);
        QStringList words;
        for (int i = 2; i < argc; ++i) words << QString::fromLocal8Bit(argv[i]);
        tav::CommandLine cl(words);
        return tavFinder::runFindCommand(cl);
    }
    const std::string app = exeDir() + "/talvofinder-app";
    ::execv(app.c_str(), argv);
    std::fprintf(stderr, "talvofinder: cannot start %s: %s\n", app.c_str(), std::strerror(errno));
    return 2;
}
