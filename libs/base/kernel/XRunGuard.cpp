#include "base/kernel/XRunGuard.h"

#include "base/log/Logger.h"

#include <QDir>
#include <QLockFile>
#include <QStandardPaths>

namespace tav {

XRunGuard::XRunGuard(const QString& key) : key_(key) {}
XRunGuard::~XRunGuard() {
    if (lock_ && locked_) lock_->unlock();
}

QString XRunGuard::lockFilePath() const {
    // The runtime folder when the session has one (asking Qt without it only warns).
    QString dir;
    if (qEnvironmentVariableIsSet("XDG_RUNTIME_DIR")) dir = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (dir.isEmpty()) dir = QDir::tempPath();
    return dir + QLatin1Char('/') + key_ + QStringLiteral(".lock");
}

bool XRunGuard::run_instance_of_program() {
    if (locked_) return true;
    if (!lock_) {
        lock_ = std::make_unique<QLockFile>(lockFilePath());
        // Never stale by age: the program may run for days. A lock whose
        // process is gone is still detected and taken over by QLockFile.
        lock_->setStaleLockTime(0);
    }
    locked_ = lock_->tryLock(0);
    if (!locked_) log(tav::LOG_TRACE, "XRunGuard::run_instance_of_program, <<<$>>> is held by another process", lockFilePath());
    return locked_;
}

} // namespace tav
