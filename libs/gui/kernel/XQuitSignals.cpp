#include "gui/kernel/XQuitSignals.h"

#include "base/log/Logger.h"

#include <QCoreApplication>
#include <QPointer>
#include <QSocketNotifier>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace tav {

namespace {
int gPipe[2] = {-1, -1};
std::atomic<int> gCaught{0};
QPointer<QSocketNotifier> gNotifier;
XQuitSignals::Quit gQuit;
constexpr int kSignals[] = {SIGTERM, SIGINT, SIGHUP};

void onSignal(int sig) {
    if (gCaught.fetch_add(1) > 0) {
        // Quitting hangs: the user asked twice.
        ::signal(sig, SIG_DFL);
        ::raise(sig);
        return;
    }
    const unsigned char b = static_cast<unsigned char>(sig);
    const int saved = errno;
    [[maybe_unused]] const ssize_t n = ::write(gPipe[1], &b, 1);
    errno = saved;
}
}

bool XQuitSignals::install(Quit quit) {
    uninstall();
    if (!QCoreApplication::instance()) return false;
    if (::pipe2(gPipe, O_CLOEXEC | O_NONBLOCK) != 0) {
        log(tav::LOG_ERROR, "XQuitSignals::install, no pipe");
        return false;
    }
    gQuit = std::move(quit);
    gCaught = 0;
    gNotifier = new QSocketNotifier(gPipe[0], QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(gNotifier, &QSocketNotifier::activated, [](int) {
        unsigned char b = 0;
        if (::read(gPipe[0], &b, 1) != 1) return;
        log(tav::LOG_ERROR, "XQuitSignals, signal $: quitting", int(b));
        if (gQuit) gQuit(int(b));
        else QCoreApplication::exit(0);
    });
    struct sigaction sa {};
    sa.sa_handler = onSignal;
    sigemptyset(&sa.sa_mask);
    sa.sa_flags = SA_RESTART;
    for (int s : kSignals) {
        // A signal ignored by whoever started us (nohup, a background job) stays ignored.
        struct sigaction old {};
        if (::sigaction(s, nullptr, &old) == 0 && old.sa_handler == SIG_IGN) continue;
        ::sigaction(s, &sa, nullptr);
    }
    return true;
}

void XQuitSignals::uninstall() {
    for (int s : kSignals) {
        struct sigaction cur {};
        if (::sigaction(s, nullptr, &cur) == 0 && cur.sa_handler == onSignal) ::signal(s, SIG_DFL);
    }
    delete gNotifier.data();
    for (int& fd : gPipe) {
        if (fd >= 0) ::close(fd);
        fd = -1;
    }
    gQuit = nullptr;
}

} // namespace tav
