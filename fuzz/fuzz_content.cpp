// libFuzzer target for the content search on arbitrary text. The expression is
// not fuzzed (fuzz_expression does that): the first byte picks one of a few
// fixed expressions, the scope, whole words, match case and how many marks a
// search keeps; the rest is the text. The text is searched in memory and, as
// a file, through the reader in small windows and whole; every way must give
// the same marks, and the kept, counted and streamed forms must agree with them.
//
// Seeds: TF_FUZZ_SEEDS=<dir> ./fuzz_content writes a few valid inputs and exits.
#include "FuzzSeeds.h"
#include "base/find/XContentFilter.h"
#include "base/find/XRam.h"
#include "base/io/XLineReaderDA.h"
#include "base/log/Logger.h"

#include <QDir>
#include <QFile>
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <unistd.h>
#include <vector>

using namespace tav;
using find::XContentFilter;
using find::XRam;
using find::XRamLayer;

namespace {

struct Expr {
    const char* text;
    bool regex;
};
// Bits 0-2 of the first byte. None of them can match an empty string.
const Expr kExprs[8] = {
    {"needle", false},       {"return | break", false}, {"\"two words\"", false}, {"alpha NEAR/2 beta", false},
    {"x -y", false},         {"\\bre\\w+", true},       {"^#include", true},      {"(a|b)+c", true},
};
constexpr int kNeedle = 0, kReturnBreak = 1;

struct Mode {
    int expr;
    uint32_t scope;
    bool wholeWords, matchCase;
    uint32_t keep;
};
Mode modeOf(uint8_t b) {
    return Mode{b & 7, uint32_t((b >> 3) & 3) % 3, bool(b & 0x20), bool(b & 0x40), (b & 0x80) ? 3u : 1u};
}

// Compiling (Hyperscan above all) costs more than a search of a few KiB, and a
// search worker, too, keeps its filter from file to file.
struct Filters {
    XContentFilter all, keeping;
};
std::unique_ptr<Filters> gFilters[256];

Filters& filtersFor(uint8_t b) {
    std::unique_ptr<Filters>& f = gFilters[b];
    if (f) return *f;
    const Mode m = modeOf(b);
    f = std::make_unique<Filters>();
    f->all.setScope(m.scope);
    f->all.setWholeWords(m.wholeWords);
    f->all.setMatchCase(m.matchCase);
    if (!f->all.createSymbols(QString::fromUtf8(kExprs[m.expr].text), kExprs[m.expr].regex)) {
        std::fprintf(stderr, "fixed expression refused: %s\n", qPrintable(f->all.errorMessage()));
        std::abort();
    }
    f->keeping = f->all;
    f->keeping.setKeepMarks(m.keep);
    return *f;
}

// The text as a file, rewritten in place for each input.
int gFd = -1;
char gPath[] = "/tmp/tf_fuzz_content.XXXXXX";
void removeFile() { ::unlink(gPath); }

void writeFile(const QByteArray& text) {
    if (::ftruncate(gFd, 0) != 0 || ::pwrite(gFd, text.constData(), size_t(text.size()), 0) != ssize_t(text.size())) {
        std::perror("fuzz_content: temp file");
        std::abort();
    }
}

bool isWordByte(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

void fail(const char* what) {
    std::fprintf(stderr, "fuzz_content: %s\n", what);
    std::abort();
}

// Marks of a search: inside the text, each non-empty, in order and without overlap.
void checkMarks(const std::vector<XRam>& marks, const QByteArray& text, const Mode& m) {
    int64_t lastEnd = 0;
    for (const XRam& r : marks) {
        if (r.pos() < lastEnd || r.len() <= 0 || r.end() > text.size()) fail("mark outside the text, empty or overlapping");
        if (r.category() != XRam::CATEGORY_HIT) fail("search mark not a hit");
        lastEnd = r.end();
        const QByteArray hit = text.mid(int(r.pos()), int(r.len()));
        // "Whole words": no letter, digit or '_' beside the mark (ASCII ones are sure to be such).
        if (m.wholeWords && ((r.pos() > 0 && isWordByte(text[int(r.pos() - 1)])) || (r.end() < text.size() && isWordByte(text[int(r.end())]))))
            fail("whole-words mark touches a word character");
        // A term's mark is the term: in its own case, or folded (no letter of "needle" folds from outside ASCII).
        if (m.expr == kNeedle && (m.matchCase ? hit != "needle" : hit.toLower() != "needle")) fail("mark of 'needle' is something else");
        if (m.expr == kReturnBreak && m.matchCase && hit != "return" && hit != "break") fail("mark of 'return | break' is something else");
    }
}

bool same(const std::vector<XRam>& a, const std::vector<XRam>& b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (a[i].pos() != b[i].pos() || a[i].len() != b[i].len()) return false;
    return true;
}

// A layer kept to 'k' marks: the first of the full marks, and the count of them all.
void checkKept(const XRamLayer& part, const std::vector<XRam>& full, uint32_t k) {
    const size_t held = std::min<size_t>(k, full.size());
    if (!same(part.marks(), std::vector<XRam>(full.begin(), full.begin() + ptrdiff_t(held)))) fail("kept marks are not the first ones");
    if (part.hitCount() != full.size()) fail("hit count differs from the marks found");
    if (part.isComplete() != (full.size() <= k)) fail("complete flag wrong");
}

// The streamed marks, in order, and their number.
std::vector<XRam> streamed(XContentFilter& f, XLineReaderDA* reader, const QByteArray& text, uint64_t& n) {
    std::vector<XRam> out;
    const auto sink = [&](const XRam* r, size_t k) {
        if (k == 0 || !r) fail("empty piece handed over");
        out.insert(out.end(), r, r + k);
    };
    n = reader ? f.forEachMark(*reader, sink) : f.forEachMark(text, sink);
    return out;
}

// Words, sentences, lines and paragraphs with the expressions' terms in every
// case; some texts span several reader windows.
QByteArray sampleText(uint32_t seed, int bytes) {
    static const char* const words[] = {
        "needle", "Needle", "NEEDLE", "needles", "_needle", "return", "RETURN", "break", "breaks", "two words", "Two  Words",
        "two\nwords", "alpha", "beta", "gamma", "x", "y", "X", "#include <x.h>", "reader", "re", "aabac", "bbc", "c",
        "caf\xc3\xa9", "\xd0\xa1\xd1\x8a\xd0\xb5\xd1\x88\xd1\x8c", "\xf0\x9f\x98\x80", "\xff\xfe", "hay", "stack", "2x",
    };
    std::mt19937 rnd(seed);
    QByteArray t;
    while (t.size() < bytes) {
        t += words[rnd() % (sizeof words / sizeof *words)];
        switch (rnd() % 12) {
        case 0: t += ". "; break;
        case 1: t += "\n"; break;
        case 2: t += "\n\n"; break;
        case 3: t += "\r\n"; break;
        case 4: t += "? "; break;
        default: t += ' '; break;
        }
        if (rnd() % 40 == 0) t += "\n#include <y.h>\n";
    }
    return t;
}

void writeSeeds(const QString& dir) {
    QDir().mkpath(dir);
    auto put = [&](const QString& name, uint8_t mode, const QByteArray& text) {
        QFile f(dir + QLatin1Char('/') + name);
        if (f.open(QIODevice::WriteOnly)) f.write(QByteArray(1, char(mode)) + text);
    };
    for (int e = 0; e < 8; ++e) {
        // Each expression in each scope, over several windows; then with the switches set.
        for (uint32_t s = 0; s < 3; ++s)
            put(QStringLiteral("e%1_s%2").arg(e).arg(s), uint8_t(e | s << 3), sampleText(uint32_t(10 * e + s), 9000 + 1000 * e));
        put(QStringLiteral("e%1_words_case").arg(e), uint8_t(e | 0x20 | 0x40 | 0x80), sampleText(uint32_t(100 + e), 6000));
        put(QStringLiteral("e%1_short").arg(e), uint8_t(e | 1 << 3 | 0x80), sampleText(uint32_t(200 + e), 300));
    }
    // A line longer than the first window (the window grows) and a text with a NUL (binary).
    put(QStringLiteral("long_line"), 0, QByteArray(5000, 'a') + " needle " + QByteArray(3000, 'b') + "\nneedle\n");
    put(QStringLiteral("binary"), 1 | 0x80, QByteArray("return\0break", 12) + sampleText(7, 500));
}
} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Logger::setStderrEnabled(false);
    tffuzz::writeSeedsIfAsked(writeSeeds);
    gFd = ::mkstemp(gPath);
    if (gFd < 0) {
        std::perror("fuzz_content: mkstemp");
        std::abort();
    }
    std::atexit(removeFile);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // Below the largest window a line may grow to, no line or paragraph is ever cut.
    constexpr size_t kMaxWindow = size_t(1) << 20;
    if (size < 1 || size >= kMaxWindow) return 0;
    const Mode m = modeOf(data[0]);
    Filters& f = filtersFor(data[0]);
    const QByteArray text(reinterpret_cast<const char*>(data + 1), int(size - 1));

