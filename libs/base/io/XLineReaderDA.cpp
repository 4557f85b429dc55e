#include "base/io/XLineReaderDA.h"

#include "base/find/XByteScan.h"
#include "base/io/XPaths.h"

#include <QFile>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tav {

namespace {
constexpr size_t kMinCapacity = size_t(64) << 10;
constexpr size_t kPassBlock = size_t(1) << 20;
// Holes smaller than this are read as zeros: seeking costs more than reading them.
constexpr uint64_t kMinHole = uint64_t(1) << 20;

bool isBlankLine(const char* p, size_t n) {
    for (size_t i = 0; i < n; ++i) {
        const char c = p[i];
        if (c != ' ' && c != '\t' && c != '\r' && c != '\f' && c != '\v') return false;
    }
    return true;
}

ssize_t preadFull(int fd, char* dst, size_t n, uint64_t off) {
    for (;;) {
        const ssize_t r = ::pread(fd, dst, n, off_t(off));
        if (r < 0 && errno == EINTR) continue;
        return r;
    }
}
}

XLineReaderDA::XLineReaderDA() = default;
XLineReaderDA::~XLineReaderDA() { close(); }

void XLineReaderDA::setWindowSize(size_t bytes) { window_ = maxWindow_ = std::max<size_t>(bytes, 4096); }

void XLineReaderDA::setWindowSizes(size_t bytes, size_t maxBytes) {
    window_ = std::max<size_t>(bytes, 4096);
    maxWindow_ = std::max(maxBytes, window_);
}

void XLineReaderDA::close() {
    if (fd_ >= 0) ::close(fd_);
    fd_ = -1;
    open_ = whole_ = binary_ = eof_ = sizeGiven_ = sparse_ = holeAhead_ = false;
    holeBytes_ = 0;
    trailingHole_ = false;
    readError_ = 0;
    fileSize_ = readPos_ = bufOffset_ = 0;
    len_ = emitted_ = 0;
    windowsDone_ = false;
    newlines_ = 0;
    lastByte_ = '\n';
    linesKnown_ = false;
    lines_ = 0;
    lineIndexBuilt_ = false;
    if (lineStarts_.capacity() > (size_t(1) << 20)) std::vector<uint64_t>().swap(lineStarts_);
    else lineStarts_.clear();
}

bool XLineReaderDA::openFile(const QFileInfo& fi, uint64_t probeBytes, bool checkBinary) {
    return openFile(fi.absoluteFilePath(), probeBytes, checkBinary);
}

bool XLineReaderDA::openFile(const QString& path, uint64_t probeBytes, bool checkBinary) {
    return open(path, probeBytes, checkBinary, -1);
}

bool XLineReaderDA::openFile(const QString& path, uint64_t probeBytes, bool checkBinary, uint64_t knownSize) {
    return open(path, probeBytes, checkBinary, int64_t(std::min<uint64_t>(knownSize, uint64_t(INT64_MAX))));
}

bool XLineReaderDA::open(const QString& path, uint64_t probeBytes, bool checkBinary, int64_t knownSize) {
    close();
    path_ = path;
    const QByteArray native = encodePath(path);
    // O_NONBLOCK: a file swapped for a FIFO since the scan must not block the search.
    const int fd = openPath(native.constData(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK | (knownSize >= 0 ? O_NOFOLLOW : 0));
    if (fd < 0) return false;
    if (knownSize >= 0) {
        // Reads stop at the known size, so even a device swapped in meanwhile
        // cannot keep the search reading; a folder fails at the first read.
        fileSize_ = uint64_t(knownSize);
        sizeGiven_ = true;
    } else {
        struct stat st;
        if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
            ::close(fd);
            return false;
        }
        fileSize_ = uint64_t(st.st_size);
    }
    fd_ = fd;
    open_ = true;
    // A large file with fewer blocks than bytes has holes: its windows skip them
    // (a 10 GB file with a few words in it is searched in those words' time).
    bool holeInProbe = false;
    if (fileSize_ >= kMinHole) {
        struct stat st;
        if (::fstat(fd, &st) == 0 && uint64_t(st.st_blocks) * 512 + kMinHole <= uint64_t(st.st_size)) {
            sparse_ = true;
            const off_t hole = ::lseek(fd, 0, SEEK_HOLE);
            holeInProbe = hole >= 0 && uint64_t(hole) < std::min<uint64_t>(probeBytes, fileSize_);
        }
    }
    if (!fill()) {
        close();
        return false;
    }
    // Whole only when the buffer holds the file byte for byte from its start.
    whole_ = eof_ && holeBytes_ == 0;
    if (whole_) {
        ::close(fd_);
        fd_ = -1;
    }
    if (checkBinary) binary_ = holeInProbe || std::memchr(buf_.get(), 0, size_t(std::min<uint64_t>(probeBytes, len_))) != nullptr;
    return true;
}

