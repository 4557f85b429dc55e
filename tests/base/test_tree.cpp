#include "base/tree/XMem.h"
#include "base/tree/XStream.h"
#include "base/tree/XTree.h"
#include "base/tree/XTreeArray.h"
#include "base/tree/XTypeSupporter.h"
#include "common/TestEnv.h"

#include <QtTest>
#include <cmath>
#include <limits>
#include <random>

using tav::XMem;
using tav::XTree;
using tav::XTreeArray;
using tav::XTypeSupporter;

namespace {

const XTypeSupporter& basic() { return XTypeSupporter::basicTypes(); }

// A record class as a program would add one, with its own supporter.
class Rec : public XTree {};
const QString kRecType = QStringLiteral("test::Rec");

class RecTypes : public XTypeSupporter {
public:
    RecTypes() : XTypeSupporter(QStringLiteral("rec")) { addType(kRecType); }
    bool writeTree(QDataStream& out, const XTree& t, const QString& type) const override {
        if (XTypeSupporter::writeTree(out, t, type)) return true;
        return type == kRecType && t.writeToStream(out, *this);
    }
    bool readTree(tav::XStreamIn& in, const QString& type, tav::XVal& v) const override {
        if (XTypeSupporter::readTree(in, type, v)) return true;
        if (type != kRecType) return false;
        auto r = std::make_unique<Rec>();
        if (r->readFromStream(in, *this)) v = tav::XVal::ofTree(std::move(r), type);
        return true;
    }
    bool readTreeArray(tav::XStreamIn& in, const QString& et, quint32 n, tav::XVal& v) const override {
        if (XTypeSupporter::readTreeArray(in, et, n, v)) return true;
        if (et != kRecType) return false;
        auto a = std::make_unique<XTreeArray>(0, et);
        for (quint32 i = 0; i < n; ++i) {
            auto r = std::make_unique<Rec>();
            if (!r->readFromStream(in, *this)) return true;
            a->append(std::move(r));
        }
        v = tav::XVal::ofArray(std::move(a));
        return true;
    }
};

XTree sampleTree() {
    XTree t;
    t.setString(QStringLiteral("s"), QStringLiteral("Grüße, \"quotes\" & \u4e2d\u6587"));
    t.setString(QStringLiteral("empty"), QString());
    t.setBool(QStringLiteral("yes"), true);
    t.setBool(QStringLiteral("no"), false);
    t.setInt32(QStringLiteral("i32"), std::numeric_limits<qint32>::min());
    t.setUInt32(QStringLiteral("u32"), 0xFFFFFFFFu);
    t.setInt64(QStringLiteral("i64"), -(qint64(1) << 62));
    t.setUInt64(QStringLiteral("u64"), std::numeric_limits<quint64>::max());
    t.setDouble(QStringLiteral("d"), -0.1);
    t.setDouble(QStringLiteral("inf"), std::numeric_limits<double>::infinity());
    t.setBytes(QStringLiteral("bytes"), QByteArray("\0\1\2\xff", 4));
    t.setStringList(QStringLiteral("list"), {QStringLiteral("a"), QString(), QStringLiteral("ü")});
    XTree& sub = t.setTree(QStringLiteral("sub"), XTree());
    sub.setString(QStringLiteral("inner"), QStringLiteral("x"));
    XTreeArray& arr = t.setArray(QStringLiteral("arr"), XTreeArray(3));
    arr.at(0)->setString(QStringLiteral("title"), QStringLiteral("first"));
    XTreeArray& nested = arr.at(1)->setArray(QStringLiteral("deeper"), XTreeArray(2));
    nested.at(1)->setInt32(QStringLiteral("n"), 7);
    t.setArray(QStringLiteral("none"), XTreeArray());
    return t;
}

void checkSample(const XTree& t) {
    QCOMPARE(t.size(), sampleTree().size());
    QCOMPARE(t.getString(QStringLiteral("s")), QStringLiteral("Grüße, \"quotes\" & \u4e2d\u6587"));
    QCOMPARE(t.typeOf(QStringLiteral("empty")), QStringLiteral("QString"));
    QCOMPARE(t.isFlag(QStringLiteral("yes"), false), true);
    QCOMPARE(t.isFlag(QStringLiteral("no"), true), false);
    QCOMPARE(t.get<qint32>(QStringLiteral("i32"), 0), std::numeric_limits<qint32>::min());
    QCOMPARE(t.get<quint32>(QStringLiteral("u32"), 0), 0xFFFFFFFFu);
    QCOMPARE(t.get<qint64>(QStringLiteral("i64"), 0), -(qint64(1) << 62));
    QCOMPARE(t.get<quint64>(QStringLiteral("u64"), 0), std::numeric_limits<quint64>::max());
    QCOMPARE(t.get<double>(QStringLiteral("d"), 0), -0.1);
    QVERIFY(std::isinf(t.get<double>(QStringLiteral("inf"), 0)));
    QCOMPARE(t.get<QByteArray>(QStringLiteral("bytes"), {}), QByteArray("\0\1\2\xff", 4));
    QCOMPARE(t.get<QStringList>(QStringLiteral("list"), {}), (QStringList{"a", "", "ü"}));
    QVERIFY(t.getTree(QStringLiteral("sub")));
    QCOMPARE(t.getTree(QStringLiteral("sub"))->getString(QStringLiteral("inner")), QStringLiteral("x"));
    const XTreeArray& arr = t.array(QStringLiteral("arr"));
    QCOMPARE(arr.size(), 3);
    QCOMPARE(arr.at(0)->getString(QStringLiteral("title")), QStringLiteral("first"));
    QCOMPARE(arr.at(1)->array(QStringLiteral("deeper")).size(), 2);
    QCOMPARE(arr.at(1)->array(QStringLiteral("deeper")).at(1)->get<qint32>(QStringLiteral("n"), 0), 7);
    QVERIFY(arr.at(2)->isEmpty());
    QVERIFY(t.getArray(QStringLiteral("none")) && t.getArray(QStringLiteral("none"))->isEmpty());
}

// A memory image around a hand-made body, with a correct header and checksum.
QByteArray image(const QByteArray& body, quint16 version = XTree::kFormatVersion) {
    QByteArray out;
    QDataStream s(&out, QIODevice::WriteOnly);
    tav::xstream::prepare(s);
    s << XTree::kMagic << version << quint16(0) << quint32(body.size()) << tav::xstream::crc32(body.constData(), body.size());
    s.writeRawData(body.constData(), body.size());
    return out;
}

// Body of a tree with one entry whose payload is given raw.
QByteArray oneEntry(const QString& key, const QString& type, const QByteArray& payload, quint32 claimedLength) {
    QByteArray out;
    QDataStream s(&out, QIODevice::WriteOnly);
    tav::xstream::prepare(s);
    s << quint32(1);
    tav::xstream::writeString(s, key);
    tav::xstream::writeString(s, type);
    s << claimedLength;
    s.writeRawData(payload.constData(), payload.size());
    return out;
}
QByteArray oneEntry(const QString& key, const QString& type, const QByteArray& payload) {
    return oneEntry(key, type, payload, quint32(payload.size()));
}

QByteArray be32(quint32 v) {
    QByteArray b(4, 0);
    qToBigEndian(v, b.data());
    return b;
}

bool loads(const QByteArray& bytes, XTree* out = nullptr) {
    XTree t;
    const bool ok = XTree::load(XMem(bytes), basic(), t);
    if (out) *out = std::move(t);
    return ok;
}

} // namespace

