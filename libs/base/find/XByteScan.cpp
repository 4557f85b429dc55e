#include "base/find/XByteScan.h"

#include <algorithm>
#include <cstring>

#if defined(__x86_64__) || defined(__SSE2__)
#include <immintrin.h>
#define TF_X86 1
#endif

namespace tav {
namespace bytescan {

namespace {
#ifdef TF_X86
size_t count_sse2(const char* p, size_t n, char c) {
    const __m128i needle = _mm_set1_epi8(c);
    size_t count = 0, i = 0;
    while (n - i >= 16) {
        __m128i acc = _mm_setzero_si128();
        // At most 255 rounds before the byte counters could overflow.
        const size_t rounds = std::min<size_t>((n - i) / 16, 255);
        for (size_t r = 0; r < rounds; ++r, i += 16) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
            acc = _mm_sub_epi8(acc, _mm_cmpeq_epi8(v, needle));
        }
        const __m128i sad = _mm_sad_epu8(acc, _mm_setzero_si128());
        count += size_t(_mm_cvtsi128_si64(sad)) + size_t(_mm_extract_epi16(sad, 4));
    }
    for (; i < n; ++i) count += p[i] == c;
    return count;
}

__attribute__((target("avx2"))) size_t count_avx2(const char* p, size_t n, char c) {
    const __m256i needle = _mm256_set1_epi8(c);
    size_t count = 0, i = 0;
    while (n - i >= 32) {
        __m256i acc = _mm256_setzero_si256();
        const size_t rounds = std::min<size_t>((n - i) / 32, 255);
        for (size_t r = 0; r < rounds; ++r, i += 32) {
            const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + i));
            acc = _mm256_sub_epi8(acc, _mm256_cmpeq_epi8(v, needle));
        }
        const __m256i sad = _mm256_sad_epu8(acc, _mm256_setzero_si256());
        count += size_t(_mm256_extract_epi64(sad, 0)) + size_t(_mm256_extract_epi64(sad, 1)) +
                 size_t(_mm256_extract_epi64(sad, 2)) + size_t(_mm256_extract_epi64(sad, 3));
    }
    return count + count_sse2(p + i, n - i, c);
}

const bool kAvx2 = __builtin_cpu_supports("avx2");

// Candidates where both the needle's first and last byte sit at their distance,
// 32 places at a time; each is then compared whole. Needles of 2 bytes and more.
__attribute__((target("avx2"))) size_t find_avx2(const char* p, size_t n, const char* nd, size_t k, size_t i) {
    const __m256i first = _mm256_set1_epi8(nd[0]);
    const __m256i last = _mm256_set1_epi8(nd[k - 1]);
    for (; i + k - 1 + 32 <= n; i += 32) {
        const __m256i bf = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + i));
        const __m256i bl = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + i + k - 1));
        uint32_t m = uint32_t(_mm256_movemask_epi8(_mm256_and_si256(_mm256_cmpeq_epi8(bf, first), _mm256_cmpeq_epi8(bl, last))));
        while (m) {
            const size_t j = i + size_t(__builtin_ctz(m));
            if (std::memcmp(p + j + 1, nd + 1, k - 2) == 0) return j;
            m &= m - 1;
        }
    }
    for (; i + k <= n; ++i)
        if (p[i] == nd[0] && std::memcmp(p + i, nd, k) == 0) return i;
    return n;
}

size_t ascii_prefix(const char* p, size_t n) {
    size_t i = 0;
    for (; i + 16 <= n; i += 16) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
        if (_mm_movemask_epi8(v) != 0) break;
    }
    while (i < n && static_cast<unsigned char>(p[i]) < 0x80) ++i;
    return i;
}
#else
size_t ascii_prefix(const char* p, size_t n) {
    size_t i = 0;
    while (i < n && static_cast<unsigned char>(p[i]) < 0x80) ++i;
    return i;
}
#endif
}

size_t count_byte(const char* p, size_t n, char c) {
#ifdef TF_X86
    return kAvx2 ? count_avx2(p, n, c) : count_sse2(p, n, c);
#else
    size_t count = 0;
    for (size_t i = 0; i < n; ++i) count += p[i] == c;
    return count;
#endif
}

size_t find_bytes(const char* p, size_t n, const char* needle, size_t k, size_t from) {
    if (k == 0 || from >= n || n - from < k) return n;
    if (k == 1) {
        const void* hit = std::memchr(p + from, needle[0], n - from);
        return hit ? size_t(static_cast<const char*>(hit) - p) : n;
    }
#ifdef TF_X86
    if (kAvx2) return find_avx2(p, n, needle, k, from);
#endif
    const void* hit = memmem(p + from, n - from, needle, k);
    return hit ? size_t(static_cast<const char*>(hit) - p) : n;
}

bool is_ascii(const char* p, size_t n) { return ascii_prefix(p, n) == n; }

bool is_valid_utf8(const char* s, size_t n) {
    const auto* p = reinterpret_cast<const unsigned char*>(s);
    size_t i = 0;
    while (i < n) {
        i += ascii_prefix(s + i, n - i);
        if (i >= n) break;
        const unsigned char c = p[i];
        size_t len;
        uint32_t cp;
        if (c >= 0xC2 && c <= 0xDF) { len = 2; cp = c & 0x1F; }
        else if (c >= 0xE0 && c <= 0xEF) { len = 3; cp = c & 0x0F; }
        else if (c >= 0xF0 && c <= 0xF4) { len = 4; cp = c & 0x07; }
        else return false;
        if (i + len > n) return false;
        for (size_t k = 1; k < len; ++k) {
            if ((p[i + k] & 0xC0) != 0x80) return false;
            cp = (cp << 6) | (p[i + k] & 0x3F);
        }
        if ((len == 3 && (cp < 0x800 || (cp >= 0xD800 && cp <= 0xDFFF))) || (len == 4 && (cp < 0x10000 || cp > 0x10FFFF)))
            return false;
        i += len;
    }
    return true;
}

} // namespace bytescan
} // namespace tav
