#include "base/tree/XTree.h"

#include "base/io/XFileIO.h"
#include "base/log/Logger.h"
#include "base/tree/XMem.h"
#include "base/tree/XStream.h"
#include "base/tree/XTreeArray.h"
#include "base/tree/XTypeSupporter.h"
#include "base/util/Format.h"

#include <QBuffer>
#include <QtEndian>

namespace tav {

namespace {
// Writing follows records through virtual calls of the supporter, so the
// nesting depth is counted per thread rather than passed along.
thread_local int tWriteDepth = 0;
struct WriteDepth {
    WriteDepth() { ++tWriteDepth; }
    ~WriteDepth() { --tWriteDepth; }
    bool tooDeep() const { return tWriteDepth > XStreamIn::kMaxDepth; }
};

// Largest ratio zlib reaches; an unpacked size beyond it cannot be genuine.
constexpr qint64 kMaxZlibRatio = 1032;
constexpr int kCompressedHeaderSize = 12;
}

XTree::XTree() = default;
XTree::~XTree() = default;

XTree::XTree(XTree&& other) noexcept : entries_(std::move(other.entries_)) {
    other.entries_.clear();
    adoptAll();
}

XTree& XTree::operator=(XTree&& other) noexcept {
    if (this != &other) {
        entries_ = std::move(other.entries_);
        other.entries_.clear();
        adoptAll();
    }
    return *this;
}

void XTree::swap(XTree& other) noexcept {
    entries_.swap(other.entries_);
    adoptAll();
    other.adoptAll();
}

void XTree::adopt(XVal& v) {
    if (XTree* t = v.tree()) {
        t->parent_ = this;
        t->parentArray_ = nullptr;
    } else if (XTreeArray* a = v.array()) {
        a->parent_ = this;
        a->setParentToChildren();
    }
}

void XTree::adoptAll() {
    for (auto& [key, v] : entries_) adopt(v);
}

bool XTree::containsKey(const QString& key) const { return entries_.count(key) > 0; }

QStringList XTree::keys() const {
    QStringList out;
    for (const auto& e : entries_) out << e.first;
    return out;
}

bool XTree::erase(const QString& key) { return entries_.erase(key) > 0; }
void XTree::clear() { entries_.clear(); }

QString XTree::typeOf(const QString& key) const {
    const XVal* v = value(key);
    return v ? v->type() : QString();
}

const XVal* XTree::value(const QString& key) const {
    auto it = entries_.find(key);
    return it == entries_.end() ? nullptr : &it->second;
}

void XTree::noteMissing(const QString& key, const char* wanted) {
    log(tav::LOG_VERBOSE, "XTree::get<$>, key '$' missing, default used", wanted, key);
}

void XTree::noteWrongType(const QString& key, const QString& has, const char* wanted) {
    log(tav::LOG_ERROR, "XTree::get<$>, key '$' holds '$', default used", wanted, key, has);
}

bool XTree::isFlag(const QString& key, bool def) const {
    const XVal* v = value(key);
    if (!v) return def;
    if (const bool* b = v->as<bool>()) return *b;
    noteWrongType(key, v->type(), XTypeSet::str_bool);
    return def;
}

void XTree::put(const QString& key, XVal&& v) {
    XVal& slot = entries_[key];
    slot = std::move(v);
    adopt(slot);
}

XTree* XTree::getTree(const QString& key) const {
    const XVal* v = value(key);
    return v ? v->tree() : nullptr;
}

XTree& XTree::setTree(const QString& key, XTree&& tree) {
    auto t = std::make_unique<XTree>(std::move(tree));
    XTree* raw = t.get();
    put(key, XVal::ofTree(std::move(t), QLatin1String(str_XTree)));
    return *raw;
}

XTree* XTree::setTree(const QString& key, std::unique_ptr<XTree> tree, const QString& type) {
    XTree* raw = tree.get();
    if (!raw) return nullptr;
    put(key, XVal::ofTree(std::move(tree), type));
    return raw;
}

XTreeArray* XTree::getArray(const QString& key) const {
    const XVal* v = value(key);
    if (!v) {
        log(tav::LOG_VERBOSE, "XTree::getArray, key '$' missing", key);
        return nullptr;
    }
    if (XTreeArray* a = v->array()) return a;
    log(tav::LOG_ERROR, "XTree::getArray, key '$' holds '$'", key, v->type());
    return nullptr;
}

const XTreeArray& XTree::array(const QString& key) const {
    static const XTreeArray kEmpty;
    const XTreeArray* a = getArray(key);
    return a ? *a : kEmpty;
}

XTreeArray& XTree::setArray(const QString& key, XTreeArray&& array) {
    auto a = std::make_unique<XTreeArray>(std::move(array));
    XTreeArray* raw = a.get();
    put(key, XVal::ofArray(std::move(a)));
    return *raw;
}

// ---- binary form ----------------------------------------------------------------------

bool XTree::writeToStream(QDataStream& out, const XTypeSupporter& types) const {
    WriteDepth depth;
    if (depth.tooDeep()) {
        log(tav::LOG_ERROR, "XTree::writeToStream, nesting deeper than $", XStreamIn::kMaxDepth);
        return false;
    }
    xstream::prepare(out);
    out << quint32(entries_.size());
    for (const auto& [key, v] : entries_) {
        xstream::writeString(out, key);
        xstream::writeString(out, v.type());
        const qint64 at = xstream::beginLength(out);
        if (!types.writeValue(out, v)) {
            log(tav::LOG_ERROR, "XTree::writeToStream, key '$': type '$' unknown to '$'", key, v.type(), types.getName());
            return false;
        }
        if (!xstream::endLength(out, at)) {
            log(tav::LOG_ERROR, "XTree::writeToStream, key '$': cannot write the value's length", key);
            return false;
        }
    }
    return out.status() == QDataStream::Ok;
}

bool XTree::readFromStream(XStreamIn& in, const XTypeSupporter& types) {
    clear();
    if (!in.enter()) return false;
    struct Leave {
        XStreamIn& in;
        ~Leave() { in.leave(); }
    } leave{in};

    quint32 count = 0;
    // An entry takes at least 12 bytes: two empty strings and a length.
    if (!in.readCount(count, 12)) return false;
    for (quint32 i = 0; i < count; ++i) {
        QString key, type;
        quint32 length = 0;
        if (!in.readString(key) || !in.readString(type) || !in.readU32(length)) return false;
        qint64 saved = 0;
        if (!in.pushLimit(length, saved)) return false;
        const qint64 end = in.limitEnd();
        XVal v;
        const bool handled = types.readValue(in, type, v);
        if (!in.ok()) return false;
        if (!handled) {
            log(tav::LOG_ERROR, "XTree::readFromStream, key '$': type '$' unknown to '$', skipped", key, type, types.getName());
            if (!in.seek(end)) return false;
        } else if (in.pos() != end || v.isNull()) {
            in.fail(QStringLiteral("value of key '%1' (%2) does not fill its %3 bytes").arg(key, type).arg(length));
            return false;
        }
        in.popLimit(saved);
        if (handled) put(key, std::move(v));
    }
    return in.ok();
}

bool XTree::writeToDevice(QIODevice& device, const XTypeSupporter& types) const {
    QByteArray body;
    {
        QBuffer buf(&body);
        buf.open(QIODevice::WriteOnly);
        QDataStream s(&buf);
        if (!writeToStream(s, types)) return false;
    }
    QDataStream h(&device);
    xstream::prepare(h);
    h << kMagic << kFormatVersion << quint16(0) << quint32(body.size()) << xstream::crc32(body.constData(), body.size());
    if (h.writeRawData(body.constData(), body.size()) != body.size()) return false;
    return h.status() == QDataStream::Ok;
}

bool XTree::readFromDevice(QIODevice& device, const XTypeSupporter& types) {
    QDataStream s(&device);
    XStreamIn in(s, device.bytesAvailable());
    quint32 magic = 0, length = 0, crc = 0;
    quint16 version = 0, reserved = 0;
    if (!in.readU32(magic) || magic != kMagic) {
        log(tav::LOG_ERROR, "XTree::readFromDevice, not a value tree (magic $)", QString::number(magic, 16));
        return false;
    }
    if (!in.readU16(version) || !in.readU16(reserved) || !in.readU32(length) || !in.readU32(crc)) {
        log(tav::LOG_ERROR, "XTree::readFromDevice, header: $", in.error());
        return false;
    }
    // A newer writer may have changed the layout: refuse rather than misread.
    if (version == 0 || version > kFormatVersion || reserved != 0) {
        log(tav::LOG_ERROR, "XTree::readFromDevice, format version $ (reserved $) is not readable, this reader knows $", version, reserved,
            kFormatVersion);
        return false;
    }
    if (qint64(length) > in.remaining()) {
        log(tav::LOG_ERROR, "XTree::readFromDevice, truncated: body of $ bytes, $ left", length, in.remaining());
        return false;
    }
    QByteArray body(int(length), Qt::Uninitialized);
    if (s.readRawData(body.data(), body.size()) != body.size()) {
        log(tav::LOG_ERROR, "XTree::readFromDevice, short read");
        return false;
    }
    if (xstream::crc32(body.constData(), body.size()) != crc) {
        log(tav::LOG_ERROR, "XTree::readFromDevice, checksum mismatch: the data is damaged");
        return false;
    }
    QBuffer buf(&body);
    buf.open(QIODevice::ReadOnly);
    QDataStream bs(&buf);
    XStreamIn bin(bs, body.size());
    XTree tmp;
    if (!tmp.readFromStream(bin, types) || !bin.ok()) {
        log(tav::LOG_ERROR, "XTree::readFromDevice, $", bin.error());
        return false;
    }
    if (bin.remaining() != 0) {
        log(tav::LOG_ERROR, "XTree::readFromDevice, $ bytes after the tree", bin.remaining());
        return false;
    }
    XTree::operator=(std::move(tmp));
    return true;
}

XMem XTree::createMem(const XTypeSupporter& types) const {
    XMem mem;
    QByteArray bytes;
    QBuffer buf(&bytes);
    buf.open(QIODevice::WriteOnly);
    if (!writeToDevice(buf, types)) {
        mem.setError(QStringLiteral("XTree::createMem, the tree cannot be written with '%1'").arg(types.getName()));
        return mem;
    }
    buf.close();
    mem.setBytes(bytes);
    return mem;
}

bool XTree::load(const XMem& mem, const XTypeSupporter& types, XTree& out) {
    if (!mem.isOK() || mem.size() == 0) {
        log(tav::LOG_ERROR, "XTree::load, no memory image ($)", mem.isOK() ? QStringLiteral("empty") : mem.errorText());
        return false;
    }
    QBuffer buf;
    buf.setData(mem.bytes());
    buf.open(QIODevice::ReadOnly);
    XTree tmp;
    if (!tmp.readFromDevice(buf, types)) return false;
    if (!buf.atEnd()) {
        log(tav::LOG_ERROR, "XTree::load, $ bytes after the image", buf.bytesAvailable());
        return false;
    }
    out.XTree::operator=(std::move(tmp));
    return true;
}

XTree XTree::load(const XMem& mem, const XTypeSupporter& types) {
    XTree t;
    load(mem, types, t);
    return t;
}

QByteArray XTree::to_compressed_bytes(const XTypeSupporter& types) const {
    const XMem mem = createMem(types);
    if (!mem.isOK()) {
        log(tav::LOG_ERROR, "XTree::to_compressed_bytes, $", mem.errorText());
        return QByteArray();
    }
    const QByteArray packed = qCompress(mem.bytes(), 6);
    QByteArray out;
    {
        QDataStream h(&out, QIODevice::WriteOnly);
        xstream::prepare(h);
        h << kMagicCompressed << kFormatVersion << quint16(0) << xstream::crc32(packed.constData(), packed.size());
    }
    return out + packed;
}

bool XTree::load_from_compressed_bytes(const QByteArray& b, const XTypeSupporter& types) {
    if (b.size() < kCompressedHeaderSize + 4) {
        log(tav::LOG_ERROR, "XTree::load_from_compressed_bytes, $ bytes are too short", b.size());
        return false;
    }
    const auto* p = reinterpret_cast<const uchar*>(b.constData());
    const quint32 magic = qFromBigEndian<quint32>(p);
    const quint16 version = qFromBigEndian<quint16>(p + 4);
    const quint16 reserved = qFromBigEndian<quint16>(p + 6);
    if (magic != kMagicCompressed || version == 0 || version > kFormatVersion || reserved != 0) {
        log(tav::LOG_ERROR, "XTree::load_from_compressed_bytes, not a compressed value tree of version $", kFormatVersion);
        return false;
    }
    const qint64 packedSize = b.size() - kCompressedHeaderSize;
    if (xstream::crc32(b.constData() + kCompressedHeaderSize, packedSize) != qFromBigEndian<quint32>(p + 8)) {
        log(tav::LOG_ERROR, "XTree::load_from_compressed_bytes, damaged (checksum)");
        return false;
    }
    // qUncompress allocates the size it is told; check it before believing it.
    const qint64 unpackedSize = qFromBigEndian<quint32>(p + kCompressedHeaderSize);
    if (unpackedSize == 0 || unpackedSize > XMem::kMaxSize || unpackedSize > (packedSize - 4) * kMaxZlibRatio + 64) {
        log(tav::LOG_ERROR, "XTree::load_from_compressed_bytes, claims $ unpacked bytes", unpackedSize);
        return false;
    }
    const QByteArray raw = qUncompress(p + kCompressedHeaderSize, int(packedSize));
    if (raw.size() != unpackedSize) {
        log(tav::LOG_ERROR, "XTree::load_from_compressed_bytes, does not unpack");
        return false;
    }
    XTree tmp;
    if (!load(XMem(raw), types, tmp)) return false;
    XTree::operator=(std::move(tmp));
    return true;
}

bool XTree::save_as_compressed_file(const QFileInfo& file, const XTypeSupporter& types) const {
    const QByteArray out = to_compressed_bytes(types);
    if (out.isEmpty()) {
        log(tav::LOG_ERROR, "XTree::save_as_compressed_file, <<<$>>> not written", file);
        return false;
    }
    QString err;
    if (!writeFileAtomic(file.absoluteFilePath(), out, &err)) {
        log(tav::LOG_ERROR, "XTree::save_as_compressed_file, <<<$>>> - $", file, err);
        return false;
    }
    return true;
}

bool XTree::load_from_compressed_file(const QFileInfo& file, const XTypeSupporter& types) {
    XMem packed;
    if (!packed.loadMem(file.absoluteFilePath())) return false;
    if (!load_from_compressed_bytes(packed.bytes(), types)) {
        log(tav::LOG_ERROR, "XTree::load_from_compressed_file, <<<$>>> does not load", file);
        return false;
    }
    return true;
}

XTree XTree::create_copy(const XTypeSupporter& types) const {
    XTree t;
    t.copy(*this, types);
    return t;
}

bool XTree::copy(const XTree& source, const XTypeSupporter& types) {
    if (&source == this) return true;
    XTree tmp;
    if (!load(source.createMem(types), types, tmp)) {
        log(tav::LOG_ERROR, "XTree::copy, the tree cannot be copied with '$'", types.getName());
        return false;
    }
    XTree::operator=(std::move(tmp));
    return true;
}

// ---- text ------------------------------------------------------------------------------

void XTree::show(const XTypeSupporter& types, int indent, const QString& title, bool flagTypes, int maxDepth) const {
    const QString sp = createSpace(indent);
    log(tav::LOG_TRACE, "$${", sp, title.isEmpty() ? QString() : title + QLatin1Char(' '));
    const int next = maxDepth < 0 ? -1 : maxDepth - 1;
    for (const auto& [key, v] : entries_) {
        const QString label = flagTypes ? QStringLiteral("%1 <%2>").arg(key, v.type()) : key;
        if (XTree* t = v.tree()) {
            if (maxDepth == 0) log(tav::LOG_TRACE, "$  $: {...}", sp, label);
            else t->show(types, indent + 2, label + QLatin1Char(':'), flagTypes, next);
        } else if (XTreeArray* a = v.array()) {
            if (maxDepth == 0) log(tav::LOG_TRACE, "$  $: [$] {...}", sp, label, a->size());
            else if (!types.showArray(*a, indent + 2, label + QLatin1Char(':'), flagTypes, next))
                types.showElements(*a, indent + 2, label + QLatin1Char(':'), flagTypes, next);
        } else {
            log(tav::LOG_TRACE, "$  $: $", sp, label, types.valueAsString(v));
        }
    }
    log(tav::LOG_TRACE, "$}", sp);
}

QString XTree::toString(const XTypeSupporter& types) const {
    QStringList parts;
    for (const auto& [key, v] : entries_) parts << key + QLatin1Char(':') + types.valueAsString(v);
    return QLatin1Char('{') + parts.join(QStringLiteral(", ")) + QLatin1Char('}');
}

} // namespace tav
