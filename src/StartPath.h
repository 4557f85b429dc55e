#pragma once
// Where the finder opens when it is started from outside: a file manager's
// "Open with" runs "talvofinder PATH", a script may run "talvofinder app --dir PATH".
#include <QString>
#include <QStringList>

namespace tav {
class CommandLine;
}

namespace tavFinder {

// 'args' as main() gets them (program first). When the first word names no
// command but a path, the words of "app --dir PATH" with PATH made absolute
// against the folder the program was started in; otherwise 'args' unchanged.
QStringList args_for_path(const QStringList& args);

// The path the command "app" opens at: --dir (a folder or a file, relative to
// the folder the program was started in) wins over --file. Empty when neither
// is given. False with 'error' set when --dir names nothing that exists.
bool start_path(const tav::CommandLine& cl, QString& path, QString& error);

} // namespace tavFinder
