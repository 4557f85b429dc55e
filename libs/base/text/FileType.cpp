#include "base/text/FileType.h"

#include <QFile>

#include <algorithm>

namespace tav {

QString getFileExtension(const QString& fileName, bool withoutDot) {
    const int slash = std::max(fileName.lastIndexOf(QLatin1Char('/')), fileName.lastIndexOf(QLatin1Char('\\')));
    const int dot = fileName.lastIndexOf(QLatin1Char('.'));
    // A dot right after the folder part (".bashrc") or at the end ("a.") is no extension.
    if (dot <= slash + 1 || dot == fileName.size() - 1) return QString();
    return fileName.mid(withoutDot ? dot + 1 : dot);
}

bool looks_like_text(const char* data, qint64 size) {
    if (size <= 0) return true;
    qint64 control = 0;
    for (qint64 i = 0; i < size; ++i) {
        const unsigned char c = static_cast<unsigned char>(data[i]);
        if (c == 0) return false;
        // Tab, line feed, vertical tab, form feed, carriage return and escape (ANSI colours in logs) are text.
        if (c < 0x20 && !(c >= 9 && c <= 13) && c != 27) ++control;
        else if (c == 0x7f) ++control;
    }
    // A few stray control bytes happen in real text; a tenth does not.
    return control * 10 < size;
}

bool is_text_file(const QFileInfo& fi) {
    if (!fi.isFile()) return false;
    QFile f(fi.absoluteFilePath());
    if (!f.open(QIODevice::ReadOnly)) return false;
    const QByteArray head = f.read(kTextSniffBytes);
    return looks_like_text(head.constData(), head.size());
}

} // namespace tav
