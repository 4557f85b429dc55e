// Commands whose windows are not built yet. Each prints that it is not
// available and exits with 2; the real command replaces its placeholder.
#include "base/kernel/CommandRegistry.h"

#include <QStringList>

namespace {
const bool kPending = [] {
    const char* names[] = {
        "xtree.writeReadTree2", "prog",
        "result_full_Window", "filterProxy", "qtreeViewDirs", "result_scan_Window",
        "testThumbs",
        "misc.dir_preview_simple", "preview.ascii", "preview.dir",
        "preview.hex",
    };
    for (const char* n : names) tav::registerPendingCommand(QString::fromLatin1(n), QString());
    return true;
}();
}
