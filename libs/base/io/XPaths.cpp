#include "base/io/XPaths.h"

#include "base/log/Logger.h"

#include <QStandardPaths>

#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace tav {

namespace {
const char* kFolder = "talvofinder";
}

int openPath(const char* path, int flags) {
    const size_t len = std::strlen(path);
    if (len < PATH_MAX || path[0] != '/') return ::open(path, flags, 0);
    // The longest piece that ends at a '/' and stays below the limit.
    auto piece = [](const char* p, size_t n) -> size_t {
        size_t cut = std::min<size_t>(n, PATH_MAX - 1);
        while (cut > 0 && p[cut] != '/') --cut;
        return cut;
    };
    const int dirFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
    size_t cut = piece(path, len);
    if (cut == 0) {
        errno = ENAMETOOLONG;   // a single name past the limit
        return -1;
    }
    int dir = ::open(std::string(path, cut).c_str(), dirFlags);
    const char* rest = path + cut + 1;
    size_t restLen = len - cut - 1;
    while (dir >= 0 && restLen >= PATH_MAX) {
        cut = piece(rest, restLen);
        if (cut == 0) {
            ::close(dir);
            errno = ENAMETOOLONG;
            return -1;
        }
        const int next = ::openat(dir, std::string(rest, cut).c_str(), dirFlags);
        const int err = errno;
        ::close(dir);
        errno = err;
        dir = next;
        rest += cut + 1;
        restLen -= cut + 1;
    }
    if (dir < 0) return -1;
    const int fd = ::openat(dir, rest, flags, 0);
    const int err = errno;
    ::close(dir);
    errno = err;
    return fd;
}

QDir get_absolute_config_dir() {
    const QString base = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    QDir d(base + QLatin1Char('/') + QLatin1String(kFolder));
    if (!d.exists() && !QDir().mkpath(d.absolutePath())) log(tav::LOG_ERROR, "get_absolute_config_dir, cannot create <<<$>>>", d.absolutePath());
    return d;
}

QFileInfo get_absolute_config_file_path(const QString& name) {
    return QFileInfo(get_absolute_config_dir().absoluteFilePath(name));
}

QDir get_create_cache_dir() {
    const QString base = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    QDir d(base + QLatin1Char('/') + QLatin1String(kFolder));
    if (!d.exists() && !QDir().mkpath(d.absolutePath())) log(tav::LOG_ERROR, "get_create_cache_dir, cannot create <<<$>>>", d.absolutePath());
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
