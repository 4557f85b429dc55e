#pragma once
// The directory scan of a search: walks the folder and keeps the files that
// pass the file filter. The window reads the counters while it runs.
#include "base/dir/XDirInfo.h"
#include "base/find/XFilter.h"
#include "base/find/XFindStats.h"
#include "base/thread/XThread.h"
#include "src/gui/WinFinder.h"

#include <atomic>
#include <cstdint>

namespace tavFinder {

class WinFinder::ThreadScanDir : public tav::XLightweightThread {
public:
    tav::XDirInfo dirInfo;
    tav::XFindStats stats;                             // written when the scan ends
    tav::find::XFilter* pFilterCurrent = nullptr;
    // Which start of the window this run belongs to; copied to runDone at the end,
    // so a completion that arrives after a newer start can be told apart.
    std::atomic<uint32_t> runNumber{0};
    std::atomic<uint32_t> runDone{0};

    ThreadScanDir() = default;
    ~ThreadScanDir() override {
        dirInfo.flagStop = true;
        stopAndWait();
    }
    void runCustom() override;
};

} // namespace tavFinder
