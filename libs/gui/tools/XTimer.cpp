#include "gui/tools/XTimer.h"

namespace tav {

XTimer::XTimer(int intervalMs, QObject* parent) : QTimer(parent) {
    setInterval(intervalMs);
    connect(this, &QTimer::timeout, this, [this]() {
        ++ticks_;
        listeners_.fire();
    });
}

} // namespace tav
