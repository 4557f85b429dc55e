#pragma once
// Number, size and time formatting shared by every window and log line.
#include <QString>
#include <cstdint>

namespace tav {

// User-facing words of the engine (units, filter summaries) in the interface's
// language: the GUI installs its catalogue lookup; headless commands stay English.
using TextTranslator = QString (*)(const QString& english);
void setTextTranslator(TextTranslator translator);
QString trText(const char* english);

// 1234567 -> "1,234,567"
QString format1000(uint64_t v);
QString format1000(int64_t v);
inline QString format1000(uint32_t v) { return format1000(uint64_t(v)); }
inline QString format1000(int v) { return format1000(int64_t(v)); }
inline QString format1000(unsigned long long v) { return format1000(uint64_t(v)); }
inline QString format1000(long long v) { return format1000(int64_t(v)); }

// 1024-based: "0 bytes", "999 bytes", "1.50 KB", "12.3 MB", "1.02 GB", "2.00 TB"
QString formatBytes(uint64_t bytes);

// Microseconds as seconds with three decimals: 1234567 -> "1.235"
QString formatMicrosecond_as_Sec(int64_t micro);

// Monotonic clock in microseconds.
int64_t getMicroseconds();

// "pure number as bytes, or number kb, mb or gb": case-insensitive, 1024-based,
// blanks allowed, decimals allowed ("1.5 mb"); unparsable text gives 0.
unsigned long get_bytes_number(const QString& text);

// Numbered variant of a text: "name" -> "name001", "name001" -> "name002"
// (width = number of digits). Always differs from its input.
QString get_string_number(const QString& text, int width);

// n blanks
QString createSpace(int n);

// Number of hardware threads; 'fallback' when it cannot be determined.
unsigned count_hardware_threads(unsigned fallback);

// Mersenne-Twister random source; deterministic with a seed, else seeded by the system.
class MersenneTwister {
public:
    MersenneTwister(bool deterministic, uint32_t seed);
    ~MersenneTwister();
    uint32_t next();
    uint32_t next(uint32_t below);        // 0 .. below-1
    // Printable letters and digits.
    QString randString(int length);

private:
    struct Impl;
    Impl* d;
};

} // namespace tav
