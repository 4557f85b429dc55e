#pragma once
// Runs one content search: starts the workers, waits for them and tells the
// search object's listeners on the GUI thread.
#include "base/thread/XThread.h"
#include "src/find/FileResult.h"
#include "src/find/FindThread.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <vector>

namespace tavFinder {

class TavFind;

class ThreadControllerFind : public tav::XLightweightThread {
public:
    TavFind* pTavFind = nullptr;
    uint32_t max_thread = 0;
    std::vector<FindThread> arThreads;
    // Results not yet taken by the search's user, and the totals of all of them.
    std::vector<FileResult> pending;
    std::mutex mutexResults;
    std::atomic<uint64_t> countResults{0};
    std::atomic<uint64_t> countHits{0};

    ThreadControllerFind() = default;
    ~ThreadControllerFind() override;

    // Rebuilds the workers for the next search (call only while not running).
    void ini(TavFind* pTavFind);
    void runCustom() override;

    void addResult(FileResult&& r);
};

} // namespace tavFinder
