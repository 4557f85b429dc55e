// The headless command "find": scans a folder, filters the files and searches
// their contents with the same engine as the main window, then prints the hits.
//   find --dir DIR [--find TEXT] [--regex true] [--wholeWords true] [--matchCase true]
//        [--scope File|Paragraph|Sentence]
//        [--pattern P] [--npattern P] [--textFiles true] [--hidden true]
//        [--minSize N] [--maxSize N] [--threads N] [--show files|count|hits] [--documents true]
//        [--maxMemberSize N] [--ratioFrom N] [--maxRatio N] [--format tsv|csv|json|null] [--maxFiles N]
//        [--ignoreFiles true] [--saved NAME]
// With --saved the search kept under NAME runs; keys given beside it win.
// Exit code: 0 something found, 1 nothing found, 2 bad input.
#include "src/find/CommandFind.h"

#include "base/dir/XDirInfo.h"
#include "base/find/XFilter.h"
#include "base/io/XPaths.h"
#include "base/kernel/CommandLine.h"
#include "base/log/Logger.h"
#include "base/text/TextFiles.h"
#include "base/util/Format.h"
#include "src/find/FileMarks.h"
#include "src/find/ResultExport.h"
#include "src/find/SavedSearches.h"
#include "src/find/SearchJob.h"
#include "src/find/TavFind.h"

#include <QDir>
#include <QEventLoop>
#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>

