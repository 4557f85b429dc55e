// Deciding one unit of a simple expression from the occurrences of its terms.
#include "base/find/XContentSymbols.h"

#include <algorithm>
#include <limits>

namespace tav {
namespace find {

namespace {
// Words wholly between p and a later q (p ends at or before q starts).
int64_t wordsBetween(const XOcc& p, const XOcc& q) {
    int64_t c = q.wordsBeforeS - p.wordsBeforeE;
    // q starts inside a word that began after p: that word is not between them.
    if (c > 0 && q.insideWord) --c;
    return c;
}

void unite(std::vector<uint32_t>& into, const std::vector<uint32_t>& more) {
    if (more.empty()) return;
    const size_t mid = into.size();
    into.insert(into.end(), more.begin(), more.end());
    std::inplace_merge(into.begin(), into.begin() + ptrdiff_t(mid), into.end());
    into.erase(std::unique(into.begin(), into.end()), into.end());
}
}

void XUnitEval::evaluate(const XOcc* first, const XOcc* last, int64_t base, std::vector<XRam>& out) {
    occ_ = first;
    n_ = size_t(last - first);
    const size_t nTerms = q_.terms.size();
    present_.assign(nTerms, 0);
    for (size_t i = 0; i < n_; ++i) present_[occ_[i].id] = 1;
    if (q_.hasNear) {
        lists_.resize(q_.nodes.size());
        listDone_.assign(q_.nodes.size(), 0);
        keepOcc_.assign(n_, 0);
    }
    if (!value(q_.root)) return;
    keepTerm_.assign(nTerms, 0);
    contribute(q_.root);
    // Leftmost first; at one start the term listed first (the longer) wins.
    int64_t lastEnd = std::numeric_limits<int64_t>::min();
    for (size_t i = 0; i < n_; ++i) {
        const XOcc& o = occ_[i];
        if (!keepTerm_[o.id] && !(q_.hasNear && keepOcc_[i])) continue;
        if (o.s < lastEnd) continue;
        out.emplace_back(base + o.s, o.e - o.s, XRam::CATEGORY_HIT);
        lastEnd = o.e;
    }
}

bool XUnitEval::value(uint32_t node) {
    const XQueryNode& n = q_.nodes[node];
    switch (n.kind) {
    case XQueryNode::TERM: return present_[n.term] != 0;
    case XQueryNode::NOT: return !value(n.kids[0]);
    case XQueryNode::AND:
        for (uint32_t k : n.kids)
            if (!value(k)) return false;
        return true;
    case XQueryNode::OR:
        for (uint32_t k : n.kids)
            if (value(k)) return true;
        return false;
    case XQueryNode::NEAR:
        return value(n.kids[0]) && value(n.kids[1]) && !nearPairs(node).empty();
    }
    return false;
}

void XUnitEval::contribute(uint32_t node) {
    const XQueryNode& n = q_.nodes[node];
    switch (n.kind) {
    case XQueryNode::TERM: keepTerm_[n.term] = 1; break;
    case XQueryNode::NOT: break;
    case XQueryNode::AND:
        for (uint32_t k : n.kids) contribute(k);
        break;
    case XQueryNode::OR:
        for (uint32_t k : n.kids)
            if (value(k)) contribute(k);
        break;
    case XQueryNode::NEAR:
        for (uint32_t i : nearPairs(node)) keepOcc_[i] = 1;
        break;
    }
}

// The occurrences a node marks when true, as indices in start order.
const std::vector<uint32_t>& XUnitEval::occurrences(uint32_t node) {
    const XQueryNode& n = q_.nodes[node];
    if (n.kind == XQueryNode::NEAR) return nearPairs(node);
    std::vector<uint32_t>& list = lists_[node];
    if (listDone_[node]) return list;
    list.clear();
    switch (n.kind) {
    case XQueryNode::TERM:
        for (size_t i = 0; i < n_; ++i)
            if (occ_[i].id == n.term) list.push_back(uint32_t(i));
        break;
    case XQueryNode::AND:
        if (value(node))
            for (uint32_t k : n.kids) unite(list, occurrences(k));
        break;
    case XQueryNode::OR:
        for (uint32_t k : n.kids)
            if (value(k)) unite(list, occurrences(k));
        break;
    default: break;
    }
    listDone_[node] = 1;
    return list;
}

// The occurrences of either side that have a partner on the other side within
// the distance. The nearest partner after an occurrence is the one starting
// first at or behind its end, the nearest before the one ending last at or
// before its start: words between only grow with the gap.
const std::vector<uint32_t>& XUnitEval::nearPairs(uint32_t node) {
    std::vector<uint32_t>& list = lists_[node];
    if (listDone_[node]) return list;
    listDone_[node] = 1;   // set first: the sides are other nodes, never this one
    list.clear();
    const XQueryNode& n = q_.nodes[node];
    const int64_t most = int64_t(n.distance);
    // The sides' lists live in lists_, sized once per unit: references stay valid.
    const std::vector<uint32_t>& a = occurrences(n.kids[0]);
    const std::vector<uint32_t>& b = occurrences(n.kids[1]);
    if (a.empty() || b.empty()) return list;
    // By end: usually the order by start already (one fixed-length term), so sort only when not.
    std::vector<uint32_t> aSorted, bSorted;
    auto byEnd = [&](const std::vector<uint32_t>& v, std::vector<uint32_t>& own) -> const std::vector<uint32_t>& {
        auto less = [&](uint32_t x, uint32_t y) { return occ_[x].e < occ_[y].e; };
        if (std::is_sorted(v.begin(), v.end(), less)) return v;
        own = v;
        std::stable_sort(own.begin(), own.end(), less);
        return own;
    };
    const std::vector<uint32_t>& aEnd = byEnd(a, aSorted);
    const std::vector<uint32_t>& bEnd = byEnd(b, bSorted);
    auto hasPartner = [&](uint32_t i, const std::vector<uint32_t>& other, const std::vector<uint32_t>& otherEnd) {
        const XOcc& p = occ_[i];
        auto after = std::lower_bound(other.begin(), other.end(), p.e, [&](uint32_t x, int64_t v) { return occ_[x].s < v; });
        if (after != other.end() && wordsBetween(p, occ_[*after]) <= most) return true;
        auto before = std::upper_bound(otherEnd.begin(), otherEnd.end(), p.s, [&](int64_t v, uint32_t x) { return v < occ_[x].e; });
        return before != otherEnd.begin() && wordsBetween(occ_[*(before - 1)], p) <= most;
    };
    std::vector<uint32_t> fromA, fromB;
    for (uint32_t i : a)
        if (hasPartner(i, b, bEnd)) fromA.push_back(i);
    for (uint32_t i : b)
        if (hasPartner(i, a, aEnd)) fromB.push_back(i);
    unite(fromA, fromB);
    list = std::move(fromA);
    return list;
}

} // namespace find
} // namespace tav
