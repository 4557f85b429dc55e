#pragma once
// Scope units of a text, found around a position rather than by splitting the
// whole text: a paragraph is a run of non-blank lines (blank: empty or only
// white space); a sentence ends at '.', '!' or '?' followed by white space or
// the end of its paragraph, or at the paragraph's end. Queries must come with
// non-decreasing positions; each byte is then looked at a bounded number of times.
#include <cstddef>
#include <cstdint>

namespace tav {
namespace find {

class XUnits {
public:
    enum Scope : uint32_t { FILE = 0, PARAGRAPH = 1, SENTENCE = 2 };

    struct Unit {
        size_t begin = 0;
        size_t end = 0;   // one past the last byte (line ends after the unit are not part of it)
    };

    XUnits(const char* data, size_t size, uint32_t scope) : d_(data), n_(size), scope_(scope) {}

    // The unit that holds position p (inside = true), or the first unit after p
    // when p lies between units (inside = false). False when no unit is left.
    bool unitAt(size_t p, Unit& u, bool& inside);

private:
    bool paragraphAt(size_t p, Unit& u, bool& inside);
    bool isEnd(size_t q, const Unit& para) const;

    const char* d_;
    size_t n_;
    uint32_t scope_;
    Unit para_;             // cached paragraph
    bool haveP_ = false;
    size_t sentFloor_ = 0;  // end of the last sentence handed out in para_
};

} // namespace find
} // namespace tav
