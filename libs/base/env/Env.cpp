#include "base/env/Env.h"

#include "base/log/Logger.h"

#include <cstdlib>
#include <mutex>

namespace tav {

namespace {
std::mutex& fileVarsMutex() {
    static std::mutex m;
    return m;
}
QHash<QString, QString>& fileVars() {
    static QHash<QString, QString> vars;
    return vars;
}
}

void setEnv(const QString& name, const QString& value) {
    qputenv(name.toLocal8Bit().constData(), value.toLocal8Bit());
}
QString getEnv(const QString& name) {
    {
        std::lock_guard<std::mutex> l(fileVarsMutex());
        const auto it = fileVars().constFind(name);
        if (it != fileVars().constEnd()) return *it;
    }
    return QString::fromLocal8Bit(qgetenv(name.toLocal8Bit().constData()));
}
bool hasEnv(const QString& name) {
    {
        std::lock_guard<std::mutex> l(fileVarsMutex());
        if (fileVars().contains(name)) return true;
    }
    return qEnvironmentVariableIsSet(name.toLocal8Bit().constData());
}

QHash<QString, QString> fileVariables() {
    std::lock_guard<std::mutex> l(fileVarsMutex());
    return fileVars();
}
void unsetEnv(const QString& name) { qunsetenv(name.toLocal8Bit().constData()); }

namespace {
// Walks "$(NAME)" references; 'lookup' returns false to keep a reference as written.
template <typename Lookup>
QString replaceRefs(const QString& text, Lookup lookup) {
    if (!text.contains(QLatin1String("$("))) return text;
    QString out;
    out.reserve(text.size());
    int i = 0;
    const int n = text.size();
    while (i < n) {
        if (text[i] == QLatin1Char('$') && i + 1 < n && text[i + 1] == QLatin1Char('(')) {
            const int close = text.indexOf(QLatin1Char(')'), i + 2);
            if (close > i + 2) {
                const QString name = text.mid(i + 2, close - i - 2);
                QString value;
                if (lookup(name, value)) {
                    out += value;
                    i = close + 1;
                    continue;
                }
            }
        }
        out += text[i++];
    }
    return out;
}
}

QString replaceEnv(const QString& text) {
    return replaceRefs(text, [](const QString& name, QString& value) {
        value = getEnv(name);
        return true;
    });
}

QString replace_variables(const QString& text, const QHash<QString, QString>& vars) {
    return replaceRefs(text, [&](const QString& name, QString& value) {
        auto it = vars.find(name);
        if (it == vars.end()) return false;
        value = *it;
        return true;
    });
}

QString replace_variables(const QString& text, const QString& name, const QString& value) {
    return replace_variables(text, QHash<QString, QString>{{name, value}});
}

void fileInfo_to_env(const QFileInfo& fi) {
    QHash<QString, QString> vars;
    vars.insert(QStringLiteral("G_PATH"), fi.absoluteFilePath());
    vars.insert(QStringLiteral("G_NAME"), fi.fileName());
    vars.insert(QStringLiteral("G_BASENAME"), fi.completeBaseName());
    vars.insert(QStringLiteral("G_DIR"), fi.absolutePath());
    vars.insert(QStringLiteral("G_EXT"), fi.suffix());
    vars.insert(QStringLiteral("G_SIZE"), QString::number(fi.exists() ? fi.size() : 0));
    {
        std::lock_guard<std::mutex> l(fileVarsMutex());
        fileVars() = std::move(vars);
    }
    log(tav::LOG_VERBOSE, "fileInfo_to_env, G_PATH:$", fi.absoluteFilePath());
}

} // namespace tav
