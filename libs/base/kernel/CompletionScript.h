#pragma once
// Bash completion made from the command registry: command names, each
// command's keys, and the values a key names (folders, files, choices).
// Made from the same table the commands are run from, it never lags behind.
#include <QString>

namespace tav {

// The script for 'program' (and 'alsoFor', another name of the same program):
// a function and its "complete" line. Words after the program that start with
// "-" belong to 'defaultCommand'.
QString bashCompletionScript(const QString& program, const QString& alsoFor, const QString& defaultCommand);

} // namespace tav
