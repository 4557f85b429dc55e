#pragma once
// Terminal emulators: the one to use on this desktop, the argument list that
// runs a command line in it, and a terminal opened in a folder.
#include <QFileInfo>
#include <QString>
#include <QStringList>

namespace tavFinder {

class Terminal {
public:
    // How an emulator takes a working folder and a command.
    enum Style {
        STYLE_GNOME,    // --working-directory DIR -- prog args
        STYLE_XFCE,     // --working-directory DIR -x prog args
        STYLE_KONSOLE,  // --workdir DIR -e prog args
        STYLE_GENERIC,  // -e prog args; the folder only as the process's working folder
    };
    struct Emulator {
        QString program;        // absolute path; empty when none was found
        QStringList preArgs;    // words given with $TERMINAL after the program
        Style style = STYLE_GENERIC;
        bool isValid() const { return !program.isEmpty(); }
    };

    // The first available of $TERMINAL, x-terminal-emulator, gnome-terminal,
    // konsole, xfce4-terminal, xterm (looked up on PATH).
    static Emulator find_emulator();
    // The arguments that run 'command' (already split into words) in 'folder';
    // an empty folder adds no folder option.
    static QStringList arguments(const Emulator& emu, const QString& folder, const QStringList& command);

    // A terminal in the folder of 'fi' (the entry itself when it is a folder).
    static void open_here(const QFileInfo& fi);
    static void open_terminal_windows(const QString& folder);

    // The folder open_here uses for 'fi'.
    static QString folder_of(const QFileInfo& fi);
};

} // namespace tavFinder
