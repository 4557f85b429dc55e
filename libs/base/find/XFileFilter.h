#pragma once
// The file part of a search filter: name patterns, excluded patterns, a time
// and a size condition and a set of text-file extensions.
//
// Patterns are comma-separated wildcards ('*' any run, '?' one character)
// matched against the whole file name, ignoring case. A file passes when any
// include pattern matches (no include pattern: every file) and no excluded
// pattern does; excluded patterns also match folder names, and the scanner does
// not enter such folders. Bounds are inclusive; an upper time bound that falls
// on local midnight covers that whole day, one on a whole second that whole second.
#include <QFileInfo>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

namespace tav {

class XFileFilter {
public:
    enum Area : uint32_t {
        NONE = 0,            // no condition
        LESS_EQUAL = 1,      // at most / before the first value
        EQUAL = 2,           // equal to the first value (a date: that day)
        BETWEEN = 3,         // between the first and the second value
        GREATER_EQUAL = 4,   // at least / after the first value
        YEAR = 5,            // the calendar year of the first date (turned into BETWEEN by the caller)
    };
    static QString area_to_String(uint32_t area);

    // Comma-separated wildcards; isNot selects the excluded list. An empty text clears it.
    void setPattern(const QString& text, bool isNot);
    QString pattern(bool isNot) const { return isNot ? sNotPattern_ : sPattern_; }
    bool hasPattern(bool isNot) const { return !(isNot ? notPatterns_ : patterns_).empty(); }

    // Time condition: milliseconds since the epoch.
    uint32_t timeArea = NONE;
    int64_t time1 = 0;
    int64_t time2 = 0;
    // Size condition: bytes.
    uint32_t sizeArea = NONE;
    uint64_t size1 = 0;
    uint64_t size2 = 0;
    // Accepted extensions of text files (lower case, no dot); empty: any file.
    std::unordered_set<QString> textFileExtensions;

    bool hasTimeCondition() const { return timeArea != NONE && timeArea != YEAR; }
    bool hasSizeCondition() const { return sizeArea != NONE && sizeArea != YEAR; }
    // True when a test needs the size or time of a file (a stat call).
    bool needsStat() const { return hasTimeCondition() || hasSizeCondition(); }
    bool isEmpty() const { return !hasPattern(false) && !hasPattern(true) && !needsStat() && textFileExtensions.empty(); }

    // Effective inclusive bounds after the whole-day and whole-second rules.
    struct Bounds {
        bool time = false;
        int64_t timeLo = 0, timeHi = 0;
        bool size = false;
        uint64_t sizeLo = 0, sizeHi = 0;
        bool contains(uint64_t sizeBytes, int64_t mtimeMs) const;
    };
    Bounds bounds() const;

    // The filter turned into a form for fast tests on raw (UTF-8) names. Build it
    // once per scan; it is read-only and may be used by several threads.
    class Prepared {
    public:
        // Include patterns, excluded patterns and the extension set.
        bool matchFileName(const char* name, size_t len) const;
        // A folder whose name matches an excluded pattern is not entered.
        bool isExcludedFolder(const char* name, size_t len) const;
        bool matchStat(uint64_t size, int64_t mtimeMs) const { return bounds_.contains(size, mtimeMs); }
        bool needsStat() const { return needsStat_; }
        bool hasNamePatterns() const { return !include_.empty() || !exclude_.empty(); }

    private:
        friend class XFileFilter;
        std::vector<std::string> include_, exclude_;   // case-folded UTF-8
        std::unordered_set<std::string> ext_;
        Bounds bounds_;
        bool needsStat_ = false;
    };
    Prepared prepare() const;

    // Whole test of one file (stats it when a bound needs it; convenience for single files).
    bool match(const QFileInfo& fi) const;

    // Short form for a label (verbose false) or every field for the log.
    QString toString(bool verbose) const;

    // Wildcard match of case-folded UTF-8 texts; '?' takes one UTF-8 character.
    static bool wildcardMatch(const char* pat, size_t plen, const char* s, size_t slen);
    // Case folding of a UTF-8 name (ASCII fast path).
    static void foldName(const char* name, size_t len, std::string& out);

private:
    QString sPattern_, sNotPattern_;
    std::vector<std::string> patterns_, notPatterns_;   // case-folded UTF-8
};

} // namespace tav
