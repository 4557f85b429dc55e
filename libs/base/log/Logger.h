#pragma once
// Logging: every line carries a level bit and a text built from a template in
// which each '$' is replaced by the next argument.
//   4 error/warning, 8 rejected input, 16 user navigation, 32 trace, 64 verbose.
#include <QString>
#include <QStringList>
#include <QFileInfo>
#include <QByteArray>
#include <functional>
#include <string>
#include <type_traits>

namespace tav {

// The level bit of a log line.
enum LogLevel : unsigned {
    LOG_ERROR = 4,        // errors and warnings
    LOG_REJECTED = 8,     // input refused
    LOG_NAVIGATION = 16,  // what the user opened and chose
    LOG_TRACE = 32,       // the program's steps
    LOG_VERBOSE = 64,     // every detail
};

class Logger {
public:
    using Sink = std::function<void(unsigned level, const QString& line)>;

    // Simple level N shows the bits 4 .. 2^(N+1): 1 errors only, 3 up to navigation, 5 all.
    static void setLogLevelSimple(int n);
    static int logLevelSimple();
    static void setLogLevelBits(unsigned bits);
    static unsigned logLevelBits();
    static bool isEnabled(unsigned level);
    // True when a line of this level must be formatted at all (shown or captured).
    static bool wants(unsigned level);

    static void write(unsigned level, const QString& text);
    // Plain text to standard output, whatever the level.
    static void printToCout(const QString& text);
    static void printToCerr(const QString& text);

    // Extra sinks receive every line (all levels), e.g. a test capture.
    static int addSink(Sink sink);
    static void removeSink(int id);
    // Standard error output can be switched off (tests keep their output short).
    static void setStderrEnabled(bool on);

    // The user's choice of level ("--log N" on any command line, or TAV_LOG=N)
    // wins over the levels the program sets for itself. Removes the option from
    // argv; returns false with a message when N is not a level 0..5.
    static bool takeLogOption(int& argc, char** argv, QString* error);
    // Pins (0..5) or unpins (-1) the level; while pinned, setLogLevelSimple
    // and setLogLevelBits change nothing.
    static void pinLogLevelSimple(int n);
    static int pinnedLogLevel();
};

// ---- conversion of template arguments -----------------------------------------
inline QString toLogString(const QString& s) { return s; }
inline QString toLogString(const char* s) { return QString::fromUtf8(s ? s : "(null)"); }
inline QString toLogString(const std::string& s) { return QString::fromStdString(s); }
inline QString toLogString(const QByteArray& b) { return QString::fromUtf8(b); }
inline QString toLogString(QChar c) { return QString(c); }
inline QString toLogString(bool b) { return b ? QStringLiteral("true") : QStringLiteral("false"); }
inline QString toLogString(const QFileInfo& fi) { return fi.absoluteFilePath(); }
inline QString toLogString(const QStringList& l) { return l.join(QLatin1Char(',')); }
inline QString toLogString(const void* p) { return QStringLiteral("0x%1").arg(quintptr(p), 0, 16); }
template <typename T, typename = std::enable_if_t<std::is_arithmetic_v<T> && !std::is_same_v<T, bool>>>
inline QString toLogString(T v) { return QString::number(v); }
template <typename E, typename = void, typename = std::enable_if_t<std::is_enum_v<E>>>
inline QString toLogString(E e) { return QString::number(static_cast<std::underlying_type_t<E>>(e)); }

namespace detail {
QString fillTemplate(const QString& tmpl, const QString* args, int count);
}

// "a $ b $" with (1, 2) -> "a 1 b 2". Surplus '$' stay, surplus arguments are appended.
template <typename... A>
QString fill(const QString& tmpl, const A&... args) {
    if constexpr (sizeof...(A) == 0) {
        return tmpl;
    } else {
        const QString arr[] = {toLogString(args)...};
        return detail::fillTemplate(tmpl, arr, int(sizeof...(A)));
    }
}

template <typename... A>
void log(unsigned level, const QString& tmpl, const A&... args) {
    if (!Logger::wants(level)) return;
    Logger::write(level, fill(tmpl, args...));
}
template <typename... A>
void log(unsigned level, const char* tmpl, const A&... args) {
    if (!Logger::wants(level)) return;
    Logger::write(level, fill(QString::fromUtf8(tmpl), args...));
}
// Default level: ordinary trace.
template <typename... A>
void trace(const char* tmpl, const A&... args) { log(tav::LOG_TRACE, tmpl, args...); }

// Assertion report: logs "<file>:<line> <msg>" at level 4 and returns ok so the
// caller can decide to go on or return.
bool assert_report(bool ok, const char* file, int line, const QString& msg);

} // namespace tav

// X_ASSERT(ptr) reports "ptr == NULL"; X_ASSERT_MSG(ptr, "nEngine == NULL") a given text.
#define X_ASSERT_MSG(p, msg) ::tav::assert_report((p) != nullptr, __FILE__, __LINE__, QStringLiteral(msg))
#define X_ASSERT(p) X_ASSERT_MSG(p, #p " == NULL")
