#include "src/dir/PDirInfo.h"
#include "gui/tools/XTools.h"

#include "base/log/Logger.h"
#include "base/text/FileType.h"
#include "base/util/Format.h"

#include "base/dir/XDirInfo.h"

#include <QFile>
#include <mutex>

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
    if (running.load()) {
        // The search's walker, in its counting mode; the walkers count one entry at a
        // time, so a progress report sees every counter as of one entry.
        tav::XDirInfo walk;
        walk.flagHiddenFiles = true;
        std::mutex one;
        walk.count_tree(dir, [this, &one](const tav::XDirInfo::Entry& e) {
            std::lock_guard<std::mutex> l(one);
            if (!running.load(std::memory_order_relaxed)) return false;
            // Folders count in the byte total with their own size, as the listing reports it.
            bytes += e.size;
            if (e.isDir) {
                ++dirs;
            } else {
                ++files;
                const QString ext = tav::getFileExtension(QFile::decodeName(QByteArray::fromRawData(e.name, int(e.nameLen))), true);
                if (textExtensions.count(ext.toLower())) {
                    ++textFiles;
                    textBytes += e.size;
                }
            }
            if (onEntry) onEntry(*this);
            return true;
        });
    }
    running = false;
    tav::log(tav::LOG_TRACE, "PDirInfo::~scan_dir, di:{$}, within $ sec", toString(),
             tav::formatMicrosecond_as_Sec(tav::getMicroseconds() - t0));
}

QString PDirInfo::toString() const {
    return tav::fill(tav::xt("dirs:$, files:$, bytes:$, text files:$, text bytes:$"), tav::format1000(dirs.load()),
                     tav::format1000(files.load()), tav::formatBytes(bytes.load()), tav::format1000(textFiles.load()),
                     tav::formatBytes(textBytes.load()));
}

} // namespace tavFinder