void XLineReaderDA::reserve(size_t bytes) {
    if (bytes <= cap_) return;
    size_t cap = std::max({bytes, kMinCapacity, std::min(cap_ * 2, window_)});
    std::unique_ptr<char[]> nb(new char[cap]);
    if (len_) std::memcpy(nb.get(), buf_.get(), len_);
    buf_ = std::move(nb);
    cap_ = cap;
}

bool XLineReaderDA::skipHole() {
    if (holeAhead_ && len_ > 0) return false;
    const off_t data = ::lseek(fd_, off_t(readPos_), SEEK_DATA);
    if (data < 0) {
        if (errno == ENXIO) {   // only a hole up to the end
            if (fileSize_ > readPos_) {
                holeBytes_ += fileSize_ - readPos_;
                trailingHole_ = true;
            }
            eof_ = true;
        } else {
            sparse_ = false;    // no hole information here: read everything
        }
        return eof_;
    }
    const uint64_t next = uint64_t(data);
    if (next < readPos_ + kMinHole) {
        holeAhead_ = false;
        return false;
    }
    if (len_ > 0) {
        holeAhead_ = true;      // hand out what is held first
        return true;
    }
    holeBytes_ += next - readPos_;
    readPos_ = bufOffset_ = next;
    holeAhead_ = false;
    return false;
}

bool XLineReaderDA::fill(size_t target) {
    while (len_ < target && !eof_) {
        if (sparse_ && skipHole()) break;
        size_t want = target - len_;
        // Trust the size fstat gave: a small file needs no extra read to see its end.
        if (fileSize_ > 0 || sizeGiven_) {
            if (readPos_ >= fileSize_) {
                eof_ = true;
                break;
            }
            want = size_t(std::min<uint64_t>(want, fileSize_ - readPos_));
        }
        reserve(len_ + want);
        if (sparse_) {
            // Read no further than the next hole.
            const off_t hole = ::lseek(fd_, off_t(readPos_), SEEK_HOLE);
            if (hole > off_t(readPos_)) want = size_t(std::min<uint64_t>(want, uint64_t(hole) - readPos_));
        }
        const ssize_t r = preadFull(fd_, buf_.get() + len_, want, readPos_);
        if (r < 0) {
            readError_ = errno;
            return false;
        }
        if (r == 0) {
            eof_ = true;
            break;
        }
        len_ += size_t(r);
        readPos_ += uint64_t(r);
    }
    return true;
}

bool XLineReaderDA::readFrom(uint64_t offset) {
    holeAhead_ = trailingHole_ = false;
    holeBytes_ = 0;
    len_ = 0;
    emitted_ = 0;
    bufOffset_ = readPos_ = offset;
    eof_ = false;
    return fill();
}

uint64_t XLineReaderDA::getMemorySize() const { return whole_ ? uint64_t(len_) : fileSize_; }

size_t XLineReaderDA::cutPosition(Cut cut, bool& boundary) const {
    const char* b = buf_.get();
    boundary = false;
    const void* nl = memrchr(b, '\n', len_);
    if (!nl) return len_;   // one line longer than the window: cut it
    const size_t last = size_t(static_cast<const char*>(nl) - b);
    boundary = cut == CUT_LINE;
    if (cut == CUT_LINE) return last + 1;
    // Paragraphs: end the window after the last blank line.
    size_t lineEnd = last;
    for (;;) {
        const void* prev = lineEnd ? memrchr(b, '\n', lineEnd) : nullptr;
        const size_t ls = prev ? size_t(static_cast<const char*>(prev) - b) + 1 : 0;
        if (isBlankLine(b + ls, lineEnd - ls)) {
            boundary = true;
            return lineEnd + 1;
        }
        if (!prev) break;
        lineEnd = ls - 1;
    }
    return last + 1;
}

void XLineReaderDA::handOut(Cut cut, Window& w) {
    size_t n = len_;
    while (!eof_) {
        bool boundary = false;
        n = cutPosition(cut, boundary);
        if (boundary || len_ >= maxWindow_) break;
        // No line (or paragraph) ends in the window: it grows rather than cut one.
        // A failed read leaves the cut as it is; the next window reports the error.
        // Before a hole it cannot grow: the window ends there.
        const size_t held = len_;
        if (!fill(std::min(maxWindow_, std::max(len_ * 2, window_)))) break;
        n = len_;
        if (len_ == held) break;
    }
    const bool last = eof_;
    w.data = buf_.get();
    w.size = n;
    w.offset = bufOffset_;
    w.last = last;
    emitted_ = n;
    if (!linesKnown_) {
        newlines_ += bytescan::count_byte(buf_.get(), n, '\n');
        if (n) lastByte_ = buf_[n - 1];
        if (last && trailingHole_) lastByte_ = 0;   // the file ends in zeros
    }
    if (last) {
        windowsDone_ = true;
        if (!linesKnown_) {
            lines_ = newlines_ + ((bufOffset_ + n) > 0 && lastByte_ != '\n' ? 1 : 0);
            linesKnown_ = true;
        }
    }
}

