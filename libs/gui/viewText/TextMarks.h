#pragma once
// Small value types the text view hands to its listeners.
#include "base/find/XRam.h"

namespace tav {

// Where the text view shows line, column and byte position of the cursor.
enum LINE_INFO_POS { LINE_INFO_OFF = 0, LINE_INFO_TOP_RIGHT = 1, LINE_INFO_BOTTOM_RIGHT = 2 };

namespace viewText {

// The text units under the mouse pointer. A unit that does not exist there
// (no word under a blank, no sentence on an empty line) is an invalid mark.
struct MouseOverMark {
    find::XRam character{-1, 0, find::XRam::CATEGORY_CHAR};
    find::XRam word{-1, 0, find::XRam::CATEGORY_WORD};
    find::XRam line{-1, 0, find::XRam::CATEGORY_LINE};
    find::XRam sentence{-1, 0, find::XRam::CATEGORY_SENTENCE};
    find::XRam paragraph{-1, 0, find::XRam::CATEGORY_PARAGRAPH};

    // The mark of a mouse-over category (20, 30, 40, 45, 50), or null.
    const find::XRam* byCategory(uint32_t category) const;
    bool operator==(const MouseOverMark& o) const {
        return character == o.character && word == o.word && line == o.line && sentence == o.sentence &&
               paragraph == o.paragraph;
    }
    bool operator!=(const MouseOverMark& o) const { return !(*this == o); }
};

// The mark that became active: its layer, its index in the layer and the mark.
struct XActiveMark {
    int layerId = -1;
    int index = -1;
    find::XRam ram;
};

inline const find::XRam* MouseOverMark::byCategory(uint32_t category) const {
    switch (category) {
    case find::XRam::CATEGORY_CHAR: return &character;
    case find::XRam::CATEGORY_WORD: return &word;
    case find::XRam::CATEGORY_LINE: return &line;
    case find::XRam::CATEGORY_SENTENCE: return &sentence;
    case find::XRam::CATEGORY_PARAGRAPH: return &paragraph;
    default: return nullptr;
    }
}

} // namespace viewText
} // namespace tav
