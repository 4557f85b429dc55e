#pragma once
// An ordered list of marks with a background colour and one active mark.
// Marks are kept sorted by position so a view can find the marks of the lines
// it shows by binary search.
#include "base/find/XRam.h"

#include <QString>
#include <cstdint>
#include <vector>

namespace tav {
namespace find {

// An ARGB colour value (same layout as QRgb, without needing the GUI module).
using XRgb = uint32_t;

class XRamLayer {
public:
    XRamLayer() = default;

    // The marks held (a search's result may hold only its first ones: see hitCount).
    int size() const { return int(marks_.size()); }
    bool isEmpty() const { return marks_.empty(); }
    // True when the layer holds at least one mark.
    explicit operator bool() const { return !marks_.empty(); }
    // Every hit the search found, held or only counted.
    uint64_t hitCount() const { return hits_ > marks_.size() ? hits_ : uint64_t(marks_.size()); }
    void setHitCount(uint64_t n) { hits_ = n; }
    // True when every hit is held as a mark.
    bool isComplete() const { return hits_ <= marks_.size(); }

    const std::vector<XRam>& marks() const { return marks_; }
    const XRam& at(int i) const { return marks_[size_t(i)]; }
    XRam& at(int i) { return marks_[size_t(i)]; }

    void clear();
    // Appends the marks of another layer (kept sorted; the binary flag is taken over).
    void add_ram_layer(const XRamLayer& other);
    void add_mark(const XRam& r);
    // Appends a mark known to lie after every mark already held (search results).
    void append_sorted(const XRam& r) { marks_.push_back(r); }
    void reserve(size_t n) { marks_.reserve(n); }
    // Takes over marks that are already sorted and do not overlap (search results).
    void assign_sorted(std::vector<XRam>&& marks) {
        marks_ = std::move(marks);
        hits_ = 0;
        active_ = -1;
    }
    bool contains_mark(uint32_t category) const;
    // The first mark of this category, or null.
    XRam* mark_by_category(uint32_t category);
    void remove_mark(uint32_t category);
    // Restores the position order after marks were moved in place.
    void adapt_layers_order();

    // Index range [first, last) of the marks that overlap the byte range [from, to).
    std::pair<int, int> marks_in_range(int64_t from, int64_t to) const;
    // Index of the mark that contains the byte position, or -1.
    int mark_at(int64_t bytePos) const;

    // ---- colour ---------------------------------------------------------------------
    void set_color_background(XRgb c) { color_ = c; }
    XRgb color_background() const { return color_; }

    // ---- active mark -----------------------------------------------------------------
    XRam* active_mark();
    const XRam* active_mark() const;
    int active_mark_index() const { return active_; }
    void set_active_mark_index(int i);
    void clear_active_mark() { active_ = -1; }
    // up: to the previous mark (towards the file's start), else to the next; without an
    // active mark, up starts at the last mark and down at the first. Stops at the ends.
    void move_active_mark_index(bool up);
    void set_active_mark_first();
    void set_active_mark_last();

    // ---- binary file ------------------------------------------------------------------
    // Whether the file looked binary (a NUL byte in its first 64 KiB).
    bool isBinary() const { return binary_; }
    void setBinary(bool b) { binary_ = b; }

    QString toString() const;

private:
    std::vector<XRam> marks_;
    uint64_t hits_ = 0;   // hits counted beyond the marks held (0: as many as marks)
    XRgb color_ = 0xff00ff00;
    int active_ = -1;
    bool binary_ = false;
};

} // namespace find
} // namespace tav
