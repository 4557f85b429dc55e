#pragma once
// Starts custom applications, in a terminal emulator or directly, and carries
// the output of direct runs back to the finder through one process-wide event.
#include "base/core/XEventListener.h"

#include <QProcess>
#include <QString>
#include <QStringList>
#include <functional>

namespace tavFinder {

class XApp;

class XAppRunner {
public:
    using OutputListener = std::function<void(const QString&)>;

    // The process-output event: output, error or crash texts of direct runs.
    static tav::XEventListener<OutputListener>& eventProcessOutput();
    // Calls every listener with 'text', in registration order, under the event's mutex.
    static void broadcast(const QString& text);

    // Starts the record's program; always true (failures are logged).
    static bool start_program(const XApp& app);

    // The "bash -c" line of a terminal run: the program and every argument word
    // shell-quoted after their references are replaced, so a file name never runs
    // as a command; "; exec bash" keeps the terminal open.
    static QString terminal_command_line(const XApp& app);

    // Why a program did not start, naming it ("The program 'x' was not found.").
    static QString start_error_text(const QString& program, QProcess::ProcessError error, const QString& qtText);
};

} // namespace tavFinder
