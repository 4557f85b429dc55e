#include "src/find/ResultExport.h"

#include "base/util/Format.h"

#include "base/io/XPaths.h"
#include "src/find/FileMarks.h"

#include <QDateTime>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tavFinder {
namespace exporting {

namespace {

QString nameOf(const QString& path) { return path.mid(path.lastIndexOf(QLatin1Char('/')) + 1); }
QString folderOf(const QString& path) {
    const int slash = path.lastIndexOf(QLatin1Char('/'));
    return slash <= 0 ? QStringLiteral("/") : path.left(slash);
}

QByteArray number(int64_t v) { return QByteArray::number(qlonglong(v)); }
QByteArray number(uint64_t v) { return QByteArray::number(qulonglong(v)); }

QByteArray html(const QString& s) { return s.toHtmlEscaped().toUtf8(); }

// The line's text cut at a whole UTF-8 character.
QByteArray lineText(const char* start, size_t len) {
    if (len > size_t(kLineTextBytes)) {
        len = size_t(kLineTextBytes);
        while (len > 0 && (uint8_t(start[len]) & 0xC0) == 0x80) --len;
    }
    if (len > 0 && start[len - 1] == '\r') --len;
    return QByteArray(start, int(len));
}

} // namespace

HitPlacer::HitPlacer(const char* data, size_t size) : data_(data), size_(size) {}

bool HitPlacer::place(const tav::find::XRam& m, HitLine& h) {
    const size_t pos = size_t(std::max<int64_t>(0, m.pos()));
    if (pos > size_) return false;
    // Lines are counted forward only: marks come sorted.
    while (scanned_ < pos) {
        const void* nl = std::memchr(data_ + scanned_, '\n', pos - scanned_);
        if (!nl) {
            scanned_ = pos;
            break;
        }
        scanned_ = size_t(static_cast<const char*>(nl) - data_) + 1;
        ++line_;
        lineStart_ = scanned_;
    }
    const void* end = pos < size_ ? std::memchr(data_ + pos, '\n', size_ - pos) : nullptr;
    const size_t lineEnd = end ? size_t(static_cast<const char*>(end) - data_) : size_;
    h.line = line_;
    h.column = int64_t(pos - lineStart_) + 1;
    h.offset = int64_t(pos);
    h.length = int64_t(m.len());
    h.text = lineText(data_ + lineStart_, lineEnd - lineStart_);
    return true;
}

namespace {
// A file mapped for reading, opened by its own bytes (names need not be UTF-8).
struct MappedFile {
    const char* data = nullptr;
    size_t size = 0;
    explicit MappedFile(const QString& path) {
        const int fd = tav::openPath(tav::encodePath(path).constData(), O_RDONLY | O_CLOEXEC);
        if (fd < 0) return;
        struct stat st {};
        if (::fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && st.st_size > 0) {
            void* p = ::mmap(nullptr, size_t(st.st_size), PROT_READ, MAP_PRIVATE, fd, 0);
            if (p != MAP_FAILED) {
                data = static_cast<const char*>(p);
                size = size_t(st.st_size);
            }
        }
        ::close(fd);
    }
    ~MappedFile() {
        if (data) ::munmap(const_cast<char*>(data), size);
    }
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;
};
} // namespace

bool forEachHitLine(const FileResult& r, bool documents, const tav::find::XContentFilter* filter, const std::function<void(const HitLine&)>& each) {
    if (r.layer.hitCount() == 0) return true;
    const QString path = r.fileInfo.absoluteFilePath();
    HitLine h;
    // Marks come in pieces: kept ones, or the text searched again for all of them.
    auto placeAll = [&](const char* data, size_t size, const QByteArray* text) {
        HitPlacer placer(data, size);
        const auto take = [&](const tav::find::XRam* m, size_t n) {
            for (size_t i = 0; i < n; ++i)
                if (placer.place(m[i], h)) each(h);
        };
        if (!filter) {
            take(r.layer.marks().data(), r.layer.marks().size());
            return true;
        }
        return forEachMark(r, *filter, take, nullptr, text);
    };
    if (documents || r.extracted) {
        // Hits of a member or document lie in its extracted text.
        tav::extract::XExtractor ex;
        tav::extract::Part part;
        if (ex.partOf(path, r.member, part)) return placeAll(part.text.constData(), size_t(part.text.size()), &part.text);
        if (r.isMember()) return false;
    }
    const MappedFile f(path);
    if (!f.data) return false;
    return placeAll(f.data, f.size, nullptr);
}

QByteArray csvField(const QString& s) {
    QByteArray b = s.toUtf8();
    if (!b.contains(',') && !b.contains('"') && !b.contains('\n') && !b.contains('\r')) return b;
    b.replace('"', "\"\"");
    return '"' + b + '"';
}

QByteArray jsonString(const QString& s) {
    // UTF-8 as it is; quotes, backslashes and control characters escaped.
    const QByteArray utf8 = s.toUtf8();
    QByteArray out;
    out.reserve(utf8.size() + 2);
    out += '"';
    for (const char ch : utf8) {
        switch (ch) {
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\n': out += "\\n"; break;
        case '\r': out += "\\r"; break;
        case '\t': out += "\\t"; break;
        default:
            if (uint8_t(ch) < 0x20) out += QStringLiteral("\\u%1").arg(uint8_t(ch), 4, 16, QLatin1Char('0')).toLatin1();
            else out += ch;
        }
    }
    out += '"';
    return out;
}

QString dateOf(const FileResult& r) {
    const QDateTime t = r.fileInfo.lastModified();
    return t.toOffsetFromUtc(t.offsetFromUtc()).toString(Qt::ISODate);
}

int64_t sizeOf(const FileResult& r) { return r.size >= 0 ? r.size : int64_t(r.fileInfo.size()); }

void writeCsv(const std::vector<const FileResult*>& rows, const Out& out) {
    QByteArray b = "path,name,folder,size,date,hits\r\n";
    for (const FileResult* r : rows) {
        const QString path = r->displayPath();
        b += csvField(path) + ',' + csvField(nameOf(path)) + ',' + csvField(folderOf(path)) + ',' + number(sizeOf(*r)) + ',' +
             csvField(dateOf(*r)) + ',' + number(r->hits()) + "\r\n";
        if (b.size() > (1 << 20)) {
            out(b);
            b.clear();
        }
    }
    out(b);
}

void writeJson(const std::vector<const FileResult*>& rows, const Summary& s, bool documents, const Out& out) {
    QByteArray b = "{\"files\":[";
    bool firstFile = true;
    for (const FileResult* r : rows) {
        b += firstFile ? "\n" : ",\n";
        firstFile = false;
        b += "{\"path\":" + jsonString(r->displayPath()) + ",\"size\":" + number(sizeOf(*r)) + ",\"date\":" + jsonString(dateOf(*r)) +
             ",\"hits\":[";
        bool firstHit = true;
        forEachHitLine(*r, documents, &s.filter, [&](const HitLine& h) {
            if (!firstHit) b += ',';
            firstHit = false;
            b += "{\"line\":" + number(h.line) + ",\"column\":" + number(h.column) + ",\"offset\":" + number(h.offset) +
                 ",\"length\":" + number(h.length) + ",\"text\":" + jsonString(QString::fromUtf8(h.text)) + '}';
            if (b.size() > (1 << 20)) {
                out(b);
                b.clear();
            }
        });
        b += "]}";
    }
    b += "\n],\"summary\":{\"folder\":" + jsonString(s.folder) + ",\"query\":" + jsonString(s.query) +
         ",\"filesSearched\":" + number(s.filesSearched) + ",\"bytes\":" + number(s.bytes) + ",\"filesMatched\":" +
         number(s.filesMatched) + ",\"hits\":" + number(s.hits) + ",\"seconds\":" + QByteArray::number(s.seconds, 'f', 3) +
         ",\"cancelled\":" + (s.cancelled ? "true" : "false") + ",\"stoppedAfter\":" + number(s.stoppedAfter) + "}}\n";
    out(b);
}

void writeHtml(const std::vector<const FileResult*>& rows, const Summary& s, bool documents, const Out& out) {
    QByteArray b =
        "<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>Talvo Finder: " + html(s.query) +
        "</title>\n<style>body{font-family:sans-serif;margin:1.5em}table{border-collapse:collapse}"
        "td,th{border:1px solid #bbb;padding:2px 6px;text-align:left}td.n{text-align:right}"
        "pre{background:#f4f4f4;padding:4px;white-space:pre-wrap}mark{background:#7fe07f}</style></head><body>\n";
    b += "<h1>" + html(s.query) + "</h1>\n<table>\n";
    const auto param = [&b](const char* name, const QString& value) {
        b += QByteArray("<tr><th>") + name + "</th><td>" + html(value) + "</td></tr>\n";
    };
    param("Folder", s.folder);
    param("Search", s.query);
    param("Files searched", tav::format1000(s.filesSearched));
    param("Bytes", tav::formatBytes(s.bytes));
    param("Files with hits", tav::format1000(s.filesMatched));
    param("Hits", tav::format1000(s.hits));
    param("Seconds", QString::number(s.seconds, 'f', 3));
    if (s.cancelled) param("Cancelled", QStringLiteral("yes"));
    if (s.stoppedAfter) param("Stopped after", tav::format1000(s.stoppedAfter) + QStringLiteral(" files"));
    param("Written", QDateTime::currentDateTime().toString(Qt::ISODate));
    b += "</table>\n<h2>Files</h2>\n<table>\n<tr><th>Path</th><th>Size</th><th>Date</th><th>Hits</th></tr>\n";
    for (const FileResult* r : rows)
        b += "<tr><td>" + html(r->displayPath()) + "</td><td class=\"n\">" + tav::format1000(sizeOf(*r)).toUtf8() + "</td><td>" +
             html(dateOf(*r)) + "</td><td class=\"n\">" + number(r->hits()) + "</td></tr>\n";
    b += "</table>\n<h2>Hits</h2>\n";
    for (const FileResult* r : rows) {
        b += "<h3>" + html(r->displayPath()) + "</h3>\n<pre>";
        forEachHitLine(*r, documents, &s.filter, [&](const HitLine& h) {
            // The hit itself marked inside its (possibly cut) line.
            const int from = int(std::min<int64_t>(h.column - 1, h.text.size()));
            const int to = int(std::min<int64_t>(h.column - 1 + h.length, h.text.size()));
            b += number(h.line) + ": " + html(QString::fromUtf8(h.text.left(from))) + "<mark>" +
                 html(QString::fromUtf8(h.text.mid(from, to - from))) + "</mark>" + html(QString::fromUtf8(h.text.mid(to))) + '\n';
            if (b.size() > (1 << 20)) {
                out(b);
                b.clear();
            }
        });
        b += "</pre>\n";
    }
    b += "</body></html>\n";
    out(b);
}

} // namespace exporting
} // namespace tavFinder
