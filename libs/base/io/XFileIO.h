#pragma once
// File helpers: whole, atomic writes and setting a broken file aside.
#include <QByteArray>
#include <QString>
#include <vector>

namespace tav {

// Writes all bytes to a temporary file beside 'path' and renames it over 'path',
// so a crash never leaves a half-written file. Creates the folder when missing.
bool writeFileAtomic(const QString& path, const QByteArray& data, QString* error = nullptr);

// Reads a whole user file (configuration, catalogue, stores). Only a regular
// file of at most 'maxBytes' is read, and opening never blocks (a FIFO in its
// place is refused, not waited on). Paths starting with ':' are resources.
// False and a reason in 'error' otherwise.
constexpr qint64 kMaxUserFileBytes = 64 * 1024 * 1024;
bool readUserFile(const QString& path, qint64 maxBytes, QByteArray& data, QString* error = nullptr);

// Renames a damaged 'path' to 'path.<time>.bad' (a number added if that
// exists), so every damaged copy is kept; returns the new name or empty.
// Each move is remembered until takeMovedAside() hands it to the window that
// tells the user.
QString moveAside(const QString& path);
struct MovedAside {
    QString path;   // the damaged file's own name
    QString copy;   // where it is now
};
std::vector<MovedAside> takeMovedAside();
std::vector<MovedAside> movedAside();   // the same, kept for the taker

bool fileExists(const QString& path);
bool deleteFile(const QString& path);

} // namespace tav
