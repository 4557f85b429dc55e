#pragma once
// File helpers: whole, atomic writes and setting a broken file aside.
#include <QByteArray>
#include <QString>

namespace tav {

// Writes all bytes to a temporary file beside 'path' and renames it over 'path',
// so a crash never leaves a half-written file. Creates the folder when missing.
bool writeFileAtomic(const QString& path, const QByteArray& data, QString* error = nullptr);

// Renames 'path' to 'path.bad' (replacing an older one); returns the new name or empty.
QString moveAside(const QString& path);

bool fileExists(const QString& path);
bool deleteFile(const QString& path);

} // namespace tav
