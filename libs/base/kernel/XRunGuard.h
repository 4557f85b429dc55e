#pragma once
// One instance per key: a lock file in the runtime folder. The lock of a
// process that died is taken over.
#include <QString>
#include <memory>

class QLockFile;

namespace tav {

class XRunGuard {
public:
    explicit XRunGuard(const QString& key);
    ~XRunGuard();
    // True when this process now holds the lock (it is the only instance).
    bool run_instance_of_program();
    bool isPrimary() const { return locked_; }
    QString lockFilePath() const;

private:
    QString key_;
    std::unique_ptr<QLockFile> lock_;
    bool locked_ = false;
};

} // namespace tav
