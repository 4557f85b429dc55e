#include "base/tree/XStream.h"

#include <QIODevice>
#include <array>
#include <limits>

namespace tav {

XStreamIn::XStreamIn(QDataStream& s, qint64 length) : s_(s) {
    xstream::prepare(s_);
    end_ = pos() + qMax<qint64>(0, length);
}

void XStreamIn::fail(const QString& why) {
    if (error_.isEmpty()) error_ = why;
    s_.setStatus(QDataStream::ReadCorruptData);
}

qint64 XStreamIn::pos() const { return s_.device() ? s_.device()->pos() : 0; }

qint64 XStreamIn::remaining() const {
    if (!s_.device()) return 0;
    const qint64 inLimit = end_ - pos();
    const qint64 onDevice = s_.device()->bytesAvailable();
    return qMax<qint64>(0, qMin(inLimit, onDevice));
}

bool XStreamIn::need(qint64 n, const char* what) {
    if (!ok()) return false;
    if (n < 0 || n > remaining()) {
        fail(QStringLiteral("%1: %2 bytes needed, %3 left at %4").arg(QLatin1String(what)).arg(n).arg(remaining()).arg(pos()));
        return false;
    }
    return true;
}

#define TAV_READ_FIXED(fn, T, what)                                                      \
    bool XStreamIn::fn(T& v) {                                                           \
        if (!need(sizeof(T), what)) return false;                                        \
        s_ >> v;                                                                         \
        if (s_.status() != QDataStream::Ok) { fail(QStringLiteral(what)); return false; } \
        return true;                                                                     \
    }
TAV_READ_FIXED(readU8, quint8, "u8")
TAV_READ_FIXED(readU16, quint16, "u16")
TAV_READ_FIXED(readU32, quint32, "u32")
TAV_READ_FIXED(readI32, qint32, "i32")
TAV_READ_FIXED(readU64, quint64, "u64")
TAV_READ_FIXED(readI64, qint64, "i64")
TAV_READ_FIXED(readDouble, double, "double")
#undef TAV_READ_FIXED

bool XStreamIn::readBool(bool& v) {
    quint8 b = 0;
    if (!readU8(b)) return false;
    if (b > 1) {
        fail(QStringLiteral("bool byte %1").arg(b));
        return false;
    }
    v = b == 1;
    return true;
}

bool XStreamIn::readBytes(QByteArray& v) {
    quint32 n = 0;
    if (!readU32(n) || !need(n, "bytes")) return false;
    if (n > quint32(std::numeric_limits<int>::max() / 2)) {
        fail(QStringLiteral("block of %1 bytes").arg(n));
        return false;
    }
    v.resize(int(n));
    if (s_.readRawData(v.data(), int(n)) != int(n)) {
        fail(QStringLiteral("short read"));
        v.clear();
        return false;
    }
    return true;
}

bool XStreamIn::readString(QString& v) {
    QByteArray utf8;
    if (!readBytes(utf8)) return false;
    v = QString::fromUtf8(utf8);
    return true;
}

bool XStreamIn::readCount(quint32& n, qint64 minItemBytes) {
    if (!readU32(n)) return false;
    if (minItemBytes > 0 && qint64(n) > remaining() / minItemBytes) {
        fail(QStringLiteral("count %1 does not fit into %2 bytes").arg(n).arg(remaining()));
        return false;
    }
    return true;
}

bool XStreamIn::readStringList(QStringList& v) {
    quint32 n = 0;
    if (!readCount(n, 4)) return false;
    v.clear();
    v.reserve(int(n));
    for (quint32 i = 0; i < n; ++i) {
        QString item;
        if (!readString(item)) return false;
        v << item;
    }
    return true;
}

bool XStreamIn::skip(qint64 n) {
    if (!need(n, "skip")) return false;
    return seek(pos() + n);
}

bool XStreamIn::seek(qint64 p) {
    if (!ok()) return false;
    if (!s_.device() || p > end_ || !s_.device()->seek(p)) {
        fail(QStringLiteral("seek to %1").arg(p));
        return false;
    }
    return true;
}

bool XStreamIn::pushLimit(qint64 length, qint64& saved) {
    saved = end_;
    if (!need(length, "value")) return false;
    end_ = pos() + length;
    return true;
}

bool XStreamIn::enter() {
    if (!ok()) return false;
    if (depth_ >= kMaxDepth) {
        fail(QStringLiteral("nesting deeper than %1").arg(kMaxDepth));
        return false;
    }
    ++depth_;
    return true;
}

namespace xstream {

void prepare(QDataStream& s) {
    s.setVersion(QDataStream::Qt_5_15);
    s.setByteOrder(QDataStream::BigEndian);
    s.setFloatingPointPrecision(QDataStream::DoublePrecision);
}

void writeBytes(QDataStream& s, const QByteArray& v) {
    s << quint32(v.size());
    s.writeRawData(v.constData(), v.size());
}

void writeString(QDataStream& s, const QString& v) { writeBytes(s, v.toUtf8()); }

void writeStringList(QDataStream& s, const QStringList& v) {
    s << quint32(v.size());
    for (const QString& item : v) writeString(s, item);
}

qint64 beginLength(QDataStream& s) {
    const qint64 at = s.device() ? s.device()->pos() : -1;
    s << quint32(0);
    return at;
}

bool endLength(QDataStream& s, qint64 at) {
    QIODevice* d = s.device();
    if (!d || at < 0 || d->isSequential()) return false;
    const qint64 end = d->pos();
    const qint64 len = end - at - 4;
    if (len < 0 || len > qint64(std::numeric_limits<quint32>::max())) return false;
    if (!d->seek(at)) return false;
    s << quint32(len);
    return d->seek(end) && s.status() == QDataStream::Ok;
}

quint32 crc32(const char* data, qint64 size) {
    static const std::array<quint32, 256> table = [] {
        std::array<quint32, 256> t{};
        for (quint32 i = 0; i < 256; ++i) {
            quint32 c = i;
            for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
            t[i] = c;
        }
        return t;
    }();
    quint32 c = 0xFFFFFFFFu;
    for (qint64 i = 0; i < size; ++i) c = table[(c ^ quint8(data[i])) & 0xFF] ^ (c >> 8);
    return c ^ 0xFFFFFFFFu;
}

} // namespace xstream
} // namespace tav
