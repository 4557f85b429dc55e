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
// True when every byte is below 0x80.
bool is_ascii(const char* p, size_t n);

} // namespace bytescan
} // namespace tav