class TestTree : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

private slots:
    void everyValueTypeSurvivesMemoryAndBothFileForms() {
        const XTree src = sampleTree();
        checkSample(src);
        const XMem mem = src.createMem(basic());
        QVERIFY(mem.isOK());
        QVERIFY(mem.size() > 16);
        checkSample(XTree::load(mem, basic()));
        // Keys are sorted: equal trees give equal bytes, whatever the order of setting.
        QCOMPARE(XTree::load(mem, basic()).createMem(basic()).bytes(), mem.bytes());

        tftest::TestDir dir;
        const QString plain = dir.abs(QStringLiteral("sub/plain.bin"));
        QVERIFY(mem.saveToFile(plain, 0));
        XMem back;
        QVERIFY(back.loadMem(plain));
        QCOMPARE(back.bytes(), mem.bytes());
        checkSample(XTree::load(back, basic()));

        const QFileInfo packed(dir.abs(QStringLiteral("packed.bin")));
        QVERIFY(src.save_as_compressed_file(packed, basic()));
        XTree fromPacked;
        fromPacked.setString(QStringLiteral("old"), QStringLiteral("replaced"));
        QVERIFY(fromPacked.load_from_compressed_file(packed, basic()));
        QVERIFY(!fromPacked.containsKey(QStringLiteral("old")));
        checkSample(fromPacked);

        // A missing file is false and leaves the tree alone.
        QVERIFY(!back.loadMem(dir.abs(QStringLiteral("nothing.bin"))));
        QVERIFY(!back.isOK());
        QVERIFY(!fromPacked.load_from_compressed_file(QFileInfo(dir.abs(QStringLiteral("nothing.bin"))), basic()));
        checkSample(fromPacked);
    }

    void typedAccessFallsBackToDefaults() {
        XTree t = sampleTree();
        tftest::LogCapture cap;
        QCOMPARE(t.getString(QStringLiteral("yes"), QStringLiteral("def")), QStringLiteral("def"));
        QCOMPARE(t.getString(QStringLiteral("sub")), QString());
        QCOMPARE(t.getString(QStringLiteral("arr"), QStringLiteral("d")), QStringLiteral("d"));
        QCOMPARE(cap.linesAtLevel(4).size(), 3);
        QCOMPARE(t.get<qint64>(QStringLiteral("i32"), 5), qint64(5));   // no silent widening
        QCOMPARE(t.getString(QStringLiteral("missing"), QStringLiteral("m")), QStringLiteral("m"));
        QCOMPARE(cap.linesAtLevel(4).size(), 4);                         // missing is not a warning
        QVERIFY(cap.contains(QStringLiteral("key 'missing' missing")));
        QCOMPARE(t.isFlag(QStringLiteral("missing"), true), true);
        QCOMPARE(t.isFlag(QStringLiteral("s"), true), true);
        QVERIFY(!t.getArray(QStringLiteral("s")));
        QVERIFY(t.array(QStringLiteral("missing")).isEmpty());

        t.setBool(QStringLiteral("s"), false);      // setting replaces the type
        QCOMPARE(t.typeOf(QStringLiteral("s")), QStringLiteral("bool"));
        QVERIFY(t.erase(QStringLiteral("s")));
        QVERIFY(!t.erase(QStringLiteral("s")));
        QVERIFY(!t.containsKey(QStringLiteral("s")));
        XTree e;
        QVERIFY(e.isEmpty());
        e.setArray(QStringLiteral("a"), XTreeArray());
        QVERIFY(!e.isEmpty());   // an empty array is still a key
    }

    void moveSwapAndCopyKeepOwnershipStraight() {
        XTree a = sampleTree();
        XTreeArray* arr = a.getArray(QStringLiteral("arr"));
        QCOMPARE(arr->parent(), &a);
        QCOMPARE(arr->at(0)->parent(), &a);
        QCOMPARE(arr->at(0)->parentArray(), arr);
        QCOMPARE(a.getTree(QStringLiteral("sub"))->parent(), &a);

        XTree b(std::move(a));
        QVERIFY(a.isEmpty());
        QCOMPARE(b.getArray(QStringLiteral("arr")), arr);   // moved, not copied
        QCOMPARE(arr->at(2)->parent(), &b);
        XTree c;
        c.setString(QStringLiteral("c"), QStringLiteral("c"));
        c.swap(b);
        QCOMPARE(arr->parent(), &c);
        QCOMPARE(b.getString(QStringLiteral("c")), QStringLiteral("c"));
        checkSample(c);

        XTree copy = c.create_copy(basic());
        checkSample(copy);
        copy.getArray(QStringLiteral("arr"))->at(0)->setString(QStringLiteral("title"), QStringLiteral("changed"));
        copy.getTree(QStringLiteral("sub"))->erase(QStringLiteral("inner"));
        checkSample(c);   // the original is untouched
        QVERIFY(b.copy(c, basic()));
        checkSample(b);

        auto taken = arr->take(0);
        QVERIFY(taken && !taken->parent() && !taken->parentArray());
        QCOMPARE(arr->size(), 2);
        QVERIFY(!arr->take(5));
        arr->insert(99, std::move(taken));   // clamped to the end
        QCOMPARE(arr->at(2)->getString(QStringLiteral("title")), QStringLiteral("first"));
        QCOMPARE(arr->at(2)->parentArray(), arr);
    }

    void recordTypesNeedTheirSupporter() {
        RecTypes recTypes;
        XTree t;
        XTreeArray& recs = t.setArray(QStringLiteral("recs"), XTreeArray(0, kRecType));
        recs.append(std::make_unique<Rec>())->setString(QStringLiteral("name"), QStringLiteral("r0"));
        recs.append(std::make_unique<Rec>())->setBool(QStringLiteral("flag"), true);
        t.setTree(QStringLiteral("one"), std::make_unique<Rec>(), kRecType)->setInt32(QStringLiteral("n"), 3);
        t.setString(QStringLiteral("plain"), QStringLiteral("p"));

        const XTree back = XTree::load(t.createMem(recTypes), recTypes);
        const XTreeArray* arr = back.getArray(QStringLiteral("recs"));
        QVERIFY(arr);
        QCOMPARE(arr->elementType(), kRecType);
        QCOMPARE(arr->size(), 2);
        QVERIFY(dynamic_cast<Rec*>(arr->at(0)));
        QCOMPARE(arr->at(0)->getString(QStringLiteral("name")), QStringLiteral("r0"));
        QVERIFY(arr->at(1)->isFlag(QStringLiteral("flag"), false));
        QVERIFY(dynamic_cast<Rec*>(back.getTree(QStringLiteral("one"))));
        QCOMPARE(back.typeOf(QStringLiteral("one")), kRecType);
        QVERIFY(dynamic_cast<Rec*>(t.create_copy(recTypes).getArray(QStringLiteral("recs"))->at(1)));

        // Writing with a supporter that does not know the record fails as a whole...
        tftest::LogCapture cap;
        QVERIFY(!t.createMem(basic()).isOK());
        QVERIFY(!t.save_as_compressed_file(QFileInfo(env.root() + QStringLiteral("/never.bin")), basic()));
        QVERIFY(!QFile::exists(env.root() + QStringLiteral("/never.bin")));
        // ...reading with it skips the unknown values and keeps the rest.
        XTree partial;
        QVERIFY(XTree::load(t.createMem(recTypes), basic(), partial));
        QCOMPARE(partial.keys(), QStringList{QStringLiteral("plain")});
        QCOMPARE(cap.count(QStringLiteral("unknown to 'basic', skipped")), 2);
    }

    void damagedImagesNeverLoad() {
        const QByteArray good = sampleTree().createMem(basic()).bytes();
        QVERIFY(loads(good));
        XTree keep;
        keep.setString(QStringLiteral("k"), QStringLiteral("v"));
        for (int n = 0; n < good.size(); ++n) {
            QVERIFY2(!XTree::load(XMem(good.left(n)), basic(), keep), qPrintable(QString::number(n)));
            QVERIFY(XTree::load(XMem(good.left(n)), basic()).isEmpty());
        }
        QCOMPARE(keep.getString(QStringLiteral("k")), QStringLiteral("v"));   // failed loads change nothing
        QVERIFY(!loads(good + '\0'));   // trailing bytes

        std::mt19937 rng(12345);
        for (int i = 0; i < 2000; ++i) {
            QByteArray bad = good;
            const int flips = 1 + int(rng() % 3);
            for (int f = 0; f < flips; ++f) bad.data()[rng() % bad.size()] ^= char(1 + rng() % 255);
            QVERIFY2(!loads(bad), qPrintable(QString::number(i)));
        }

        QByteArray newer = good;
        newer[5] = char(XTree::kFormatVersion + 1);
        QVERIFY(!loads(newer));
        QVERIFY(!loads(image(QByteArray(4, '\0'), 0)));
        QVERIFY(loads(image(QByteArray(4, '\0'))));   // the smallest tree: no entries
    }

    void hostileBodiesAreRefusedWithoutHugeAllocations() {
        // Counts and lengths far beyond the data.
        QVERIFY(!loads(image(be32(0xFFFFFFFFu))));
        QVERIFY(!loads(image(oneEntry(QStringLiteral("k"), QStringLiteral("QString"), be32(0x7FFFFFF0u)))));
        QVERIFY(!loads(image(oneEntry(QStringLiteral("k"), QStringLiteral("QStringList"), be32(0x40000000u)))));
        QVERIFY(!loads(image(oneEntry(QStringLiteral("k"), QStringLiteral("QByteArray"), be32(0xFFFFFFFFu)))));
        QVERIFY(!loads(image(oneEntry(QStringLiteral("k"), QStringLiteral("QString"), be32(0), 0x7FFFFFFFu))));
        QByteArray arrayPayload;
        {
            QDataStream s(&arrayPayload, QIODevice::WriteOnly);
            tav::xstream::prepare(s);
            tav::xstream::writeString(s, QLatin1String(XTree::str_XTree));
            s << quint32(0x3FFFFFFFu);
        }
        QVERIFY(!loads(image(oneEntry(QStringLiteral("a"), QLatin1String(XTreeArray::str_XTreeArray), arrayPayload))));
        // A value that reads fewer bytes than it claims, a bool that is not 0 or 1.
        QVERIFY(!loads(image(oneEntry(QStringLiteral("k"), QStringLiteral("qint32"), QByteArray(6, '\0')))));
        QVERIFY(!loads(image(oneEntry(QStringLiteral("k"), QStringLiteral("bool"), QByteArray(1, '\2')))));
        XTree ok;
        QVERIFY(loads(image(oneEntry(QStringLiteral("k"), QStringLiteral("bool"), QByteArray(1, '\1'))), &ok));
        QVERIFY(ok.isFlag(QStringLiteral("k"), false));
        // An unknown type is skipped exactly by its length.
        QVERIFY(loads(image(oneEntry(QStringLiteral("k"), QStringLiteral("future::Type"), QByteArray(9, 'x'))), &ok));
        QVERIFY(ok.isEmpty());

        // Nesting: accepted up to the cap, refused beyond it, on reading and on writing.
        auto nested = [](int depth) {
            QByteArray body = be32(0);
            for (int i = 1; i < depth; ++i) body = oneEntry(QStringLiteral("k"), QLatin1String(XTree::str_XTree), body);
            return image(body);
        };
        QVERIFY(loads(nested(tav::XStreamIn::kMaxDepth)));
        QVERIFY(!loads(nested(tav::XStreamIn::kMaxDepth + 1)));
        QVERIFY(!loads(nested(5000)));
        XTree deep;
        XTree* at = &deep;
        for (int i = 0; i < tav::XStreamIn::kMaxDepth + 1; ++i) at = &at->setTree(QStringLiteral("k"), XTree());
        QVERIFY(!deep.createMem(basic()).isOK());
    }

    void damagedCompressedFilesNeverLoad() {
        tftest::TestDir dir;
        const QFileInfo fi(dir.abs(QStringLiteral("apps.bin")));
        QVERIFY(sampleTree().save_as_compressed_file(fi, basic()));
        QFile f(fi.absoluteFilePath());
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QByteArray good = f.readAll();
        f.close();
        auto loadsFile = [&](const QByteArray& bytes) {
            QFile w(fi.absoluteFilePath());
            if (!w.open(QIODevice::WriteOnly) || w.write(bytes) != bytes.size()) return true;   // makes the check fail
            w.close();
            XTree t;
            t.setString(QStringLiteral("keep"), QStringLiteral("me"));
            const bool ok = t.load_from_compressed_file(fi, basic());
            if (!ok && t.getString(QStringLiteral("keep")) != QLatin1String("me")) return true;
            return ok;
        };
        for (int n = 0; n < good.size(); ++n) QVERIFY2(!loadsFile(good.left(n)), qPrintable(QString::number(n)));
        std::mt19937 rng(777);
        for (int i = 0; i < 300; ++i) {
            QByteArray bad = good;
            bad.data()[rng() % bad.size()] ^= char(1 + rng() % 255);
            QVERIFY(!loadsFile(bad));
        }
        // An unpacked size far beyond what the packed bytes can give is refused before unpacking.
        QByteArray liar = good;
        qToBigEndian(quint32(0x7FFFFFF0u), liar.data() + 12);
        qToBigEndian(tav::xstream::crc32(liar.constData() + 12, liar.size() - 12), liar.data() + 8);
        tftest::LogCapture cap;
        QVERIFY(!loadsFile(liar));
        QVERIFY(cap.contains(QStringLiteral("claims 2147483632 unpacked bytes")));
        QVERIFY(XTree().load_from_compressed_bytes(sampleTree().to_compressed_bytes(basic()), basic()));
        QVERIFY(loadsFile(good));
    }

    void showWritesEveryValueToTheLog() {
        tftest::LogCapture cap;
        sampleTree().show(basic(), 0, QStringLiteral("sample"), true, -1);
        const QStringList lines = cap.linesAtLevel(32);
        QCOMPARE(lines.first(), QStringLiteral("sample {"));
        QVERIFY(lines.contains(QStringLiteral("  u32 <quint32>: 4294967295")));
        QVERIFY(lines.contains(QStringLiteral("  s <QString>: 'Grüße, \"quotes\" & \u4e2d\u6587'")));
        QVERIFY(lines.contains(QStringLiteral("  arr <tav::XTreeArray>: <tav::XTree> [3] {")));
        QVERIFY(lines.contains(QStringLiteral("          n <qint32>: 7")));
        QCOMPARE(lines.last(), QStringLiteral("}"));
        cap.clear();
        sampleTree().show(basic(), 2, QString(), false, 0);
        QVERIFY(cap.lines().contains(QStringLiteral("    arr: [3] {...}")));
        QVERIFY(!cap.contains(QStringLiteral("first")));
        QCOMPARE(sampleTree().getTree(QStringLiteral("sub"))->toString(basic()), QStringLiteral("{inner:'x'}"));
    }
};

QTEST_GUILESS_MAIN(TestTree)
#include "test_tree.moc"
