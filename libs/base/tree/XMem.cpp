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
        log(tav::LOG_VERBOSE, "XMem::loadMem <<<$>>> 404", path);
        return false;
    }
    // Only regular files, opened without blocking: a FIFO or device would block or never end.
    QByteArray data;
    QString err;
    if (!readUserFile(path, kMaxSize, data, &err)) {
        setError(err);
        log(tav::LOG_ERROR, "XMem::loadMem <<<$>>> - $", path, errorText());
        return false;
    }
    bytes_ = std::move(data);
    return true;
}

bool XMem::saveToFile(const QString& path, int /*flags*/) const {
    QString err;
    if (!writeFileAtomic(path, bytes_, &err)) {
        log(tav::LOG_ERROR, "XMem::saveToFile <<<$>>> - $", path, err);
        return false;
    }
    return true;
}

} // namespace tav
