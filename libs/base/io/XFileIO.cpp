#include "base/io/XFileIO.h"

#include "base/log/Logger.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

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

QString moveAside(const QString& path) {
    const QString bad = path + QStringLiteral(".bad");
    QFile::remove(bad);
    if (!QFile::rename(path, bad)) {
        log(4, "moveAside, cannot rename <<<$>>>", path);
        return QString();
    }
    log(4, "moveAside, <<<$>>> moved to <<<$>>>", path, bad);
    return bad;
}

bool fileExists(const QString& path) { return QFileInfo::exists(path); }

bool deleteFile(const QString& path) {
    QFile f(path);
    if (!f.exists()) return false;
    return f.remove();
}

} // namespace tav
