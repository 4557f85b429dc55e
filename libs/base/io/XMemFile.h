#pragma once
// A file held in memory: its name (for display and for the extension) and its
// bytes. Previews can show one instead of a file on disk.
#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QString>

namespace tav {

struct XMemFile {
    QString name;       // file name or path it came from
    QByteArray data;

    bool isEmpty() const { return data.isEmpty(); }
    qint64 size() const { return data.size(); }

    // Reads at most 'maxBytes' of a file; an unreadable file gives an empty record
    // with 'ok' false.
    static XMemFile fromFile(const QString& path, qint64 maxBytes = 256LL * 1024 * 1024, bool* ok = nullptr) {
        XMemFile m;
        m.name = path;
        QFile f(path);
        const bool opened = QFileInfo(path).isFile() && f.open(QIODevice::ReadOnly);
        if (opened) m.data = f.read(maxBytes);
        if (ok) *ok = opened;
        return m;
    }
};

} // namespace tav
