#include "base/dir/XIgnore.h"

#include "base/io/XFileIO.h"
#include "base/log/Logger.h"

#include <QFile>
#include <cstring>

namespace tav {

namespace {

// A '[...]' class at 'p' (just after '['); 'end' gets what follows the ']'. -1: not a class.
int matchClass(const char* p, const char* pe, unsigned char c, const char** end) {
    bool negate = false;
    if (p < pe && (*p == '!' || *p == '^')) {
        negate = true;
        ++p;
    }
    bool hit = false;
    bool first = true;
    while (p < pe && (*p != ']' || first)) {
        first = false;
        unsigned char lo = static_cast<unsigned char>(*p);
        if (lo == '\\' && p + 1 < pe) lo = static_cast<unsigned char>(*++p);
        ++p;
        if (p + 1 < pe && *p == '-' && p[1] != ']') {
            const char* q = p + 1;
            if (*q == '\\' && q + 1 < pe) ++q;
            const unsigned char hi = static_cast<unsigned char>(*q);
            p = q + 1;
            if (c >= lo && c <= hi) hit = true;
        } else if (c == lo) {
            hit = true;
        }
    }
    if (p >= pe) return -1;   // no closing ']'
    *end = p + 1;
    return hit != negate ? 1 : 0;
}

bool readSmall(const std::string& path, std::string& out) {
    QByteArray data;
    if (!readUserFile(QFile::decodeName(path.c_str()), 4 << 20, data)) return false;
    out.assign(data.constData(), size_t(data.size()));
    return true;
}

} // namespace

namespace {
// git's wildmatch: a star that cannot place the rest of the pattern tells its
// callers so (ABORT_ALL), and a single star stops at a '/' (ABORT_TO_STARSTAR),
// so no outer star retries what an inner one already failed: hostile patterns
// like "*a*a*a*a*b" stay polynomial.
enum { NOMATCH = 0, MATCH = 1, ABORT_ALL = -1, ABORT_TO_STARSTAR = -2 };

int wild(const char* p, const char* pe, const char* s, const char* se, const char* pstart) {
    for (; p < pe; ++p, ++s) {
        char c = *p;
        if (s >= se && c != '*') return ABORT_ALL;
        switch (c) {
        case '\\':
            if (p + 1 < pe) c = *++p;
            if (*s != c) return NOMATCH;
            break;
        case '?':
            if (*s == '/') return NOMATCH;
            break;
        case '*': {
            const char* prev = p - 1;
            bool matchSlash = false;
            const char* after = p + 1;
            if (after < pe && *after == '*') {
                while (after < pe && *after == '*') ++after;
                // "**" as a whole part: any number of folders.
                if ((prev < pstart || *prev == '/') && (after == pe || *after == '/')) {
                    // A rest that cannot match here nor at any later place (ABORT_ALL) cannot
                    // match behind a later folder either: giving up at once keeps a pattern of
                    // many "**/" from trying every way to share the folders among them.
                    if (after < pe) {
                        const int m = wild(after + 1, pe, s, se, pstart);
                        if (m == MATCH || m == ABORT_ALL) return m;
                    }
                    matchSlash = true;
                }
            }
            p = after;
            if (p == pe) {
                if (!matchSlash && std::memchr(s, '/', size_t(se - s))) return ABORT_TO_STARSTAR;
                return MATCH;
            }
            for (; s < se; ++s) {
                const int m = wild(p, pe, s, se, pstart);
                if (m != NOMATCH) {
                    if (!matchSlash || m != ABORT_TO_STARSTAR) return m;
                } else if (!matchSlash && *s == '/') {
                    return ABORT_TO_STARSTAR;
                }
            }
            return ABORT_ALL;
        }
        case '[': {
            const char* end = nullptr;
            const int m = *s == '/' ? 0 : matchClass(p + 1, pe, static_cast<unsigned char>(*s), &end);
            if (m == 0) return NOMATCH;
            if (m == 1) {
                p = end - 1;   // the loop steps past the ']'
                break;
            }
            if (*s != '[') return NOMATCH;   // an unclosed '[' is itself
            break;
        }
        default:
            if (*s != c) return NOMATCH;
        }
    }
    return s == se ? MATCH : NOMATCH;
}
} // namespace

bool XIgnoreRules::globMatch(const char* p, const char* pe, const char* s, const char* se) { return wild(p, pe, s, se, p) == MATCH; }

std::vector<XIgnoreRules::Pattern> XIgnoreRules::parse(const std::string& text) {
    std::vector<Pattern> out;
    size_t at = 0;
    while (at <= text.size()) {
        size_t nl = text.find('\n', at);
        if (nl == std::string::npos) nl = text.size();
        std::string line = text.substr(at, nl - at);
        at = nl + 1;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        // Trailing blanks go, unless the last one is escaped.
        while (!line.empty() && (line.back() == ' ' || line.back() == '\t')) {
            if (line.size() >= 2 && line[line.size() - 2] == '\\') {
                line.erase(line.size() - 2, 1);
                break;
            }
            line.pop_back();
        }
        if (line.empty() || line[0] == '#') continue;
        Pattern p;
        if (line[0] == '!') {
            p.negated = true;
            line.erase(0, 1);
        } else if (line[0] == '\\' && line.size() > 1 && (line[1] == '!' || line[1] == '#')) {
            line.erase(0, 1);
        }
        if (!line.empty() && line.back() == '/') {
            p.dirOnly = true;
            line.pop_back();
        }
        if (line.empty()) continue;
        if (line.find('/') != std::string::npos) p.anchored = true;
        if (line[0] == '/') line.erase(0, 1);
        if (line.empty()) continue;
        p.glob = line;
        out.push_back(std::move(p));
    }
    return out;
}

std::shared_ptr<const XIgnoreRules> XIgnoreRules::forFolder(const std::string& folder, std::shared_ptr<const XIgnoreRules> parent,
                                                            bool withInfoExclude) {
    std::vector<Pattern> patterns;
    std::string text;
    // Lowest first: the repository's exclude file, then .gitignore, then .ignore.
    if (withInfoExclude && readSmall(folder + "/.git/info/exclude", text)) patterns = parse(text);
    for (const char* file : {"/.gitignore", "/.ignore"}) {
        text.clear();
        if (!readSmall(folder + file, text)) continue;
        std::vector<Pattern> more = parse(text);
        patterns.insert(patterns.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
    }
    if (patterns.empty()) return parent;
    auto rules = std::make_shared<XIgnoreRules>();
    rules->parent_ = std::move(parent);
    rules->base_ = folder.empty() || folder.back() != '/' ? folder + '/' : folder;
    rules->patterns_ = std::move(patterns);
    return rules;
}

std::shared_ptr<const XIgnoreRules> XIgnoreRules::forSearchRoot(const std::string& folder) {
    // The repository's root: the nearest folder at or above with a ".git".
    std::vector<std::string> chain{folder};
    std::string repo;
    for (std::string f = folder;;) {
        if (QFile::exists(QFile::decodeName((f + "/.git").c_str()))) {
            repo = f;
            break;
        }
        const size_t slash = f.find_last_of('/');
        if (slash == std::string::npos || f.size() <= 1) break;
        f = slash == 0 ? std::string("/") : f.substr(0, slash);
        chain.push_back(f);
        if (f == "/") break;
    }
    std::shared_ptr<const XIgnoreRules> rules;
    if (repo.empty()) return forFolder(folder, nullptr);
    // From the repository's root down to the folder searched.
    while (!chain.empty() && chain.back() != repo) chain.pop_back();
    for (auto it = chain.rbegin(); it != chain.rend(); ++it) rules = forFolder(*it, rules, *it == repo);
    return rules;
}

bool XIgnoreRules::ignored(const std::string& path, const char* name, size_t nameLen, bool isDir) const {
    for (const XIgnoreRules* r = this; r; r = r->parent_.get()) {
        if (path.size() < r->base_.size() || path.compare(0, r->base_.size(), r->base_) != 0) continue;
        const char* rel = path.data() + r->base_.size();
        const char* relEnd = path.data() + path.size();
        for (auto it = r->patterns_.rbegin(); it != r->patterns_.rend(); ++it) {
            const Pattern& p = *it;
            if (p.dirOnly && !isDir) continue;
            const char* g = p.glob.data();
            const bool hit = p.anchored ? globMatch(g, g + p.glob.size(), rel, relEnd) : globMatch(g, g + p.glob.size(), name, name + nameLen);
            if (hit) return !p.negated;
        }
    }
    return false;
}

} // namespace tav
