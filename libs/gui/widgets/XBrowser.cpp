#include "gui/widgets/XBrowser.h"

#include "base/env/Env.h"
#include "base/log/Logger.h"

#include <QFile>
#include <QFileInfo>
#include <QTextDocument>
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
        log(tav::LOG_ERROR, "XBrowser::showPage, <<<$>>> 404", path);
        return false;
    }
    setSource(url);
    return true;
}

bool XBrowser::setResourceHTML(const QString& path, bool replace) {
    const QUrl url = pageUrl(path);
    const QString file = url.scheme() == QLatin1String("qrc") ? QLatin1Char(':') + url.path() : url.toLocalFile();
    QFile f(file);
    if (!f.open(QIODevice::ReadOnly)) {
        log(tav::LOG_ERROR, "XBrowser::setResourceHTML, <<<$>>> 404", path);
        return false;
    }
    QString html = QString::fromUtf8(f.readAll());
    if (replace) html = replaceEnv(html);
    // Relative links of the page (its style sheet) resolve against the page's own address.
    document()->setBaseUrl(url);
    setSearchPaths({QFileInfo(file).absolutePath()});
    setHtml(html);
    return true;
}

void XBrowser::setDocMargin(int pixels) { document()->setDocumentMargin(pixels); }

} // namespace tav
