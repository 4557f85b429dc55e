// libFuzzer target for the extraction of searchable text from containers:
// compressed streams, archives, office documents, PDFs, UTF-16. The first byte
// picks the name hint (bits 0-3), tight limits (bit 4), a sink that stops after
// the first part (bit 5), a shallow nesting limit (bit 6) and a cancel after a
// few blocks (bit 7); the rest are the file's bytes.
// Every part must stay within the output limit, and none may come after the
// sink said stop or from a file the extractor did not take.
//
// The archive and PDF readers live in the module beside this program (built
// with it); without it nothing here would be tested, so the target refuses to run.
//
// Seeds: TF_FUZZ_SEEDS=<dir> ./fuzz_extract writes a few valid inputs and exits.
#include "FuzzSeeds.h"
#include "base/extract/XExtract.h"
#include "base/extract/XExtractApi.h"
#include "base/log/Logger.h"
#include "common/DocFixtures.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTextCodec>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

using namespace tav;
using namespace tav::extract;
using tftest::Pack;
using tftest::Squeeze;

namespace {

const char* const kHints[] = {".gz", ".zip", ".tar", ".pdf", ".txt", ".docx", ".odt", ".7z", ""};
constexpr int kHintCount = int(sizeof kHints / sizeof *kHints);

// Small enough that a bomb costs little memory, with room for the tight ones
// to be hit by inputs of a few KiB.
Limits limitsFor(bool tight, bool shallow) {
    Limits l;
    if (tight) {
        l.maxOutput = 16 << 10;
        l.ratioFrom = 4 << 10;
        l.maxRatio = 4;
    } else {
        l.maxOutput = 4 << 20;
        l.ratioFrom = 256 << 10;
        l.maxRatio = 20;
    }
    l.maxDepth = shallow ? 1 : 4;
    return l;
}

void fail(const char* what, const Part& p) {
    std::fprintf(stderr, "fuzz_extract: %s (member '%s', %d bytes)\n", what, qPrintable(p.member), p.text.size());
    std::abort();
}

void checkPart(const Part& p, const Limits& l) {
    if (uint64_t(p.text.size()) > l.maxOutput) fail("part larger than the output limit", p);
    int64_t last = 0;
    for (int64_t s : p.pageStarts) {
        if (s < last || s > p.text.size()) fail("page starts out of order or outside the text", p);
        last = s;
    }
    // Members that would climb out or start at the root are skipped, never delivered.
    static const QRegularExpression sep(QStringLiteral("[/\\\\]"));
    if (p.member.startsWith(QLatin1Char('/')) || p.member.startsWith(QLatin1Char('\\')) ||
        p.member.split(sep).contains(QStringLiteral("..")))
        fail("part with an unsafe member name", p);
}

QByteArray utf16(const QString& s, bool littleEndian) {
    QTextCodec* c = QTextCodec::codecForName(littleEndian ? "UTF-16LE" : "UTF-16BE");
    return (littleEndian ? QByteArray("\xff\xfe") : QByteArray("\xfe\xff")) + c->fromUnicode(s);
}

void writeSeeds(const QString& dir) {
    QDir().mkpath(dir);
    auto put = [&](const char* name, int mode, const QByteArray& bytes) {
        if (bytes.isEmpty()) return;   // a writer this libarchive lacks
        QFile f(dir + QLatin1Char('/') + QLatin1String(name));
        if (f.open(QIODevice::WriteOnly)) f.write(QByteArray(1, char(mode)) + bytes);
    };
    const QByteArray text = "first line\nthe needle is here\n\nSecond paragraph. caf\xc3\xa9\n";
    const QByteArray tgz = tftest::makeArchive(Pack::Tar, Squeeze::Gzip, {{"a/one.txt", text}, {"two.log", "needle\n"}});
    put("gz", 0, tftest::compress(Squeeze::Gzip, text));
    put("tgz", 0, tgz);
    put("zip", 1, tftest::makeArchive(Pack::Zip, Squeeze::None, {{"one.txt", text}, {"in/n.tar.gz", tgz}, {"u16.txt", utf16("needle", true)}}));
    put("tar", 2, tftest::makeArchive(Pack::Tar, Squeeze::None, {{"one.txt", text}, {"../up.txt", "x"}, {"d.docx", tftest::makeDocx({"needle"})}}));
    put("pdf", 3, tftest::makePdf({"first page needle", "second (page)"}));
    put("utf16le", 4, utf16(QString::fromUtf8(text), true));
    put("utf16be", 4, utf16(QString::fromUtf8(text), false));
    put("docx", 5, tftest::makeDocx({"first paragraph", "the needle"}));
    put("xlsx", 5, tftest::makeXlsx({"cell one", "needle"}));
    put("pptx", 5, tftest::makePptx({"slide one", "slide two", "needle"}));
    put("odt", 6, tftest::makeOdt({"first  paragraph", "the   needle"}));
    put("7z", 7, tftest::makeArchive(Pack::SevenZip, Squeeze::None, {{"one.txt", text}, {"two.txt", "needle"}}));
    put("epub", 8, tftest::makeEpub({"chapter one", "needle"}));
    put("cpio_xz", 8, tftest::makeArchive(Pack::Cpio, Squeeze::Xz, {{"one.txt", text}}));
    put("bz2", 8, tftest::compress(Squeeze::Bzip2, text));
    put("zst", 8, tftest::compress(Squeeze::Zstd, text));
    put("nested_gz", 0, tftest::compress(Squeeze::Gzip, tftest::compress(Squeeze::Gzip, tgz)));
    // Bombs against the tight limits and the ratio; a sink that stops; a shallow limit; a cancel.
    put("bomb_tight", 0 | 0x10, tftest::compress(Squeeze::Gzip, QByteArray(64 << 10, '\0')));
    put("bomb_ratio", 1, tftest::makeArchive(Pack::Zip, Squeeze::None, {{"z.bin", QByteArray(300 << 10, 'z')}}));
    put("stop", 1 | 0x20, tftest::makeArchive(Pack::Zip, Squeeze::None, {{"1.txt", "one"}, {"2.txt", "two"}, {"3.txt", "three"}}));
    put("shallow", 2 | 0x40, tftest::makeArchive(Pack::Tar, Squeeze::None, {{"t.tgz", tgz}, {"p.txt", text}}));
    put("cancel", 0 | 0x80, tgz);
}
} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Logger::setStderrEnabled(false);
    tffuzz::writeSeedsIfAsked(writeSeeds);
    QString why;
    if (!extractApi(&why)) {
        std::fprintf(stderr, "fuzz_extract: %s\n", qPrintable(why));
        std::abort();
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1 || size > (1u << 20)) return 0;
    const uint8_t mode = data[0];
    const QString hint = QStringLiteral("fuzz") + QLatin1String(kHints[(mode & 0x0f) % kHintCount]);
    const bool stopAfterFirst = mode & 0x20;
    const Limits limits = limitsFor(mode & 0x10, mode & 0x40);
    const QByteArray bytes(reinterpret_cast<const char*>(data + 1), int(size - 1));

    XExtractor x(limits);
    if (mode & 0x80) {
        int blocks = 0;
        x.setKeepGoing([blocks]() mutable { return ++blocks <= 3; });
    }
    int parts = 0;
    bool stopped = false;
    const bool known = x.extractData(bytes, hint, [&](Part& p) {
        if (stopped) fail("part after the sink said stop", p);
        checkPart(p, limits);
        ++parts;
        stopped = stopAfterFirst;
        return !stopAfterFirst;
    });
    if (!known && parts > 0) {
        std::fprintf(stderr, "fuzz_extract: %d parts from bytes the extractor did not take\n", parts);
        std::abort();
    }
    return 0;
}
