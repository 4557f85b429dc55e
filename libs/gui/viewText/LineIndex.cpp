#include "gui/viewText/LineIndex.h"

#include "base/log/Logger.h"
#include "base/util/Format.h"

#include <QCoreApplication>
#include <QFile>
#include <QThreadPool>
#include <algorithm>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace tav {
namespace viewText {

namespace {
// Indexing runs on a pool of its own: quitting waits for the global pool, and
// must not wait for the index of a huge file. When the application quits,
// every index still running is cancelled.
struct IndexPool {
    QMutex mutex;
    std::vector<std::weak_ptr<std::atomic<bool>>> cancels;
    QThreadPool* pool = nullptr;
};
IndexPool& indexPool() {
    static IndexPool* p = [] {
        auto* ip = new IndexPool();
        ip->pool = new QThreadPool();
        ip->pool->setMaxThreadCount(4);
        if (QCoreApplication* app = QCoreApplication::instance()) {
            QObject::connect(app, &QCoreApplication::aboutToQuit, app, []() {
                IndexPool& x = indexPool();
                QMutexLocker l(&x.mutex);
                for (auto& w : x.cancels)
                    if (auto c = w.lock()) *c = true;
            });
        }
        return ip;
    }();
    return *p;
}

#ifdef __SSE2__
inline int countNewlines64(const char* p) {
    const __m128i nl = _mm_set1_epi8('\n');
    uint64_t mask = 0;
    for (int i = 0; i < 4; ++i) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16 * i));
        mask |= uint64_t(uint32_t(_mm_movemask_epi8(_mm_cmpeq_epi8(v, nl)))) << (16 * i);
    }
    return __builtin_popcountll(mask);
}
#endif
}

LineIndex::LineIndex(TextSourcePtr src) : src_(std::move(src)), st_(std::make_shared<State>()) {}

LineIndex::~LineIndex() { cancel(); }

void LineIndex::cancel() { st_->cancel = true; }

void LineIndex::start() {
    if (started_) return;
    started_ = true;
    if (src_->size() <= kSynchronousLimit) {
        run(st_, src_);
        return;
    }
    auto st = st_;
    auto src = src_;
    IndexPool& ip = indexPool();
    {
        QMutexLocker l(&ip.mutex);
        ip.cancels.erase(std::remove_if(ip.cancels.begin(), ip.cancels.end(), [](auto& w) { return w.expired(); }),
                         ip.cancels.end());
        ip.cancels.push_back(std::shared_ptr<std::atomic<bool>>(st, &st->cancel));
    }
    ip.pool->start([st, src]() { run(st, src); });
}

void LineIndex::run(const std::shared_ptr<State>& st, const TextSourcePtr& src) {
    const int64_t t0 = getMicroseconds();
    const int64_t size = src->size();
    int64_t line = 0;
    Anchor last{0, 0};
    std::vector<Anchor> batch;

    // Mapped files are read through a file handle: scanning the mapping would pull
    // the whole file into this process's resident memory.
    QFile f;
    const bool viaFile = src->isMapped();
    if (viaFile) {
        f.setFileName(src->path());
        if (!f.open(QIODevice::ReadOnly)) {
            log(tav::LOG_ERROR, "LineIndex::run, <<<$>>> cannot be read ($), scanning the mapping", src->path(), f.errorString());
        }
    }
    const bool readFile = viaFile && f.isOpen();
    constexpr int64_t kChunk = 4 * 1024 * 1024;
    QByteArray buffer;
    if (readFile) buffer.resize(int(kChunk));

    int64_t base = 0;
    while (base < size && !st->cancel.load(std::memory_order_relaxed)) {
        const int64_t want = std::min(kChunk, size - base);
        const char* chunk;
        int64_t got;
        if (readFile) {
            got = f.read(buffer.data(), want);
            if (got <= 0) break;   // the file shrank since it was mapped
            chunk = buffer.constData();
        } else {
            chunk = src->data() + base;
            got = want;
        }
        const char* p = chunk;
        const char* end = chunk + got;
        while (p < end) {
#ifdef __SSE2__
            // Whole 64-byte blocks that cannot hold the next anchor are only counted.
            const int64_t byteLimit = last.offset + kBytesPerAnchor;
            const int64_t lineLimit = last.line + kLinesPerAnchor;
            while (end - p >= 64) {
                const int64_t blockEnd = base + (p - chunk) + 64;
                if (blockEnd >= byteLimit || blockEnd >= size) break;
                const int n = countNewlines64(p);
                if (line + n >= lineLimit) break;
                line += n;
                p += 64;
            }
            if (p >= end) break;
#endif
            const void* nl = std::memchr(p, '\n', size_t(end - p));
            if (!nl) break;
            const int64_t next = base + (static_cast<const char*>(nl) - chunk) + 1;
            p = static_cast<const char*>(nl) + 1;
            if (next >= size) break;   // a final "\n" starts no line
            ++line;
            if (line - last.line >= kLinesPerAnchor || next - last.offset >= kBytesPerAnchor) {
                last = {line, next};
                batch.push_back(last);
            }
        }
        base += got;
        {
            QMutexLocker lock(&st->mutex);
            st->anchors.insert(st->anchors.end(), batch.begin(), batch.end());
            // Publish the counts after the anchors, under the same lock readers take.
            st->lines = line + 1;
            st->indexed = base;
        }
        batch.clear();
    }
    if (!st->cancel.load()) {
        QMutexLocker lock(&st->mutex);
        st->anchors.shrink_to_fit();
        st->indexed = size;
        st->done = true;
        log(tav::LOG_VERBOSE, "LineIndex::run, lines:$, anchors:$, within $ sec", format1000(int64_t(line + 1)),
            format1000(uint64_t(st->anchors.size())), formatMicrosecond_as_Sec(getMicroseconds() - t0));
    }
}