    const XRamLayer full = f.all.find(0, text);
    const std::vector<XRam>& marks = full.marks();
    checkMarks(marks, text, m);
    if (full.hitCount() != marks.size() || !full.isComplete()) fail("a search without a limit left marks out");
    checkKept(f.keeping.find(0, text), marks, m.keep);
    uint64_t n = 0;
    if (!same(streamed(f.keeping, nullptr, text, n), marks) || n != marks.size()) fail("streamed marks differ (memory)");

    // The same bytes as a file: in windows of 4 KiB that may grow (as a search
    // worker reads, only smaller), and held whole.
    writeFile(text);
    XLineReaderDA windows;
    windows.setWindowSizes(4096, kMaxWindow);
    if (!windows.openFile(QString::fromLocal8Bit(gPath), 0x10000, true)) fail("temp file cannot be opened");
    if (text.size() > 4096 && windows.isWhole()) fail("reader holds more than its first window");
    if (!same(f.all.find(0, windows).marks(), marks)) fail("marks of the file in windows differ from those in memory");
    checkKept(f.keeping.find(0, windows), marks, m.keep);
    if (!same(streamed(f.keeping, &windows, text, n), marks) || n != marks.size()) fail("streamed marks differ (windows)");
    // Searched again, the reader rewinds: the same marks.
    if (!same(f.all.find(0, windows).marks(), marks)) fail("second search of the same reader differs");

    XLineReaderDA whole;
    if (!whole.openFile(QString::fromLocal8Bit(gPath), 0x10000, true) || !whole.isWhole()) fail("temp file not read whole");
    const XRamLayer wholeMarks = f.all.find(0, whole);
    if (!same(wholeMarks.marks(), marks)) fail("marks of the whole file differ from those in memory");
    if (wholeMarks.isBinary() != full.isBinary()) fail("binary flag of the file differs from that in memory");
    return 0;
}
