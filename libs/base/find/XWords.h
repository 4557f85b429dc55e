#pragma once
// Words for "whole words" and NEAR: runs of Unicode letters, digits and '_' in
// UTF-8 bytes. An invalid byte is one character that is no letter.
#include <cstddef>
#include <cstdint>

namespace tav {
namespace find {
namespace words {

bool is_word_char(uint32_t cp);
// ASCII only, inline for the hot loops: letters, digits and '_'.
inline bool is_ascii_word(unsigned char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}
// The character at p: its length in bytes (1 for an invalid byte) and whether it is a word character.
size_t char_at(const char* d, size_t n, size_t p, bool& word);
// Whether the character that ends right before p (p > 0) is a word character.
bool word_before(const char* d, size_t p);
inline bool word_at(const char* d, size_t n, size_t p) {
    bool w = false;
    if (p < n) char_at(d, n, p, w);
    return w;
}

} // namespace words
} // namespace find
} // namespace tav
