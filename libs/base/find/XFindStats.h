#pragma once
// Five counters of a scan or a search. Threads add to them atomically; a copy
// takes a snapshot.
#include "base/core/AtomicBits.h"

#include <QString>
#include <cstdint>

namespace tav {

class XFindStats {
public:
    XAtomic<uint64_t> countFiles;   // files total
    XAtomic<uint64_t> countLines;
    XAtomic<uint64_t> countBytes;
    XAtomic<uint64_t> countHits;
    XAtomic<uint64_t> countMatch;   // files matching

    static void add(XAtomic<uint64_t>& counter, uint64_t v) { counter.raw().fetch_add(v, std::memory_order_relaxed); }
    void clear() {
        countFiles = 0;
        countLines = 0;
        countBytes = 0;
        countHits = 0;
        countMatch = 0;
    }
    // Adds another record's counters to this one.
    void add(const XFindStats& o) {
        add(countFiles, o.countFiles);
        add(countLines, o.countLines);
        add(countBytes, o.countBytes);
        add(countHits, o.countHits);
        add(countMatch, o.countMatch);
    }
    QString toString() const;
};

} // namespace tav