bool LineIndex::isDone() const { return st_->done.load(); }
int64_t LineIndex::indexedBytes() const { return st_->indexed.load(); }
int64_t LineIndex::lineCount() const { return st_->done.load() ? st_->lines.load() : -1; }
int64_t LineIndex::linesSoFar() const { return st_->lines.load(); }
size_t LineIndex::anchorCount() const {
    QMutexLocker lock(&st_->mutex);
    return st_->anchors.size();
}
size_t LineIndex::memoryBytes() const {
    QMutexLocker lock(&st_->mutex);
    return st_->anchors.capacity() * sizeof(Anchor);
}

bool LineIndex::covered(int64_t pos) const { return st_->done.load() || pos <= st_->indexed.load(); }

LineIndex::Anchor LineIndex::anchorAtOrBefore(int64_t offset, bool strictlyBefore, Anchor* next) const {
    QMutexLocker lock(&st_->mutex);
    const auto& a = st_->anchors;
    auto it = strictlyBefore
                  ? std::lower_bound(a.begin(), a.end(), offset, [](const Anchor& x, int64_t v) { return x.offset < v; })
                  : std::upper_bound(a.begin(), a.end(), offset, [](int64_t v, const Anchor& x) { return v < x.offset; });
    if (next) *next = (it == a.end()) ? Anchor{-1, -1} : *it;
    if (it == a.begin()) return a.front();
    return *std::prev(it);
}

LineIndex::Anchor LineIndex::anchorForLine(int64_t line) const {
    QMutexLocker lock(&st_->mutex);
    const auto& a = st_->anchors;
    auto it = std::upper_bound(a.begin(), a.end(), line, [](int64_t v, const Anchor& x) { return v < x.line; });
    return it == a.begin() ? a.front() : *std::prev(it);
}

int64_t LineIndex::nextLineStart(int64_t s) const {
    const int64_t size = src_->size();
    if (s >= size) return size;
    const TextSource& t = *src_;
    if (covered(s)) {
        Anchor next{-1, -1};
        const Anchor a = anchorAtOrBefore(s, false, &next);
        // Every line start between two anchors lies less than kBytesPerAnchor after the first.
        const int64_t nl = t.findNewline(s, a.offset + kBytesPerAnchor - 1);
        if (nl >= 0) return std::min(nl + 1, size);
        if (next.offset >= 0) return next.offset;
        if (st_->done.load()) {
            // Last stretch of the text: a line start after the window would have been an anchor.
            return size;
        }
    }
    const int64_t nl = t.findNewline(s, size);
    return nl < 0 ? size : std::min(nl + 1, size);
}

int64_t LineIndex::prevLineStart(int64_t s) const {
    if (s <= 0) return 0;
    const bool cov = covered(s);   // before the anchor, as in lineStartContaining
    const Anchor a = anchorAtOrBefore(s, true, nullptr);
    int64_t to = s - 1;   // the "\n" that ends the previous line is not searched
    if (cov) to = std::min(to, a.offset + kBytesPerAnchor - 1);
    const int64_t nl = src_->findNewlineBack(a.offset, to);
    return nl < 0 ? a.offset : nl + 1;
}

int64_t LineIndex::lineStartContaining(int64_t pos) const {
    const int64_t size = src_->size();
    pos = std::clamp<int64_t>(pos, 0, size);
    if (pos == size && size > 0 && src_->at(size - 1) == '\n') {
        // The end of a text that ends with "\n" belongs to its last line.
        pos = size - 1;
    }
    // Coverage first: anchors read after it include every anchor up to 'pos'. Read
    // the other way round, a stale anchor could be taken as the nearest one.
    const bool cov = covered(pos);
    const Anchor a = anchorAtOrBefore(pos, false, nullptr);
    int64_t to = pos;
    if (cov) to = std::min(to, a.offset + kBytesPerAnchor - 1);
    const int64_t nl = src_->findNewlineBack(a.offset, to);
    return nl < 0 ? a.offset : nl + 1;
}

int64_t LineIndex::lineContentEnd(int64_t s) const {
    const int64_t next = nextLineStart(s);
    int64_t e = next;
    if (e > s && src_->at(e - 1) == '\n') --e;
    if (e > s && src_->at(e - 1) == '\r') --e;
    return e;
}

int64_t LineIndex::lineNumberOf(int64_t s) const {
    if (!covered(s)) return -1;
    const Anchor a = anchorAtOrBefore(s, false, nullptr);
    int64_t n = a.line;
    int64_t p = a.offset;
    while (p < s) {
        const int64_t nl = src_->findNewline(p, s);
        if (nl < 0) break;
        ++n;
        p = nl + 1;
    }
    return n;
}

int64_t LineIndex::lineStartOfNumber(int64_t n) const {
    if (n < 0 || n >= st_->lines.load()) return -1;
    const Anchor a = anchorForLine(n);
    int64_t s = a.offset;
    for (int64_t i = a.line; i < n; ++i) s = nextLineStart(s);
    return s;
}

} // namespace viewText
} // namespace tav
