#pragma once
// One mark in a file: a byte range and a category. Search hits, selections and
// the mouse-over marks of the text view are all XRams.
#include <cstdint>

namespace tav {
namespace find {

class XRam {
public:
    // Categories of the mouse-over marks; search hits use CATEGORY_HIT.
    enum Category : uint32_t {
        CATEGORY_NONE = 0,
        CATEGORY_HIT = 1,
        CATEGORY_CHAR = 20,
        CATEGORY_WORD = 30,
        CATEGORY_LINE = 40,
        CATEGORY_SENTENCE = 45,
        CATEGORY_PARAGRAPH = 50,
    };

    XRam() = default;
    XRam(int64_t pos, int64_t len, uint32_t category = CATEGORY_HIT) : pos_(pos), len_(clampLen(len)), category_(category) {}

    int64_t pos() const { return pos_; }          // byte position in the file
    int64_t len() const { return int64_t(len_); } // byte length
    int64_t end() const { return pos_ + int64_t(len_); }   // one past the last byte
    uint32_t category() const { return category_; }
    void setPos(int64_t p) { pos_ = p; }
    void setLen(int64_t l) { len_ = clampLen(l); }
    void setRange(int64_t p, int64_t l) { pos_ = p; len_ = clampLen(l); }
    void setCategory(uint32_t c) { category_ = c; }
    // Takes range and category of another mark.
    void setValue(const XRam& o) { pos_ = o.pos_; len_ = o.len_; }

    // A mark that points somewhere (an empty placeholder mark is not valid).
    bool isValid() const { return pos_ >= 0 && len_ > 0; }
    bool contains(int64_t bytePos) const { return bytePos >= pos_ && bytePos < end(); }

    bool is_category_char() const { return category_ == CATEGORY_CHAR; }
    bool is_category_word() const { return category_ == CATEGORY_WORD; }
    bool is_category_line() const { return category_ == CATEGORY_LINE; }
    bool is_category_sentence() const { return category_ == CATEGORY_SENTENCE; }
    bool is_category_paragraph() const { return category_ == CATEGORY_PARAGRAPH; }

    bool operator==(const XRam& o) const { return pos_ == o.pos_ && len_ == o.len_ && category_ == o.category_; }
    bool operator!=(const XRam& o) const { return !(*this == o); }
    bool operator<(const XRam& o) const { return pos_ < o.pos_ || (pos_ == o.pos_ && len_ < o.len_); }

private:
    // A search may hold millions of marks: 16 bytes each. A mark is never longer
    // than 4 GiB - 1 (longer ones are cut); a negative length means empty.
    static uint32_t clampLen(int64_t l) { return l <= 0 ? 0u : l >= int64_t(UINT32_MAX) ? UINT32_MAX : uint32_t(l); }

    int64_t pos_ = -1;
    uint32_t len_ = 0;
    uint32_t category_ = CATEGORY_NONE;
};

static_assert(sizeof(XRam) == 16, "marks are kept by the million");

} // namespace find
} // namespace tav
