#include "base/log/QtMessageFilter.h"

#include <QMutex>
#include <QStringList>
#include <QtGlobal>
#include <atomic>

namespace tav {

namespace {
QMutex gMutex;
QStringList& filters() {
    static QStringList l;
    return l;
}
QtMessageHandler gPrevious = nullptr;
std::atomic<bool> gInstalled{false};

void handler(QtMsgType type, const QMessageLogContext& ctx, const QString& msg) {
    if (isConsoleMessageFiltered(msg)) return;
    if (gPrevious) gPrevious(type, ctx, msg);
    else fprintf(stderr, "%s\n", qPrintable(msg));
}
}

void addConsoleMessageFilter(const QString& text) {
    QMutexLocker l(&gMutex);
    if (!text.isEmpty() && !filters().contains(text)) filters() << text;
}

bool isConsoleMessageFiltered(const QString& message) {
    QMutexLocker l(&gMutex);
    for (const QString& f : filters())
        if (message.contains(f)) return true;
    return false;
}

void installQtMessageHandler() {
    if (gInstalled.exchange(true)) return;
    gPrevious = qInstallMessageHandler(handler);
}

} // namespace tav
