#pragma once
// The results of a search written for other programs and people: CSV (RFC 4180),
// JSON (every hit with its line, column, offset, length and the line's text)
// and a self-contained HTML report. Used by "find --format" and the window's
// "Export...". Writers hand out their text in pieces, so a big result need
// not be held whole.
#include "base/extract/XExtract.h"
#include "base/find/XContentFilter.h"
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
    // What found the hits: marks every hit of the results that keep only their first ones.
    tav::find::XContentFilter filter;
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

// Places sorted marks in the lines of a text, counting lines forward only.
class HitPlacer {
public:
    HitPlacer(const char* data, size_t size);
    // False for a mark past the text's end.
    bool place(const tav::find::XRam& mark, HitLine& out);

private:
    const char* data_;
    size_t size_;
    int64_t line_ = 1;
    size_t scanned_ = 0, lineStart_ = 0;
};

// Every hit of a result placed in its line of the text it was found in (the
// file itself, or a document's or member's extracted text), in file order, one
// at a time. With a filter, a result that kept only its first marks is searched
// again for all of them; without, the marks it holds. False when the text could
// not be read (again).
bool forEachHitLine(const FileResult& r, bool documents, const tav::find::XContentFilter* filter,
                    const std::function<void(const HitLine&)>& each);

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
