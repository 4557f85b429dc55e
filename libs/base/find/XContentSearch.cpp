// Searching one window of bytes: units are derived around the places the
// engines report; the marks follow PCRE2's leftmost-first, non-overlapping rule.
#include "base/find/XByteScan.h"
#include "base/find/XContentSymbols.h"
#include "base/find/XUnits.h"
#include "base/find/XWords.h"
#include "base/log/Logger.h"

#include <algorithm>
#include <limits>

namespace tav {
namespace find {

namespace {
constexpr size_t kNone = std::numeric_limits<size_t>::max();
// More reports than this in one window: the candidate list is not worth keeping.
constexpr size_t kMaxReports = size_t(1) << 20;

size_t utf8Step(const char* d, size_t n, size_t p) {
    const unsigned char c = static_cast<unsigned char>(d[p]);
    size_t len = c < 0xC0 ? 1 : c < 0xE0 ? 2 : c < 0xF0 ? 3 : 4;
    return std::min(len, n - p);
}

#ifdef TF_HAVE_HYPERSCAN
int onTerm(unsigned id, unsigned long long from, unsigned long long to, unsigned, void* ctx) {
    auto* occ = static_cast<std::vector<XOcc>*>(ctx);
    occ->push_back({int64_t(from), int64_t(to), id});
    return 0;
}

// One fixed-length term searched in a whole file: every report becomes a mark
// at once, without a list of occurrences to sort. Reports arrive by end; one
// that does not is noted and the caller takes the general way.
struct SingleCtx {
    std::vector<XRam>* out;
    int64_t base;
    int64_t len;
    int64_t lastEnd;
    int64_t prevTo;
    bool unordered;
    size_t keep;        // marks 'out' may hold (0: no limit); the rest are counted
    uint64_t counted;
};
int onSingle(unsigned, unsigned long long, unsigned long long to, unsigned, void* ctx) {
    auto* c = static_cast<SingleCtx*>(ctx);
    const int64_t e = int64_t(to);
    if (e < c->prevTo) c->unordered = true;
    c->prevTo = e;
    if (e - c->len >= c->lastEnd) {
        if (c->keep && c->out->size() >= c->keep) ++c->counted;
        else c->out->emplace_back(c->base + e - c->len, c->len, XRam::CATEGORY_HIT);
        c->lastEnd = e;
    }
    return 0;
}

struct ReportCtx {
    XContentScratch* sc;
    bool som;
};
int onReport(unsigned, unsigned long long from, unsigned long long to, unsigned, void* ctx) {
    auto* r = static_cast<ReportCtx*>(ctx);
    if (r->sc->reports.size() >= kMaxReports) {
        r->sc->saturated = true;
        return 1;   // stop scanning: PCRE2 takes the whole window
    }
    r->sc->reports.push_back({r->som ? int64_t(from) : -1, int64_t(to)});
    return 0;
}
#endif
}

XContentSearch::XContentSearch(const XContentSymbols& sym, XContentScratch& sc, uint32_t scope, bool wholeFile)
    : sym_(sym), sc_(sc), scope_(scope), wholeFile_(wholeFile) {}

int XContentSearch::match(const XPcre& code, const char* d, size_t len, size_t start, size_t& ms, size_t& me, int& group,
                          uint32_t options) {
    if (start > len) return 0;
    const auto* subject = reinterpret_cast<PCRE2_SPTR>(d);
    const int rc = code.jit && !(options & PCRE2_ANCHORED)
                       ? pcre2_jit_match(code.code, subject, len, start, options, sc_.md, sc_.mctx)
                       : pcre2_match(code.code, subject, len, start, options, sc_.md, sc_.mctx);
    if (rc == PCRE2_ERROR_NOMATCH) return 0;
    if (rc < 0) {
        if (!sc_.errorLogged) {
            PCRE2_UCHAR buf[256];
            pcre2_get_error_message(rc, buf, sizeof buf);
            log(tav::LOG_ERROR, "XContentFilter::find, search stopped: $", QString::fromUtf8(reinterpret_cast<const char*>(buf)));
            sc_.errorLogged = true;
        }
        return rc;
    }
    const PCRE2_SIZE* ov = pcre2_get_ovector_pointer(sc_.md);
    ms = ov[0];
    me = ov[1];
    group = -1;
    for (int k = 1; k < rc; ++k) {
        if (ov[2 * k] != PCRE2_UNSET) {
            group = k - 1;
            break;
        }
    }
    return 1;
}

void XContentSearch::window(const char* d, size_t n, uint64_t base, std::vector<XRam>& out) {
    if (n == 0) return;
    if (sym_.regEx) regex(d, n, base, out);
    else simple(d, n, base, out);
}

void XContentSearch::finish(std::vector<XRam>& out) {
    if (sym_.regEx || scope_ != XUnits::FILE || sym_.singleTerm()) return;
    if (!pendingFile_.empty()) {
        XUnitEval eval(sym_.query);
        eval.evaluate(pendingFile_.data(), pendingFile_.data() + pendingFile_.size(), 0, out);
    }
    pendingFile_.clear();
}

// ---- simple expression: every occurrence of every term in one scan of the
// window, then each unit is decided by the expression tree.
void XContentSearch::simple(const char* d, size_t n, uint64_t base, std::vector<XRam>& out) {
    if (scope_ == XUnits::FILE && sym_.singleTerm() && !sym_.wholeWords && singleTermFast(d, n, base, out)) return;
    std::vector<XOcc>& occ = sc_.occ;
    occ.clear();
    if (sym_.useHyperscan()) occurrencesHyperscan(d, n);
    else occurrencesPcre(d, n);
    if (sym_.wholeWords) keepWholeWords(d, n);
    if (sym_.query.hasNear) countWords(d, n);
    if (occ.empty()) return;

    if (scope_ == XUnits::FILE) {
        if (sym_.singleTerm()) {
            // One term: each occurrence is a mark, the next one starts behind it. (No exact
            // reserve: called once per window, it would copy the whole list each time.)
            for (const XOcc& o : occ) {
                if (int64_t(base) + o.s < lastEnd_) continue;
                put(out, int64_t(base) + o.s, o.e - o.s);
                lastEnd_ = int64_t(base) + o.e;
            }
            return;
        }
        for (XOcc o : occ) {
            o.s += int64_t(base);
            o.e += int64_t(base);
            pendingFile_.push_back(o);
        }
        return;
    }
    XUnits units(d, n, scope_);
    XUnitEval eval(sym_.query);
    std::vector<XOcc>& in = sc_.unitOcc;
    size_t i = 0;
    while (i < occ.size()) {
        XUnits::Unit u;
        bool inside = false;
        if (!units.unitAt(size_t(occ[i].s), u, inside)) break;
        if (!inside) {
            while (i < occ.size() && occ[i].s < int64_t(u.begin)) ++i;
            continue;
        }
        in.clear();
        for (; i < occ.size() && occ[i].s < int64_t(u.end); ++i)
            if (occ[i].e <= int64_t(u.end)) in.push_back(occ[i]);   // one reaching into the next unit is in neither
        if (!in.empty()) eval.evaluate(in.data(), in.data() + in.size(), int64_t(base), out);
    }
}

// Exact bytes or one fixed-length term in a whole file: marks straight from the
// scan, without a list of occurrences. False: take the general way.
bool XContentSearch::singleTermFast(const char* d, size_t n, uint64_t base, std::vector<XRam>& out) {
    const XTerm& t = sym_.terms[0];
    if (!t.exact.empty()) {
        const std::string& x = t.exact;
        size_t p = lastEnd_ > int64_t(base) ? size_t(lastEnd_ - int64_t(base)) : 0;
        for (; (p = bytescan::find_bytes(d, n, x.data(), x.size(), p)) < n; p += x.size()) {
            put(out, int64_t(base + p), int64_t(x.size()));
            lastEnd_ = std::max(lastEnd_, int64_t(base + p + x.size()));
        }
        return true;
    }
#ifdef TF_HAVE_HYPERSCAN
    if (sym_.useHyperscan() && t.literal.fixedLength && t.literal.byteLength > 0) {
        const size_t before = out.size();
        SingleCtx ctx{&out, int64_t(base), int64_t(t.literal.byteLength), 0, 0, false, keep_, 0};
        hs_scan(sym_.hs, d, unsigned(n), 0, sc_.hsScratch, onSingle, &ctx);
        if (!ctx.unordered) {
            counted_ += ctx.counted;
            return true;
        }
        out.resize(before);
    }
#else
    Q_UNUSED(d);
    Q_UNUSED(n);
    Q_UNUSED(base);
    Q_UNUSED(out);
#endif
    return false;
}

void XContentSearch::occurrencesHyperscan(const char* d, size_t n) {
#ifdef TF_HAVE_HYPERSCAN
    std::vector<XOcc>& occ = sc_.occ;
    hs_scan(sym_.hs, d, unsigned(n), 0, sc_.hsScratch, onTerm, &occ);
    for (XOcc& o : occ)
        if (sym_.terms[o.id].literal.fixedLength) o.s = o.e - int64_t(sym_.terms[o.id].literal.byteLength);
    auto byStart = [](const XOcc& a, const XOcc& b) { return a.s < b.s || (a.s == b.s && a.id < b.id); };
    if (!std::is_sorted(occ.begin(), occ.end(), byStart)) std::sort(occ.begin(), occ.end(), byStart);
#else
    occurrencesPcre(d, n);
#endif
}

// The alternation finds the first term at each place; the others are tried
// at that place alone, so overlapping occurrences are all found.
void XContentSearch::occurrencesPcre(const char* d, size_t n) {
    std::vector<XOcc>& occ = sc_.occ;
    size_t ms = 0, me = 0, ms2 = 0, me2 = 0;
    int g = -1, g2 = -1;
    size_t pos = 0;
    while (pos < n && match(sym_.alternation, d, n, pos, ms, me, g) > 0) {
        if (g < 0) break;
        occ.push_back({int64_t(ms), int64_t(me), uint32_t(g)});
        for (size_t t = size_t(g) + 1; t < sym_.terms.size(); ++t)
            if (match(*sym_.single[t], d, n, ms, ms2, me2, g2, PCRE2_ANCHORED) > 0)
                occ.push_back({int64_t(ms), int64_t(me2), uint32_t(t)});
        pos = ms + 1;
    }
}

void XContentSearch::keepWholeWords(const char* d, size_t n) {
    std::vector<XOcc>& occ = sc_.occ;
    occ.erase(std::remove_if(occ.begin(), occ.end(),
                             [&](const XOcc& o) {
                                 return words::word_before(d, size_t(o.s)) || words::word_at(d, n, size_t(o.e));
                             }),
              occ.end());
}

// Word counts at the starts and ends of the occurrences that NEAR looks at, in
// one walk up to the last of them (through the whole window when a file in
// several windows carries its count on).
void XContentSearch::countWords(const char* d, size_t n) {
    std::vector<XOcc>& occ = sc_.occ;
    std::vector<size_t>& pos = sc_.wordPos;
    std::vector<int64_t>& count = sc_.wordCount;
    pos.clear();
    for (const XOcc& o : occ) {
        if (!sym_.terms[o.id].inNear) continue;
        pos.push_back(size_t(o.s));
        pos.push_back(size_t(o.e));
    }
    std::sort(pos.begin(), pos.end());
    pos.erase(std::unique(pos.begin(), pos.end()), pos.end());
    count.resize(pos.size());
    const bool carry = scope_ == XUnits::FILE && !wholeFile_;
    const size_t limit = carry ? n : pos.empty() ? 0 : pos.back();
    int64_t c = scope_ == XUnits::FILE ? wordsBefore_ : 0;
    // Only distances up to the widest NEAR matter: a gap between two places asked
    // for counts at most 'cap' words and the rest of it is skipped, so the walk costs
    // a few words per occurrence instead of every byte of a big file.
    int64_t widest = 0;
    for (const XQueryNode& node : sym_.query.nodes)
        if (node.kind == XQueryNode::NEAR) widest = std::max<int64_t>(widest, int64_t(node.distance));
    const int64_t cap = widest + 2;
    bool prevWord = false;
    size_t p = 0, k = 0;
    // Gap by gap: from one place asked for to the next (the last gap runs to the limit).
    for (;;) {
        const size_t end = k < pos.size() ? std::min(pos[k], limit) : limit;
        int64_t gap = 0;
        while (p < end) {
            bool w = false;
            const unsigned char b = static_cast<unsigned char>(d[p]);
            if (b < 0x80) {
                w = words::is_ascii_word(b);
                ++p;
            } else {
                p += words::char_at(d, n, p, w);
            }
            if (w && !prevWord) {
                ++c;
                if (++gap > cap) {
                    // Far enough for any NEAR: the rest of this gap is not counted.
                    prevWord = w;
                    if (p < end) {
                        p = end;
                        prevWord = words::word_before(d, p);
                    }
                    break;
                }
            }
            prevWord = w;
        }
        if (k >= pos.size() || pos[k] > limit) break;
        for (; k < pos.size() && pos[k] <= p; ++k) count[k] = c;
    }
    for (; k < pos.size(); ++k) count[k] = c;
    if (carry) wordsBefore_ = c;
    // Starts come in order: one pointer finds them; ends need a search.
    size_t ks = 0;
    for (XOcc& o : occ) {
        if (!sym_.terms[o.id].inNear) continue;
        while (ks < pos.size() && pos[ks] < size_t(o.s)) ++ks;
        o.wordsBeforeS = count[ks];
        o.wordsBeforeE = count[size_t(std::lower_bound(pos.begin() + ptrdiff_t(ks), pos.end(), size_t(o.e)) - pos.begin())];
        o.insideWord = words::word_before(d, size_t(o.s)) && words::word_at(d, n, size_t(o.s));
    }
}

// Hyperscan over the window: true when the report list can steer PCRE2 (empty
// list: nothing in this window). False: no usable gate, PCRE2 looks everywhere.
bool XContentSearch::gateScan(const char* d, size_t n) {
#ifdef TF_HAVE_HYPERSCAN
    if (!sym_.hs) return false;
    if (sym_.endSensitive && scope_ != XUnits::FILE) return false;
    if (sym_.hsUtf8 && !bytescan::is_valid_utf8(d, n)) return false;
    sc_.reports.clear();
    sc_.saturated = false;
    ReportCtx ctx{&sc_, sym_.hsSom};
    hs_scan(sym_.hs, d, unsigned(n), 0, sc_.hsScratch, onReport, &ctx);
    if (sc_.saturated) return false;
    std::vector<XReport>& r = sc_.reports;
    auto byEnd = [](const XReport& a, const XReport& b) { return a.e < b.e; };
    if (!std::is_sorted(r.begin(), r.end(), byEnd)) std::stable_sort(r.begin(), r.end(), byEnd);
    // sufMin[i]: the leftmost start among reports i.. (a lower bound for any match ending there).
    sc_.sufMin.resize(r.size());
    int64_t m = std::numeric_limits<int64_t>::max();
    for (size_t i = r.size(); i-- > 0;) {
        m = std::min(m, r[i].s < 0 ? int64_t(0) : r[i].s);
        sc_.sufMin[i] = m;
    }
    return true;
#else
    Q_UNUSED(d);
    Q_UNUSED(n);
    return false;
#endif
}

// ---- regular expression: PCRE2 decides; Hyperscan's reports only say where
// PCRE2 may start (every match ends at a reported end, and starts no earlier
// than the leftmost start reported for the ends after the current position).
void XContentSearch::regex(const char* d, size_t n, uint64_t base, std::vector<XRam>& out) {
    const bool gate = gateScan(d, n);
    const std::vector<XReport>& r = sc_.reports;
    size_t ri = 0;
    #ifdef TF_HAVE_HYPERSCAN
    const bool som = gate && sym_.hsSom;
#else
    const bool som = false;
#endif
    // First report ending after pos; kNone when there is none.
    auto firstAfter = [&](size_t pos) -> size_t {
        while (ri < r.size() && r[ri].e <= int64_t(pos)) ++ri;
        return ri < r.size() ? ri : kNone;
    };
    size_t ms = 0, me = 0;
    int g = -1;

    if (scope_ == XUnits::FILE) {
        size_t pos = 0;
        while (pos <= n) {
            size_t start = pos;
            if (gate) {
                const size_t k = firstAfter(pos);
                if (k == kNone) break;
                if (som) start = std::max(pos, size_t(sc_.sufMin[k]));
            }
            if (match(sym_.regex, d, n, start, ms, me, g) <= 0) break;
            if (me > ms) {
                put(out, int64_t(base + ms), int64_t(me - ms));
                pos = me;
            } else {
                if (ms >= n) break;
                pos = ms + utf8Step(d, n, ms);
            }
        }
        return;
    }

    XUnits units(d, n, scope_);
    size_t pos = 0;
    while (pos < n) {
        size_t c = pos;
        if (gate) {
            const size_t k = firstAfter(pos);
            if (k == kNone) break;
            c = std::max(pos, size_t(r[k].e - 1));
            if (som) c = std::max(c, size_t(sc_.sufMin[k]));
        } else if (!sym_.endSensitive) {
            if (match(sym_.regex, d, n, pos, ms, me, g) <= 0) break;
            c = ms;
        }
        XUnits::Unit u;
        bool inside = false;
        if (!units.unitAt(c, u, inside)) break;
        if (!inside) {
            pos = u.begin;
            continue;
        }
        size_t p = u.begin;
        while (p <= u.end) {
            if (match(sym_.regex, d, u.end, p, ms, me, g) <= 0) break;
            if (me > ms) {
                put(out, int64_t(base + ms), int64_t(me - ms));
                p = me;
            } else {
                if (ms >= u.end) break;
                p = ms + utf8Step(d, n, ms);
            }
        }
        pos = u.end;
    }
}

} // namespace find
} // namespace tav
