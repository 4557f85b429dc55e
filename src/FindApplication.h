#pragma once
// The process frame of the finder: constants, environment, the language
// initialiser and the command "app".
#include "base/core/XEventListener.h"

#include <QByteArray>
#include <QString>
#include <functional>

namespace tav {
class KernelGUI;
class XNode;
}

namespace tavFinder {

constexpr const char* TAVFINDER_VERSION = "1.00.16";
QString buildDate();   // "Sep 25 2022"
QString buildTime();   // "17:32:29"

constexpr const char* BOOKMARKS_FILE = "tavFind-bookmarks.bin";
constexpr const char* APPS_FILE = "tavFind-apps.bin";

// Prepares the environment of the process and of the programs it starts.
void set_env_variables();

class FindApplication {
public:
    static bool lang_initialiser(tav::KernelGUI& kernel);
    // The command "app".
    static int tavFind(tav::KernelGUI& kernel);

    // Quit with the configured confirmation; the end itself (close every window,
    // wait for the pool, leave the event loop with 0).
    static void quit_application();
    static void quit_the_app();
    // The first-run message at start: shown while the root's "flagSeeIniMessage"
    // is true; "OK" sets the language for this run, "OK + save" also stores it
    // and switches the message off.
    static void first_run_message(tav::XNode* root);
    // True when the configuration file was found damaged and set aside at this start.
    static bool damagedConfiguration();
    // What a second start asks of this one: "show" its windows, or "open PATH"
    // in a new window (an empty path: a new window at the start folder).
    static void on_instance_request(const QByteArray& request);
    // Restart one second later (after the configuration dialog).
    static void restart_later();
};

} // namespace tavFinder
