#include "base/extract/XExtract.h"

#include "base/extract/XDocText.h"
#include "base/extract/XExtractApi.h"
#include "base/log/Logger.h"

#include <QFile>
#include <QRegularExpression>
#include <QTextCodec>
#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace tav {
namespace extract {

namespace {

constexpr size_t kBlock = size_t(64) << 10;

// Only called once an extractor has found the module loaded.
const ExtractApi& lib() { return *extractApi(); }

bool startsWith(const char* d, size_t n, const char* sig, size_t len) { return n >= len && std::memcmp(d, sig, len) == 0; }

struct ArchiveDeleter {
    void operator()(archive* a) const { lib().read_free(a); }
};
using ArchivePtr = std::unique_ptr<archive, ArchiveDeleter>;

// A reader for the formats we search; raw takes a compressed stream that holds no archive.
ArchivePtr newReader(bool rawOnly = false) {
    ArchivePtr a(lib().read_new());
    lib().support_filter_all(a.get());
    if (rawOnly) {
        lib().support_format_raw(a.get());
        return a;
    }
    lib().support_format_tar(a.get());
    lib().support_format_zip(a.get());
    lib().support_format_7zip(a.get());
    lib().support_format_cpio(a.get());
    lib().support_format_rar(a.get());
    lib().support_format_rar5(a.get());
    lib().support_format_raw(a.get());
    return a;
}

ArchivePtr openFile(const QString& path, bool rawOnly = false) {
    ArchivePtr a = newReader(rawOnly);
    if (lib().open_filename(a.get(), QFile::encodeName(path).constData(), 1 << 16) != ARCHIVE_OK) return nullptr;
    return a;
}

ArchivePtr openMemory(const QByteArray& data, bool rawOnly = false) {
    ArchivePtr a = newReader(rawOnly);
    if (lib().open_memory(a.get(), data.constData(), size_t(data.size())) != ARCHIVE_OK) return nullptr;
    return a;
}

QString entryName(archive_entry* e) {
    if (const char* u = lib().entry_pathname_utf8(e)) return QString::fromUtf8(u);
    if (const char* p = lib().entry_pathname(e)) return QString::fromLocal8Bit(p);
    return QString();
}

// A name that would climb out of the archive or start at the root.
bool isUnsafeName(const QString& name) {
    if (name.isEmpty() || name.startsWith('/') || name.startsWith('\\')) return true;
    if (name.size() > 1 && name[1] == ':') return true;
    const QStringList parts = name.split(QRegularExpression(QStringLiteral("[/\\\\]")));
    return parts.contains(QStringLiteral(".."));
}

// UTF-16 needs only Qt; everything else the module. Without it a container is searched as its bytes.
bool readable(Family f) { return f == Family::Utf16 || extractApi() != nullptr; }

QString archiveError(archive* a) {
    const char* s = lib().error_string(a);
    return s ? QString::fromLocal8Bit(s) : QStringLiteral("unreadable");
}

} // namespace

Family sniff(const char* d, size_t n, const QString& nameHint) {
    if (!d || n < 2) return Family::None;
    const auto u = [d](size_t i) { return uint8_t(d[i]); };
    if (u(0) == 0x1f && (u(1) == 0x8b || u(1) == 0x9d)) return Family::Compressed;   // gzip, compress
    if (startsWith(d, n, "BZh", 3) && n > 3 && d[3] >= '1' && d[3] <= '9') return Family::Compressed;
    if (startsWith(d, n, "\xfd" "7zXZ\0", 6)) return Family::Compressed;
    if (startsWith(d, n, "\x28\xb5\x2f\xfd", 4)) return Family::Compressed;   // zstd
    if (startsWith(d, n, "\x04\x22\x4d\x18", 4)) return Family::Compressed;   // lz4
    if (startsWith(d, n, "LZIP", 4)) return Family::Compressed;
    // Bare lzma has no real signature: its usual first bytes, and the name to confirm them.
    if (n >= 13 && u(0) == 0x5d && u(1) == 0 && u(2) == 0 && nameHint.endsWith(QLatin1String(".lzma"), Qt::CaseInsensitive))
        return Family::Compressed;
    if (startsWith(d, n, "PK\x03\x04", 4) || startsWith(d, n, "PK\x05\x06", 4) || startsWith(d, n, "PK\x07\x08", 4))
        return Family::Zip;
    if (startsWith(d, n, "7z\xbc\xaf\x27\x1c", 6)) return Family::Archive;
    if (startsWith(d, n, "Rar!\x1a\x07", 6)) return Family::Archive;
    if (n >= 262 && std::memcmp(d + 257, "ustar", 5) == 0) return Family::Archive;
    if (startsWith(d, n, "070701", 6) || startsWith(d, n, "070702", 6) || startsWith(d, n, "070707", 6)) return Family::Archive;
    if ((u(0) == 0xc7 && u(1) == 0x71) || (u(0) == 0x71 && u(1) == 0xc7)) return Family::Archive;   // binary cpio
    if (startsWith(d, n, "%PDF-", 5)) return Family::Pdf;
    // UTF-16 by its mark (FF FE 00 00 is UTF-32, left alone).
    if ((u(0) == 0xff && u(1) == 0xfe && !(n >= 4 && u(2) == 0 && u(3) == 0)) || (u(0) == 0xfe && u(1) == 0xff))
        return Family::Utf16;
    return Family::None;
}

QString familyName(Family f) {
    switch (f) {
    case Family::Compressed: return QStringLiteral("compressed");
    case Family::Archive: return QStringLiteral("archive");
    case Family::Zip: return QStringLiteral("zip");
    case Family::Pdf: return QStringLiteral("pdf");
    case Family::Utf16: return QStringLiteral("utf-16");
    case Family::None: break;
    }
    return QStringLiteral("plain");
}

int Part::pageAt(int64_t pos) const {
    if (pageStarts.empty()) return 0;
    const auto it = std::upper_bound(pageStarts.begin(), pageStarts.end(), pos);
    return int(std::max<ptrdiff_t>(1, it - pageStarts.begin()));
}

QString memberPath(const QString& container, const QString& member) {
    return member.isEmpty() ? container : container + QStringLiteral("!/") + member;
}

XExtractor::XExtractor(const Limits& limits) : limits_(limits) {}

void XExtractor::begin(const QString& path) {
    path_ = path;
    problems_.clear();
    cancelled_ = false;
    stopped_ = false;
}

bool XExtractor::goOn() {
    if (stopped_ || cancelled_) return false;
    if (keepGoing_ && !keepGoing_()) cancelled_ = true;
    return !cancelled_;
}

void XExtractor::problem(const QString& where, const QString& what) {
    const QString line = memberPath(path_, where) + QStringLiteral(": ") + what;
    problems_ << line;
    log(4, "XExtractor, not searched completely: $", line);
}

bool XExtractor::deliver(Part& p) {
    if (stopped_) return false;
    if (sink_ && !sink_(p)) stopped_ = true;
    return !stopped_;
}

bool XExtractor::extractFile(const QString& path, const Sink& sink) {
    char head[kSniffBytes];
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) return false;
    const ssize_t n = ::read(fd, head, sizeof head);
    ::close(fd);
    return n > 0 && extractFile(path, head, size_t(n), sink);
}

