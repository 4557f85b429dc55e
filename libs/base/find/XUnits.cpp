#include "base/find/XUnits.h"

#include <cstring>

namespace tav {
namespace find {

namespace {
inline bool isWs(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v'; }

bool blank(const char* p, size_t n) {
    for (size_t i = 0; i < n; ++i)
        if (!isWs(p[i])) return false;
    return true;
}
}

// Start of the line holding p, and its end (the '\n' position or the text end).
static size_t lineStart(const char* d, size_t p) {
    const void* q = p ? memrchr(d, '\n', p) : nullptr;
    return q ? size_t(static_cast<const char*>(q) - d) + 1 : 0;
}
static size_t lineEnd(const char* d, size_t n, size_t p) {
    const void* q = p < n ? std::memchr(d + p, '\n', n - p) : nullptr;
    return q ? size_t(static_cast<const char*>(q) - d) : n;
}

bool XUnits::paragraphAt(size_t p, Unit& u, bool& inside) {
    if (p >= n_) return false;
    size_t ls = lineStart(d_, p);
    size_t le = lineEnd(d_, n_, p);
    inside = true;
    // Between paragraphs: move on to the next non-blank line.
    while (blank(d_ + ls, le - ls)) {
        inside = false;
        if (le >= n_) return false;
        ls = le + 1;
        le = lineEnd(d_, n_, ls);
    }
    size_t b = ls;
    if (inside) {
        while (b > 0) {
            const size_t prevEnd = b - 1;   // the '\n' ending the line before
            const size_t prevStart = lineStart(d_, prevEnd);
            if (blank(d_ + prevStart, prevEnd - prevStart)) break;
            b = prevStart;
        }
    }
    size_t e = le;
    while (e < n_) {
        const size_t nextStart = e + 1;
        const size_t nextEnd = lineEnd(d_, n_, nextStart);
        if (blank(d_ + nextStart, nextEnd - nextStart)) break;
        e = nextEnd;
    }
    u.begin = b;
    u.end = e;
    if (p >= e) {
        // p is the line break that ends the paragraph: it belongs to no unit.
        if (e >= n_) return false;
        bool dummy = false;
        if (!paragraphAt(e + 1, u, dummy)) return false;
        inside = false;
    }
    return true;
}

bool XUnits::isEnd(size_t q, const Unit& para) const {
    const char c = d_[q];
    if (c != '.' && c != '!' && c != '?') return false;
    return q + 1 >= para.end || isWs(d_[q + 1]);
}

bool XUnits::unitAt(size_t p, Unit& u, bool& inside) {
    if (p >= n_) return false;
    if (scope_ == FILE) {
        u.begin = 0;
        u.end = n_;
        inside = true;
        return true;
    }
    inside = true;
    for (;;) {
        if (!haveP_ || p < para_.begin || p >= para_.end) {
            bool in = true;
            if (!paragraphAt(p, para_, in)) return false;
            haveP_ = true;
            sentFloor_ = para_.begin;
            if (!in) {
                inside = false;
                p = para_.begin;
            }
        }
        if (scope_ == PARAGRAPH) {
            u = para_;
            return true;
        }
        // Sentence inside para_: back to the last end before p (never below the
        // start of the sentence handed out before), then forward to the next end.
        size_t lo = sentFloor_ > para_.begin ? sentFloor_ : para_.begin;
        if (lo > p) lo = para_.begin;
        size_t start = lo;
        for (size_t q = p; q > lo;) {
            --q;
            if (isEnd(q, para_)) {
                start = q + 1;
                break;
            }
        }
        while (start < para_.end && isWs(d_[start])) ++start;
        if (start >= para_.end) {
            // Only white space after the paragraph's last sentence: go on after it.
            if (para_.end >= n_) return false;
            p = para_.end + 1;
            haveP_ = false;
            inside = false;
            continue;
        }
        if (p < start) inside = false;
        size_t end = para_.end;
        for (size_t q = p > start ? p : start; q < para_.end; ++q) {
            if (isEnd(q, para_)) {
                end = q + 1;
                break;
            }
        }
        u.begin = start;
        u.end = end;
        sentFloor_ = start;
        return true;
    }
}

} // namespace find
} // namespace tav
