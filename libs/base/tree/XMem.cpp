#include "base/tree/XMem.h"

#include "base/io/XFileIO.h"
#include "base/log/Logger.h"

#include <QFile>
#include <QFileInfo>

namespace tav {

bool XMem::loadMem(const QString& path) {
    bytes_.clear();
    clearError();
    const QFileInfo fi(path);
    if (!fi.exists()) {
        setError(QStringLiteral("missing"));
        log(64, "XMem::loadMem <<<$>>> 404", path);
        return false;
    }
    // Only regular files: a FIFO or device would block or never end.
    if (!fi.isFile() || fi.size() > kMaxSize) {
        setError(QStringLiteral("not a regular file of at most %1 bytes").arg(kMaxSize));
        log(4, "XMem::loadMem <<<$>>> - $", path, errorText());
        return false;
    }
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        setError(f.errorString());
        log(4, "XMem::loadMem <<<$>>> - $", path, errorText());
        return false;
    }
    // The size may have grown since it was checked.
    QByteArray data = f.read(kMaxSize + 1);
    if (f.error() != QFileDevice::NoError || data.size() > kMaxSize) {
        setError(f.error() != QFileDevice::NoError ? f.errorString() : QStringLiteral("too large"));
        log(4, "XMem::loadMem <<<$>>> - $", path, errorText());
        return false;
    }
    bytes_ = std::move(data);
    return true;
}

bool XMem::saveToFile(const QString& path, int /*flags*/) const {
    QString err;
    if (!writeFileAtomic(path, bytes_, &err)) {
        log(4, "XMem::saveToFile <<<$>>> - $", path, err);
        return false;
    }
    return true;
}

} // namespace tav
