#pragma once
// A worker of the content search: takes files one by one from the search
// object, reads each with its own line reader and searches it with its own
// copy of the content filter.
#include "base/extract/XExtract.h"
#include "base/find/XContentFilter.h"
#include "base/find/XFindStats.h"
#include "base/io/XLineReaderDA.h"
#include "base/thread/XThread.h"

#include <QFileInfo>
#include <memory>

#include <atomic>
#include <cstdint>

namespace tavFinder {

class TavFind;
class ThreadControllerFind;

class FindThread : public tav::XLightweightThread {
public:
    TavFind* pTavFind = nullptr;
    ThreadControllerFind* pController = nullptr;
    tav::XFindStats stats;                       // countFiles, countLines, countBytes
    tav::find::XContentFilter contentFilter;     // this worker's own copy
    uint32_t index = uint32_t(-1);
    // Bytes of the file being searched so far (added to the totals when it is done).
    std::atomic<uint64_t> bytesInFile{0};

    FindThread() = default;
    // Workers are kept by value; they move only while idle.
    FindThread(FindThread&& o) noexcept;
    ~FindThread() override;

    void runCustom() override;

private:
    // A recognised document or container: its texts are searched instead of its
    // bytes. False when the open file is none (it is searched as it is).
    bool searchExtracted(const QString& path, const QFileInfo& file, tav::find::XContentFilter::WindowWatch& watch);

    std::unique_ptr<tav::extract::XExtractor> extractor_;
    tav::XLineReaderDA reader_;   // its buffer is reused from file to file
};

} // namespace tavFinder
