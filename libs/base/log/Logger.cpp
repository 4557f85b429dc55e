#include "base/log/Logger.h"

#include <QMutex>
#include <QMutexLocker>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>

namespace tav {
namespace {
std::atomic<unsigned> gBits{4};
std::atomic<int> gSimple{1};
std::atomic<int> gSinkCount{0};
std::atomic<bool> gStderr{true};
std::atomic<int> gPinned{-1};
// std::mutex: its locking is visible to the thread sanitizer (QMutex contention is not).
std::mutex& sinkMutex() { static std::mutex m; return m; }
std::map<int, Logger::Sink>& sinks() { static std::map<int, Logger::Sink> s; return s; }
int gNextSink = 1;
}

void Logger::setLogLevelSimple(int n) {
    if (gPinned.load() >= 0) return;
    if (n < 0) n = 0;
    if (n > 5) n = 5;
    unsigned bits = 0;
    for (int i = 1; i <= n; ++i) bits |= (1u << (i + 1));
    gSimple = n;
    gBits = bits;
}
int Logger::logLevelSimple() { return gSimple; }
void Logger::setLogLevelBits(unsigned bits) {
    if (gPinned.load() < 0) gBits = bits;
}

void Logger::pinLogLevelSimple(int n) {
    gPinned = -1;
    if (n < 0) return;
    setLogLevelSimple(n);
    gPinned = gSimple.load();
}
int Logger::pinnedLogLevel() { return gPinned.load(); }

namespace {
bool parseLevel(const char* text, int* level) {
    if (!text || !*text) return false;
    char* end = nullptr;
    const long n = std::strtol(text, &end, 10);
    if (*end != '\0' || n < 0 || n > 5) return false;
    *level = int(n);
    return true;
}
}

bool Logger::takeLogOption(int& argc, char** argv, QString* error) {
    int level = -1;
    const char* bad = nullptr;
    int out = 1;
    for (int i = 1; i < argc; ++i) {
        const char* a = argv[i];
        if (std::strcmp(a, "--log") == 0 || std::strcmp(a, "-log") == 0) {
            const char* v = i + 1 < argc ? argv[i + 1] : nullptr;
            if (!parseLevel(v, &level)) bad = v ? v : "";
            if (v) ++i;
            continue;
        }
        if (std::strncmp(a, "--log=", 6) == 0) {
            if (!parseLevel(a + 6, &level)) bad = a + 6;
            continue;
        }
        argv[out++] = argv[i];
    }
    if (out < argc) argv[out] = nullptr;
    argc = out;
    if (bad) {
        if (error) *error = QStringLiteral("--log needs a level from 0 (errors only) to 5 (everything), not '%1'").arg(QString::fromLocal8Bit(bad));
        return false;
    }
    if (level < 0) {
        const QByteArray env = qgetenv("TAV_LOG");
        if (!env.isEmpty() && !parseLevel(env.constData(), &level)) {
            if (error) *error = QStringLiteral("TAV_LOG needs a level from 0 (errors only) to 5 (everything), not '%1'").arg(QString::fromLocal8Bit(env));
            return false;
        }
    }
    if (level >= 0) pinLogLevelSimple(level);
    return true;
}
unsigned Logger::logLevelBits() { return gBits; }
bool Logger::isEnabled(unsigned level) { return (gBits.load(std::memory_order_relaxed) & level) != 0; }
bool Logger::wants(unsigned level) { return isEnabled(level) || gSinkCount.load(std::memory_order_relaxed) > 0; }
void Logger::setStderrEnabled(bool on) { gStderr = on; }

void Logger::write(unsigned level, const QString& text) {
    if (isEnabled(level) && gStderr) {
        const QByteArray line = QByteArray::number(level) + ' ' + text.toUtf8() + '\n';
        std::fwrite(line.constData(), 1, size_t(line.size()), stderr);
    }
    if (gSinkCount.load() > 0) {
        std::lock_guard<std::mutex> lock(sinkMutex());
        for (auto& [id, s] : sinks()) s(level, text);
    }
}

void Logger::printToCout(const QString& text) {
    const QByteArray line = text.toUtf8() + '\n';
    std::fwrite(line.constData(), 1, size_t(line.size()), stdout);
    std::fflush(stdout);
}
void Logger::printToCerr(const QString& text) {
    const QByteArray line = text.toUtf8() + '\n';
    std::fwrite(line.constData(), 1, size_t(line.size()), stderr);
}

int Logger::addSink(Sink sink) {
    std::lock_guard<std::mutex> lock(sinkMutex());
    const int id = gNextSink++;
    sinks()[id] = std::move(sink);
    gSinkCount = int(sinks().size());
    return id;
}
void Logger::removeSink(int id) {
    std::lock_guard<std::mutex> lock(sinkMutex());
    sinks().erase(id);
    gSinkCount = int(sinks().size());
}

namespace detail {
QString fillTemplate(const QString& tmpl, const QString* args, int count) {
    QString out;
    int total = tmpl.size();
    for (int i = 0; i < count; ++i) total += args[i].size();
    out.reserve(total);
    int next = 0;
    for (QChar c : tmpl) {
        if (c == QLatin1Char('$') && next < count) out += args[next++];
        else out += c;
    }
    for (; next < count; ++next) { out += QLatin1Char(' '); out += args[next]; }
    return out;
}
}

bool assert_report(bool ok, const char* file, int line, const QString& msg) {
    if (!ok) log(tav::LOG_ERROR, "ASSERT $:$ $", file, line, msg);
    return ok;
}

} // namespace tav
