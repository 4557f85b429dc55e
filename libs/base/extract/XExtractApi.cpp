#include "base/extract/XExtractApi.h"

#include "base/log/Logger.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <dlfcn.h>
#include <mutex>

namespace tav {
namespace extract {

namespace {

void hostLog(unsigned level, const QString& line) {
    if (Logger::wants(level)) Logger::write(level, line);
}

// Beside the program (the build), where the installation puts it relative to
// the program, and the build's own copy (tests run from folders of their own).
QStringList candidates() {
    QStringList out;
    const QString exeDir = QFileInfo(QFile::symLinkTarget(QStringLiteral("/proc/self/exe"))).path();
    if (!exeDir.isEmpty()) {
        out << exeDir + QStringLiteral("/libtavextract.so");
#ifdef TF_EXTRACT_MODULE_REL
        out << QDir::cleanPath(exeDir + QStringLiteral("/" TF_EXTRACT_MODULE_REL "/libtavextract.so"));
#endif
    }
#ifdef TF_EXTRACT_MODULE_BUILD
    out << QStringLiteral(TF_EXTRACT_MODULE_BUILD);
#endif
    out.removeDuplicates();
    return out;
}

struct Loaded {
    const ExtractApi* api = nullptr;
    QString why;
};

Loaded load() {
    Loaded l;
    QStringList tried;
    for (const QString& path : candidates()) {
        if (!QFileInfo::exists(path)) {
            tried << path;
            continue;
        }
        void* h = ::dlopen(QFile::encodeName(path).constData(), RTLD_NOW | RTLD_LOCAL);
        if (!h) {
            tried << QString::fromLocal8Bit(::dlerror());
            continue;
        }
        using Entry = const ExtractApi* (*)();
        const auto entry = reinterpret_cast<Entry>(::dlsym(h, TAV_EXTRACT_API_SYMBOL));
        const ExtractApi* api = entry ? entry() : nullptr;
        if (!api || api->size < sizeof(ExtractApi)) {
            tried << path + QStringLiteral(": not a module of this version");
            ::dlclose(h);
            continue;
        }
        api->setLog(&hostLog);
        log(LOG_TRACE, "XExtractor, module loaded: $", path);
        l.api = api;
        return l;
    }
    l.why = QStringLiteral("documents and archives cannot be searched, module not loaded (%1)").arg(tried.join(QStringLiteral("; ")));
    log(LOG_ERROR, "XExtractor, $", l.why);
    return l;
}

} // namespace

const ExtractApi* extractApi(QString* why) {
    static const Loaded loaded = load();
    if (why) *why = loaded.why;
    return loaded.api;
}

} // namespace extract
} // namespace tav
