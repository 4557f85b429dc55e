#include "gui/viewText/TextCells.h"

#include <QChar>
#include <QString>
#include <algorithm>
#include <limits>

namespace tav {
namespace viewText {

namespace {
constexpr char32_t kReplacement = 0xFFFD;

inline bool isCont(unsigned char c) { return (c & 0xC0) == 0x80; }

inline bool isControl(char32_t cp) { return cp < 0x20 || cp == 0x7F || (cp >= 0x80 && cp < 0xA0); }

// One step of the walk over a line: length and width of the character at d[b].
inline void step(const unsigned char* d, int64_t b, const unsigned char* end, int64_t col, int tabWidth, int* len,
                 int* width) {
    const unsigned char ch = d[b];
    if (ch >= 0x20 && ch < 0x7F) {
        *len = 1;
        *width = 1;
    } else if (ch == '\t') {
        *len = 1;
        *width = int(tabWidth - col % tabWidth);
    } else if (ch < 0x80) {
        *len = 1;
        *width = 1;
    } else {
        char32_t cp;
        bool valid;
        *len = decodeUtf8(d + b, end, &cp, &valid);
        *width = (!valid || isControl(cp)) ? 1 : codePointWidth(cp);
    }
}
}

int decodeUtf8(const unsigned char* p, const unsigned char* end, char32_t* cp, bool* valid) {
    const unsigned char c = p[0];
    const ptrdiff_t avail = end - p;
    *valid = false;
    *cp = c;
    if (c < 0x80) {
        *valid = true;
        return 1;
    }
    int n;
    char32_t v;
    unsigned char lo = 0x80, hi = 0xBF;   // allowed range of the second byte
    if (c >= 0xC2 && c <= 0xDF) {
        n = 2;
        v = c & 0x1F;
    } else if (c >= 0xE0 && c <= 0xEF) {
        n = 3;
        v = c & 0x0F;
        if (c == 0xE0) lo = 0xA0;          // no overlong forms
        if (c == 0xED) hi = 0x9F;          // no surrogates
    } else if (c >= 0xF0 && c <= 0xF4) {
        n = 4;
        v = c & 0x07;
        if (c == 0xF0) lo = 0x90;
        if (c == 0xF4) hi = 0x8F;          // nothing above U+10FFFF
    } else {
        return 1;
    }
    if (avail < n) return 1;
    if (p[1] < lo || p[1] > hi) return 1;
    for (int i = 1; i < n; ++i) {
        if (!isCont(p[i])) return 1;
        v = (v << 6) | (p[i] & 0x3F);
    }
    *cp = v;
    *valid = true;
    return n;
}

int codePointWidth(char32_t cp) {
    if (cp < 0x300) return 1;
    if (cp == 0x200B || cp == 0x200C || cp == 0x200D || cp == 0xFEFF) return 0;
    const auto cat = QChar::category(uint(cp));
    if (cat == QChar::Mark_NonSpacing || cat == QChar::Mark_Enclosing) return 0;
    // East Asian wide and full-width ranges, and the common emoji blocks.
    if ((cp >= 0x1100 && cp <= 0x115F) || (cp >= 0x2E80 && cp <= 0x303E) || (cp >= 0x3041 && cp <= 0x33FF) ||
        (cp >= 0x3400 && cp <= 0x4DBF) || (cp >= 0x4E00 && cp <= 0x9FFF) || (cp >= 0xA000 && cp <= 0xA4CF) ||
        (cp >= 0xAC00 && cp <= 0xD7A3) || (cp >= 0xF900 && cp <= 0xFAFF) || (cp >= 0xFE30 && cp <= 0xFE4F) ||
        (cp >= 0xFF00 && cp <= 0xFF60) || (cp >= 0xFFE0 && cp <= 0xFFE6) || (cp >= 0x1F300 && cp <= 0x1F64F) ||
        (cp >= 0x1F900 && cp <= 0x1F9FF) || (cp >= 0x20000 && cp <= 0x3FFFD))
        return 2;
    return 1;
}

Cell cellAt(const TextSource& src, int64_t pos, int64_t lineEnd, int64_t col, int tabWidth) {
    const auto* d = reinterpret_cast<const unsigned char*>(src.data());
    Cell c;
    c.byte = pos;
    c.col = col;
    const unsigned char ch = d[pos];
    if (ch == '\t') {
        c.kind = CellKind::Tab;
        c.cp = '\t';
        c.width = int8_t(tabWidth - col % tabWidth);
        return c;
    }
    bool valid;
    char32_t cp;
    c.len = int8_t(decodeUtf8(d + pos, d + lineEnd, &cp, &valid));
    c.cp = cp;
    if (!valid) {
        c.kind = CellKind::Invalid;
    } else if (isControl(cp)) {
        c.kind = CellKind::Control;
    } else {
        c.width = int8_t(codePointWidth(cp));
        if (c.width == 0) c.kind = CellKind::Combining;
    }
    return c;
}

QString cellText(const Cell& c) {
    switch (c.kind) {
    case CellKind::Tab: return QString();
    case CellKind::Invalid: return QString(QChar(ushort(kReplacement)));
    case CellKind::Control:
        if (c.cp < 0x20) return QString(QChar(ushort(0x2400 + c.cp)));   // the Control Pictures block
        if (c.cp == 0x7F) return QString(QChar(ushort(0x2421)));
        return QString(QChar(ushort(0x2426)));
    default: {
        const uint u = uint(c.cp);
        return QString::fromUcs4(&u, 1);
    }
    }
}

void decodeCells(const TextSource& src, int64_t from, int64_t lineEnd, int64_t startCol, int64_t maxCol, int tabWidth,
                 std::vector<Cell>& out) {
    int64_t b = from, col = startCol;
    while (b < lineEnd && col < maxCol) {
        Cell c = cellAt(src, b, lineEnd, col, tabWidth);
        out.push_back(c);
        b += c.len;
        col += c.width;
    }
}

// ---- ColumnMapper ------------------------------------------------------------------------
void ColumnMapper::setTabWidth(int w) {
    w = std::clamp(w, 1, 16);
    if (w == tabWidth_) return;
    tabWidth_ = w;
    cache_.clear();
}

ColumnMapper::Checkpoint ColumnMapper::startFor(const TextSource&, int64_t ls, int64_t le, int64_t pos, int64_t col,
                                                Entry** entry) {
    *entry = nullptr;
    if (le - ls <= kCheckpointBytes) return {ls, 0};
    auto it = std::find_if(cache_.begin(), cache_.end(), [ls](const Entry& e) { return e.ls == ls; });
    if (it == cache_.end()) {
        Entry e;
        e.ls = ls;
        e.points.push_back({ls, 0});
        cache_.push_front(std::move(e));
        if (cache_.size() > 8) cache_.pop_back();
        it = cache_.begin();
    } else if (it != cache_.begin()) {
        cache_.splice(cache_.begin(), cache_, it);
        it = cache_.begin();
    }
    *entry = &*it;
    const auto& pts = it->points;
    // Last checkpoint at or before both the byte and the column asked for.
    auto p = std::upper_bound(pts.begin(), pts.end(), std::make_pair(pos, col),
                              [](const std::pair<int64_t, int64_t>& v, const Checkpoint& c) {
                                  return v.first < c.byte || v.second < c.col;
                              });
    return p == pts.begin() ? pts.front() : *std::prev(p);
}

ColumnMapper::Checkpoint ColumnMapper::walk(const TextSource& src, Checkpoint cp, int64_t le, int64_t stopByte,
                                            int64_t stopCol, Entry* e, Checkpoint* last) {
    const auto* d = reinterpret_cast<const unsigned char*>(src.data());
    const unsigned char* end = d + le;
    int64_t b = cp.byte, c = cp.col;
    int64_t nextMark = e ? e->points.back().byte + kCheckpointBytes : std::numeric_limits<int64_t>::max();
    *last = cp;
    const int64_t stopB = std::min(stopByte, le);
    while (b < stopB && c < stopCol) {
        int len, w;
        step(d, b, end, c, tabWidth_, &len, &w);
        *last = {b, c};
        b += len;
        c += w;
        if (b >= nextMark && b < le) {
            e->points.push_back({b, c});
            nextMark = b + kCheckpointBytes;
        }
    }
    return {b, c};
}

int64_t ColumnMapper::byteAtOrAfterCol(const TextSource& src, int64_t ls, int64_t le, int64_t col, int64_t* cellCol) {
    Entry* e;
    const Checkpoint start = startFor(src, ls, le, le, col, &e);
    Checkpoint last;
    const Checkpoint r = walk(src, start, le, le, col, e, &last);
    if (cellCol) *cellCol = r.col;
    return r.byte;
}

int64_t ColumnMapper::byteAtCol(const TextSource& src, int64_t ls, int64_t le, int64_t col) {
    if (col <= 0) return ls;
    Entry* e;
    const Checkpoint start = startFor(src, ls, le, le, col, &e);
    Checkpoint last;
    const Checkpoint r = walk(src, start, le, le, col + 1, e, &last);
    return r.col > col ? last.byte : le;
}

int64_t ColumnMapper::colAtByte(const TextSource& src, int64_t ls, int64_t le, int64_t pos) {
    if (pos <= ls) return 0;
    Entry* e;
    const int64_t target = std::min(pos, le);
    const Checkpoint start = startFor(src, ls, le, target, std::numeric_limits<int64_t>::max(), &e);
    Checkpoint last;
    const Checkpoint r = walk(src, start, le, target, std::numeric_limits<int64_t>::max(), e, &last);
    if (pos >= le || r.byte == target) return r.col;
    return last.col;   // 'pos' lies inside the last cell passed
}

void ColumnMapper::extent(const TextSource& src, int64_t ls, int64_t le, int64_t* totalCols, int64_t* lastCellCol) {
    Entry* e;
    const Checkpoint start = startFor(src, ls, le, le, std::numeric_limits<int64_t>::max(), &e);
    Checkpoint last;
    const Checkpoint r = walk(src, start, le, le, std::numeric_limits<int64_t>::max(), e, &last);
    if (totalCols) *totalCols = r.col;
    if (lastCellCol) *lastCellCol = (r.byte == ls) ? 0 : last.col;
}

} // namespace viewText
} // namespace tav
