#pragma once
// Low-level reading and writing of the value tree's binary form.
//
// Writing goes straight to a QDataStream (fixed version, big endian).
// Reading goes through XStreamIn, which never trusts a length or a count from
// the input: each is checked against the bytes that are really left (inside the
// current value) before anything is allocated, and nesting is capped. A failed
// check puts the reader into its error state; every later read fails at once.
#include <QByteArray>
#include <QDataStream>
#include <QString>
#include <QStringList>

namespace tav {

class XStreamIn {
public:
    static constexpr int kMaxDepth = 64;

    // Reads at most 'length' bytes from the stream's current position.
    XStreamIn(QDataStream& s, qint64 length);

    QDataStream& stream() { return s_; }
    bool ok() const { return error_.isEmpty(); }
    const QString& error() const { return error_; }
    // Marks the input corrupt (the first reason is kept).
    void fail(const QString& why);

    qint64 pos() const;
    qint64 remaining() const;

    bool readU8(quint8& v);
    bool readU16(quint16& v);
    bool readU32(quint32& v);
    bool readI32(qint32& v);
    bool readU64(quint64& v);
    bool readI64(qint64& v);
    bool readDouble(double& v);
    bool readBool(bool& v);                 // one byte, 0 or 1
    bool readString(QString& v);            // u32 byte length + UTF-8
    bool readBytes(QByteArray& v);          // u32 length + bytes
    bool readStringList(QStringList& v);    // u32 count + strings
    // A count of items of at least 'minItemBytes' bytes each; fails when the
    // items cannot fit into what is left.
    bool readCount(quint32& n, qint64 minItemBytes);
    bool skip(qint64 n);

    // Narrows reading to the next 'length' bytes (one value); restore with popLimit.
    bool pushLimit(qint64 length, qint64& saved);
    void popLimit(qint64 saved) { end_ = saved; }
    qint64 limitEnd() const { return end_; }
    bool seek(qint64 pos);

    // Nesting of trees; enter() fails beyond kMaxDepth.
    bool enter();
    void leave() { --depth_; }
    int depth() const { return depth_; }

private:
    bool need(qint64 n, const char* what);
    QDataStream& s_;
    qint64 end_;
    int depth_ = 0;
    QString error_;
};

namespace xstream {

// Fixed version, byte order and precision: the bytes never depend on the Qt version.
void prepare(QDataStream& s);
void writeString(QDataStream& s, const QString& v);
void writeBytes(QDataStream& s, const QByteArray& v);
void writeStringList(QDataStream& s, const QStringList& v);

// Placeholder for a length written before the data it measures; the stream's
// device must be random access (QBuffer, QFile).
qint64 beginLength(QDataStream& s);
bool endLength(QDataStream& s, qint64 at);

// CRC-32 (IEEE 802.3) as zip and PNG use it.
quint32 crc32(const char* data, qint64 size);

} // namespace xstream
} // namespace tav
