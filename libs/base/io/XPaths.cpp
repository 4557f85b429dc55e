#include "base/io/XPaths.h"

#include "base/log/Logger.h"

#include <QStandardPaths>

namespace tav {

namespace {
const char* kFolder = "talvofinder";
}

QDir get_absolute_config_dir() {
    const QString base = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    QDir d(base + QLatin1Char('/') + QLatin1String(kFolder));
    if (!d.exists() && !QDir().mkpath(d.absolutePath())) log(4, "get_absolute_config_dir, cannot create <<<$>>>", d.absolutePath());
    return d;
}

QFileInfo get_absolute_config_file_path(const QString& name) {
    return QFileInfo(get_absolute_config_dir().absoluteFilePath(name));
}

QDir get_create_cache_dir() {
    const QString base = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    QDir d(base + QLatin1Char('/') + QLatin1String(kFolder));
    if (!d.exists() && !QDir().mkpath(d.absolutePath())) log(4, "get_create_cache_dir, cannot create <<<$>>>", d.absolutePath());
    return d;
}

bool empty_out_cache_dir() {
    const QString base = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    QDir d(base + QLatin1Char('/') + QLatin1String(kFolder));
    if (!d.exists()) return true;
    return d.removeRecursively();
}

QString get_exe_path(bool withName) {
    const QFileInfo exe(QStringLiteral("/proc/self/exe"));
    const QString target = exe.symLinkTarget();
    if (target.isEmpty()) return QDir::currentPath();
    return withName ? target : QFileInfo(target).absolutePath();
}

} // namespace tav
