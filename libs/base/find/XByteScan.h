#pragma once
// Vectorised loops over raw bytes used by the reader and the content search.
#include <cstddef>
#include <cstdint>

namespace tav {
namespace bytescan {

// Number of bytes equal to 'c' (newline counting).
size_t count_byte(const char* p, size_t n, char c);
// True when the bytes are well-formed UTF-8 (no overlong forms, surrogates or values above U+10FFFF).
bool is_valid_utf8(const char* p, size_t n);
// Position of the first occurrence of needle[0, k) in p[from, n), or n when none.
size_t find_bytes(const char* p, size_t n, const char* needle, size_t k, size_t from);
// True when every byte is below 0x80.
bool is_ascii(const char* p, size_t n);

} // namespace bytescan
} // namespace tav
