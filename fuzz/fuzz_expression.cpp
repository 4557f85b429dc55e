// libFuzzer target for the search-expression compiler and the content filter.
// The first byte picks the kind (simple or regular expression), the scope and
// the two switches (whole words, match case);
// up to the first NUL the rest is the expression, after it the text searched.
// Where both engines are built in, they must agree mark for mark.
//
// Seeds: TF_FUZZ_SEEDS=<dir> ./fuzz_expression writes a few valid inputs and exits.
#include "FuzzSeeds.h"
#include "base/find/XContentFilter.h"
#include "base/find/XRam.h"
#include "base/log/Logger.h"

#include <QDir>
#include <QFile>
#include <algorithm>
#include <cstdint>
#include <cstdlib>

using namespace tav;
using find::XContentFilter;

namespace {
void writeSeeds(const QString& dir) {
    QDir().mkpath(dir);
    auto put = [&](const char* name, char mode, const QByteArray& expr, const QByteArray& text) {
        QFile f(dir + QLatin1Char('/') + QLatin1String(name));
        if (f.open(QIODevice::WriteOnly)) f.write(QByteArray(1, mode) + expr + QByteArray(1, '\0') + text);
    };
    const QByteArray text = "Return a value.\n\nreturn 0; // Съешь же ещё\r\nRETURN? error: return value\n";
    put("simple", 0, "return -error \"a value\"", text);
    put("simple_para", 2, "return value", text);
    put("simple_sentence", 4, "съешь", text);
    put("regex", 1, "[A-Z][a-z]+|ret(urn)?\\b", text);
    put("regex_para", 3, "^return.*$", text);
    put("query", 0x20, "(return | error) NEAR/2 value -(a AND b)", text);
    put("regex_words_case", 0x61, "re\\w+", text);
}

bool sameMarks(const find::XRamLayer& a, const find::XRamLayer& b) {
    if (a.size() != b.size()) return false;
    for (int i = 0; i < a.size(); ++i)
        if (a.marks()[size_t(i)].pos() != b.marks()[size_t(i)].pos() || a.marks()[size_t(i)].len() != b.marks()[size_t(i)].len()) return false;
    return true;
}
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Logger::setStderrEnabled(false);
    tffuzz::writeSeedsIfAsked(writeSeeds);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1 || size > (1u << 16)) return 0;
    const bool regex = data[0] & 1;
    const uint32_t scope = (data[0] >> 1) % 3;
    const bool wholeWords = data[0] & 0x20, matchCase = data[0] & 0x40;
    const char* begin = reinterpret_cast<const char*>(data + 1);
    const char* end = reinterpret_cast<const char*>(data + size);
    const char* nul = begin;
    while (nul < end && *nul) ++nul;
    if (nul - begin > 512) return 0;   // the engine's own limits are not under test here
    const QString expr = QString::fromUtf8(begin, int(nul - begin));
    const QByteArray text = nul < end ? QByteArray(nul + 1, int(end - nul - 1)) : QByteArray();

    XContentFilter f;
    f.setScope(scope);
    f.setWholeWords(wholeWords);
    f.setMatchCase(matchCase);
    if (!f.createSymbols(expr, regex)) {
        if (f.errorText().isEmpty()) std::abort();   // a refusal always says why
        return 0;
    }
    const find::XRamLayer marks = f.find(0, text);
    int64_t last = -1;
    for (const find::XRam& m : marks.marks()) {
        // Marks lie inside the text, in order and without overlap.
        const int64_t len = std::max<int64_t>(m.len(), 0);   // negative: empty
        if (m.pos() < 0 || m.pos() + len > text.size() || m.pos() < last) std::abort();
        last = m.pos() + len;
    }
    if (XContentFilter::hasHyperscan()) {
        XContentFilter p;
        p.setScope(scope);
        p.setWholeWords(wholeWords);
        p.setMatchCase(matchCase);
        if (!p.createSymbols(expr, regex, XContentFilter::ENGINE_PCRE2)) return 0;   // a pattern only one engine takes
        if (p.engineName() == f.engineName()) return 0;
        if (!sameMarks(marks, p.find(0, text))) std::abort();
    }
    return 0;
}
