#include "src/gui/History.h"

#include "base/log/Logger.h"
#include "gui/tools/XTools.h"

namespace tavFinder {

using tav::log;

void History::addFile(const QFileInfo& fi) {
    if (!fi.exists()) {
        log(tav::LOG_ERROR, "History::addFile, <<<$>>> does not exist", fi.filePath());
        return;
    }
    if (!arFiles.empty() && index + 1 < arFiles.size()) arFiles.erase(arFiles.begin() + index + 1, arFiles.end());
    if (tav::XTools::isDebug()) log(tav::LOG_TRACE, "History::addFile - index:$, count:$", index, count());
    arFiles.push_back(fi);
    index = uint32_t(arFiles.size() - 1);
    updateState();
}

QFileInfo History::get_prev() {
    if (index == 0) {
        log(tav::LOG_TRACE, "History::get_prev, index == 0");
        return QFileInfo();
    }
    --index;
    updateState();
    return arFiles[index];
}

QFileInfo History::get_next() {
    if (arFiles.empty() || index + 1 >= arFiles.size()) {
        log(tav::LOG_TRACE, "History::get_next, index == history.arFiles.size()-1");
        return QFileInfo();
    }
    ++index;
    updateState();
    return arFiles[index];
}

void History::setIndex(uint32_t i) {
    if (!arFiles.empty() && i <= arFiles.size() - 1) index = i;
}

void History::reset() {
    log(tav::LOG_TRACE, "WinFinder::reset");
    index = 0;
    arFiles.clear();
    listeners_.fire();
}

void History::updateState() {
    uint32_t s = 0;
    const uint32_t n = count();
    if (n > 1) {
        if (index != 0) s |= PREV;
        if (index + 2 <= n) s |= NEXT;
    }
    if (s != state) {
        state = s;
        listeners_.fire();
    }
}

QString History::stateToString(uint32_t s) {
    if (s == NOT_INITIALIZED) return QStringLiteral("NOT_INITIALIZED");
    if (s == 0) return QStringLiteral("NOT_ENABLED");
    if (s == (PREV | NEXT)) return QStringLiteral("PREV | NEXT");
    if (s == NEXT) return QStringLiteral("NEXT");
    if (s == PREV) return QStringLiteral("PREV");
    return QStringLiteral("unknown");
}

} // namespace tavFinder
