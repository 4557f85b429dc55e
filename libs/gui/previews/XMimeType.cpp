#include "gui/previews/XMimeType.h"

#include <QImageReader>
#include <QMimeDatabase>
#include <QSet>

namespace tav {

XMimeType XMimeType::fromFile(const QFileInfo& fi) { return XMimeType(QMimeDatabase().mimeTypeForFile(fi)); }

XMimeType XMimeType::fromName(const QString& mimeName) { return XMimeType(QMimeDatabase().mimeTypeForName(mimeName)); }

bool XMimeType::isQtImage() const {
    if (!type_.isValid()) return false;
    static const QSet<QString> supported = [] {
        QSet<QString> s;
        for (const QByteArray& m : QImageReader::supportedMimeTypes()) s.insert(QString::fromLatin1(m));
        return s;
    }();
    if (supported.contains(type_.name())) return true;
    for (const QString& a : type_.aliases())
        if (supported.contains(a)) return true;
    for (const QString& p : type_.allAncestors())
        if (p.startsWith(QLatin1String("image/")) && supported.contains(p)) return true;
    return false;
}

} // namespace tav
