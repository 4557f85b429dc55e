// Turning the user's text into compiled symbols: parsing the simple language,
// checking regular expressions, and compiling for PCRE2 and Hyperscan.
#include "base/find/XContentSymbols.h"
#include "base/log/Logger.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace tav {
namespace find {

namespace {

// A literal that matches only its own bytes.
CaselessLiteral exact_literal(const QString& t) {
    CaselessLiteral r;
    const std::string bytes = t.toUtf8().toStdString();
    r.expression = escape_bytes(bytes);
    r.byteLength = bytes.size();
    return r;
}

void markNearTerms(XContentSymbols& sym, uint32_t node, bool inNear) {
    const XQueryNode& n = sym.query.nodes[node];
    if (n.kind == XQueryNode::TERM) {
        if (inNear) sym.terms[n.term].inNear = true;
        return;
    }
    for (uint32_t k : n.kids) markNearTerms(sym, k, inNear || n.kind == XQueryNode::NEAR);
}

bool compilePcre(const std::string& pattern, uint32_t options, XPcre& out, QString& error, size_t* errorOffset = nullptr) {
    int code = 0;
    PCRE2_SIZE offset = 0;
    out.code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern.data()), pattern.size(), options, &code, &offset, nullptr);
    if (!out.code) {
        PCRE2_UCHAR buf[256];
        pcre2_get_error_message(code, buf, sizeof buf);
        error = QString::fromUtf8(reinterpret_cast<const char*>(buf));
        if (errorOffset) *errorOffset = offset;
        return false;
    }
    out.jit = pcre2_jit_compile(out.code, PCRE2_JIT_COMPLETE) == 0;
    return true;
}

uint32_t captureCount(const XPcre& p) {
    uint32_t n = 0;
    if (p.code) pcre2_pattern_info(p.code, PCRE2_INFO_CAPTURECOUNT, &n);
    return n;
}

// The terms of the expression tree as literals for the engines.
bool parseTerms(const QString& text, XContentSymbols& sym, QString& error, int& errorPos) {
    if (!sym.query.parse(text, sym.matchCase)) {
        error = sym.query.error();
        errorPos = sym.query.errorPosition();
        return false;
    }
    for (const QString& t : sym.query.terms) {
        XTerm term;
        term.text = t;
        term.literal = sym.matchCase ? exact_literal(t) : caseless_literal(t);
        // Case matters and words do not: the bytes themselves, found by the plain byte scan.
        if (sym.matchCase && !sym.wholeWords && !t.isEmpty()) term.exact = t.toUtf8().toStdString();
        sym.terms.push_back(std::move(term));
    }
    markNearTerms(sym, sym.query.root, false);
    return true;
}

// Conservative: true unless the pattern surely reads the same byte by byte as
// decoded as UTF-8 (only ASCII literals, positive ASCII classes and escapes).
bool isUtf8Sensitive(const QByteArray& p) {
    static const char* safeEscapes = "wdsbBAzZGtnrfeaQE";
    bool inClass = false;
    for (int i = 0; i < p.size(); ++i) {
        const unsigned char c = static_cast<unsigned char>(p[i]);
        if (c >= 0x80) return true;
        if (c == '\\') {
            if (i + 1 >= p.size()) return true;
            const char e = p[i + 1];
            if (std::isalnum(static_cast<unsigned char>(e)) && !std::strchr(safeEscapes, e)) return true;
            ++i;
            continue;
        }
        if (inClass) {
            if (c == ']') inClass = false;
            if (c == '[' && i + 2 < p.size() && p[i + 1] == ':' && p[i + 2] == '^') return true;   // [:^alpha:]
            continue;
        }
        if (c == '[') {
            if (i + 1 < p.size() && p[i + 1] == '^') return true;
            inClass = true;
            if (i + 1 < p.size() && p[i + 1] == ']') ++i;   // "[]...]": the first ']' is a member
            continue;
        }
        if (c == '.') return true;
        if (c == '(' && i + 1 < p.size()) {
            if (p[i + 1] == '*') return true;   // (*UTF), (*UCP) ...
            if (p[i + 1] == '?') {
                for (int k = i + 2; k < p.size() && p[k] != ':' && p[k] != ')'; ++k)
                    if (p[k] == 'i') return true;
            }
        }
    }
    return false;
}

