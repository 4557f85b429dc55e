#pragma once
// A repeating timer whose ticks go to a listener list.
#include "base/core/XEventListener.h"

#include <QTimer>
#include <functional>

namespace tav {

class XTimer : public QTimer {
    Q_OBJECT
public:
    explicit XTimer(int intervalMs = 1000, QObject* parent = nullptr);
    int addListener(std::function<void()> f) { return listeners_.add(std::move(f)); }
    XEventListener<std::function<void()>>& listeners() { return listeners_; }
    int countTicks() const { return ticks_; }

private:
    XEventListener<std::function<void()>> listeners_;
    int ticks_ = 0;
};

} // namespace tav
