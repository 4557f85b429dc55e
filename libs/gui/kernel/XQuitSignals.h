#pragma once
// Log-out, shutdown, kill and Ctrl+C end the program through its normal quit
// path, so everything is saved as on Ctrl+Q. The signal handler only writes
// the signal's number to a pipe; the event loop reads it and calls the quit
// function. A second signal while quitting ends the program at once.
#include <functional>

namespace tav {

class XQuitSignals {
public:
    using Quit = std::function<void(int signal)>;
    // Catches SIGTERM, SIGINT and SIGHUP; needs a running application object.
    static bool install(Quit quit);
    // Back to the default handlers (the application object is going).
    static void uninstall();
};

} // namespace tav
