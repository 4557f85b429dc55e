#pragma once
// Internals of XContentFilter: the compiled symbols (shared, read-only) and the
// per-copy scratch of the engines. Only the content-search sources include this.
#include "base/find/XCaseFold.h"
#include "base/find/XQuery.h"
#include "base/find/XRam.h"

#ifndef PCRE2_CODE_UNIT_WIDTH
#define PCRE2_CODE_UNIT_WIDTH 8
#endif
#include <pcre2.h>
#ifdef TF_HAVE_HYPERSCAN
#include <hs.h>
#endif

#include <QString>
#include <cstdint>
#include <string>
#include <memory>
#include <vector>

namespace tav {
namespace find {

struct XPcre {
    pcre2_code* code = nullptr;
    bool jit = false;
    XPcre() = default;
    XPcre(const XPcre&) = delete;
    XPcre& operator=(const XPcre&) = delete;
    ~XPcre() { free(); }
    void free() {
        if (code) pcre2_code_free(code);
        code = nullptr;
    }
};

struct XTerm {
    QString text;
    bool inNear = false;   // a side of a NEAR: its occurrences need word positions
    CaselessLiteral literal;
    std::string exact;   // the bytes the term matches, when it matches nothing else (a plain expression)
};

struct XContentSymbols {
    bool regEx = false;

    bool wholeWords = false;          // an occurrence has no letter, digit or '_' on either side
    bool matchCase = false;

    // Simple expression: the tree and its terms in priority order (longer
    // first). Term i is group i+1 of 'alternation'.
    XQuery query;
    std::vector<XTerm> terms;
    XPcre alternation;                  // all terms as one alternation
    std::vector<std::unique_ptr<XPcre>> single;   // every term alone (tests at one place)
    // The expression is one term: its occurrences are the marks, no unit decides.
    bool singleTerm() const { return !regEx && query.isSingleTerm(); }

    // Regular expression.
    XPcre regex;
    bool utf8Sensitive = false;   // meaning depends on UTF-8 decoding (., [^..], \W, (?i) ...)
    bool endSensitive = false;    // looks at the end of its subject ($, \z, look-ahead ...)

    uint32_t captures = 0;        // largest capture count of the codes above

#ifdef TF_HAVE_HYPERSCAN
    hs_database_t* hs = nullptr;
    bool hsSom = false;           // reports carry the leftmost start
    bool hsUtf8 = false;          // compiled for UTF-8 input (windows are checked first)
    ~XContentSymbols() { if (hs) hs_free_database(hs); }
#endif
    bool useHyperscan() const {
#ifdef TF_HAVE_HYPERSCAN
        return hs != nullptr;
#else
        return false;
#endif
    }
};

struct XOcc {
    int64_t s, e;
    uint32_t id;
    // With NEAR: words that start before s and before e, and whether s lies
    // inside a word (NEAR counts only the words wholly between two occurrences).
    int64_t wordsBeforeS = 0, wordsBeforeE = 0;
    bool insideWord = false;
};
struct XReport {
    int64_t s, e;   // s = -1 without start-of-match
};

struct XContentScratch {
    pcre2_match_data* md = nullptr;
    pcre2_match_context* mctx = nullptr;
    pcre2_jit_stack* jitStack = nullptr;
#ifdef TF_HAVE_HYPERSCAN
    hs_scratch_t* hsScratch = nullptr;
#endif
    std::vector<XOcc> occ;
    std::vector<XOcc> unitOcc;        // the occurrences inside one unit
    std::vector<size_t> wordPos;      // positions whose word counts NEAR needs
    std::vector<int64_t> wordCount;
    std::vector<XReport> reports;
    std::vector<int64_t> sufMin;
    std::vector<XRam> marks;      // one file's marks before they go to its layer
    bool saturated = false;
    bool errorLogged = false;

    // After a file with a flood of hits: lists grown past a few MiB give their room
    // back, so a worker does not keep for the rest of the search what one file needed.
    void trim() {
        const auto shrink = [](auto& v) {
            if (v.capacity() * sizeof(v[0]) > (size_t(4) << 20)) std::remove_reference_t<decltype(v)>().swap(v);
        };
        shrink(occ);
        shrink(unitOcc);
        shrink(wordPos);
        shrink(wordCount);
        shrink(reports);
        shrink(sufMin);
        shrink(marks);
    }

