#include "common/TestEnv.h"

#include "base/kernel/Kernel.h"
#include "base/log/Logger.h"
#include "base/node/XNode.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QMutexLocker>
#include <mutex>
#include <utility>

namespace tftest {

TestEnv::TestEnv() {
    QDir d(dir_.path());
    d.mkpath(QStringLiteral("config"));
    d.mkpath(QStringLiteral("cache"));
    d.mkpath(QStringLiteral("runtime"));
    d.mkpath(QStringLiteral("data"));   // the trash lives here: never the user's own
    QFile::setPermissions(runtimeDir(), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    qputenv("XDG_CONFIG_HOME", configHome().toLocal8Bit());
    qputenv("XDG_CACHE_HOME", cacheHome().toLocal8Bit());
    qputenv("XDG_RUNTIME_DIR", runtimeDir().toLocal8Bit());
    qputenv("XDG_DATA_HOME", dataHome().toLocal8Bit());
    tav::Logger::setStderrEnabled(qEnvironmentVariableIsSet("TF_TEST_LOG"));
}
TestEnv::~TestEnv() = default;
void TestEnv::markFirstRunDone() const {
    const QString path = tav::Kernel::nodeFilePath();
    std::unique_ptr<tav::XNode> root = QFile::exists(path) ? tav::XNode::loadFromXml(path) : nullptr;
    if (!root) root = tav::XNode::createRoot(QStringLiteral("TalvoEngine"));
    root->setBool(QStringLiteral("flagSeeIniMessage"), false);
    root->saveNodeToXml(path);
}
QProcessEnvironment TestEnv::processEnvironment(bool display) const {
    QProcessEnvironment e = QProcessEnvironment::systemEnvironment();
    e.insert(QStringLiteral("XDG_CONFIG_HOME"), configHome());
    e.insert(QStringLiteral("XDG_CACHE_HOME"), cacheHome());
    e.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtimeDir());
    e.insert(QStringLiteral("XDG_DATA_HOME"), dataHome());
    if (display) {
        e.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    } else {
        e.remove(QStringLiteral("DISPLAY"));
        e.remove(QStringLiteral("QT_QPA_PLATFORM"));
    }
    return e;
}
QString TestEnv::programPath() { return qEnvironmentVariable("TF_TEST_BINARY_DIR") + QStringLiteral("/talvofinder"); }
QString TestEnv::configHome() const { return dir_.path() + QStringLiteral("/config"); }
QString TestEnv::cacheHome() const { return dir_.path() + QStringLiteral("/cache"); }
QString TestEnv::runtimeDir() const { return dir_.path() + QStringLiteral("/runtime"); }
QString TestEnv::dataHome() const { return dir_.path() + QStringLiteral("/data"); }

struct LogCapture::Impl {
    mutable std::mutex mutex;   // visible to the thread sanitizer
    std::vector<std::pair<unsigned, QString>> lines;
    int id = 0;
};

LogCapture::LogCapture() : d(std::make_unique<Impl>()) {
    Impl* p = d.get();
    d->id = tav::Logger::addSink([p](unsigned level, const QString& line) {
        std::lock_guard<std::mutex> l(p->mutex);
        p->lines.emplace_back(level, line);
    });
}
LogCapture::~LogCapture() { tav::Logger::removeSink(d->id); }

QStringList LogCapture::lines() const {
    std::lock_guard<std::mutex> l(d->mutex);
    QStringList out;
    for (auto& [lv, s] : d->lines) out << s;
    return out;
}
bool LogCapture::contains(const QString& part) const { return count(part) > 0; }
bool LogCapture::containsLine(const QString& line) const { return lines().contains(line); }
int LogCapture::count(const QString& part) const {
    int n = 0;
    for (const QString& s : lines())
        if (s.contains(part)) ++n;
    return n;
}
QStringList LogCapture::linesAtLevel(unsigned level) const {
    std::lock_guard<std::mutex> l(d->mutex);
    QStringList out;
    for (auto& [lv, s] : d->lines)
        if (lv & level) out << s;
    return out;
}
void LogCapture::clear() {
    std::lock_guard<std::mutex> l(d->mutex);
    d->lines.clear();
}

TestDir::TestDir() = default;
QString TestDir::abs(const QString& rel) const { return dir_.path() + QLatin1Char('/') + rel; }
QString TestDir::dir(const QString& rel) {
    QDir(dir_.path()).mkpath(rel);
    return abs(rel);
}
QString TestDir::file(const QString& rel, const QByteArray& content) {
    const QString p = abs(rel);
    QDir().mkpath(QFileInfo(p).absolutePath());
    QFile f(p);
    if (f.open(QIODevice::WriteOnly)) f.write(content);
    return p;
}

} // namespace tftest
