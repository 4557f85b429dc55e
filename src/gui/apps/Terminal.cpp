#include "src/gui/apps/Terminal.h"

#include "base/env/Env.h"
#include "base/log/Logger.h"
#include "base/process/XProcess.h"

#include <QDir>
#include <QStandardPaths>

namespace tavFinder {

using tav::log;

namespace {
Terminal::Style styleOf(const QString& program) {
    // x-terminal-emulator is usually a link: the real program decides.
    const QString real = QFileInfo(QFileInfo(program).canonicalFilePath()).fileName();
    const QString name = real.isEmpty() ? QFileInfo(program).fileName() : real;
    if (name == QLatin1String("gnome-terminal")) return Terminal::STYLE_GNOME;
    if (name == QLatin1String("xfce4-terminal")) return Terminal::STYLE_XFCE;
    if (name == QLatin1String("konsole")) return Terminal::STYLE_KONSOLE;
    return Terminal::STYLE_GENERIC;
}
}

Terminal::Emulator Terminal::find_emulator() {
    Emulator emu;
    const QStringList fromEnv = tav::XProcess::splitArgs(tav::getEnv(QStringLiteral("TERMINAL")));
    if (!fromEnv.isEmpty()) {
        const QString found = QFileInfo(fromEnv.first()).isAbsolute() && QFileInfo(fromEnv.first()).isExecutable()
                                  ? fromEnv.first()
                                  : QStandardPaths::findExecutable(fromEnv.first());
        if (!found.isEmpty()) {
            emu.program = found;
            emu.preArgs = fromEnv.mid(1);
            emu.style = styleOf(found);
            return emu;
        }
        log(tav::LOG_ERROR, "Terminal::find_emulator, TERMINAL '$' not found", fromEnv.first());
    }
    for (const char* name : {"x-terminal-emulator", "gnome-terminal", "konsole", "xfce4-terminal", "xterm"}) {
        const QString found = QStandardPaths::findExecutable(QString::fromLatin1(name));
        if (found.isEmpty()) continue;
        emu.program = found;
        emu.style = styleOf(found);
        return emu;
    }
    return emu;
}

QStringList Terminal::arguments(const Emulator& emu, const QString& folder, const QStringList& command) {
    QStringList args = emu.preArgs;
    switch (emu.style) {
    case STYLE_GNOME:
        if (!folder.isEmpty()) args << QStringLiteral("--working-directory") << folder;
        if (!command.isEmpty()) args << QStringLiteral("--") << command;
        break;
    case STYLE_XFCE:
        if (!folder.isEmpty()) args << QStringLiteral("--working-directory") << folder;
        if (!command.isEmpty()) args << QStringLiteral("-x") << command;
        break;
    case STYLE_KONSOLE:
        if (!folder.isEmpty()) args << QStringLiteral("--workdir") << folder;
        if (!command.isEmpty()) args << QStringLiteral("-e") << command;
        break;
    case STYLE_GENERIC:
        if (!command.isEmpty()) args << QStringLiteral("-e") << command;
        break;
    }
    return args;
}

QString Terminal::folder_of(const QFileInfo& fi) {
    return fi.isDir() ? fi.absoluteFilePath() : fi.absolutePath();
}

void Terminal::open_here(const QFileInfo& fi) {
    const QString folder = folder_of(fi);
    log(tav::LOG_TRACE, "Terminal::open_here '$'", folder);
    open_terminal_windows(folder);
}

void Terminal::open_terminal_windows(const QString& folder) {
    log(tav::LOG_TRACE, "open_terminal_windows,*, sPath '$'", folder);
    auto* proc = new tav::XProcess();
#ifdef Q_OS_WIN
    // The command interpreter needs a console window of its own.
    proc->setCreateProcessArgumentsModifier([](QProcess::CreateProcessArguments* a) {
        a->flags |= 0x10;                 // CREATE_NEW_CONSOLE
        a->startupInfo->dwFlags &= ~0x100u; // STARTF_USESTDHANDLES
    });
    proc->setProgram(QStringLiteral("cmd.exe"));
    proc->setNativeArguments(QStringLiteral("cmd /k cd/d ") + folder);
#else
    const Emulator emu = find_emulator();
    if (!emu.isValid()) {
        log(tav::LOG_ERROR, "open_terminal_windows, no terminal emulator found (TERMINAL, x-terminal-emulator, gnome-terminal, konsole, xfce4-terminal, xterm)");
        proc->deleteLater();
        return;
    }
    proc->setProgram(emu.program);
    proc->setArguments(arguments(emu, folder, QStringList()));
    proc->setWorkingDirectory(folder);
#endif
    proc->addStartedListener([proc]() {
        if (proc->isRunning()) log(tav::LOG_VERBOSE, "open_terminal_windows, running PID:$", proc->processId());
    });
    proc->addErrorListener([proc]() {
        log(tav::LOG_TRACE, "open_terminal_windows, da proc err:$", proc->toString());
        // A program that never started never finishes either.
        if (proc->error() == QProcess::FailedToStart) proc->deleteLater();
    });
    proc->addFinishedListener([proc](bool crashed) {
        if (crashed)
            log(tav::LOG_VERBOSE, "open_terminal_windows, listenerExit, process [$] exit, flagCrashed:$", proc->processId_past(), crashed);
        else
            log(tav::LOG_VERBOSE, "open_terminal_windows, listenerExit, process [$] exit", proc->processId_past());
        proc->deleteLater();
    });
    proc->start(QIODevice::ReadWrite);
    if (!proc->waitForStarted(30000))
        log(tav::LOG_ERROR, "open_terminal_windows, processID cannot start_global:$", tav::getLastErrorMessage());
    else
        log(tav::LOG_NAVIGATION, "open_terminal_windows, processID:$ started", proc->processId());
    log(tav::LOG_TRACE, "~open_terminal_windows");
}

} // namespace tavFinder
