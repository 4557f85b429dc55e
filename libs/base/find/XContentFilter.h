#pragma once
// The content part of a search: a simple expression or a regular expression,
// a scope (file, paragraph, sentence) and the compiled symbols.
//
// Simple expression (XQuery): terms, "phrases", -excluded, AND, OR or |,
// groups and NEAR/n. A unit matches when the expression is true for it; its
// marks are the occurrences that make it true (leftmost first; where two start
// at the same byte the longer term wins; marks never overlap).
// Regular expression: Perl syntax on UTF-8 text, ^ and $ at line ends, matched
// inside each unit; invalid bytes never stop a search.
// Both kinds ignore case (Unicode folding) unless "match case" is set; "whole
// words" keeps only matches with no letter, digit or '_' right before or after.
//
// The search scans bytes and derives units around the hits. Where Hyperscan is
// built in it finds the candidate places; PCRE2 defines the marks, so both give
// the same result. A filter is cheap to copy (the compiled symbols are shared);
// each thread must use its own copy, as a filter keeps per-search state.
#include "base/find/XRamLayer.h"

#include <QByteArray>
#include <QString>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace tav {

class XLineReaderDA;

namespace find {

struct XContentSymbols;
struct XContentScratch;

class XContentFilter {
public:
    enum Scope : uint32_t { SCOPE_FILE = 0, SCOPE_PARAGRAPH = 1, SCOPE_SENTENCE = 2 };
    // Which engine finds the places: the fastest available, or PCRE2 alone.
    enum Engine { ENGINE_AUTO = 0, ENGINE_PCRE2 = 1 };

    XContentFilter();
    ~XContentFilter();
    XContentFilter(const XContentFilter& o);
    XContentFilter& operator=(const XContentFilter& o);
    XContentFilter(XContentFilter&& o) noexcept;
    XContentFilter& operator=(XContentFilter&& o) noexcept;

    // Compiles the text; false (with errorText()) when it cannot be used. The
    // text is kept either way; a failed compile leaves the filter without symbols.
    // The switches count from the next createSymbols on.
    bool createSymbols(const QString& text, bool regularExpression, Engine engine = ENGINE_AUTO);
    bool isValid() const { return bool(symbols_); }
    const QString& text() const { return sText_; }
    bool isRegEx() const { return flagRegEx_; }
    bool isWholeWords() const { return flagWholeWords_; }
    bool isMatchCase() const { return flagMatchCase_; }
    void setWholeWords(bool on) { flagWholeWords_ = on; }
    void setMatchCase(bool on) { flagMatchCase_ = on; }
    // Why the text cannot be used, and where: a character position from 1 (0: the text as a whole).
    QString errorText() const { return sError_; }
    int errorPosition() const { return errorPos_; }
    // "character 7: unbalanced parenthesis", for the log and the command line.
    QString errorMessage() const;
    // "hyperscan" or "pcre2" (what finds the places), empty without symbols.
    QString engineName() const;
    static bool hasHyperscan();

    uint32_t scope() const { return scope_; }
    void setScope(uint32_t scope) { scope_ = scope <= SCOPE_SENTENCE ? scope : SCOPE_FILE; }
    static QString scope_to_string(uint32_t scope);
    QString scope_as_string() const { return scope_to_string(scope_); }

    // Short form ("'text' (Paragraph)") or every detail for the log.
    QString toString(bool verbose) const;

    // Resets the search position to the start of the file.
    void seekHome() { seekPos_ = 0; }
    // The next 'maxMarks' marks of the open file after the search position
    // (0: all of them); the position moves behind the last mark returned.
    // The layer is flagged binary when the reader saw a NUL in its probe.
    XRamLayer find(uint32_t maxMarks, XLineReaderDA& reader);
    // What a search worker watches while one file passes window by window: the bytes
    // of each window are added to 'bytesDone' (progress inside big files), and the
    // search of the file ends after the window where 'keepGoing' says no (a cancel
    // takes effect inside a 40 GB file, not after it); 'stopped' tells it did.
    struct WindowWatch {
        std::function<bool()> keepGoing;
        std::atomic<uint64_t>* bytesDone = nullptr;
        bool stopped = false;
    };
    XRamLayer find(uint32_t maxMarks, XLineReaderDA& reader, WindowWatch* watch);
    // The same for a text in memory.
    XRamLayer find(uint32_t maxMarks, const QByteArray& text);

    // A whole-file find (maxMarks 0, from the start) keeps at most this many marks
    // and only counts the hits after them (0: keeps all): a search's results hold
    // enough for the table and a first screen, not millions of marks.
    void setKeepMarks(uint32_t n) { keepMarks_ = n; }
    uint32_t keepMarks() const { return keepMarks_; }

    // Every mark of a file, in file order, handed over in pieces as the windows are
    // searched and kept by none: the same marks find gives. Returns their number.
    using MarkSink = std::function<void(const XRam* marks, size_t n)>;
    uint64_t forEachMark(XLineReaderDA& reader, const MarkSink& each, WindowWatch* watch = nullptr);
    uint64_t forEachMark(const QByteArray& text, const MarkSink& each);

private:
    XContentScratch& scratch();
    XRamLayer limit(std::vector<XRam>& marks, uint32_t maxMarks, bool binary);
    // The windows of the open file through the search; 'flush' sees the marks
    // collected after each window and at the end (and may take them away). Past
    // 'keep' marks (0: no limit) the search counts instead; returns that count.
    uint64_t searchReader(XLineReaderDA& reader, std::vector<XRam>& marks, WindowWatch* watch, size_t keep,
                          const std::function<void(std::vector<XRam>&)>& flush);

    QString sText_;
    bool flagRegEx_ = false;
    bool flagWholeWords_ = false;
    bool flagMatchCase_ = false;
    uint32_t scope_ = SCOPE_FILE;
    QString sError_;
    int errorPos_ = 0;
    std::shared_ptr<const XContentSymbols> symbols_;
    std::unique_ptr<XContentScratch> scratch_;
    int64_t seekPos_ = 0;
    uint32_t keepMarks_ = 0;
};

} // namespace find
} // namespace tav
