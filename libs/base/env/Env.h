#pragma once
// Process environment helpers and template variables.
#include <QFileInfo>
#include <QHash>
#include <QString>

namespace tav {

void setEnv(const QString& name, const QString& value);
QString getEnv(const QString& name);
bool hasEnv(const QString& name);        // set, even when empty
void unsetEnv(const QString& name);

// Replaces every "$(NAME)" by the value of the environment variable NAME
// (an unset variable gives an empty text). Text without references is returned as is.
QString replaceEnv(const QString& text);

// Replaces "$(NAME)" for the names in 'vars'; other references stay as they are.
QString replace_variables(const QString& text, const QHash<QString, QString>& vars);
QString replace_variables(const QString& text, const QString& name, const QString& value);

// Describes a file for programs started on it:
// G_PATH (absolute path), G_NAME (file name), G_BASENAME (name without the last
// extension), G_DIR (containing folder), G_EXT (extension), G_SIZE (bytes).
void fileInfo_to_env(const QFileInfo& fi);
// The G_* variables of the file last chosen (G_PATH, G_NAME, G_BASENAME, G_DIR,
// G_EXT, G_SIZE). They are the program's own, not its process environment:
// getEnv and replaceEnv see them first, and a started program gets them in its
// environment; setting them never touches the environment other threads read.
QHash<QString, QString> fileVariables();

} // namespace tav
