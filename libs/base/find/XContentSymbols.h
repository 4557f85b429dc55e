#pragma once
// Internals of XContentFilter: the compiled symbols (shared, read-only) and the
// per-copy scratch of the engines. Only the content-search sources include this.
#include "base/find/XCaseFold.h"
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
    ~XPcre() { if (code) pcre2_code_free(code); }
};

struct XTerm {
    QString text;
    bool negative = false;
    CaselessLiteral literal;
    std::string exact;   // the bytes the term matches, when it matches nothing else (a plain expression)
};

struct XContentSymbols {
    bool regEx = false;

    // Simple expression: positive terms first, in priority order (longer first),
    // then the excluded ones. Term i is group i+1 of 'alternation'.
    std::vector<XTerm> terms;
    size_t nPositive = 0;
    XPcre alternation;                  // the positive terms as one alternation
    std::vector<std::unique_ptr<XPcre>> single;   // every term alone (presence tests)

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
    std::vector<XReport> reports;
    std::vector<int64_t> sufMin;
    std::vector<XRam> marks;      // one file's marks before they go to its layer
    bool saturated = false;
    bool errorLogged = false;

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

// Compiles the user's text; false with an error text.
bool compile_symbols(const QString& text, bool regEx, bool allowHyperscan, XContentSymbols& sym, QString& error);
// Prepares the scratch for these symbols (once per filter copy).
bool prepare_scratch(const XContentSymbols& sym, XContentScratch& sc);

// Searches one window of a file; marks (absolute positions) are appended to 'out'.
class XContentSearch {
public:
    XContentSearch(const XContentSymbols& sym, XContentScratch& sc, uint32_t scope);
    void window(const char* d, size_t n, uint64_t base, std::vector<XRam>& out);
    // Ends the file: a file-scope simple expression decides here.
    void finish(std::vector<XRam>& out);

private:
    void simpleHyperscan(const char* d, size_t n, uint64_t base, std::vector<XRam>& out);
    void simplePcre(const char* d, size_t n, uint64_t base, std::vector<XRam>& out);
    void regex(const char* d, size_t n, uint64_t base, std::vector<XRam>& out);
    bool gateScan(const char* d, size_t n);
    int match(const XPcre& code, const char* d, size_t len, size_t start, size_t& ms, size_t& me, int& group);
    bool unitMatches(const std::vector<char>& present) const;

    const XContentSymbols& sym_;
    XContentScratch& sc_;
    uint32_t scope_;
    std::vector<char> presentFile_;   // file scope: terms seen so far
    std::vector<XRam> pendingFile_;   // file scope: marks waiting for the decision
};

} // namespace find
} // namespace tav
