#pragma once
// The results of a search written for other programs and people: CSV (RFC 4180),
// JSON (every hit with its line, column, offset, length and the line's text)
// and a self-contained HTML report. Used by "find --format" and the window's
// "Export...". Writers hand out their text in pieces, so a big result need
// not be held whole.
#include "base/extract/XExtract.h"
#include "src/find/FileResult.h"

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <functional>
#include <vector>

namespace tavFinder {
namespace exporting {

struct Summary {
    QString folder;
    QString query;
    uint64_t filesSearched = 0;
    uint64_t bytes = 0;
    uint64_t filesMatched = 0;
    uint64_t hits = 0;
    double seconds = 0;
    bool cancelled = false;
    uint64_t stoppedAfter = 0;   // the "stop after N files" that ended the search (0: none)
};

// One hit with its place in lines (both from 1, the column in bytes).
struct HitLine {
    int64_t line = 0;
    int64_t column = 0;
    int64_t offset = 0;
    int64_t length = 0;
    QByteArray text;   // the hit's line without its end, at most kLineTextBytes
};
constexpr int kLineTextBytes = 500;

// The hits of a result placed in lines of the text they were found in: the
// file itself, or a document's or member's extracted text when 'documents'.
std::vector<HitLine> hitLines(const FileResult& r, bool documents);
// The same for text in memory (sorted marks).
std::vector<HitLine> hitLines(const char* data, size_t size, const std::vector<tav::find::XRam>& marks);

using Out = std::function<void(const QByteArray& piece)>;
QByteArray csvField(const QString& s);
QByteArray jsonString(const QString& s);
QString dateOf(const FileResult& r);       // ISO 8601 with the offset from UTC
int64_t sizeOf(const FileResult& r);

void writeCsv(const std::vector<const FileResult*>& rows, const Out& out);
void writeJson(const std::vector<const FileResult*>& rows, const Summary& s, bool documents, const Out& out);
void writeHtml(const std::vector<const FileResult*>& rows, const Summary& s, bool documents, const Out& out);

} // namespace exporting
} // namespace tavFinder
