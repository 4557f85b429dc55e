#pragma once
// Text units around a byte position: character, word, line, sentence and
// paragraph, as the mouse-over marks and double clicks use them. Searches stay
// within a few kilobytes (lines: a few hundred) so a pointer over a file
// without blank lines never scans the whole file.
#include "gui/viewText/LineIndex.h"
#include "gui/viewText/TextMarks.h"

namespace tav {
namespace viewText {

// Start of the character (UTF-8 sequence or single invalid byte) holding 'pos'.
int64_t charStartAt(const TextSource& src, int64_t pos);
// Start of the character before 'pos' (0 at the start).
int64_t prevCharStart(const TextSource& src, int64_t pos);

find::XRam unitChar(const LineIndex& idx, int64_t pos);
find::XRam unitWord(const LineIndex& idx, int64_t pos);
find::XRam unitLine(const LineIndex& idx, int64_t pos);
find::XRam unitSentence(const LineIndex& idx, int64_t pos);
find::XRam unitParagraph(const LineIndex& idx, int64_t pos);
MouseOverMark unitsAt(const LineIndex& idx, int64_t pos);

} // namespace viewText
} // namespace tav
