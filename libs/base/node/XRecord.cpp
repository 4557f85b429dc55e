#include "base/node/XRecord.h"

#include <QByteArray>

namespace tav {

int XRecord::indexOf(const QString& key) const {
    for (size_t i = 0; i < attrs_.size(); ++i)
        if (attrs_[i].first == key) return int(i);
    return -1;
}

void XRecord::removeAttribute(const QString& key) {
    const int i = indexOf(key);
    if (i >= 0) attrs_.erase(attrs_.begin() + i);
}

QString XRecord::getString(const QString& key, const QString& def) const {
    const int i = indexOf(key);
    return i < 0 ? def : attrs_[size_t(i)].second;
}

void XRecord::setString(const QString& key, const QString& value) {
    const int i = indexOf(key);
    if (i < 0) attrs_.emplace_back(key, value);
    else attrs_[size_t(i)].second = value;
}

bool XRecord::isBool(const QString& key, bool def) const {
    const int i = indexOf(key);
    if (i < 0) return def;
    const QString v = attrs_[size_t(i)].second.trimmed().toLower();
    if (v == QLatin1String("true") || v == QLatin1String("1") || v == QLatin1String("yes")) return true;
    if (v == QLatin1String("false") || v == QLatin1String("0") || v == QLatin1String("no")) return false;
    return def;
}
void XRecord::setBool(const QString& key, bool value) {
    setString(key, value ? QStringLiteral("true") : QStringLiteral("false"));
}

int XRecord::getInt(const QString& key, int def) const {
    const int i = indexOf(key);
    if (i < 0) return def;
    bool ok = false;
    const int v = attrs_[size_t(i)].second.trimmed().toInt(&ok, 0);
    return ok ? v : def;
}
void XRecord::setInt(const QString& key, int value) { setString(key, QString::number(value)); }

unsigned XRecord::getUInt(const QString& key, unsigned def) const {
    const int i = indexOf(key);
    if (i < 0) return def;
    bool ok = false;
    const unsigned v = attrs_[size_t(i)].second.trimmed().toUInt(&ok, 0);
    return ok ? v : def;
}
void XRecord::setUInt(const QString& key, unsigned value) { setString(key, QString::number(value)); }

int64_t XRecord::getInt64(const QString& key, int64_t def) const {
    const int i = indexOf(key);
    if (i < 0) return def;
    bool ok = false;
    const qlonglong v = attrs_[size_t(i)].second.trimmed().toLongLong(&ok, 0);
    return ok ? v : def;
}
void XRecord::setInt64(const QString& key, int64_t value) { setString(key, QString::number(qlonglong(value))); }

uint64_t XRecord::getUInt64(const QString& key, uint64_t def) const {
    const int i = indexOf(key);
    if (i < 0) return def;
    bool ok = false;
    const qulonglong v = attrs_[size_t(i)].second.trimmed().toULongLong(&ok, 0);
    return ok ? v : def;
}
void XRecord::setUInt64(const QString& key, uint64_t value) { setString(key, QString::number(qulonglong(value))); }

QString XRecord::getBase64String(const QString& key, const QString& def) const {
    const int i = indexOf(key);
    if (i < 0) return def;
    return QString::fromUtf8(QByteArray::fromBase64(attrs_[size_t(i)].second.toLatin1()));
}
void XRecord::setBase64String(const QString& key, const QString& value) {
    setString(key, QString::fromLatin1(value.toUtf8().toBase64()));
}

QStringList XRecord::get_string_array(const QString& key) const {
    QStringList out;
    const int i = indexOf(key);
    if (i < 0) return out;
    // "<count>:<b64>,<b64>,..." - the count keeps a list of one empty text apart from no list.
    const QString& raw = attrs_[size_t(i)].second;
    const int colon = raw.indexOf(QLatin1Char(':'));
    bool ok = false;
    const int count = colon > 0 ? raw.left(colon).toInt(&ok) : 0;
    if (!ok || count <= 0) return out;
    const QStringList parts = raw.mid(colon + 1).split(QLatin1Char(','));
    for (int k = 0; k < count && k < parts.size(); ++k)
        out << QString::fromUtf8(QByteArray::fromBase64(parts[k].toLatin1()));
    return out;
}
void XRecord::set_string_array(const QString& key, const QStringList& items) {
    QStringList parts;
    parts.reserve(items.size());
    for (const QString& s : items) parts << QString::fromLatin1(s.toUtf8().toBase64());
    setString(key, QString::number(items.size()) + QLatin1Char(':') + parts.join(QLatin1Char(',')));
}

} // namespace tav