bool XExtractor::extractFile(const QString& path, const char* head, size_t headSize, const Sink& sink) {
    const Family f = sniff(head, headSize, path);
    if (f == Family::None || !readable(f)) return false;
    begin(path);
    sink_ = sink;
    switch (f) {
    case Family::Compressed:
    case Family::Archive:
        processArchive([&path](bool rawOnly) { return openFile(path, rawOnly).release(); }, QString(), 1, f);
        break;
    case Family::Zip:
        processZip([&path]() { return openFile(path).release(); }, QString(), 1);
        break;
    case Family::Pdf:
        processPdf(path, nullptr, QString());
        break;
    case Family::Utf16: {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            problem(QString(), QStringLiteral("cannot be opened"));
            break;
        }
        QByteArray data = file.read(qint64(std::min<uint64_t>(limits_.maxOutput / 2, uint64_t(1) << 40)));
        if (!file.atEnd()) problem(QString(), QStringLiteral("cut at the output limit"));
        processUtf16(data, QString());
        break;
    }
    case Family::None:
        break;
    }
    sink_ = nullptr;
    return true;
}

bool XExtractor::extractData(const QByteArray& data, const QString& nameHint, const Sink& sink) {
    const Family f = sniff(data.constData(), size_t(data.size()), nameHint);
    if (f == Family::None || !readable(f)) return false;
    begin(nameHint);
    sink_ = sink;
    processData(data, QString(), nameHint, 0);
    sink_ = nullptr;
    return true;
}

