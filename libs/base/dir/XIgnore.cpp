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

bool XIgnoreRules::globMatch(const char* p, const char* pe, const char* s, const char* se) {
    while (p < pe) {
        const char c = *p;
        if (c == '*') {
            const bool dbl = p + 1 < pe && p[1] == '*';
            if (dbl) {
                const char* after = p + 2;
                // "**" alone in a part: any number of folders.
                if (after == pe) return true;
                if (*after == '/') {
                    for (const char* t = s;; ++t) {
                        if ((t == s || t[-1] == '/') && globMatch(after + 1, pe, t, se)) return true;
                        if (t >= se) return false;
                    }
                }
                p = after - 1;   // "**" inside a part is a single '*'
            }
            ++p;
            // '*' takes any run without '/'.
            for (const char* t = s;; ++t) {
                if (globMatch(p, pe, t, se)) return true;
                if (t >= se || *t == '/') return false;
            }
        }
        if (s >= se) return false;
        if (c == '?') {
            if (*s == '/') return false;
            ++p;
            ++s;
            continue;
        }
        if (c == '[') {
            const char* end = nullptr;
            const int m = *s == '/' ? 0 : matchClass(p + 1, pe, static_cast<unsigned char>(*s), &end);
            if (m == 0) return false;
            if (m == 1) {
                p = end;
                ++s;
                continue;
            }
            // An unclosed '[' is itself.
        }
        char lit = c;
        if (c == '\\' && p + 1 < pe) lit = *++p;
        if (*s != lit) return false;
        ++p;
        ++s;
    }
    return s == se;
}

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
