#include "src/gui/ThreadCalc.h"

#include <QMutexLocker>

namespace tavFinder {

ThreadCalc::ThreadCalc(int algo) : algo_(algo) { checksum_.set_algo(algo); }

ThreadCalc::~ThreadCalc() {
    // calc() watches keepRunning, not the running bit.
    keepRunning = false;
    stopAndWait();
}

void ThreadCalc::runCustom() {
    // Work on a copy so that set_file()/reset() on the GUI thread never touch
    // the object that is being read into.
    tav::CheckSum work;
    {
        QMutexLocker l(&mutex_);
        work = checksum_;
    }
    work.calc(keepRunning, percent);
    QMutexLocker l(&mutex_);
    // A result of a file that is no longer the window's must not show up next to it.
    if (work.file().absoluteFilePath() == checksum_.file().absoluteFilePath()) checksum_ = work;
}

void ThreadCalc::set_file(const QFileInfo& fi) {
    QMutexLocker l(&mutex_);
    checksum_.set_file(fi);
}

QFileInfo ThreadCalc::file() const {
    QMutexLocker l(&mutex_);
    return checksum_.file();
}

void ThreadCalc::reset() {
    QMutexLocker l(&mutex_);
    checksum_.reset();
}

bool ThreadCalc::hasResult() const {
    QMutexLocker l(&mutex_);
    return checksum_.hasResult();
}

bool ThreadCalc::wasCancelled() const {
    QMutexLocker l(&mutex_);
    return checksum_.wasCancelled();
}

QString ThreadCalc::toString(bool upper) const {
    QMutexLocker l(&mutex_);
    return checksum_.toString(upper);
}

} // namespace tavFinder
