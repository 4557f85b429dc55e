#pragma once
// Typed attributes of a configuration node. Values are kept as text in
// insertion order; the typed accessors convert on the way in and out and
// return the given default for a missing or unreadable attribute.
#include <QString>
#include <QStringList>
#include <cstdint>
#include <utility>
#include <vector>

namespace tav {

class XRecord {
public:
    XRecord() = default;
    virtual ~XRecord() = default;

    bool hasAttribute(const QString& key) const { return indexOf(key) >= 0; }
    bool containsKey(const QString& key) const { return hasAttribute(key); }
    void removeAttribute(const QString& key);
    void clearAttributes() { attrs_.clear(); }
    const std::vector<std::pair<QString, QString>>& attributes() const { return attrs_; }

    // Raw text access.
    QString getString(const QString& key, const QString& def = QString()) const;
    void setString(const QString& key, const QString& value);

    bool isBool(const QString& key, bool def) const;
    void setBool(const QString& key, bool value);
    int getInt(const QString& key, int def) const;
    void setInt(const QString& key, int value);
    unsigned getUInt(const QString& key, unsigned def) const;
    void setUInt(const QString& key, unsigned value);
    int64_t getInt64(const QString& key, int64_t def) const;
    void setInt64(const QString& key, int64_t value);
    uint64_t getUInt64(const QString& key, uint64_t def) const;
    void setUInt64(const QString& key, uint64_t value);

    // Text stored as base64 of its UTF-8 bytes (paths with any characters).
    QString getBase64String(const QString& key, const QString& def = QString()) const;
    void setBase64String(const QString& key, const QString& value);

    // A list of texts in one attribute ("<count>:" then each item base64, joined by ",").
    QStringList get_string_array(const QString& key) const;
    void set_string_array(const QString& key, const QStringList& items);

protected:
    int indexOf(const QString& key) const;
    std::vector<std::pair<QString, QString>> attrs_;
};

} // namespace tav
