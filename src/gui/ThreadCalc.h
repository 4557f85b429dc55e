#pragma once
// One checksum of the properties window, computed on the global pool. The GUI
// thread talks to it only through the atomics and the state bits; the checksum
// object itself is guarded because the window may point it at another file
// while a calculation is still under way.
#include "base/checksum/CheckSum.h"
#include "base/core/AtomicBits.h"
#include "base/thread/XThread.h"

#include <QFileInfo>
#include <QMutex>
#include <QString>

namespace tavFinder {

class ThreadCalc : public tav::XLightweightThread {
public:
    explicit ThreadCalc(int algo);
    ~ThreadCalc() override;

    void runCustom() override;

    tav::XAtomic<bool> enabled{true};
    tav::XAtomic<bool> keepRunning{false};
    tav::XAtomic<int> percent{0};

    int algo() const { return algo_; }
    QString algoName() const { return tav::CheckSum::algo_as_string(algo_); }

    void set_file(const QFileInfo& fi);
    QFileInfo file() const;
    void reset();
    // The result of the last run for the file currently set; false after a
    // cancel, a read error, or when the file changed during the run.
    bool hasResult() const;
    bool wasCancelled() const;
    QString toString(bool upper) const;

private:
    const int algo_;
    mutable QMutex mutex_;
    tav::CheckSum checksum_;
};

} // namespace tavFinder
