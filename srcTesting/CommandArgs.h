#pragma once
// What the developer commands share: keys checked with a usage line, paths
// relative to the folder the program was started in, and the usual window set-up.
#include <QFileInfo>
#include <QString>

namespace tav {
class CommandLine;
}

namespace tavFinder {
namespace devcmd {

// 'path' taken relative to the folder the program was started in (main()
// changes into the program's folder before a command runs).
QFileInfo callerPath(const QString& path);

// Checks the keys the command was registered with; when they do not check,
// prints 'usage' and returns false (the command then ends with 6).
bool keysOk(tav::CommandLine& cl, const QString& usage);

// True when 'fi' is an existing file (or, with 'folder', an existing folder);
// otherwise logs 'missing' (a template with one '$' for the path) as an error.
bool exists(const QFileInfo& fi, bool folder, const char* missing);

// Every line logged, and the loop ends with the last window.
void windowCommandSetup();

} // namespace devcmd
} // namespace tavFinder
