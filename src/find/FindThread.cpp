#include "src/find/FindThread.h"

#include "base/log/Logger.h"
#include "src/find/TavFind.h"
#include "src/find/ThreadControllerFind.h"

#include <cstring>

namespace tavFinder {

namespace {
constexpr size_t kSearchWindow = size_t(128) << 10;
}

FindThread::FindThread(FindThread&& o) noexcept
    : tav::XLightweightThread(std::move(o)), pTavFind(o.pTavFind), pController(o.pController), stats(o.stats),
      contentFilter(std::move(o.contentFilter)), index(o.index), bytesInFile(o.bytesInFile.load()) {}

FindThread::~FindThread() { stopAndWait(); }

void FindThread::runCustom() {
    if (!X_ASSERT_MSG(pTavFind, "tavFind == NULL")) return;
    // Windows small enough to stay in the cache between the read and the search;
    // one without a line end grows as far as a whole window of the reader.
    reader_.setWindowSizes(kSearchWindow, tav::XLineReaderDA::DEFAULT_WINDOW);
    contentFilter.setKeepMarks(pTavFind->keepMarks);
    if (pController && pController->isFlag(tav::AbstractThread::RUNNING)) {
        const std::function<void()> fileDone = pTavFind->onFileDone;
        bool took = false;
        do {
            if (fileDone && took) fileDone();
            int64_t size = -1;
            // Keeps the file's information alive while it is searched (a walk's are let go after).
            std::shared_ptr<const void> owner;
            QFileInfo* file = pTavFind->nextFile(&size, &owner);
            if (!file) break;
            took = true;
            contentFilter.seekHome();
            // A size known from the scan spares two stats: here and when the file is opened.
            const bool sizeFromScan = size >= 0;
            // A fed file of unknown size is stat-ed through its descriptor once open.
            const bool statWhenOpen = !sizeFromScan && pTavFind->workersStat();
            if (!sizeFromScan && !statWhenOpen) {
                if (!file->isFile()) {
                    tav::log(tav::LOG_TRACE, "FindThread::runCustom, IS NOT A FILE <<<$>>>", *file);
                    continue;
                }
                size = file->size();
            }
            if (!statWhenOpen) {
                tav::XFindStats::add(stats.countFiles, 1);
                if (size == 0) continue;   // counted, never opened
            }
            // A scan's paths are absolute already; making them so again costs more than reading a small file.
            const QString path = file->isAbsolute() ? file->filePath() : file->absoluteFilePath();
            const bool opened = sizeFromScan ? reader_.openFile(path, 0x10000, true, uint64_t(size))
                                             : reader_.openFile(path, 0x10000, true);
            if (!opened) {
                tav::log(statWhenOpen ? tav::LOG_TRACE : tav::LOG_ERROR, "FindThread::runCustom, problems with <<<$>>>", path);
                // A regular file that is there and cannot be opened is named in the summary
                // (a folder, a pipe or a vanished file fed unchecked is no file to read).
                const QFileInfo now(path);
                if (now.exists() && now.isFile()) pTavFind->noteUnreadable(path);
                continue;
            }
            if (statWhenOpen) {
                tav::XFindStats::add(stats.countFiles, 1);
                pTavFind->addBytesToRead(uint64_t(reader_.getMemorySize()));
            }
            // Searching first lets a big file's lines be counted while its windows pass by;
            // the watch gives progress inside the file and stops it at a cancel.
            tav::find::XContentFilter::WindowWatch watch;
            watch.keepGoing = [this]() { return pController->isFlag(tav::AbstractThread::RUNNING); };
            watch.bytesDone = &bytesInFile;
            if (pTavFind->flagDocuments && searchExtracted(path, *file, watch)) continue;
            tav::find::XRamLayer layer = contentFilter.find(0, reader_, &watch);
            contentFilter.seekHome();
            if (watch.stopped) tav::log(tav::LOG_TRACE, "FindThread::runCustom, cancelled inside <<<$>>>", path);
            if (reader_.readError()) {   // the hits before the error still count
                tav::log(tav::LOG_ERROR, "FindThread::runCustom, read error in <<<$>>> ($)", path,
                         QString::fromLocal8Bit(std::strerror(reader_.readError())));
                pTavFind->noteUnreadable(path);
            }
            // The file's bytes move from "in this file" to the totals (only what was read when cancelled).
            const uint64_t read = watch.stopped ? bytesInFile.load() : uint64_t(reader_.getMemorySize());
            bytesInFile = 0;
            tav::XFindStats::add(stats.countBytes, read);
            // A file cut by a cancel is not read to its end again just to count its lines.
            if (pTavFind->flagCountLines && !watch.stopped) tav::XFindStats::add(stats.countLines, reader_.countLines());
            const int64_t fileSize = int64_t(reader_.getMemorySize());
            // The table sorts by date without a stat per row on the GUI thread.
            const int64_t modified = layer ? reader_.modifiedNs() : INT64_MIN;
            reader_.close();
            if (layer) {
                tav::XFindStats::add(stats.countMatch, 1);
                tav::XFindStats::add(stats.countHits, layer.hitCount());
                FileResult r(std::move(layer), *file);
                r.size = fileSize;   // the table needs no stat of its own
                r.mtimeNs = modified;
                pController->addResult(std::move(r));
            }
        } while (pController->isFlag(tav::AbstractThread::RUNNING));
    }
    pTavFind->workerEnded();
}

bool FindThread::searchExtracted(const QString& path, const QFileInfo& file, tav::find::XContentFilter::WindowWatch& watch) {
    if (tav::extract::sniff(reader_.head(), reader_.headSize(), path) == tav::extract::Family::None) return false;
    if (!extractor_) extractor_ = std::make_unique<tav::extract::XExtractor>();
    extractor_->setLimits(pTavFind->extractLimits);
    extractor_->setKeepGoing(watch.keepGoing);
    uint64_t lines = 0;
    const bool countLines = pTavFind->flagCountLines;
    extractor_->extractFile(path, reader_.head(), reader_.headSize(), [&](tav::extract::Part& part) {
        contentFilter.seekHome();
        tav::find::XRamLayer layer = contentFilter.find(0, part.text);
        if (countLines && !part.text.isEmpty())
            lines += uint64_t(part.text.count('\n')) + (part.text.endsWith('\n') ? 0 : 1);
        if (layer) {
            tav::XFindStats::add(stats.countMatch, 1);
            tav::XFindStats::add(stats.countHits, layer.hitCount());
            FileResult r(std::move(layer), file, part.member);
            r.size = int64_t(reader_.getMemorySize());
            r.extracted = true;
            r.mtimeNs = reader_.modifiedNs();
            pController->addResult(std::move(r));
        }
        return true;
    });
    contentFilter.seekHome();
    if (!extractor_->isComplete()) pTavFind->countIncomplete.fetch_add(1, std::memory_order_relaxed);
    if (extractor_->wasCancelled()) tav::log(32, "FindThread::searchExtracted, cancelled inside <<<$>>>", path);
    // Progress counts the container's own bytes, as the total does.
    tav::XFindStats::add(stats.countBytes, reader_.getMemorySize());
    tav::XFindStats::add(stats.countLines, lines);
    reader_.close();
    return true;
}

} // namespace tavFinder
