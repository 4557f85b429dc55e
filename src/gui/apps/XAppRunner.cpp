#include "src/gui/apps/XAppRunner.h"

#include "base/env/Env.h"
#include "base/log/Logger.h"
#include "base/process/XProcess.h"
#include "base/text/XTokenizer.h"
#include "base/thread/XThread.h"
#include "gui/tools/XTools.h"
#include "src/gui/apps/Terminal.h"
#include "src/gui/apps/XApp.h"

#include <QFileInfo>
#include <QStandardPaths>

namespace tavFinder {

using tav::log;

namespace {
// Created at static initialisation, before any window can send to it.
tav::XEventListener<XAppRunner::OutputListener>& outputEvent() {
    static tav::XEventListener<XAppRunner::OutputListener> e;
    return e;
}
const bool kOutputEvent = (outputEvent(), true);

void broadcastLater(const QString& text) {
    tav::run_in_gui_thread([text]() { XAppRunner::broadcast(text); }, 100);
}

void logStart(tav::XProcess* proc, bool started) {
    if (started) log(tav::LOG_NAVIGATION, "WinRunProgram::on_exec, processID:$ started", proc->processId());
    else log(tav::LOG_ERROR, "WinRunProgram::on_exec, processID cannot start_global:$",
             XAppRunner::start_error_text(proc->program(), proc->error(), proc->errorString()));
}

// The start is reported when it happens; the GUI thread never waits for a program.
void startReported(tav::XProcess* proc) {
    QObject::connect(proc, &QProcess::started, proc, [proc]() { logStart(proc, true); });
    QObject::connect(proc, &QProcess::errorOccurred, proc, [proc](QProcess::ProcessError e) {
        if (e == QProcess::FailedToStart) logStart(proc, false);
    });
    proc->start(QIODevice::ReadWrite);
}

bool startTerminal(const XApp& app) {
    const Terminal::Emulator emu = Terminal::find_emulator();
    auto* proc = new tav::XProcess();
    proc->addFinishedListener([proc](bool) { proc->deleteLater(); });

    // Diagnostics only: the words of the command as written.
    QString cmd = app.get_path(true);
    if (app.has_arguments()) cmd += QLatin1Char(' ') + app.get_arguments(true);
    log(tav::LOG_TRACE, "-");
    tav::XTokenizer(cmd, QStringLiteral(" \t\n"), false).show(32);
    log(tav::LOG_TRACE, "-");

    if (app.is_flag_keep_term_open()) log(tav::LOG_TRACE, "TERM OPEN");
    const QString folder = app.get_working_dir(true);
    const QStringList command{QStringLiteral("bash"), QStringLiteral("-c"), XAppRunner::terminal_command_line(app)};
    proc->addEnv(app.get_environment(false));
    proc->addFinishedListener([proc](bool) {
        log(tav::LOG_TRACE, "fertig !");
        log(tav::LOG_TRACE, "arBytes<<$>>", QString::fromUtf8(proc->readAll()));
    });
    if (!emu.isValid()) {
        log(tav::LOG_ERROR, "WinRunProgram::on_exec, processID cannot start_global:$",
            QStringLiteral("no terminal emulator found (TERMINAL, x-terminal-emulator, gnome-terminal, konsole, xfce4-terminal, xterm)"));
        proc->deleteLater();
        return true;
    }
    proc->setProgram(emu.program);
    proc->setArguments(Terminal::arguments(emu, folder, command));
    // Emulators without a folder option start where the process starts.
    if (!folder.isEmpty()) proc->setWorkingDirectory(folder);
    proc->addErrorListener([proc]() {
        if (proc->error() == QProcess::FailedToStart) proc->deleteLater();
    });
    startReported(proc);
    return true;
}

bool startDirect(const XApp& app) {
    log(tav::LOG_TRACE, "WinRunProgram::on_exec, no terminal");
    auto* proc = new tav::XProcess();
    // Error output belongs to what the user wants to see.
    proc->setProcessChannelMode(QProcess::MergedChannels);
    const bool showOutput = app.is_flag_show_output();
    proc->addFinishedListener([proc, showOutput](bool crashed) {
        if (showOutput) {
            QString text;
            if (crashed) {
                log(tav::LOG_ERROR, "XAppRunner::start_program, process crashed");
                text = QStringLiteral("Process crashed\nProcess crashed\nProcess crashed\nProcess crashed\n");
            } else {
                log(tav::LOG_TRACE, "XAppRunner::start_program, process exit");
                text = QString::fromUtf8(proc->readAll());
                if (text.isEmpty()) text = QStringLiteral("Process result is empty!");
            }
            broadcastLater(text);
        }
        proc->deleteLater();
    });
    proc->setErrorListener([proc]() {
        const QString why = XAppRunner::start_error_text(proc->program(), proc->error(), proc->errorString());
        log(tav::LOG_ERROR, "XAppRunner::start_program, process error: $", why);
        broadcastLater(QStringLiteral("Process Error\n") + why + QLatin1Char('\n'));
        // A program that never started never finishes either.
        if (proc->error() == QProcess::FailedToStart) proc->deleteLater();
    });
    // Split first, then replace: a file name with blanks stays one argument.
    proc->setArgsReplacingEnv(app.get_arguments(false));
    proc->addEnv(app.get_environment(false));
    proc->setProgram(app.get_path(true));
    startReported(proc);
    return true;
}
}

tav::XEventListener<XAppRunner::OutputListener>& XAppRunner::eventProcessOutput() { return outputEvent(); }

QString XAppRunner::start_error_text(const QString& program, QProcess::ProcessError error, const QString& qtText) {
    if (error == QProcess::FailedToStart) {
        if (program.trimmed().isEmpty()) return tav::xt("No program is set for this application.");
        const QFileInfo fi(program);
        const bool found = program.contains(QLatin1Char('/')) ? fi.exists() : !QStandardPaths::findExecutable(program).isEmpty();
        if (!found) return tav::fill(tav::xt("The program '$' was not found."), program);
        if (!fi.isExecutable() && program.contains(QLatin1Char('/'))) return tav::fill(tav::xt("The program '$' may not be run (permission denied)."), program);
    }
    return tav::fill("$: $", program, qtText);
}

void XAppRunner::broadcast(const QString& text) { outputEvent().fireLocked(text); }

QString XAppRunner::terminal_command_line(const XApp& app) {
    QStringList words;
    for (const QString& w : tav::XProcess::splitArgs(app.get_arguments(false)))
        words << tav::XProcess::shellQuote(tav::replaceEnv(w));
    QString line = tav::XProcess::shellQuote(app.get_path(true)) + QLatin1Char(' ') + words.join(QLatin1Char(' '));
    if (app.is_flag_keep_term_open()) line += QStringLiteral("; exec bash");
    return line;
}

bool XAppRunner::start_program(const XApp& app) {
    if (app.is_flag_terminal()) return startTerminal(app);
    return startDirect(app);
}

} // namespace tavFinder