bool XLineReaderDA::firstWindow(Cut cut, Window& w) {
    if (!open_) return false;
    if (whole_) {
        w.data = buf_.get();
        w.size = len_;
        w.offset = 0;
        w.last = true;
        emitted_ = len_;
        windowsDone_ = true;
        return true;
    }
    if ((bufOffset_ != 0 || emitted_ != 0) && !readFrom(0)) return false;
    newlines_ = 0;
    lastByte_ = '\n';
    windowsDone_ = false;
    handOut(cut, w);
    return true;
}

bool XLineReaderDA::nextWindow(Cut cut, Window& w) {
    if (!open_ || windowsDone_) return false;
    const size_t rest = len_ - emitted_;
    if (rest) std::memmove(buf_.get(), buf_.get() + emitted_, rest);
    len_ = rest;
    bufOffset_ += emitted_;
    emitted_ = 0;
    if (!fill()) {
        windowsDone_ = true;
        return false;
    }
    handOut(cut, w);
    return true;
}

uint64_t XLineReaderDA::countLinesByPass() {
    std::unique_ptr<char[]> block(new char[kPassBlock]);
    uint64_t nl = 0, off = 0;
    char lastByte = '\n';
    for (;;) {
        const ssize_t r = preadFull(fd_, block.get(), kPassBlock, off);
        if (r <= 0) break;
        nl += bytescan::count_byte(block.get(), size_t(r), '\n');
        lastByte = block[size_t(r) - 1];
        off += uint64_t(r);
    }
    return nl + (off > 0 && lastByte != '\n' ? 1 : 0);
}

uint64_t XLineReaderDA::countLines() {
    if (!open_) return 0;
    if (linesKnown_) return lines_;
    if (whole_) {
        lines_ = bytescan::count_byte(buf_.get(), len_, '\n') + (len_ > 0 && buf_[len_ - 1] != '\n' ? 1 : 0);
    } else {
        lines_ = countLinesByPass();
    }
    linesKnown_ = true;
    return lines_;
}

bool XLineReaderDA::buildLineIndex() {
    if (lineIndexBuilt_) return true;
    if (!open_) return false;
    lineStarts_.clear();
    if (whole_) {
        const char* b = buf_.get();
        if (len_ > 0) lineStarts_.push_back(0);
        for (const char* p = b; (p = static_cast<const char*>(std::memchr(p, '\n', size_t(b + len_ - p))));) {
            ++p;
            if (p < b + len_) lineStarts_.push_back(uint64_t(p - b));
        }
    } else {
        std::unique_ptr<char[]> block(new char[kPassBlock]);
        uint64_t off = 0;
        bool atLineStart = true;
        for (;;) {
            const ssize_t r = preadFull(fd_, block.get(), kPassBlock, off);
            if (r <= 0) break;
            const char* b = block.get();
            const char* e = b + r;
            if (atLineStart) lineStarts_.push_back(off);
            atLineStart = false;
            for (const char* p = b; (p = static_cast<const char*>(std::memchr(p, '\n', size_t(e - p))));) {
                ++p;
                if (p < e) lineStarts_.push_back(off + uint64_t(p - b));
                else atLineStart = true;   // the next line starts with the next block
            }
            off += uint64_t(r);
        }
        fileSize_ = std::max(fileSize_, off);
    }
    lineIndexBuilt_ = true;
    return true;
}

QByteArray XLineReaderDA::lineBytesAt(uint64_t i) {
    if (!buildLineIndex() || i >= lineStarts_.size()) return QByteArray();
    const uint64_t start = lineStarts_[size_t(i)];
    const uint64_t total = whole_ ? uint64_t(len_) : fileSize_;
    uint64_t end = i + 1 < lineStarts_.size() ? lineStarts_[size_t(i + 1)] : total;
    QByteArray out;
    if (whole_) {
        out = QByteArray(buf_.get() + start, int(end - start));
    } else {
        out.resize(int(end - start));
        const ssize_t r = preadFull(fd_, out.data(), size_t(end - start), start);
        out.resize(r < 0 ? 0 : int(r));
    }
    if (out.endsWith('\n')) out.chop(1);
    if (out.endsWith('\r')) out.chop(1);
    return out;
}

QString XLineReaderDA::lineAt(uint64_t i) { return QString::fromUtf8(lineBytesAt(i)); }

int64_t XLineReaderDA::modifiedNs() const {
    struct stat st {};
    // A file read whole at once has its descriptor closed already: by its name then.
    const int rc = fd_ >= 0 ? ::fstat(fd_, &st) : open_ ? ::stat(encodePath(path_).constData(), &st) : -1;
    if (rc != 0) return INT64_MIN;
    return int64_t(st.st_mtim.tv_sec) * 1000000000 + int64_t(st.st_mtim.tv_nsec);
}

} // namespace tav
