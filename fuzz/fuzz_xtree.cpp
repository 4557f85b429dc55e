// libFuzzer target for the value tree's readers. The first input byte picks
// what the rest is fed to:
//   0  a memory image as a file holds it (header, checksum, body)
//   1  a tree body, wrapped in a correct header so the checksum never stops it;
//      whatever loads must write and load again to the same bytes
//   2  the compressed form
// Bit 2 of the first byte switches to a supporter that also knows a record type.
//
// Seeds: TF_FUZZ_SEEDS=<dir> ./fuzz_xtree writes a few valid inputs and exits.
#include "FuzzSeeds.h"
#include "base/log/Logger.h"
#include "base/tree/XMem.h"
#include "base/tree/XStream.h"
#include "base/tree/XTree.h"
#include "base/tree/XTreeArray.h"
#include "base/tree/XTypeSupporter.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <cstdint>
#include <cstdlib>

using namespace tav;

namespace {

class Rec : public XTree {};
const QString kRec = QStringLiteral("fuzz::Rec");

class RecTypes : public XTypeSupporter {
public:
    RecTypes() : XTypeSupporter(QStringLiteral("rec")) { addType(kRec); }
    bool writeTree(QDataStream& out, const XTree& t, const QString& type) const override {
        if (XTypeSupporter::writeTree(out, t, type)) return true;
        return type == kRec && t.writeToStream(out, *this);
    }
    bool readTree(XStreamIn& in, const QString& type, XVal& v) const override {
        if (XTypeSupporter::readTree(in, type, v)) return true;
        if (type != kRec) return false;
        auto r = std::make_unique<Rec>();
        if (r->readFromStream(in, *this)) v = XVal::ofTree(std::move(r), type);
        return true;
    }
    bool readTreeArray(XStreamIn& in, const QString& et, quint32 n, XVal& v) const override {
        if (XTypeSupporter::readTreeArray(in, et, n, v)) return true;
        if (et != kRec) return false;
        auto a = std::make_unique<XTreeArray>(0, et);
        for (quint32 i = 0; i < n; ++i) {
            auto r = std::make_unique<Rec>();
            if (!r->readFromStream(in, *this)) return true;
            a->append(std::move(r));
        }
        v = XVal::ofArray(std::move(a));
        return true;
    }
};

const RecTypes& recTypes() {
    static const RecTypes t;
    return t;
}

QByteArray wrap(const QByteArray& body) {
    QByteArray out;
    QDataStream s(&out, QIODevice::WriteOnly);
    xstream::prepare(s);
    s << XTree::kMagic << XTree::kFormatVersion << quint16(0) << quint32(body.size())
      << xstream::crc32(body.constData(), body.size());
    s.writeRawData(body.constData(), body.size());
    return out;
}

XTree sample() {
    XTree t;
    t.setString(QStringLiteral("s"), QStringLiteral("text"));
    t.setBool(QStringLiteral("b"), true);
    t.setInt32(QStringLiteral("i"), -3);
    t.setUInt64(QStringLiteral("u"), 1u << 20);
    t.setDouble(QStringLiteral("d"), 0.5);
    t.setBytes(QStringLiteral("x"), QByteArray("\1\2", 2));
    t.setStringList(QStringLiteral("l"), {QStringLiteral("a"), QStringLiteral("b")});
    t.setTree(QStringLiteral("sub"), XTree()).setString(QStringLiteral("k"), QStringLiteral("v"));
    XTreeArray& a = t.setArray(QStringLiteral("arr"), XTreeArray(2));
    a.at(0)->setString(QStringLiteral("title"), QStringLiteral("t"));
    XTreeArray& r = t.setArray(QStringLiteral("recs"), XTreeArray(0, kRec));
    r.append(std::make_unique<Rec>())->setString(QStringLiteral("name"), QStringLiteral("n"));
    return t;
}

void writeSeeds(const QString& dir) {
    QDir().mkpath(dir);
    const XTree t = sample();
    const QByteArray image = t.createMem(recTypes()).bytes();
    const QByteArray body = image.mid(16);
    auto put = [&](const char* name, char mode, const QByteArray& bytes) {
        QFile f(dir + QLatin1Char('/') + QLatin1String(name));
        if (f.open(QIODevice::WriteOnly)) f.write(QByteArray(1, mode) + bytes);
    };
    put("image", 4, image);
    put("body", 5, body);
    put("compressed", 6, t.to_compressed_bytes(recTypes()));
    put("empty_body", 1, QByteArray(4, '\0'));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Logger::setStderrEnabled(false);
    // zlib complaints about broken input are expected here.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    tffuzz::writeSeedsIfAsked(writeSeeds);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1 || size > (1u << 20)) return 0;
    const int mode = data[0] & 3;
    const XTypeSupporter& types = (data[0] & 4) ? static_cast<const XTypeSupporter&>(recTypes()) : XTypeSupporter::basicTypes();
    const QByteArray in = QByteArray::fromRawData(reinterpret_cast<const char*>(data + 1), int(size - 1));

    XTree t;
    if (mode == 0) {
        XTree::load(XMem(QByteArray(in)), types, t);
    } else if (mode == 1) {
        if (XTree::load(XMem(wrap(in)), types, t)) {
            // What loaded must write and read back to the same bytes.
            const XMem once = t.createMem(types);
            if (!once.isOK()) std::abort();
            XTree again;
            if (!XTree::load(once, types, again)) std::abort();
            if (again.createMem(types).bytes() != once.bytes()) std::abort();
            t.toString(types);
        }
    } else {
        t.load_from_compressed_bytes(QByteArray(in), types);
    }
    return 0;
}
