#include "src/dir/PDirInfo.h"
#include "gui/tools/XTools.h"

#include "base/log/Logger.h"
#include "base/text/FileType.h"
#include "base/util/Format.h"

#include <QDir>
#include <QFileInfoList>

namespace tavFinder {

void PDirInfo::scan_dir(const QString& dir) {
    running = !cancelled.load();
    path = dir;
    files = 0;
    textFiles = 0;
    dirs = 0;
    bytes = 0;
    textBytes = 0;
    const int64_t t0 = tav::getMicroseconds();
    visit(dir);
    running = false;
    tav::log(tav::LOG_TRACE, "PDirInfo::~scan_dir, di:{$}, within $ sec", toString(),
             tav::formatMicrosecond_as_Sec(tav::getMicroseconds() - t0));
}

void PDirInfo::visit(const QString& dir) {
    const QFileInfoList entries = QDir(dir).entryInfoList(QDir::Filters(kFilterAll), QDir::NoSort);
    for (const QFileInfo& fi : entries) {
        if (!running.load(std::memory_order_relaxed)) return;
        if (fi.isDir()) {
            // Folders count in the byte total with their own size, as the listing reports it.
            bytes += uint64_t(fi.size());
            ++dirs;
            // A link to a folder is counted but not followed: no loops, no double counts.
            if (!fi.isSymLink()) visit(fi.absoluteFilePath());
        } else {
            ++files;
            bytes += uint64_t(fi.size());
            const QString ext = tav::getFileExtension(fi.fileName(), true);
            if (textExtensions.count(ext.toLower())) {
                ++textFiles;
                textBytes += uint64_t(fi.size());
            }
        }
        if (onEntry) onEntry(*this);
    }
}

QString PDirInfo::toString() const {
    return tav::fill(tav::xt("dirs:$, files:$, bytes:$, text files:$, text bytes:$"), tav::format1000(dirs.load()),
                     tav::format1000(files.load()), tav::formatBytes(bytes.load()), tav::format1000(textFiles.load()),
                     tav::formatBytes(textBytes.load()));
}

} // namespace tavFinder