    XContentScratch() = default;
    XContentScratch(const XContentScratch&) = delete;
    XContentScratch& operator=(const XContentScratch&) = delete;
    ~XContentScratch() {
        if (md) pcre2_match_data_free(md);
        if (mctx) pcre2_match_context_free(mctx);
        if (jitStack) pcre2_jit_stack_free(jitStack);
#ifdef TF_HAVE_HYPERSCAN
        if (hsScratch) hs_free_scratch(hsScratch);
#endif
    }
};

// Compiles the user's text; false with an error text and the character (from 1,
// 0 when none) where the text goes wrong.
bool compile_symbols(const QString& text, bool regEx, bool allowHyperscan, XContentSymbols& sym, QString& error, int& errorPos);
// Prepares the scratch for these symbols (once per filter copy).
bool prepare_scratch(const XContentSymbols& sym, XContentScratch& sc);

// Searches one window of a file; marks (absolute positions) are appended to 'out'.
class XContentSearch {
public:
    // 'wholeFile': the file comes in one window (word positions need not be
    // counted past the last occurrence).
    XContentSearch(const XContentSymbols& sym, XContentScratch& sc, uint32_t scope, bool wholeFile = true);
    void window(const char* d, size_t n, uint64_t base, std::vector<XRam>& out);
    // Ends the file: a file-scope simple expression decides here.
    void finish(std::vector<XRam>& out);
    // Once 'out' holds 'n' marks, further marks of one term or a regular expression
    // are only counted (0: all are added); units decided by the expression tree
    // still add theirs, for the caller to cut back.
    void setKeep(size_t n) { keep_ = n; }
    uint64_t counted() const { return counted_; }

private:
    // Adds a mark, or counts it once 'out' is full.
    void put(std::vector<XRam>& out, int64_t pos, int64_t len) {
        if (keep_ && out.size() >= keep_) ++counted_;
        else out.emplace_back(pos, len, XRam::CATEGORY_HIT);
    }
    void simple(const char* d, size_t n, uint64_t base, std::vector<XRam>& out);
    bool singleTermFast(const char* d, size_t n, uint64_t base, std::vector<XRam>& out);
    void occurrencesHyperscan(const char* d, size_t n);
    void occurrencesPcre(const char* d, size_t n);
    void keepWholeWords(const char* d, size_t n);
    void countWords(const char* d, size_t n);
    void regex(const char* d, size_t n, uint64_t base, std::vector<XRam>& out);
    bool gateScan(const char* d, size_t n);
    int match(const XPcre& code, const char* d, size_t len, size_t start, size_t& ms, size_t& me, int& group,
              uint32_t options = 0);

    const XContentSymbols& sym_;
    XContentScratch& sc_;
    uint32_t scope_;
    bool wholeFile_;
    int64_t wordsBefore_ = 0;          // file scope: words in the windows before
    int64_t lastEnd_ = 0;              // one term: end of the last mark (marks never overlap)
    std::vector<XOcc> pendingFile_;    // file scope: occurrences waiting for the end of the file
    size_t keep_ = 0;
    uint64_t counted_ = 0;
};

// Decides one unit: the occurrences [first, last) of its terms (sorted by start,
// then term) give its marks, or none when the expression is false for it.
class XUnitEval {
public:
    explicit XUnitEval(const XQuery& q) : q_(q) {}
    void evaluate(const XOcc* first, const XOcc* last, int64_t base, std::vector<XRam>& out);

private:
    bool value(uint32_t node);
    void contribute(uint32_t node);
    const std::vector<uint32_t>& occurrences(uint32_t node);
    const std::vector<uint32_t>& nearPairs(uint32_t node);

    const XQuery& q_;
    const XOcc* occ_ = nullptr;
    size_t n_ = 0;
    std::vector<char> present_;
    std::vector<char> keepTerm_;
    std::vector<char> keepOcc_;
    std::vector<std::vector<uint32_t>> lists_;   // per node: its occurrences (where asked for)
    std::vector<char> listDone_;
};

} // namespace find
} // namespace tav
