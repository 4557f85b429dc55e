#include "base/find/XCaseFold.h"

#include <QChar>
#include <QVector>
#include <algorithm>
#include <unordered_map>

namespace tav {
namespace find {

namespace {
// Code points of the Basic Multilingual Plane grouped by their folded form.
// Built once; folding never leaves the BMP for BMP characters.
const std::unordered_map<uint32_t, std::vector<uint32_t>>& bmpInverse() {
    static const std::unordered_map<uint32_t, std::vector<uint32_t>> inv = [] {
        std::unordered_map<uint32_t, std::vector<uint32_t>> m;
        for (uint32_t c = 0; c < 0x10000; ++c) {
            if (c >= 0xD800 && c <= 0xDFFF) continue;
            const uint32_t f = QChar::toCaseFolded(c);
            if (f != c) m[f].push_back(c);
        }
        return m;
    }();
    return inv;
}

void appendUtf8(uint32_t cp, std::string& out) {
    if (cp < 0x80) {
        out += char(cp);
    } else if (cp < 0x800) {
        out += char(0xC0 | (cp >> 6));
        out += char(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += char(0xE0 | (cp >> 12));
        out += char(0x80 | ((cp >> 6) & 0x3F));
        out += char(0x80 | (cp & 0x3F));
    } else {
        out += char(0xF0 | (cp >> 18));
        out += char(0x80 | ((cp >> 12) & 0x3F));
        out += char(0x80 | ((cp >> 6) & 0x3F));
        out += char(0x80 | (cp & 0x3F));
    }
}

bool isAsciiLetter(uint32_t c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
}

std::vector<uint32_t> case_variants(uint32_t cp) {
    std::vector<uint32_t> out;
    if (cp < 0x10000) {
        const uint32_t f = QChar::toCaseFolded(cp);
        out.push_back(f);
        auto it = bmpInverse().find(f);
        if (it != bmpInverse().end()) out.insert(out.end(), it->second.begin(), it->second.end());
    } else {
        out = {cp, QChar::toLower(cp), QChar::toUpper(cp), QChar::toCaseFolded(cp)};
    }
    if (std::find(out.begin(), out.end(), cp) == out.end()) out.push_back(cp);
    std::sort(out.begin(), out.end());
    out.erase(std::unique(out.begin(), out.end()), out.end());
    return out;
}

std::string escape_bytes(const std::string& bytes) {
    static const char* hex = "0123456789ABCDEF";
    std::string out;
    out.reserve(bytes.size() * 2);
    for (unsigned char c : bytes) {
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_') {
            out += char(c);
        } else {
            out += "\\x";
            out += hex[c >> 4];
            out += hex[c & 15];
        }
    }
    return out;
}

CaselessLiteral caseless_literal(const QString& term) {
    CaselessLiteral r;
    r.expression = "(?i)";
    for (uint32_t cp : term.toUcs4()) {
        std::string own;
        appendUtf8(cp, own);
        r.byteLength += own.size();
        const std::vector<uint32_t> v = case_variants(cp);
        bool asciiPair = isAsciiLetter(cp) && v.size() == 2 && isAsciiLetter(v[0]) && isAsciiLetter(v[1]);
        if (v.size() == 1 || asciiPair) {
            r.expression += escape_bytes(own);   // (?i) covers the ASCII pair
            continue;
        }
        r.expression += "(?:";
        for (size_t i = 0; i < v.size(); ++i) {
            std::string b;
            appendUtf8(v[i], b);
            if (b.size() != own.size()) r.fixedLength = false;
            if (i) r.expression += '|';
            r.expression += escape_bytes(b);
        }
        r.expression += ')';
    }
    return r;
}

} // namespace find
} // namespace tav
