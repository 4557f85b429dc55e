#include "gui/viewText/TextUnits.h"

#include "gui/viewText/TextCells.h"

#include <QChar>
#include <algorithm>

namespace tav {
namespace viewText {

using find::XRam;

namespace {
constexpr int64_t kWordBound = 4 * 1024;
constexpr int64_t kSentenceBound = 8 * 1024;
constexpr int64_t kParagraphBytes = 256 * 1024;
constexpr int kParagraphLines = 500;

inline bool isSpace(unsigned char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v'; }

bool isWordChar(const TextSource& src, int64_t pos, int64_t end, int* len) {
    const auto* d = reinterpret_cast<const unsigned char*>(src.data());
    char32_t cp;
    bool valid;
    *len = decodeUtf8(d + pos, d + end, &cp, &valid);
    return valid && (cp == '_' || QChar::isLetterOrNumber(uint(cp)));
}

bool isBlankLine(const LineIndex& idx, int64_t ls) {
    const TextSource& src = idx.source();
    const int64_t size = src.size();
    for (int64_t i = ls; i < size; ++i) {
        const unsigned char c = src.at(i);
        if (c == '\n') return true;
        if (!isSpace(c)) return false;
    }
    return true;
}

// Paragraph bounds around the line starting at 'ls': [start, end).
void paragraphBounds(const LineIndex& idx, int64_t ls, int64_t byteBound, int64_t* start, int64_t* end) {
    int64_t s = ls;
    for (int i = 0; i < kParagraphLines && s > 0 && ls - s < byteBound; ++i) {
        const int64_t p = idx.prevLineStart(s);
        if (isBlankLine(idx, p)) break;
        s = p;
    }
    int64_t last = ls;
    for (int i = 0; i < kParagraphLines && last - ls < byteBound; ++i) {
        const int64_t n = idx.nextLineStart(last);
        if (n >= idx.size() || isBlankLine(idx, n)) break;
        last = n;
    }
    *start = s;
    *end = idx.lineContentEnd(last);
}
}

int64_t charStartAt(const TextSource& src, int64_t pos) {
    const int64_t size = src.size();
    if (pos <= 0 || pos >= size) return std::clamp<int64_t>(pos, 0, size);
    const auto* d = reinterpret_cast<const unsigned char*>(src.data());
    int64_t b = pos;
    while (b > 0 && pos - b < 3 && (d[b] & 0xC0) == 0x80) --b;
    char32_t cp;
    bool valid;
    const int len = decodeUtf8(d + b, d + size, &cp, &valid);
    return (valid && b + len > pos) ? b : pos;
}

int64_t prevCharStart(const TextSource& src, int64_t pos) { return pos <= 0 ? 0 : charStartAt(src, pos - 1); }

XRam unitChar(const LineIndex& idx, int64_t pos) {
    const TextSource& src = idx.source();
    if (pos < 0 || pos >= src.size()) return XRam(-1, 0, XRam::CATEGORY_CHAR);
    const int64_t b = charStartAt(src, pos);
    const unsigned char c = src.at(b);
    if (c == '\n' || c == '\r') return XRam(-1, 0, XRam::CATEGORY_CHAR);
    const auto* d = reinterpret_cast<const unsigned char*>(src.data());
    char32_t cp;
    bool valid;
    const int len = decodeUtf8(d + b, d + src.size(), &cp, &valid);
    return XRam(b, len, XRam::CATEGORY_CHAR);
}

XRam unitWord(const LineIndex& idx, int64_t pos) {
    const TextSource& src = idx.source();
    if (pos < 0 || pos >= src.size()) return XRam(-1, 0, XRam::CATEGORY_WORD);
    const int64_t ls = idx.lineStartContaining(pos);
    const int64_t le = idx.lineContentEnd(ls);
    int64_t b = charStartAt(src, pos);
    if (b >= le) return XRam(-1, 0, XRam::CATEGORY_WORD);
    int len;
    if (!isWordChar(src, b, le, &len)) return XRam(-1, 0, XRam::CATEGORY_WORD);
    int64_t e = b + len;
    while (e < le && e - pos < kWordBound && isWordChar(src, e, le, &len)) e += len;
    while (b > ls && pos - b < kWordBound) {
        const int64_t p = prevCharStart(src, b);
        if (!isWordChar(src, p, le, &len) || p + len != b) break;
        b = p;
    }
    return XRam(b, e - b, XRam::CATEGORY_WORD);
}

XRam unitLine(const LineIndex& idx, int64_t pos) {
    if (pos < 0 || pos >= idx.size()) return XRam(-1, 0, XRam::CATEGORY_LINE);
    const int64_t ls = idx.lineStartContaining(pos);
    const int64_t le = idx.lineContentEnd(ls);
    return le > ls ? XRam(ls, le - ls, XRam::CATEGORY_LINE) : XRam(-1, 0, XRam::CATEGORY_LINE);
}

XRam unitParagraph(const LineIndex& idx, int64_t pos) {
    if (pos < 0 || pos >= idx.size()) return XRam(-1, 0, XRam::CATEGORY_PARAGRAPH);
    const int64_t ls = idx.lineStartContaining(pos);
    if (isBlankLine(idx, ls)) return XRam(-1, 0, XRam::CATEGORY_PARAGRAPH);
    int64_t s, e;
    paragraphBounds(idx, ls, kParagraphBytes, &s, &e);
    return XRam(s, e - s, XRam::CATEGORY_PARAGRAPH);
}

XRam unitSentence(const LineIndex& idx, int64_t pos) {
    const TextSource& src = idx.source();
    if (pos < 0 || pos >= src.size()) return XRam(-1, 0, XRam::CATEGORY_SENTENCE);
    const int64_t ls = idx.lineStartContaining(pos);
    if (isBlankLine(idx, ls)) return XRam(-1, 0, XRam::CATEGORY_SENTENCE);
    int64_t ps, pe;
    paragraphBounds(idx, ls, kSentenceBound, &ps, &pe);
    auto isEnd = [&src](unsigned char c) { return c == '.' || c == '!' || c == '?'; };
    // Back to just after the previous terminator that is followed by white space.
    int64_t s = std::max(ps, pos - kSentenceBound);
    for (int64_t i = pos - 1; i > ps && i > pos - kSentenceBound; --i) {
        if (isSpace(src.at(i)) && isEnd(src.at(i - 1))) {
            s = i;
            break;
        }
    }
    while (s < pos && isSpace(src.at(s))) ++s;
    // Forward to the terminator (included) that is followed by white space or the paragraph end.
    int64_t e = std::min(pe, pos + kSentenceBound);
    for (int64_t i = std::max(pos, s); i < pe && i < pos + kSentenceBound; ++i) {
        if (isEnd(src.at(i)) && (i + 1 >= pe || isSpace(src.at(i + 1)))) {
            e = i + 1;
            break;
        }
    }
    return e > s ? XRam(s, e - s, XRam::CATEGORY_SENTENCE) : XRam(-1, 0, XRam::CATEGORY_SENTENCE);
}

MouseOverMark unitsAt(const LineIndex& idx, int64_t pos) {
    MouseOverMark m;
    m.character = unitChar(idx, pos);
    m.word = unitWord(idx, pos);
    m.line = unitLine(idx, pos);
    m.sentence = unitSentence(idx, pos);
    m.paragraph = unitParagraph(idx, pos);
    return m;
}

} // namespace viewText
} // namespace tav
