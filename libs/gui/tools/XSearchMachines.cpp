#include "gui/tools/XSearchMachines.h"

#include "base/io/XPaths.h"
#include "base/log/Logger.h"

#include <QDesktopServices>
#include <QFile>
#include <QMutex>

namespace tav {

namespace {
QMutex gMutex;
QString gResource = QStringLiteral(":/tf/search/search_machines.txt");
std::vector<XSearchMachine> gCache;
bool gCached = false;
}

QUrl XSearchMachine::url_for(const QString& phrase) const {
    QString u = url;
    u.replace(QLatin1Char('$'), QString::fromLatin1(QUrl::toPercentEncoding(phrase)));
    return QUrl(u, QUrl::StrictMode);
}

bool XSearchMachine::trigger_search_machine(const QString& phrase) const {
    if (separator || url.isEmpty()) return false;
    const QUrl u = url_for(phrase);
    log(tav::LOG_NAVIGATION, "XSearchMachine::trigger_search_machine, <$>", u.toString());
    if (!u.isValid()) {
        log(tav::LOG_ERROR, "XSearchMachine::trigger_search_machine, invalid url <$>", u.toString());
        return false;
    }
    return QDesktopServices::openUrl(u);
}

void XSearchMachines::set_resource_file(const QString& path) {
    QMutexLocker l(&gMutex);
    gResource = path;
    gCached = false;
}

QString XSearchMachines::resource_file() {
    QMutexLocker l(&gMutex);
    return gResource;
}

QString XSearchMachines::effective_file() {
    const QFileInfo user = get_absolute_config_file_path(QStringLiteral("search_machines.txt"));
    return user.isFile() ? user.absoluteFilePath() : resource_file();
}

std::vector<XSearchMachine> XSearchMachines::parse(const QString& text) {
    std::vector<XSearchMachine> out;
    int lineNo = 0;
    for (const QString& raw : text.split(QLatin1Char('\n'))) {
        ++lineNo;
        const QString line = raw.trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#'))) continue;
        XSearchMachine m;
        if (line.startsWith(QLatin1Char('-'))) {
            m.separator = true;
            out.push_back(m);
            continue;
        }
        const int comma = line.indexOf(QLatin1Char(','));
        if (comma < 0) {
            log(tav::LOG_ERROR, "XSearchMachines::parse, line $ has no ',' <$>", lineNo, line);
            continue;
        }
        m.title = line.left(comma).trimmed();
        m.url = line.mid(comma + 1).trimmed();
        if (m.title.isEmpty() || m.url.isEmpty()) {
            log(tav::LOG_ERROR, "XSearchMachines::parse, line $ lacks title or url <$>", lineNo, line);
            continue;
        }
        out.push_back(m);
    }
    return out;
}

std::vector<XSearchMachine> XSearchMachines::get_search_machines(bool cached) {
    {
        QMutexLocker l(&gMutex);
        if (cached && gCached) return gCache;
    }
    const QString path = effective_file();
    QFile f(path);
    std::vector<XSearchMachine> list;
    if (f.open(QIODevice::ReadOnly)) list = parse(QString::fromUtf8(f.readAll()));
    else log(tav::LOG_ERROR, "XSearchMachines::get_search_machines, <<<$>>> 404", path);
    QMutexLocker l(&gMutex);
    gCache = list;
    gCached = true;
    return list;
}

} // namespace tav
