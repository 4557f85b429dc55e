#pragma once
// Character and word statistics of a text file, and the HTML page that shows
// them. Widget-free: the "Stats" preview runs it on a pool thread and the
// headless "stat" command runs it directly.
#include <QFileInfo>
#include <QString>
#include <atomic>
#include <cstdint>
#include <vector>

namespace tavFinder {

struct StatRow {
    QString text;          // the character or the word
    uint32_t count = 0;
    double percentage = 0;
    QString bytes;         // a character's UTF-8 bytes as hex, "---" for a word
};

struct StatsOptions {
    bool words = false;             // false: characters
    unsigned wordLen = 2;           // words: shortest length counted
    QString delimiters;             // empty: the framework's full set
    bool filterDelimiter = true;    // characters: leave out the delimiter characters
    size_t lineLenMax = 104857600;  // longest piece of a line held at once
};

struct StatsResult {
    bool opened = false;
    bool stopped = false;
    uint64_t lines = 0;
    uint64_t symbols = 0;
    int64_t micros = 0;
    std::vector<StatRow> rows;      // every distinct entry, most frequent first

    size_t unique() const { return rows.size(); }
};

class StatsCounter {
public:
    // Counts until done or until 'running' turns false (then 'stopped', no rows).
    static StatsResult count(const std::atomic<bool>& running, const QFileInfo& fi, const StatsOptions& options);

    // count / symbols as "%2.3f " with a leading zero below ten: "05.500 ".
    static QString percentage(double p);
    // "read $ lines, found $ symbols, $ are unique ( in $ sec)\n"
    static QString summary(const StatsResult& r);

    // ---- the HTML page -------------------------------------------------------------------
    static QString page_head(const QString& background, const QString& text);
    static QString file_header(const QFileInfo& fi);
    static QString page_end();
    // At most maxRows rows (0: all); the bytes column only for characters.
    static QString table(const StatsResult& r, bool characters, unsigned maxRows);
    // The whole page: wordLen 1 counts characters, any other value words of at least that length.
    static QString statistics(const std::atomic<bool>& running, const QFileInfo& fi, unsigned maxRows, unsigned wordLen,
                              const QString& background, const QString& text);
    static QString stopped_page(const QFileInfo& fi, const QString& background, const QString& text);

    // Tab-separated rows for a terminal, with a header line.
    static QStringList text_table(const StatsResult& r, bool characters, unsigned maxRows);
};

} // namespace tavFinder