bool XExtractor::partOf(const QString& path, const QString& member, Part& out) {
    bool found = false;
    const bool known = extractFile(path, [&](Part& p) {
        if (p.member != member) return true;
        out = std::move(p);
        found = true;
        return false;
    });
    return known && found;
}

void XExtractor::processData(const QByteArray& data, const QString& member, const QString& nameHint, int depth) {
    const Family f = sniff(data.constData(), size_t(data.size()), nameHint);
    if (f == Family::Compressed || f == Family::Archive || f == Family::Zip) {
        if (depth + 1 > limits_.maxDepth) {
            problem(member, QStringLiteral("nested deeper than %1 archives, skipped").arg(limits_.maxDepth));
            return;
        }
        if (f == Family::Zip) {
            processZip([&data]() { return openMemory(data).release(); }, member, depth + 1);
            return;
        }
        processArchive([&data](bool rawOnly) { return openMemory(data, rawOnly).release(); }, member, depth + 1, f);
        return;
    }
    if (f == Family::Pdf) {
        processPdf(QString(), &data, member);
        return;
    }
    if (f == Family::Utf16) {
        processUtf16(data, member);
        return;
    }
    Part p;
    p.member = member;
    p.text = data;
    deliver(p);
}

bool XExtractor::readEntry(archive* a, const QString& name, int64_t sizeHint, QByteArray& out) {
    out.clear();
    if (sizeHint > 0) out.reserve(int(std::min<int64_t>(sizeHint, std::min<int64_t>(int64_t(limits_.maxOutput), 64 << 20))));
    const int64_t consumedAtStart = lib().filter_bytes(a, -1);
    char buf[kBlock];
    for (;;) {
        if (!goOn()) return false;
        const la_ssize_t n = lib().read_data(a, buf, sizeof buf);
        if (n == 0) return true;
        if (n < 0) {
            problem(name, QStringLiteral("cannot be read (%1)").arg(archiveError(a)));
            return false;
        }
        if (uint64_t(out.size()) + uint64_t(n) > limits_.maxOutput) {
            out.append(buf, int(limits_.maxOutput - uint64_t(out.size())));
            problem(name, QStringLiteral("cut at %1 bytes of output").arg(limits_.maxOutput));
            return false;
        }
        out.append(buf, int(n));
        const uint64_t size = uint64_t(out.size());
        if (size > limits_.ratioFrom) {
            const int64_t consumed = std::max<int64_t>(1, lib().filter_bytes(a, -1) - consumedAtStart);
            if (size > uint64_t(consumed) * limits_.maxRatio) {
                problem(name, QStringLiteral("cut: expands more than %1 times").arg(limits_.maxRatio));
                return false;
            }
        }
    }
}

void XExtractor::processArchive(const std::function<archive*(bool)>& open, const QString& prefix, int depth, Family f) {
    ArchivePtr a(open(false));
    if (!a) {
        problem(prefix, QStringLiteral("cannot be opened"));
        return;
    }
    // Zeros decompressed look like an empty tar; such a stream is searched as it is.
    if (walkArchive(a.get(), prefix, depth) == 0 && f == Family::Compressed && lib().format(a.get()) != ARCHIVE_FORMAT_RAW &&
        isComplete() && goOn()) {
        a.reset(open(true));
        if (a) walkArchive(a.get(), prefix, depth);
    }
}

