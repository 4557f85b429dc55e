#include "base/find/XWords.h"

#include <QChar>

namespace tav {
namespace find {
namespace words {

namespace {
inline bool cont(unsigned char c) { return (c & 0xC0) == 0x80; }
}

bool is_word_char(uint32_t cp) {
    if (cp < 0x80) return (cp >= 'a' && cp <= 'z') || (cp >= 'A' && cp <= 'Z') || (cp >= '0' && cp <= '9') || cp == '_';
    return QChar::isLetterOrNumber(cp);
}

size_t char_at(const char* d, size_t n, size_t p, bool& word) {
    const auto* u = reinterpret_cast<const unsigned char*>(d);
    const unsigned char c = u[p];
    word = false;
    if (c < 0x80) {
        word = is_word_char(c);
        return 1;
    }
    // Well-formed sequences only (no overlong forms, surrogates or values past U+10FFFF).
    size_t len = 0;
    uint32_t cp = 0;
    unsigned char lo = 0x80, hi = 0xBF;
    if (c >= 0xC2 && c <= 0xDF) len = 2, cp = c & 0x1F;
    else if (c >= 0xE0 && c <= 0xEF) len = 3, cp = c & 0x0F, lo = c == 0xE0 ? 0xA0 : 0x80, hi = c == 0xED ? 0x9F : 0xBF;
    else if (c >= 0xF0 && c <= 0xF4) len = 4, cp = c & 0x07, lo = c == 0xF0 ? 0x90 : 0x80, hi = c == 0xF4 ? 0x8F : 0xBF;
    else return 1;
    if (p + len > n || u[p + 1] < lo || u[p + 1] > hi) return 1;
    for (size_t i = 1; i < len; ++i) {
        if (!cont(u[p + i])) return 1;
        cp = (cp << 6) | (u[p + i] & 0x3F);
    }
    word = is_word_char(cp);
    return len;
}

bool word_before(const char* d, size_t p) {
    if (p == 0) return false;
    const auto* u = reinterpret_cast<const unsigned char*>(d);
    if (u[p - 1] < 0x80) return is_word_char(u[p - 1]);
    // Back over at most three continuation bytes to a lead byte whose sequence ends at p.
    for (size_t k = 1; k <= 4 && k <= p; ++k) {
        if (cont(u[p - k])) continue;
        bool w = false;
        return char_at(d, p, p - k, w) == k && w;
    }
    return false;
}

} // namespace words
} // namespace find
} // namespace tav
