#pragma once
// Every mark of one result. A search keeps only a result's first marks (its
// memory grows with the files found, not with their hits); where a result is
// shown or written out whole, its file (or its member's extracted text) is
// searched again with the same filter, which gives the same marks.
#include "base/find/XContentFilter.h"
#include "src/find/FileResult.h"

#include <atomic>

namespace tavFinder {

// Hands every mark of the result to 'each', in file order and in pieces; kept
// marks when the result holds all of them. False when the file (or member) could
// not be read again or 'keepGoing' turned false; 'each' may have heard some marks.
// 'text': the result's extracted text when the caller has it already (not extracted again).
bool forEachMark(const FileResult& r, const tav::find::XContentFilter& filter, const tav::find::XContentFilter::MarkSink& each,
                 const std::atomic<bool>* cancel = nullptr, const QByteArray* text = nullptr);

// The result's layer with every mark (the result's own when it is complete).
tav::find::XRamLayer allMarks(const FileResult& r, const tav::find::XContentFilter& filter, const std::atomic<bool>* cancel = nullptr);

} // namespace tavFinder