// True when a match may depend on where its subject ends (a unit's end is not
// the end of the text around it).
bool isEndSensitive(const QByteArray& p) {
    bool inClass = false;
    for (int i = 0; i < p.size(); ++i) {
        const char c = p[i];
        if (c == '\\') {
            if (i + 1 < p.size() && std::strchr("zZG", p[i + 1])) return true;
            ++i;
            continue;
        }
        if (inClass) {
            if (c == ']') inClass = false;
            continue;
        }
        if (c == '[') {
            inClass = true;
            if (i + 1 < p.size() && p[i + 1] == '^') ++i;
            if (i + 1 < p.size() && p[i + 1] == ']') ++i;
            continue;
        }
        if (c == '$') return true;
        if (c == '(' && i + 2 < p.size() && p[i + 1] == '?' && (p[i + 2] == '=' || p[i + 2] == '!' || p[i + 2] == '('))
            return true;
        if (c == '(' && i + 1 < p.size() && p[i + 1] == '*') return true;
    }
    return false;
}

#ifdef TF_HAVE_HYPERSCAN
hs_database_t* hsCompile(const QByteArray& pattern, unsigned flags) {
    hs_database_t* db = nullptr;
    hs_compile_error_t* err = nullptr;
    if (hs_compile(pattern.constData(), flags, HS_MODE_BLOCK, nullptr, &db, &err) != HS_SUCCESS) {
        if (err) hs_free_compile_error(err);
        return nullptr;
    }
    return db;
}

void compileHyperscanRegex(const QByteArray& pattern, XContentSymbols& sym) {
    if (pattern.contains('\0')) return;
    sym.hsUtf8 = sym.utf8Sensitive;
    const unsigned base = HS_FLAG_MULTILINE | (sym.hsUtf8 ? HS_FLAG_UTF8 : 0u) | (sym.matchCase ? 0u : unsigned(HS_FLAG_CASELESS));
    if ((sym.hs = hsCompile(pattern, base | HS_FLAG_SOM_LEFTMOST))) {
        sym.hsSom = true;
        return;
    }
    if ((sym.hs = hsCompile(pattern, base))) return;
    // Back-references, look-around ...: a pattern that matches at least everything.
    sym.hs = hsCompile(pattern, base | HS_FLAG_PREFILTER);
}

void compileHyperscanTerms(XContentSymbols& sym) {
    std::vector<const char*> exprs;
    std::vector<unsigned> flags, ids;
    for (size_t i = 0; i < sym.terms.size(); ++i) {
        exprs.push_back(sym.terms[i].literal.expression.c_str());
        flags.push_back(sym.terms[i].literal.fixedLength ? 0u : unsigned(HS_FLAG_SOM_LEFTMOST));
        ids.push_back(unsigned(i));
    }
    hs_compile_error_t* err = nullptr;
    if (hs_compile_multi(exprs.data(), flags.data(), ids.data(), unsigned(exprs.size()), HS_MODE_BLOCK, nullptr, &sym.hs,
                         &err) != HS_SUCCESS) {
        if (err) {
            log(tav::LOG_ERROR, "XContentFilter::createSymbols, hyperscan: $", QString::fromUtf8(err->message));
            hs_free_compile_error(err);
        }
        sym.hs = nullptr;
    }
}
#endif

// The terms' alternation and single expressions, and their Hyperscan database.
bool compileTerms(XContentSymbols& sym, bool allowHyperscan, QString& error) {
    std::string alt = "(?:";
    for (size_t i = 0; i < sym.terms.size(); ++i) {
        if (i) alt += '|';
        alt += '(' + sym.terms[i].literal.expression + ')';
    }
    alt += ')';
    if (!compilePcre(alt, 0, sym.alternation, error)) return false;
    for (const XTerm& t : sym.terms) {
        auto p = std::make_unique<XPcre>();
        if (!compilePcre(t.literal.expression, 0, *p, error)) return false;
        sym.single.push_back(std::move(p));
    }
    sym.captures = uint32_t(sym.terms.size());
#ifdef TF_HAVE_HYPERSCAN
    if (allowHyperscan) compileHyperscanTerms(sym);
#else
    Q_UNUSED(allowHyperscan);
#endif
    return true;
}