int XExtractor::walkArchive(archive* a, const QString& prefix, int depth) {
    int entries = 0;
    archive_entry* e = nullptr;
    QByteArray data;
    while (goOn()) {
        const int r = lib().next_header(a, &e);
        if (r == ARCHIVE_EOF) break;
        if (r < ARCHIVE_WARN) {
            problem(prefix, QStringLiteral("corrupt archive (%1)").arg(archiveError(a)));
            if (r == ARCHIVE_FATAL) break;
            continue;
        }
        ++entries;
        // A compressed stream without an archive inside: its content under the container's own name.
        const bool raw = lib().format(a) == ARCHIVE_FORMAT_RAW;
        const QString name = raw ? prefix : entryName(e);
        const QString member = raw ? prefix : prefix.isEmpty() ? name : memberPath(prefix, name);
        if (!raw) {
            if (lib().entry_filetype(e) != AE_IFREG) continue;
            if (isUnsafeName(name)) {
                problem(prefix, QStringLiteral("member with an unsafe name skipped: %1").arg(name));
                continue;
            }
            if (lib().entry_is_encrypted(e)) {
                problem(member, QStringLiteral("encrypted, skipped"));
                continue;
            }
        }
        const int64_t sizeHint = lib().entry_size_is_set(e) ? lib().entry_size(e) : -1;
        readEntry(a, member, sizeHint, data);
        if (cancelled_) break;
        if (!data.isEmpty()) processData(data, member, name, depth);
        if (raw) break;
    }
    return entries;
}

void XExtractor::processZip(const std::function<archive*()>& open, const QString& prefix, int depth) {
    // The member names decide between document and archive; listing them reads only the directory.
    QStringList names;
    {
        ArchivePtr a(open());
        if (!a) {
            problem(prefix, QStringLiteral("cannot be opened"));
            return;
        }
        archive_entry* e = nullptr;
        int r;
        while ((r = lib().next_header(a.get(), &e)) >= ARCHIVE_WARN) names << entryName(e);
    }
    const DocKind kind = docKind(names);
    ArchivePtr a(open());
    if (!a) {
        problem(prefix, QStringLiteral("cannot be opened"));
        return;
    }
    if (kind == DocKind::None) {
        walkArchive(a.get(), prefix, depth);
        return;
    }
    // A document is one text under its own name.
    std::vector<std::pair<QString, QByteArray>> parts;
    archive_entry* e = nullptr;
    QByteArray data;
    while (goOn()) {
        const int r = lib().next_header(a.get(), &e);
        if (r == ARCHIVE_EOF) break;
        if (r < ARCHIVE_WARN) {
            problem(prefix, QStringLiteral("corrupt document (%1)").arg(archiveError(a.get())));
            if (r == ARCHIVE_FATAL) break;
            continue;
        }
        const QString name = entryName(e);
        if (!isTextPart(kind, name)) continue;
        if (lib().entry_is_encrypted(e)) {
            problem(prefix, QStringLiteral("encrypted part %1 skipped").arg(name));
            continue;
        }
        readEntry(a.get(), memberPath(prefix, name), lib().entry_size_is_set(e) ? lib().entry_size(e) : -1, data);
        if (cancelled_) return;
        QString error;
        parts.emplace_back(name, xmlText(kind, name, data, &error));
        if (!error.isEmpty()) problem(prefix, QStringLiteral("part %1: %2").arg(name, error));
    }
    Part p;
    p.member = prefix;
    p.text = joinParts(kind, parts);
    deliver(p);
}

void XExtractor::processPdf(const QString& path, const QByteArray* data, const QString& member) {
    Part p;
    p.member = member;
    QString error;
    const bool ok = lib().pdfText(path, data, limits_.maxOutput, [this]() { return goOn(); }, p.text, p.pageStarts, &error);
    if (!error.isEmpty()) problem(member, error);
    if (ok || !p.text.isEmpty()) deliver(p);
}

void XExtractor::processUtf16(const QByteArray& data, const QString& member) {
    const bool le = uint8_t(data[0]) == 0xff;
    QTextCodec* codec = QTextCodec::codecForName(le ? "UTF-16LE" : "UTF-16BE");
    Part p;
    p.member = member;
    p.text = codec ? codec->toUnicode(data.constData() + 2, data.size() - 2).toUtf8() : data;
    deliver(p);
}

} // namespace extract
} // namespace tav
