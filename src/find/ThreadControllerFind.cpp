#include "src/find/ThreadControllerFind.h"

#include "base/log/Logger.h"
#include "src/find/TavFind.h"

#include <chrono>

namespace tavFinder {

ThreadControllerFind::~ThreadControllerFind() { stopAndWait(); }

void ThreadControllerFind::ini(TavFind* p) {
    arThreads.clear();   // each worker waits for its body to end; the capacity stays
    pTavFind = p;
    {
        std::lock_guard<std::mutex> l(mutexResults);
        pending.clear();
    }
    countResults = 0;
    countHits = 0;
    max_thread = p ? p->maxThreads : 0;
    tav::log(tav::LOG_TRACE, "ThreadControllerFind::ini, max_thread:$", max_thread);
    if (max_thread == 0) return;
    arThreads.reserve(max_thread);
    for (uint32_t i = 0; i < max_thread; ++i) arThreads.emplace_back();
    for (uint32_t i = 0; i < max_thread; ++i) {
        FindThread& t = arThreads[i];
        t.pTavFind = p;
        t.pController = this;
        t.contentFilter = p->request.contentFilter;
        t.index = i;
    }
}

void ThreadControllerFind::addResult(FileResult&& r) {
    if (pTavFind && !pTavFind->admitResult()) return;
    const uint64_t hits = r.layer.hitCount();
    std::lock_guard<std::mutex> l(mutexResults);
    pending.push_back(std::move(r));
    countResults.fetch_add(1, std::memory_order_relaxed);
    countHits.fetch_add(hits, std::memory_order_relaxed);
}

void ThreadControllerFind::runCustom() {
    tav::log(tav::LOG_TRACE, "ThreadControllerFind::runCustom");
    tav::log(tav::LOG_TRACE, "ThreadControllerFind::runCustom, arThreads.size():$", quint64(arThreads.size()));
    if (!X_ASSERT_MSG(pTavFind, "tavFind == NULL")) return;
    pTavFind->beginRun(uint32_t(arThreads.size()));
    for (FindThread& t : arThreads) tav::XThreadPool::start_global(&t, false);
    pTavFind->waitWorkersEnded();
    tav::log(tav::LOG_TRACE, "ThreadControllerFind::~runCustom, file hits:$", countResults.load());
    pTavFind->notifyDone();
}

} // namespace tavFinder
