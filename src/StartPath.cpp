#include "src/StartPath.h"

#include "base/kernel/CommandLine.h"
#include "base/kernel/CommandRegistry.h"

#include <QDir>
#include <QFileInfo>

namespace tavFinder {

namespace {
// The working folder is the caller's: a relative path means theirs.
QFileInfo callerPath(const QString& path) { return QFileInfo(QDir::current(), path); }
}

QStringList args_for_path(const QStringList& args) {
    if (args.size() < 2) return args;
    const QString& first = args[1];
    if (first.isEmpty() || first.startsWith(QLatin1Char('-')) || first == QLatin1String("help") ||
        tav::CommandRegistry::find(first))
        return args;
    // A word with a slash is meant as a path even when it does not exist: "app"
    // then says so, instead of "unknown command".
    const QFileInfo fi = callerPath(first);
    if (!fi.exists() && !first.contains(QLatin1Char('/'))) return args;
    QStringList out{args[0], QStringLiteral("app"), QStringLiteral("--dir"), QDir::cleanPath(fi.absoluteFilePath())};
    out << args.mid(2);
    return out;
}

bool start_path(const tav::CommandLine& cl, QString& path, QString& error) {
    path = cl.getString(QStringLiteral("file"));
    const QString dir = cl.getString(QStringLiteral("dir"));
    if (dir.isEmpty()) return true;
    const QFileInfo fi = callerPath(dir);
    if (!fi.exists()) {
        error = QStringLiteral("talvofinder: '%1' does not exist").arg(dir);
        return false;
    }
    path = QDir::cleanPath(fi.absoluteFilePath());
    return true;
}

} // namespace tavFinder
