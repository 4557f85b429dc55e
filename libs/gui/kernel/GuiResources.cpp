#include "gui/kernel/GuiResources.h"

#include <QtGlobal>
#include <atomic>

// Q_INIT_RESOURCE must be used outside of any namespace.
static void initTavguiQrc() { Q_INIT_RESOURCE(tavgui); }

namespace tav {
void initGuiResources() {
    static std::atomic<bool> done{false};
    if (!done.exchange(true)) initTavguiQrc();
}
}