// A pattern without any special character matches exactly its own bytes.
bool isPlainLiteral(const QByteArray& p) {
    if (p.isEmpty()) return false;
    for (char c : p)
        if (std::strchr("\\^$.|?*+()[]{}#", c) || c == '\0' || c == '\n' || c == '\r') return false;
    return true;
}
}

bool compile_symbols(const QString& text, bool regEx, bool allowHyperscan, XContentSymbols& sym, QString& error, int& errorPos) {
    sym.regEx = regEx;
    errorPos = 0;
    if (regEx) {
        if (text.isEmpty()) {
            error = QStringLiteral("empty expression");
            return false;
        }
        const QByteArray pattern = text.toUtf8();
        const uint32_t options = PCRE2_UTF | PCRE2_MATCH_INVALID_UTF | PCRE2_MULTILINE | (sym.matchCase ? 0u : PCRE2_CASELESS);
        size_t offset = 0;
        if (!compilePcre(pattern.toStdString(), options, sym.regex, error, &offset)) {
            errorPos = int(QString::fromUtf8(pattern.left(int(offset))).toUcs4().size()) + 1;
            return false;
        }
        if (isPlainLiteral(pattern)) {
            // Searched like one term: every occurrence is a mark without a
            // second engine fixing them.
            XTerm term;
            term.text = text;
            if (sym.matchCase) {
                term.literal = exact_literal(text);
                if (!sym.wholeWords) term.exact = pattern.toStdString();
            } else {
                term.literal = caseless_literal(text);
            }
            sym.terms.push_back(std::move(term));
            sym.query.terms = {text};
            sym.query.nodes = {XQueryNode()};
            sym.query.root = 0;
            sym.regEx = false;
            return compileTerms(sym, allowHyperscan, error);
        }
        if (sym.wholeWords) {
            // Not after and not before a letter, digit or '_' (Unicode, as the
            // simple expressions count words). Leading (*VERB)s stay in front.
            int verbs = 0;
            while (pattern.mid(verbs).startsWith("(*")) {
                const int close = pattern.indexOf(')', verbs);
                if (close < 0) break;
                verbs = close + 1;
            }
            const QByteArray wrapped = pattern.left(verbs) + "(?<![\\p{L}\\p{N}_])(?:" + pattern.mid(verbs) +
                                       ")(?![\\p{L}\\p{N}_])";
            sym.regex.free();
            if (!compilePcre(wrapped.toStdString(), options, sym.regex, error, &offset)) {
                errorPos = 1;
                return false;
            }
        }
        sym.captures = captureCount(sym.regex);
        sym.utf8Sensitive = isUtf8Sensitive(pattern) || !sym.matchCase || sym.wholeWords;
        sym.endSensitive = isEndSensitive(pattern);
        // Hyperscan folds case more narrowly than PCRE2 beyond ASCII ('[ъ]' would miss the tall
        // hard sign PCRE2 takes for it): a caseless pattern with such characters, where its gate
        // would hide places PCRE2 matches, is searched by PCRE2 alone.
        const bool wideFold = !sym.matchCase && std::any_of(pattern.begin(), pattern.end(), [](char c) { return (c & 0x80) != 0; });
#ifdef TF_HAVE_HYPERSCAN
        if (allowHyperscan && !wideFold) compileHyperscanRegex(pattern, sym);
#else
        Q_UNUSED(allowHyperscan);
        Q_UNUSED(wideFold);
#endif
        return true;
    }
    if (!parseTerms(text, sym, error, errorPos)) return false;
    return compileTerms(sym, allowHyperscan, error);
}

bool prepare_scratch(const XContentSymbols& sym, XContentScratch& sc) {
    sc.md = pcre2_match_data_create(sym.captures + 1, nullptr);
    sc.mctx = pcre2_match_context_create(nullptr);
    sc.jitStack = pcre2_jit_stack_create(32 * 1024, 8 * 1024 * 1024, nullptr);
    if (!sc.md || !sc.mctx) return false;
    if (sc.jitStack) pcre2_jit_stack_assign(sc.mctx, nullptr, sc.jitStack);
#ifdef TF_HAVE_HYPERSCAN
    if (sym.hs && hs_alloc_scratch(sym.hs, &sc.hsScratch) != HS_SUCCESS) return false;
#endif
    return true;
}

} // namespace find
} // namespace tav
