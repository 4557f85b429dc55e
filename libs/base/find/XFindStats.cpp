#include "base/find/XFindStats.h"

#include "base/log/Logger.h"

namespace tav {

QString XFindStats::toString() const {
    return fill("files:$, lines:$, bytes:$, hits:$, match:$", countFiles.load(), countLines.load(), countBytes.load(),
                countHits.load(), countMatch.load());
}

} // namespace tav
