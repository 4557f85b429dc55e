#include "gui/widgets/XBrowser.h"

#include "base/log/Logger.h"

#include <QFile>
#include <QUrl>

namespace tav {

XBrowser::XBrowser(QWidget* parent) : QTextBrowser(parent) { setOpenExternalLinks(true); }

QUrl XBrowser::pageUrl(const QString& path) {
    if (path.startsWith(QLatin1String("qrc:"))) return QUrl(path);
    if (path.startsWith(QLatin1Char(':'))) {
        QString p = path.mid(1);
        if (!p.startsWith(QLatin1Char('/'))) p.prepend(QLatin1Char('/'));
        QUrl u;
        u.setScheme(QStringLiteral("qrc"));
        u.setPath(p);
        return u;
    }
    return QUrl::fromLocalFile(path);
}

bool XBrowser::showPage(const QString& path) {
    const QUrl url = pageUrl(path);
    const QString file = url.scheme() == QLatin1String("qrc") ? QLatin1Char(':') + url.path() : url.toLocalFile();
    if (!QFile::exists(file)) {
        log(4, "XBrowser::showPage, <<<$>>> 404", path);
        return false;
    }
    setSource(url);
    return true;
}

} // namespace tav
