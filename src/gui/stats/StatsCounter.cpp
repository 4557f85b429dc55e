#include "src/gui/stats/StatsCounter.h"
#include "gui/tools/XTools.h"

#include "base/io/XLineReaderDA.h"
#include "base/log/Logger.h"
#include "base/text/XTokenizer.h"
#include "base/util/Format.h"

#include <QDateTime>
#include <QHash>
#include <QStringList>
#include <algorithm>
#include <cstring>
#include <memory>

namespace tavFinder {

namespace {

constexpr unsigned kAllRows = 2000000000u;

// One lookup per UTF-16 unit instead of a search in the delimiter text.
struct DelimiterSet {
    explicit DelimiterSet(const QString& delims) : is(new bool[65536]()) {
        for (QChar c : delims) is[c.unicode()] = true;
    }
    std::unique_ptr<bool[]> is;
};

constexpr ptrdiff_t kPiece = 1 << 20;

template <typename F>
bool forEachLine(const std::atomic<bool>& running, tav::XLineReaderDA& reader, F onLine) {
    tav::XLineReaderDA::Window w;
    for (bool more = reader.firstWindow(tav::XLineReaderDA::CUT_LINE, w); more;
         more = reader.nextWindow(tav::XLineReaderDA::CUT_LINE, w)) {
        const char* p = w.data;
        const char* end = w.data + w.size;
        while (p < end) {
            if (!running.load()) return false;
            const char* nl = static_cast<const char*>(std::memchr(p, '\n', size_t(end - p)));
            const char* le = nl ? nl : end;
            // A long line goes in pieces of 1 MiB (cut between characters): as one string
            // a 100 MiB line took several times its size in memory.
            while (le - p > kPiece) {
                const char* cut = p + kPiece;
                while (cut > p && (static_cast<unsigned char>(*cut) & 0xC0) == 0x80) --cut;
                if (cut == p) cut = p + kPiece;
                onLine(QString::fromUtf8(p, int(cut - p)));
                p = cut;
                if (!running.load()) return false;
            }
            onLine(QString::fromUtf8(p, int(le - p)));
            p = nl ? nl + 1 : end;
        }
        if (w.last) break;
    }
    return running.load();
}

QString cell(const QString& style, const QString& value) {
    return style.isEmpty() ? tav::fill("<td>$</td>", value) : tav::fill("<td style='$'>$</td>", style, value);
}

QString pairRow(const QString& label, const QString& value) {
    return QStringLiteral("<tr>") + QStringLiteral("<td style=\"padding-right:20px;padding-left:20px;\">") + label +
           QStringLiteral("</td>") + QStringLiteral("<td>") + value + QStringLiteral("</td>") + QStringLiteral("</tr>");
}

} // namespace

StatsResult StatsCounter::count(const std::atomic<bool>& running, const QFileInfo& fi, const StatsOptions& o) {
    StatsResult r;
    tav::XLineReaderDA reader;
    reader.setWindowSize(o.lineLenMax);
    if (!reader.openFile(fi, 65536, true)) return r;
    r.opened = true;
    const int64_t start = tav::getMicroseconds();
    const QString delims = o.delimiters.isEmpty() ? tav::XDelimiter::sDelimAll : o.delimiters;

    if (!o.words) {
        std::vector<uint64_t> counts(65536, 0);
        DelimiterSet skip(o.filterDelimiter ? delims : QString());
        const bool ok = forEachLine(running, reader, [&](const QString& line) {
            for (QChar c : line) {
                if (skip.is[c.unicode()]) continue;
                ++counts[c.unicode()];
                ++r.symbols;
            }
        });
        if (!ok) {
            r.stopped = true;
            return r;
        }
        for (uint32_t code = 0; code < counts.size(); ++code) {
            if (!counts[code]) continue;
            StatRow row;
            row.text = QString(QChar(char16_t(code)));
            row.count = uint32_t(std::min<uint64_t>(counts[code], UINT32_MAX));
            row.bytes = tav::ArrayTools::qByteArray_to_hex_string(tav::XLineInfo::get_UTF8_Bytes(QChar(char16_t(code))), 50, 5, 0);
            r.rows.push_back(row);
        }
    } else {
        QHash<QString, uint64_t> counts;
        const int minLen = int(o.wordLen);
        const bool ok = forEachLine(running, reader, [&](const QString& line) {
            tav::XTokenizer tok(line, delims, false, false);
            for (const QStringView& w : tok) {
                if (w.size() < minLen) continue;
                ++counts[w.toString()];
                ++r.symbols;
            }
        });
        if (!ok) {
            r.stopped = true;
            return r;
        }
        r.rows.reserve(size_t(counts.size()));
        for (auto it = counts.constBegin(); it != counts.constEnd(); ++it) {
            StatRow row;
            row.text = it.key();
            row.count = uint32_t(std::min<uint64_t>(it.value(), UINT32_MAX));
            row.bytes = QStringLiteral("---");
            r.rows.push_back(row);
        }
    }
    // Most frequent first; equal counts in ascending character or word order.
    std::sort(r.rows.begin(), r.rows.end(), [](const StatRow& a, const StatRow& b) {
        return a.count != b.count ? a.count > b.count : a.text < b.text;
    });
    for (StatRow& row : r.rows) row.percentage = r.symbols ? double(row.count) / double(r.symbols) * 100.0 : 0.0;
    r.lines = reader.countLines();
    r.micros = tav::getMicroseconds() - start;
    return r;
}

QString StatsCounter::percentage(double p) {
    QString s = QString::asprintf("%2.3f ", p);
    if (s.indexOf(QLatin1Char('.')) == 1) s.prepend(QLatin1Char('0'));
    return s;
}

QString StatsCounter::summary(const StatsResult& r) {
    return tav::fill(tav::xt("read $ lines, found $ symbols, $ are unique ( in $ sec)") + QLatin1Char('\n'), tav::format1000(r.lines),
                     tav::format1000(r.symbols), tav::format1000(uint64_t(r.unique())), tav::formatMicrosecond_as_Sec(r.micros));
}

QString StatsCounter::page_head(const QString& background, const QString& text) {
    return QStringLiteral("<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 4.0 Transitional//EN\">\n") + QStringLiteral("<html>\n") +
           QStringLiteral("<head>\n") +
           QStringLiteral("<meta http-equiv=\"content-type\" content=\"text/html; charset=utf-8\"/>") +
           tav::fill("<title>$</title>", tav::xt("Statistics")) + QStringLiteral("</head>\n") +
           tav::fill("<body style=\"background-color:$;color:$;\">\n", background, text);
}

QString StatsCounter::file_header(const QFileInfo& fi) {
    const QDateTime t = fi.lastModified();
    const uint64_t size = uint64_t(std::max<qint64>(0, fi.size()));
    QString s = tav::fill("<h2>\"$\"</h2>", fi.absoluteFilePath().toHtmlEscaped());
    s += QStringLiteral("<h3>");
    s += QStringLiteral("<tableResult>");
    s += pairRow(tav::xt("Timestamp:"),
                 t.toString(QStringLiteral("yyyy/MM/dd")) + QStringLiteral(" - ") + t.toString(QStringLiteral("hh:mm")));
    s += pairRow(tav::xt("Size:"), tav::format1000(size) + QLatin1Char(' ') + tav::xt("bytes") + QStringLiteral("  ~") + tav::formatBytes(size));
    s += QStringLiteral("</tableResult>");
    s += QStringLiteral("</h3>");
    return s;
}

QString StatsCounter::page_end() { return QStringLiteral("</body>\n") + QStringLiteral("</html>\n"); }

QString StatsCounter::table(const StatsResult& r, bool characters, unsigned maxRows) {
    const size_t n = std::min<size_t>(r.rows.size(), maxRows ? maxRows : kAllRows);
    const QString style = QStringLiteral("text-align:center;");
    QString s = QStringLiteral("<tableResult width = '100%' style='border: 1px solid black'  >");
    s += QStringLiteral("<tr>");
    QStringList head{tav::xt("Number"), characters ? tav::xt("Char") : tav::xt("Word"), tav::xt("Count"), tav::xt("Percentage")};
    if (characters) head << tav::xt("Bytes");
    for (const QString& h : head) s += tav::fill("<th>$</th>", h);
    s += QStringLiteral("</tr>");
    for (size_t i = 0; i < n; ++i) {
        const StatRow& row = r.rows[i];
        s += QStringLiteral("<tr>");
        s += cell(style, QString::number(i + 1));
        s += cell(style, row.text.toHtmlEscaped());
        s += cell(style, QString::number(row.count));
        s += cell(style, percentage(row.percentage));
        if (characters) s += cell(style, row.bytes);
        s += QStringLiteral("</tr>");
    }
    s += QStringLiteral("</tableResult>");
    return s;
}

QString StatsCounter::statistics(const std::atomic<bool>& running, const QFileInfo& fi, unsigned maxRows, unsigned wordLen,
                                 const QString& background, const QString& text) {
    QString page = page_head(background, text) + file_header(fi) + QStringLiteral("<hr/>\n");
    StatsOptions o;
    o.words = wordLen != 1;
    o.wordLen = wordLen;
    o.filterDelimiter = true;
    const StatsResult r = count(running, fi, o);
    if (!r.opened) {
        tav::log(tav::LOG_ERROR, "Stats::statistics, <<<$>>> 404", fi);
        return page + QStringLiteral("<p>") + tav::fill(tav::xt("Problems with '$'"), fi.absoluteFilePath().toHtmlEscaped()) +
               QStringLiteral("</p>") + page_end();
    }
    if (r.stopped) return QStringLiteral("break!");
    return page + summary(r) + QStringLiteral("<hr/>\n") + table(r, !o.words, maxRows) + page_end();
}

QString StatsCounter::stopped_page(const QFileInfo& fi, const QString& background, const QString& text) {
    return page_head(background, text) + file_header(fi) + QStringLiteral("<hr/>\n") + QStringLiteral("<br/>\n") +
           QStringLiteral("<h3>Generating Statistics Stopped<h3>\n") + page_end();
}

QStringList StatsCounter::text_table(const StatsResult& r, bool characters, unsigned maxRows) {
    const size_t n = std::min<size_t>(r.rows.size(), maxRows ? maxRows : kAllRows);
    QStringList out;
    out << (characters ? QStringLiteral("Number\tChar\tCount\tPercentage\tBytes") : QStringLiteral("Number\tWord\tCount\tPercentage"));
    for (size_t i = 0; i < n; ++i) {
        const StatRow& row = r.rows[i];
        // Control characters (counted when delimiters are not filtered) would break the columns.
        const bool printable = !characters || row.text.isEmpty() || row.text.at(0).isPrint();
        const QString shown = printable ? row.text : QStringLiteral("U+%1").arg(row.text.at(0).unicode(), 4, 16, QLatin1Char('0')).toUpper();
        QString line = tav::fill("$\t$\t$\t$", uint64_t(i + 1), shown, row.count, percentage(row.percentage).trimmed());
        if (characters) line += QLatin1Char('\t') + row.bytes;
        out << line;
    }
    return out;
}

} // namespace tavFinder
