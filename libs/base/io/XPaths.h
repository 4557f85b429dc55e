#pragma once
// Where the program keeps its files: the configuration folder (XDG config,
// ~/.config/talvofinder) and the cache folder (~/.cache/talvofinder).
#include <QDir>
#include <QFileInfo>
#include <QString>

namespace tav {

QDir get_absolute_config_dir();                               // created when missing
QFileInfo get_absolute_config_file_path(const QString& name);
QDir get_create_cache_dir();
bool empty_out_cache_dir();                                   // removes everything inside
// open(2) for an absolute path of any length: one past the system's limit is
// opened in pieces below the limit, each relative to the folder before it.
// -1 and errno as open(2) otherwise.
int openPath(const char* path, int flags);

// File names are bytes; most are UTF-8, some (old Latin-1 names on shared
// drives) are not. decodePath keeps every byte that is not part of valid UTF-8
// as one of the characters U+DC80..U+DCFF, and encodePath gives those bytes
// back, so such a file can be opened, named and printed as it is. Names shown
// to the user show these characters as replacement characters.
QString decodePath(const char* bytes, size_t size);
inline QString decodePath(const QByteArray& b) { return decodePath(b.constData(), size_t(b.size())); }
QByteArray encodePath(const QString& path);
// Makes the locale's text codec (which Qt uses for every file name: QFile,
// QFileInfo, QDir) this same conversion, so every part of the program that
// takes a path from Qt opens, renames and deletes the file it names. Called
// once, first thing in main; later calls do nothing.
void install_file_name_codec();

// Directory of the running executable (with its file name when 'withName').
QString get_exe_path(bool withName);

} // namespace tav
