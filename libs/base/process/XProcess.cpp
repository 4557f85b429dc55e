#include "base/process/XProcess.h"

#include "base/env/Env.h"
#include "base/log/Logger.h"

#include <QProcessEnvironment>
#include <QRegularExpression>
#include <cerrno>
#include <cstring>

namespace tav {

std::atomic<bool> XProcess::atomicFlagDebug{false};

XProcess::XProcess(QObject* parent) : QProcess(parent) {
    connect(this, &QProcess::started, this, [this]() {
        pastPid_ = processId();
        if (atomicFlagDebug) log(tav::LOG_VERBOSE, "XProcess, started $", pastPid_);
        started_.fire();
    });
    connect(this, &QProcess::errorOccurred, this, [this](QProcess::ProcessError e) {
        if (atomicFlagDebug) log(tav::LOG_VERBOSE, "XProcess, error $: $", int(e), errorString());
        error_.fire();
    });
    connect(this, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            [this](int code, QProcess::ExitStatus st) {
                if (atomicFlagDebug) log(tav::LOG_VERBOSE, "XProcess, finished $, code $, crashed $", pastPid_, code, st == QProcess::CrashExit);
                finished_.fire(st == QProcess::CrashExit);
            });
}

XProcess::~XProcess() = default;

QStringList XProcess::splitArgs(const QString& args) {
    QStringList out;
    QString cur;
    bool inWord = false;
    QChar quote;
    for (int i = 0; i < args.size(); ++i) {
        const QChar c = args[i];
        if (!quote.isNull()) {
            if (c == quote) {
                quote = QChar();
            } else if (quote == QLatin1Char('"') && c == QLatin1Char('\\') && i + 1 < args.size() &&
                       (args[i + 1] == QLatin1Char('"') || args[i + 1] == QLatin1Char('\\'))) {
                cur += args[++i];
            } else {
                cur += c;
            }
            continue;
        }
        if (c == QLatin1Char('"') || c == QLatin1Char('\'')) {
            quote = c;
            inWord = true;
        } else if (c.isSpace()) {
            if (inWord) out << cur;
            cur.clear();
            inWord = false;
        } else {
            cur += c;
            inWord = true;
        }
    }
    if (inWord) out << cur;
    return out;
}

void XProcess::setArgs(const QString& args) { setArguments(splitArgs(args)); }

void XProcess::setArgsReplacingEnv(const QString& rawArgs) {
    QStringList words = splitArgs(rawArgs);
    for (QString& w : words) w = replaceEnv(w);
    setArguments(words);
}

void XProcess::addEnv(const QString& env) {
    QProcessEnvironment pe = processEnvironment().isEmpty() ? QProcessEnvironment::systemEnvironment() : processEnvironment();
    // The chosen file's variables go to the program as well.
    const QHash<QString, QString> vars = fileVariables();
    for (auto it = vars.constBegin(); it != vars.constEnd(); ++it) pe.insert(it.key(), it.value());
    // Split as written, then replace inside each value: a file name holding ';' or
    // '=' stays in its variable and sets no other.
    for (QString part : env.split(QRegularExpression(QStringLiteral("[;\\n]")), Qt::SkipEmptyParts)) {
        part = part.trimmed();
        if (part.isEmpty()) continue;
        const int eq = part.indexOf(QLatin1Char('='));
        if (eq <= 0) {
            log(tav::LOG_ERROR, "XProcess::addEnv, '$' is not NAME=value", part);
            continue;
        }
        pe.insert(part.left(eq).trimmed(), replaceEnv(part.mid(eq + 1)));
    }
    setProcessEnvironment(pe);
}

QString XProcess::toString() const {
    return fill("XProcess[$] '$' $ state:$", pastPid_, program(), arguments().join(QLatin1Char(' ')), int(state()));
}

QString XProcess::shellQuote(const QString& value) {
    QString v = value;
    v.replace(QLatin1Char('\''), QStringLiteral("'\\''"));
    return QLatin1Char('\'') + v + QLatin1Char('\'');
}

QString getLastErrorMessage() { return QString::fromLocal8Bit(std::strerror(errno)); }

} // namespace tav
