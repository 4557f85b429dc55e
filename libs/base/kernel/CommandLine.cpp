#include "base/kernel/CommandLine.h"

#include "base/env/Env.h"
#include "base/log/Logger.h"

namespace tav {

CommandLine::CommandLine(const QStringList& args) : args_(args) {
    for (int i = 0; i < args.size(); ++i) {
        const QString& w = args[i];
        if (!w.startsWith(QLatin1String("--")) || w.size() < 3) {
            malformed_ = true;
            error_ = QStringLiteral("unexpected argument '%1'").arg(w);
            continue;
        }
        const QString key = w.mid(2);
        QString value;
        if (i + 1 < args.size() && !args[i + 1].startsWith(QLatin1String("--"))) value = args[++i];
        values_.insert(key, value);
    }
}

static QStringList splitKeys(const QString& keys) {
    QStringList out;
    // "key=what" names what the value is (for completion); the key is the part before '='.
    for (const QString& k : keys.split(QLatin1Char(','), Qt::SkipEmptyParts)) out << k.section(QLatin1Char('='), 0, 0).trimmed();
    return out;
}

void CommandLine::addMustHaveKeys(const QString& keys) { mustHave_ << splitKeys(keys); }
void CommandLine::addOptionalKeys(const QString& keys) { optional_ << splitKeys(keys); }

bool CommandLine::checkKeys() const {
    if (malformed_) {
        log(tav::LOG_ERROR, "CommandLine::checkKeys, $", error_);
        return false;
    }
    for (const QString& k : mustHave_) {
        if (values_.value(k).isEmpty()) {
            error_ = QStringLiteral("missing key --%1").arg(k);
            log(tav::LOG_ERROR, "CommandLine::checkKeys, $", error_);
            return false;
        }
    }
    if (!mustHave_.isEmpty() || !optional_.isEmpty()) {
        for (auto it = values_.constBegin(); it != values_.constEnd(); ++it) {
            if (!mustHave_.contains(it.key()) && !optional_.contains(it.key())) {
                error_ = QStringLiteral("unknown key --%1").arg(it.key());
                log(tav::LOG_ERROR, "CommandLine::checkKeys, $", error_);
                return false;
            }
        }
    }
    return true;
}

QString CommandLine::getString(const QString& key, const QString& def) const {
    auto it = values_.find(key);
    return it == values_.end() ? def : *it;
}

QString CommandLine::getStringExt(const QString& key, const QString& def) const {
    return replaceEnv(getString(key, def));
}

unsigned CommandLine::getUInt(const QString& key, unsigned def) const {
    bool ok = false;
    const unsigned v = getString(key).toUInt(&ok);
    return ok ? v : def;
}

bool CommandLine::getBool(const QString& key, bool def) const {
    if (!hasKey(key)) return def;
    const QString v = getString(key).trimmed().toLower();
    if (v.isEmpty() || v == QLatin1String("true") || v == QLatin1String("1") || v == QLatin1String("yes")) return true;
    if (v == QLatin1String("false") || v == QLatin1String("0") || v == QLatin1String("no")) return false;
    return def;
}

void CommandLine::showExample(const QStringList& lines) const {
    for (const QString& l : lines) Logger::printToCout(l);
}

} // namespace tav
