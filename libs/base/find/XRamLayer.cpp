#include "base/find/XRamLayer.h"

#include <algorithm>

namespace tav {
namespace find {

void XRamLayer::clear() {
    marks_.clear();
    hits_ = 0;
    active_ = -1;
    binary_ = false;
}

void XRamLayer::add_ram_layer(const XRamLayer& other) {
    const bool sortedAppend = marks_.empty() || other.marks_.empty() || !(other.marks_.front() < marks_.back());
    const uint64_t hits = hitCount() + other.hitCount();
    marks_.insert(marks_.end(), other.marks_.begin(), other.marks_.end());
    if (!sortedAppend) std::stable_sort(marks_.begin(), marks_.end());
    hits_ = hits;
    binary_ = binary_ || other.binary_;
}

void XRamLayer::add_mark(const XRam& r) {
    if (marks_.empty() || !(r < marks_.back())) {
        marks_.push_back(r);
        return;
    }
    marks_.insert(std::upper_bound(marks_.begin(), marks_.end(), r), r);
}

bool XRamLayer::contains_mark(uint32_t category) const {
    return std::any_of(marks_.begin(), marks_.end(), [category](const XRam& r) { return r.category() == category; });
}

XRam* XRamLayer::mark_by_category(uint32_t category) {
    for (XRam& r : marks_)
        if (r.category() == category) return &r;
    return nullptr;
}

void XRamLayer::remove_mark(uint32_t category) {
    marks_.erase(std::remove_if(marks_.begin(), marks_.end(), [category](const XRam& r) { return r.category() == category; }),
                 marks_.end());
    if (active_ >= size()) active_ = -1;
}

void XRamLayer::adapt_layers_order() { std::stable_sort(marks_.begin(), marks_.end()); }

std::pair<int, int> XRamLayer::marks_in_range(int64_t from, int64_t to) const {
    // Marks are sorted by start and hits never overlap, so the first candidate is the
    // last mark starting before 'from' (it may reach into the range).
    auto first = std::lower_bound(marks_.begin(), marks_.end(), from,
                                  [](const XRam& r, int64_t v) { return r.pos() < v; });
    while (first != marks_.begin() && std::prev(first)->end() > from) --first;
    auto last = std::lower_bound(first, marks_.end(), to, [](const XRam& r, int64_t v) { return r.pos() < v; });
    return {int(first - marks_.begin()), int(last - marks_.begin())};
}

int XRamLayer::mark_at(int64_t bytePos) const {
    auto [a, b] = marks_in_range(bytePos, bytePos + 1);
    for (int i = a; i < b; ++i)
        if (marks_[size_t(i)].contains(bytePos)) return i;
    return -1;
}

XRam* XRamLayer::active_mark() { return (active_ >= 0 && active_ < size()) ? &marks_[size_t(active_)] : nullptr; }
const XRam* XRamLayer::active_mark() const {
    return (active_ >= 0 && active_ < size()) ? &marks_[size_t(active_)] : nullptr;
}

void XRamLayer::set_active_mark_index(int i) { active_ = (i >= 0 && i < size()) ? i : -1; }

void XRamLayer::move_active_mark_index(bool up) {
    if (marks_.empty()) {
        active_ = -1;
        return;
    }
    if (active_ < 0) {
        active_ = up ? size() - 1 : 0;
        return;
    }
    active_ = up ? std::max(0, active_ - 1) : std::min(size() - 1, active_ + 1);
}

void XRamLayer::set_active_mark_first() { active_ = marks_.empty() ? -1 : 0; }
void XRamLayer::set_active_mark_last() { active_ = marks_.empty() ? -1 : size() - 1; }

QString XRamLayer::toString() const { return hitCount() == 0 ? QStringLiteral("not-valid") : QString::number(hitCount()); }

} // namespace find
} // namespace tav