namespace tavFinder {

namespace {


const char* kUsage =
    "usage: talvofinder find --dir DIR [--find TEXT] [--regex true] [--wholeWords true] [--matchCase true]\n"
    "         [--scope File|Paragraph|Sentence]\n"
    "         [--pattern P] [--npattern P] [--textFiles true] [--hidden true] [--minSize N] [--maxSize N]\n"
    "         [--threads N] [--show files|count|hits] [--documents true]\n"
    "         [--maxMemberSize N] [--ratioFrom N] [--maxRatio N] [--format tsv|csv|json|null] [--maxFiles N]\n"
    "         [--ignoreFiles true] [--saved NAME]";

int badInput(const QString& message) {
    tav::Logger::printToCerr(QStringLiteral("find: ") + message);
    tav::Logger::printToCerr(QString::fromLatin1(kUsage));
    return 2;
}

constexpr int kOutBlock = 1 << 20;

void write(const QByteArray& bytes) {
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
    std::fflush(stdout);
}

// One line per folder the walk could not open, on standard error: the listing
// and the totals are complete for everything else.
void reportUnreadable(const tav::XDirInfo& scan, const TavFind* search = nullptr) {
    const uint32_t n = scan.countUnreadableDirs.load();
    const uint64_t nf = search ? search->countUnreadableFiles() : 0;
    if (n == 0 && nf == 0) return;
    QByteArray err;
    const QStringList listed = scan.unreadableDirs();
    for (const QString& p : listed) err += "find: cannot read " + tav::encodePath(p) + '\n';
    if (n > uint32_t(listed.size()))
        err += tav::fill("find: ... and $ more folders that cannot be read", n - uint32_t(listed.size())).toUtf8() + '\n';
    const QStringList files = search ? search->unreadableFiles() : QStringList();
    for (const QString& p : files) err += "find: cannot read " + tav::encodePath(p) + '\n';
    if (nf > uint64_t(files.size()))
        err += tav::fill("find: ... and $ more files that cannot be read", nf - uint64_t(files.size())).toUtf8() + '\n';
    std::fwrite(err.constData(), 1, size_t(err.size()), stderr);
    std::fflush(stderr);
}

// "true"/"false" (and 1/0, yes/no); anything else is refused.
bool readBool(const tav::CommandLine& cl, const QString& key, bool& value, QString& error) {
    if (!cl.hasKey(key)) return true;
    const QString v = cl.getString(key).trimmed().toLower();
    if (v.isEmpty() || v == QLatin1String("true") || v == QLatin1String("1") || v == QLatin1String("yes")) value = true;
    else if (v == QLatin1String("false") || v == QLatin1String("0") || v == QLatin1String("no")) value = false;
    else {
        error = tav::fill("--$ takes true or false, not '$'", key, cl.getString(key));
        return false;
    }
    return true;
}

// Bytes, or a number with kb, mb or gb (1024-based).
bool readSize(const tav::CommandLine& cl, const QString& key, bool& given, uint64_t& value, QString& error) {
    given = cl.hasKey(key);
    if (!given) return true;
    const QString t = cl.getString(key);
    value = tav::get_bytes_number(t);
    if (value == 0 && !t.trimmed().startsWith(QLatin1Char('0'))) {
        error = tav::fill("--$ takes a size like 4096, 10kb or 2mb, not '$'", key, t);
        return false;
    }
    return true;
}

// csv, json or null on standard output, in blocks.
void writeData(const QString& format, const std::vector<const FileResult*>& rows, const exporting::Summary* sum, bool documents) {
    const exporting::Out out = [](const QByteArray& piece) { write(piece); };
    if (format == QLatin1String("csv")) {
        exporting::writeCsv(rows, out);
    } else if (format == QLatin1String("json")) {
        exporting::writeJson(rows, sum ? *sum : exporting::Summary(), documents, out);
    } else {
        // Each path ends with a NUL byte: names with newlines or tabs stay whole.
        QByteArray b;
        for (const FileResult* r : rows) {
            b += tav::encodePath(r->displayPath());
            b += '\0';
            if (b.size() > kOutBlock) {
                write(b);
                b.clear();
            }
        }
        write(b);
    }
}

} // namespace

tav::CommandKeys findCommandKeys() {
    return {QString(),
            QStringLiteral("dir=folder,saved,find,regex=true|false,wholeWords=true|false,matchCase=true|false,scope=File|Paragraph|Sentence,pattern,npattern,textFiles=true|false,"
                           "hidden=true|false,minSize,maxSize,threads,show=files|count|hits,countLines=true|false,"
                           "documents=true|false,maxMemberSize,ratioFrom,maxRatio,format=tsv|csv|json|null,maxFiles,ignoreFiles=true|false"),
            true};
}

int runFindCommand(tav::CommandLine& cl) {
    const int64_t timeStart = tav::getMicroseconds();
    // Also started by main() without the registry: declare the keys here.
    const tav::CommandKeys keys = findCommandKeys();
    cl.addMustHaveKeys(keys.must);
    cl.addOptionalKeys(keys.optional);
    if (!cl.checkKeys()) return badInput(cl.lastError());

    // A saved search gives the defaults; what the command line says wins.
    SavedSearch saved;
    const bool useSaved = cl.hasKey(QStringLiteral("saved"));
    if (useSaved) {
        const QString name = cl.getString(QStringLiteral("saved"));
        saved = SavedSearches::find(SavedSearches::load(), name);
        if (saved.name.isEmpty()) return badInput(tav::fill("no saved search is named '$'", name));
    }
    QString error;
    bool regEx = saved.regex, textFiles = saved.textFiles, hidden = saved.hidden, countLines = true, wholeWords = saved.wholeWords,
         matchCase = saved.matchCase, documents = saved.documents, ignoreFiles = saved.ignoreFiles;
    if (!readBool(cl, QStringLiteral("regex"), regEx, error) || !readBool(cl, QStringLiteral("wholeWords"), wholeWords, error) ||
        !readBool(cl, QStringLiteral("matchCase"), matchCase, error) || !readBool(cl, QStringLiteral("textFiles"), textFiles, error) ||
        !readBool(cl, QStringLiteral("hidden"), hidden, error) || !readBool(cl, QStringLiteral("countLines"), countLines, error) ||
        !readBool(cl, QStringLiteral("documents"), documents, error) || !readBool(cl, QStringLiteral("ignoreFiles"), ignoreFiles, error))
        return badInput(error);
    bool hasMin = false, hasMax = false;
    uint64_t minSize = 0, maxSize = 0;
    if (!readSize(cl, QStringLiteral("minSize"), hasMin, minSize, error) || !readSize(cl, QStringLiteral("maxSize"), hasMax, maxSize, error))
        return badInput(error);

    // The archive-bomb limits of documents and archives.
    tav::extract::Limits limits;
    bool given = false;
    if (!readSize(cl, QStringLiteral("maxMemberSize"), given, limits.maxOutput, error) ||
        !readSize(cl, QStringLiteral("ratioFrom"), given, limits.ratioFrom, error))
        return badInput(error);
    if (limits.maxOutput == 0) return badInput(QStringLiteral("--maxMemberSize must be more than 0 bytes"));
    if (cl.hasKey(QStringLiteral("maxRatio"))) {
        bool ok = false;
        limits.maxRatio = cl.getString(QStringLiteral("maxRatio")).toULongLong(&ok);
        if (!ok || limits.maxRatio < 2) return badInput(QStringLiteral("--maxRatio takes a whole number of 2 or more"));
    }

    const QString dirArg = cl.hasKey(QStringLiteral("dir")) ? cl.getString(QStringLiteral("dir")) : saved.folder;
    if (dirArg.isEmpty()) return badInput(QStringLiteral("missing key --dir (or --saved NAME)"));
    const QFileInfo dirInfo(QDir::current(), dirArg);
    if (!dirInfo.isDir()) return badInput(tav::fill("folder <<<$>>> does not exist", dirArg));
    const QString dir = QDir::cleanPath(dirInfo.absoluteFilePath());

    uint32_t scope = useSaved ? saved.scope : uint32_t(tav::find::XContentFilter::SCOPE_FILE);
    if (cl.hasKey(QStringLiteral("scope"))) {
        const QString s = cl.getString(QStringLiteral("scope")).trimmed().toLower();
        if (s == QLatin1String("file") || s == QLatin1String("0")) scope = tav::find::XContentFilter::SCOPE_FILE;
        else if (s == QLatin1String("paragraph") || s == QLatin1String("1")) scope = tav::find::XContentFilter::SCOPE_PARAGRAPH;
        else if (s == QLatin1String("sentence") || s == QLatin1String("2")) scope = tav::find::XContentFilter::SCOPE_SENTENCE;
        else return badInput(tav::fill("--scope must be File, Paragraph or Sentence, not '$'", cl.getString(QStringLiteral("scope"))));
    }
    unsigned threads = std::min(64u, std::max(1u, tav::count_hardware_threads(2)));
    if (cl.hasKey(QStringLiteral("threads"))) {
        bool ok = false;
        threads = cl.getString(QStringLiteral("threads")).toUInt(&ok);
        if (!ok || threads < 1 || threads > 64) return badInput(QStringLiteral("--threads takes a number from 1 to 64"));
    }
    const QString show = cl.getString(QStringLiteral("show"), QStringLiteral("files")).trimmed().toLower();
    if (show != QLatin1String("files") && show != QLatin1String("count") && show != QLatin1String("hits"))
        return badInput(tav::fill("--show must be files, count or hits, not '$'", show));

    // tsv: the lines above; csv, json, null: nothing but the data on standard output.
    const QString format = cl.getString(QStringLiteral("format"), QStringLiteral("tsv")).trimmed().toLower();
    if (format != QLatin1String("tsv") && format != QLatin1String("csv") && format != QLatin1String("json") && format != QLatin1String("null"))
        return badInput(tav::fill("--format must be tsv, csv, json or null, not '$'", format));
    uint64_t maxFiles = 0;
    if (cl.hasKey(QStringLiteral("maxFiles"))) {
        bool ok = false;
        maxFiles = cl.getString(QStringLiteral("maxFiles")).toULongLong(&ok);
        if (!ok || maxFiles == 0) return badInput(QStringLiteral("--maxFiles takes a number of files from 1"));
    }

    tav::find::XFilter filter;
    filter.fileFilter.setPattern(cl.hasKey(QStringLiteral("pattern")) ? cl.getString(QStringLiteral("pattern")) : saved.pattern, false);
    filter.fileFilter.setPattern(cl.hasKey(QStringLiteral("npattern")) ? cl.getString(QStringLiteral("npattern")) : saved.notPattern, true);
    if (useSaved && saved.timeArea != tav::XFileFilter::NONE) {
        filter.fileFilter.timeArea = saved.timeArea;
        filter.fileFilter.time1 = saved.time1;
        filter.fileFilter.time2 = saved.time2;
    }
    if (useSaved && saved.sizeArea != tav::XFileFilter::NONE && !hasMin && !hasMax) {
        filter.fileFilter.sizeArea = saved.sizeArea;
        filter.fileFilter.size1 = saved.size1;
        filter.fileFilter.size2 = saved.size2;
    }
    if (textFiles) {
        for (const QString& e : tav::default_text_file_extensions()) filter.fileFilter.textFileExtensions.insert(e);
    }
    if (hasMin || hasMax) {
        filter.fileFilter.sizeArea = hasMin && hasMax ? tav::XFileFilter::BETWEEN
                                     : hasMin         ? tav::XFileFilter::GREATER_EQUAL
                                                      : tav::XFileFilter::LESS_EQUAL;
        filter.fileFilter.size1 = hasMin ? minSize : maxSize;
        filter.fileFilter.size2 = maxSize;
    }
    const QString contentText = cl.hasKey(QStringLiteral("find")) ? cl.getString(QStringLiteral("find")) : saved.content;
    const bool content = cl.hasKey(QStringLiteral("find")) || !saved.content.isEmpty();
    if (content) {
        const QString text = contentText;
        filter.contentFilter.setScope(scope);
        filter.contentFilter.setWholeWords(wholeWords);
        filter.contentFilter.setMatchCase(matchCase);
        // Refused before any file is read, with the place and the reason.
        if (!filter.contentFilter.createSymbols(text, regEx))
            return badInput(tav::fill("cannot use '$': $", text, filter.contentFilter.errorMessage()));
    }

    if (!content) {
        tav::XDirInfo scan;
        scan.flagHiddenFiles = hidden;
        scan.flagIgnoreFiles = ignoreFiles;
        scan.scan_dir(dir, &filter.fileFilter);
        // A listing is printed by path; as plain text straight from the walk's bytes
        // (no file informations: a million files are a million lines, not a gigabyte).
        if (format == QLatin1String("tsv")) {
            std::vector<tav::XDirInfo::FilteredPath> paths = scan.filtered_paths(filter.fileFilter, true);
            const uint64_t matched = paths.size();
            if (maxFiles && paths.size() > maxFiles) paths.resize(size_t(maxFiles));
            QByteArray out;
            if (show != QLatin1String("count")) {
                out.reserve(kOutBlock + 4096);
                for (const auto& p : paths) {
                    out.append(p.path.data(), int(p.path.size())).append('\n');
                    if (out.size() >= kOutBlock) {
                        write(out);
                        out.resize(0);
                    }
                }
            }
            write(out + tav::fill("files: total:$, files match:$", tav::format1000(scan.countFiles.load()), tav::format1000(matched)).toUtf8() +
                  '\n');
            reportUnreadable(scan);
            // As below: the system frees the walk's memory faster than its destructors would.
            std::fflush(nullptr);
            std::_Exit(matched > 0 ? 0 : 1);
        }
        const tav::XFindStats stats = scan.setup_filtered_files(filter.fileFilter, true);
        std::vector<QFileInfo*> listed = scan.ar_filtered_files;
        if (maxFiles && listed.size() > maxFiles) listed.resize(size_t(maxFiles));
        const QByteArray summary = tav::fill("files: total:$, files match:$", tav::format1000(stats.countFiles.load()),
                                             tav::format1000(stats.countMatch.load()))
                                       .toUtf8() +
                                   '\n';
        {
            std::vector<FileResult> files;
            files.reserve(listed.size());
            for (QFileInfo* fi : listed) files.emplace_back(tav::find::XRamLayer(), *fi);
            std::vector<const FileResult*> rows;
            for (const FileResult& r : files) rows.push_back(&r);
            writeData(format, rows, nullptr, false);
            std::fwrite(summary.constData(), 1, size_t(summary.size()), stderr);
        }
        reportUnreadable(scan);
        return stats.countMatch.load() > 0 ? 0 : 1;
    }

    // The command is a sink of the search job: it keeps the results and prints them at the end.
    struct Collect : SearchSink {
        std::vector<FileResult> results;
        bool keep = true;   // counts alone need no result kept (a million files with hits)
        QEventLoop loop;
        void searchResults(std::vector<FileResult>& batch) override {
            if (!keep) {
                batch.clear();
                return;
            }
            if (results.empty()) results.swap(batch);
            else results.insert(results.end(), std::make_move_iterator(batch.begin()), std::make_move_iterator(batch.end()));
        }
        void searchDone(bool, const QStringList&, uint64_t, uint64_t) override { loop.quit(); }
    } sink;
    sink.keep = !(show == QLatin1String("count") && format == QLatin1String("tsv"));
    SearchJob job(sink);
    // Batches only move results from the workers to this list: a long interval spares the wake-ups.
    job.batchIntervalMs = 1000;
    SearchParams params;
    params.dir = dir;
    params.filter = filter;
    params.hidden = hidden;
    params.threads = threads;
    params.documents = documents;
    params.limits = limits;
    params.countLines = countLines;
    params.maxFiles = maxFiles;
    params.ignoreFiles = ignoreFiles;
    // Counts need one mark per file; hits are printed from the kept marks, and a
    // file with more is searched again as it is printed, so none are held.
    const bool allHits = show == QLatin1String("hits") || format == QLatin1String("json");
    params.keepMarks = allHits ? 1000 : 1;
    job.start(params);
    sink.loop.exec();
    TavFind& search = job.search();
    const tav::XDirInfo& scan = job.walk();

    QByteArray out;
    // Most hits first, then by path; each path is made and encoded once.
    const std::vector<FileResult>& results = sink.results;
    struct Row {
        size_t hits;
        QByteArray path;
        const FileResult* result;
    };
    std::vector<Row> rows;
    rows.reserve(results.size());
    for (const FileResult& r : results) {
        rows.push_back({size_t(r.hits()), tav::encodePath(r.displayPath()), &r});
    }
    std::sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) {
        if (a.hits != b.hits) return a.hits > b.hits;
        return a.path < b.path;
    });
    const QByteArray summaryLine = tav::fill("files-total:$ => $, files-match:$, match-total:$ - $ sec",
                                             tav::format1000(uint64_t(search.countTextFiles())), tav::formatBytes(search.getBytesToRead()),
                                             tav::format1000(uint64_t(search.countResults())), tav::format1000(search.countHits()),
                                             tav::formatMicrosecond_as_Sec(tav::getMicroseconds() - timeStart))
                                       .toUtf8() +
                                   '\n';
    if (format != QLatin1String("tsv")) {
        std::vector<const FileResult*> ptrs;
        ptrs.reserve(rows.size());
        for (const Row& r : rows) ptrs.push_back(r.result);
        exporting::Summary sum;
        sum.folder = dir;
        sum.query = contentText;
        sum.filesSearched = uint64_t(search.countTextFiles());
        sum.bytes = search.getBytesToRead();
        sum.filesMatched = uint64_t(search.countResults());
        sum.hits = search.countHits();
        sum.seconds = double(tav::getMicroseconds() - timeStart) / 1e6;
        sum.stoppedAfter = search.limitReached() ? maxFiles : 0;
        sum.filter = filter.contentFilter;
        writeData(format, ptrs, &sum, documents);
        std::fwrite(summaryLine.constData(), 1, size_t(summaryLine.size()), stderr);
    } else if (show == QLatin1String("files")) {
        for (const Row& r : rows) out.append(QByteArray::number(qulonglong(r.hits))).append('\t').append(r.path).append('\n');
    } else if (show == QLatin1String("hits")) {
        // One line per hit: appended in place and written out in blocks, so a
        // million hits need neither a temporary per line nor one huge buffer.
        auto number = [&out](int64_t v) {
            char buf[24];
            const auto r = std::to_chars(buf, buf + sizeof buf, v);
            out.append(buf, int(r.ptr - buf));
        };
        out.reserve(kOutBlock + 4096);
        for (const Row& r : rows) {
            forEachMark(*r.result, filter.contentFilter, [&](const tav::find::XRam* marks, size_t n) {
                for (size_t i = 0; i < n; ++i) {
                    out.append(r.path).append('\t');
                    number(marks[i].pos());
                    out.append('\t');
                    number(marks[i].len());
                    out.append('\n');
                    if (out.size() >= kOutBlock) {
                        write(out);
                        out.resize(0);   // keeps the reserved block
                    }
                }
            });
        }
    }
    if (format == QLatin1String("tsv")) out += summaryLine;
    if (show == QLatin1String("count") && format == QLatin1String("tsv")) {
        const tav::XFindStats w = search.workerStats();
        out += tav::fill("lines:$, bytes:$", w.countLines.load(), w.countBytes.load()).toUtf8() + '\n';
    }
    write(out);
    reportUnreadable(scan, &search);
    if (search.limitReached()) {
        const QByteArray err = tav::fill("find: stopped after $ files with hits", tav::format1000(maxFiles)).toUtf8() + '\n';
        std::fwrite(err.constData(), 1, size_t(err.size()), stderr);
    }
    if (const uint64_t incomplete = search.countIncomplete.load()) {
        const QByteArray err = tav::fill("find: $ files could not be searched completely", tav::format1000(incomplete)).toUtf8() + '\n';
        std::fwrite(err.constData(), 1, size_t(err.size()), stderr);
    }
    // Everything is printed: the system frees the scan's and the search's memory
    // faster than their destructors would.
    std::fflush(nullptr);
    std::_Exit(search.hasResults() ? 0 : 1);
}

} // namespace tavFinder
