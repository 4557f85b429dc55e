#pragma once
// Searchable text from files that keep their words in another form: compressed
// files, archives (each member on its own, archives inside archives up to a
// depth), PDFs, office documents, e-books and UTF-16 text. A format is known by
// its first bytes; a name is only a hint. Everything stays in memory: a member
// is streamed into a buffer, never written to disk. Bad input (corrupt,
// encrypted, bombs, odd member names, too deep) is skipped or cut with a log
// line and marks the file incomplete; it never stops the caller.
#include <QByteArray>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <functional>
#include <vector>

struct archive;

namespace tav {
namespace extract {

enum class Family {
    None,         // searched as its own bytes
    Compressed,   // one compressed stream (gzip, bzip2, xz, lzma, zstd, ...)
    Archive,      // members (tar, 7z, cpio, rar)
    Zip,          // an archive or, by its member names, a document
    Pdf,
    Utf16,        // with a byte order mark
};

// Enough leading bytes for every signature (a tar header's magic sits at 257).
constexpr size_t kSniffBytes = 512;
Family sniff(const char* data, size_t size, const QString& nameHint = QString());
QString familyName(Family f);

struct Limits {
    uint64_t maxOutput = uint64_t(1) << 30;    // bytes of text from one member or file
    uint64_t ratioFrom = uint64_t(100) << 20;  // past this much output a member may not
    uint64_t maxRatio = 100;                   // exceed this ratio to its compressed bytes
    int maxDepth = 4;                          // archives inside archives
};

// One searchable text: a file's own or one member's.
struct Part {
    QString member;                   // empty: the file itself; nested: "a.tar.gz!/b/c.log"
    QByteArray text;                  // UTF-8 (members: their bytes as they are)
    std::vector<int64_t> pageStarts;  // PDF: where each page's text begins
    // The page (from 1) that holds the byte position; 0 without pages.
    int pageAt(int64_t pos) const;
};

// "archive!/member" as results show it.
QString memberPath(const QString& container, const QString& member);

class XExtractor {
public:
    // Receives each part; false ends the extraction.
    using Sink = std::function<bool(Part&)>;

    explicit XExtractor(const Limits& limits = Limits());
    XExtractor(const XExtractor&) = delete;
    XExtractor& operator=(const XExtractor&) = delete;

    const Limits& limits() const { return limits_; }
    void setLimits(const Limits& l) { limits_ = l; }
    // Asked between blocks; false cancels (the parts so far were delivered).
    void setKeepGoing(std::function<bool()> f) { keepGoing_ = std::move(f); }

    // The parts of a file whose first bytes are 'head' (at least kSniffBytes, or
    // the whole file when shorter). False: no format of ours, search the bytes.
    bool extractFile(const QString& path, const char* head, size_t headSize, const Sink& sink);
    // The same, reading the first bytes itself.
    bool extractFile(const QString& path, const Sink& sink);
    // Bytes in memory.
    bool extractData(const QByteArray& data, const QString& nameHint, const Sink& sink);
    // The one part of a file with this member path (empty: the file's own text).
    bool partOf(const QString& path, const QString& member, Part& out);

    // What the last extraction could not read (each also went to the log).
    bool isComplete() const { return problems_.isEmpty(); }
    const QStringList& problems() const { return problems_; }
    bool wasCancelled() const { return cancelled_; }

private:
    void begin(const QString& path);
    bool goOn();
    void problem(const QString& where, const QString& what);
    bool deliver(Part& p);
    // Text of bytes at 'depth' (their container's depth), under the member path.
    void processData(const QByteArray& data, const QString& member, const QString& nameHint, int depth);
    // 'open' makes a reader of the bytes (rawOnly: as one stream, no archive format).
    void processArchive(const std::function<archive*(bool rawOnly)>& open, const QString& prefix, int depth, Family f);
    // The members' texts; the number of entries seen.
    int walkArchive(archive* a, const QString& prefix, int depth);
    void processZip(const std::function<archive*()>& open, const QString& prefix, int depth);
    void processPdf(const QString& path, const QByteArray* data, const QString& member);
    void processUtf16(const QByteArray& data, const QString& member);
    // Reads the current entry's data within the limits; false when it had to stop.
    bool readEntry(archive* a, const QString& name, int64_t sizeHint, QByteArray& out);

    Limits limits_;
    std::function<bool()> keepGoing_;
    Sink sink_;
    QString path_;
    QStringList problems_;
    bool cancelled_ = false;
    bool stopped_ = false;   // the sink said no more
};

} // namespace extract
} // namespace tav
