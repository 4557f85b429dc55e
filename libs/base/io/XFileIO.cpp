#include "base/io/XFileIO.h"

#include "base/log/Logger.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <cstring>
#include <mutex>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tav {

bool writeFileAtomic(const QString& path, const QByteArray& data, QString* error) {
    const QFileInfo fi(path);
    if (!QDir().mkpath(fi.absolutePath())) {
        if (error) *error = QStringLiteral("cannot create folder %1").arg(fi.absolutePath());
        return false;
    }
    QSaveFile f(path);
    if (!f.open(QIODevice::WriteOnly)) {
        if (error) *error = f.errorString();
        return false;
    }
    if (f.write(data) != data.size()) {
        if (error) *error = f.errorString();
        f.cancelWriting();
        return false;
    }
    if (!f.commit()) {
        if (error) *error = f.errorString();
        return false;
    }
    return true;
}

bool readUserFile(const QString& path, qint64 maxBytes, QByteArray& data, QString* error) {
    auto fail = [&](const QString& why) {
        if (error) *error = why;
        return false;
    };
    data.clear();
    if (path.startsWith(QLatin1Char(':'))) {
        QFile f(path);
        if (!f.open(QIODevice::ReadOnly)) return fail(f.errorString());
        data = f.read(maxBytes + 1);
        if (data.size() > maxBytes) return fail(QStringLiteral("larger than %1 bytes").arg(maxBytes));
        return true;
    }
    const QByteArray native = QFile::encodeName(path);
    const int fd = ::open(native.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (fd < 0) return fail(QString::fromLocal8Bit(std::strerror(errno)));
    struct Closer {
        int fd;
        ~Closer() { ::close(fd); }
    } closer{fd};
    struct stat st;
    if (::fstat(fd, &st) != 0) return fail(QString::fromLocal8Bit(std::strerror(errno)));
    if (!S_ISREG(st.st_mode)) return fail(QStringLiteral("not a regular file"));
    if (st.st_size > maxBytes) return fail(QStringLiteral("larger than %1 bytes").arg(maxBytes));
    // The size may change while reading: read up to one byte past the limit.
    data.resize(int(st.st_size));
    qint64 got = 0;
    for (;;) {
        if (got == data.size()) {
            if (got > maxBytes) return fail(QStringLiteral("larger than %1 bytes").arg(maxBytes));
            data.resize(int(std::min<qint64>(maxBytes + 1, got + 65536)));
            if (got == data.size()) break;
        }
        const ssize_t n = ::read(fd, data.data() + got, size_t(data.size() - got));
        if (n < 0) {
            if (errno == EINTR) continue;
            return fail(QString::fromLocal8Bit(std::strerror(errno)));
        }
        if (n == 0) break;
        got += n;
    }
    if (got > maxBytes) return fail(QStringLiteral("larger than %1 bytes").arg(maxBytes));
    data.resize(int(got));
    return true;
}

namespace {
std::mutex& movedMutex() { static std::mutex m; return m; }
std::vector<MovedAside>& moved() { static std::vector<MovedAside> v; return v; }
}

QString moveAside(const QString& path) {
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    QString bad = QStringLiteral("%1.%2.bad").arg(path, stamp);
    for (int n = 2; QFileInfo::exists(bad) || QFileInfo(bad).isSymLink(); ++n) bad = QStringLiteral("%1.%2-%3.bad").arg(path, stamp).arg(n);
    if (!QFile::rename(path, bad)) {
        log(tav::LOG_ERROR, "moveAside, cannot rename <<<$>>>", path);
        return QString();
    }
    log(tav::LOG_ERROR, "moveAside, <<<$>>> moved to <<<$>>>", path, bad);
    std::lock_guard<std::mutex> lock(movedMutex());
    if (moved().size() < 64) moved().push_back({path, bad});   // nobody reads more
    return bad;
}

std::vector<MovedAside> movedAside() {
    std::lock_guard<std::mutex> lock(movedMutex());
    return moved();
}

std::vector<MovedAside> takeMovedAside() {
    std::lock_guard<std::mutex> lock(movedMutex());
    std::vector<MovedAside> out;
    out.swap(moved());
    return out;
}

bool fileExists(const QString& path) { return QFileInfo::exists(path); }

bool deleteFile(const QString& path) {
    QFile f(path);
    if (!f.exists()) return false;
    return f.remove();
}

} // namespace tav
