#pragma once
// Caseless literals for the matching engines. A term becomes a byte-mode
// expression that both PCRE2 and Hyperscan read the same way: ASCII letters
// under (?i), every other character with case variants as an explicit choice of
// its UTF-8 forms (Unicode simple case folding: 'k' also matches the Kelvin
// sign, 'ß' matches 'ẞ', 'σ' matches 'Σ' and 'ς').
#include <QString>
#include <cstdint>
#include <string>
#include <vector>

namespace tav {
namespace find {

struct CaselessLiteral {
    std::string expression;   // byte-mode expression (no UTF flag needed)
    bool fixedLength = true;  // every match has 'byteLength' bytes
    size_t byteLength = 0;    // length of the term's own UTF-8 form
};

CaselessLiteral caseless_literal(const QString& term);

// The code points equal to 'cp' under simple case folding (cp included).
std::vector<uint32_t> case_variants(uint32_t cp);

// Escapes bytes so that they stand for themselves in an expression.
std::string escape_bytes(const std::string& bytes);

} // namespace find
} // namespace tav
