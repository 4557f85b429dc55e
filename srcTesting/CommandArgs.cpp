#include "srcTesting/CommandArgs.h"

#include "base/kernel/CommandLine.h"
#include "base/log/Logger.h"

#include <QDir>
#include <QGuiApplication>

namespace tavFinder {
namespace devcmd {

namespace {
}

QFileInfo callerPath(const QString& path) { return QFileInfo(QDir::current(), path); }

bool keysOk(tav::CommandLine& cl, const QString& usage) {
    if (cl.checkKeys()) return true;
    cl.showExample(usage);
    return false;
}

bool exists(const QFileInfo& fi, bool folder, const char* missing) {
    if (folder ? fi.isDir() : fi.isFile()) return true;
    tav::log(tav::LOG_ERROR, missing, fi);
    return false;
}

void windowCommandSetup() {
    tav::Logger::setLogLevelSimple(5);
    QGuiApplication::setQuitOnLastWindowClosed(true);
}

} // namespace devcmd
} // namespace tavFinder
