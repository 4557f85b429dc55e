#include "base/find/XContentFilter.h"

#include "base/find/XContentSymbols.h"
#include "base/io/XLineReaderDA.h"
#include "base/log/Logger.h"

#include <algorithm>

namespace tav {
namespace find {

namespace {
// Units decided by the expression tree add all their marks: the ones past 'keep' are counted.
void keepFirst(std::vector<XRam>& marks, size_t keep, uint64_t& dropped) {
    if (marks.size() <= keep) return;
    dropped += marks.size() - keep;
    marks.resize(keep);
}
} // namespace

XContentFilter::XContentFilter() = default;
XContentFilter::~XContentFilter() = default;

XContentFilter::XContentFilter(const XContentFilter& o)
    : sText_(o.sText_), flagRegEx_(o.flagRegEx_), flagWholeWords_(o.flagWholeWords_), flagMatchCase_(o.flagMatchCase_),
      scope_(o.scope_), sError_(o.sError_), errorPos_(o.errorPos_), symbols_(o.symbols_), seekPos_(o.seekPos_),
      keepMarks_(o.keepMarks_) {}

XContentFilter& XContentFilter::operator=(const XContentFilter& o) {
    if (this == &o) return *this;
    sText_ = o.sText_;
    flagRegEx_ = o.flagRegEx_;
    flagWholeWords_ = o.flagWholeWords_;
    flagMatchCase_ = o.flagMatchCase_;
    scope_ = o.scope_;
    sError_ = o.sError_;
    errorPos_ = o.errorPos_;
    if (symbols_ != o.symbols_) scratch_.reset();   // scratch belongs to the symbols it was made for
    symbols_ = o.symbols_;
    seekPos_ = o.seekPos_;
    keepMarks_ = o.keepMarks_;
    return *this;
}

XContentFilter::XContentFilter(XContentFilter&& o) noexcept = default;
XContentFilter& XContentFilter::operator=(XContentFilter&& o) noexcept = default;

bool XContentFilter::hasHyperscan() {
#ifdef TF_HAVE_HYPERSCAN
    return true;
#else
    return false;
#endif
}

bool XContentFilter::createSymbols(const QString& text, bool regularExpression, Engine engine) {
    sText_ = text;
    flagRegEx_ = regularExpression;
    sError_.clear();
    errorPos_ = 0;
    symbols_.reset();
    scratch_.reset();
    seekPos_ = 0;
    auto sym = std::make_shared<XContentSymbols>();
    sym->wholeWords = flagWholeWords_;
    sym->matchCase = flagMatchCase_;
    if (!compile_symbols(text, regularExpression, engine == ENGINE_AUTO, *sym, sError_, errorPos_)) {
        log(tav::LOG_REJECTED, "XContentFilter::createSymbols, '$' - $", text, errorMessage());
        return false;
    }
    symbols_ = std::move(sym);
    return true;
}

QString XContentFilter::errorMessage() const {
    if (sError_.isEmpty()) return QString();
    return errorPos_ > 0 ? fill("character $: $", errorPos_, sError_) : sError_;
}

QString XContentFilter::engineName() const {
    if (!symbols_) return QString();
    return symbols_->useHyperscan() ? QStringLiteral("hyperscan") : QStringLiteral("pcre2");
}

QString XContentFilter::scope_to_string(uint32_t scope) {
    switch (scope) {
    case SCOPE_PARAGRAPH: return QStringLiteral("Paragraph");
    case SCOPE_SENTENCE: return QStringLiteral("Sentence");
    default: return QStringLiteral("File");
    }
}

QString XContentFilter::toString(bool verbose) const {
    if (!verbose)
        return fill("'$' ($$$$)", sText_, scope_as_string(), flagRegEx_ ? QStringLiteral(", regEx") : QString(),
                    flagWholeWords_ ? QStringLiteral(", whole words") : QString(),
                    flagMatchCase_ ? QStringLiteral(", match case") : QString());
    const QString tree = symbols_ && !symbols_->regEx ? symbols_->query.toString() : QString();
    return fill("XContentFilter{text:'$', regEx:$, wholeWords:$, matchCase:$, scope:$, valid:$, engine:$, query:$}", sText_,
                flagRegEx_, flagWholeWords_, flagMatchCase_, scope_as_string(), isValid(), engineName(), tree);
}

XContentScratch& XContentFilter::scratch() {
    if (!scratch_) {
        scratch_ = std::make_unique<XContentScratch>();
        if (!prepare_scratch(*symbols_, *scratch_)) log(tav::LOG_ERROR, "XContentFilter::find, out of memory for the search");
    }
    return *scratch_;
}

XRamLayer XContentFilter::limit(std::vector<XRam>& marks, uint32_t maxMarks, bool binary) {
    XRamLayer layer;
    layer.setBinary(binary);
    size_t first = 0;
    if (seekPos_ > 0)
        first = size_t(std::lower_bound(marks.begin(), marks.end(), seekPos_,
                                         [](const XRam& r, int64_t v) { return r.pos() < v; }) -
                       marks.begin());
    size_t last = marks.size();
    if (maxMarks > 0 && last - first > maxMarks) last = first + maxMarks;
    // The layer gets exactly the marks it keeps: results hold millions of them,
    // and the collecting vector's spare room would stay with every file.
    if (last > first) layer.assign_sorted(std::vector<XRam>(marks.begin() + ptrdiff_t(first), marks.begin() + ptrdiff_t(last)));
    if (maxMarks > 0 && last > first) seekPos_ = marks[last - 1].end();
    return layer;
}

XRamLayer XContentFilter::find(uint32_t maxMarks, XLineReaderDA& reader) { return find(maxMarks, reader, nullptr); }

uint64_t XContentFilter::searchReader(XLineReaderDA& reader, std::vector<XRam>& marks, WindowWatch* watch, size_t keep,
                                      const std::function<void(std::vector<XRam>&)>& flush) {
    XContentScratch& sc = scratch();
    XContentSearch search(*symbols_, sc, scope_, reader.isWhole());
    search.setKeep(keep);
    const auto cut = scope_ == SCOPE_FILE ? XLineReaderDA::CUT_LINE : XLineReaderDA::CUT_PARAGRAPH;
    XLineReaderDA::Window w;
    if (reader.firstWindow(cut, w)) {
        uint64_t counted = 0;   // windows may overlap: progress counts each byte once
        for (;;) {
            search.window(w.data, w.size, w.offset, marks);
            if (flush && !marks.empty()) flush(marks);
            if (watch) {
                const uint64_t end = uint64_t(w.offset) + uint64_t(w.size);
                if (watch->bytesDone && end > counted) watch->bytesDone->fetch_add(end - counted, std::memory_order_relaxed);
                counted = std::max(counted, end);
                if (!w.last && watch->keepGoing && !watch->keepGoing()) {
                    watch->stopped = true;
                    break;
                }
            }
            if (w.last || !reader.nextWindow(cut, w)) break;
        }
    }
    search.finish(marks);
    if (flush && !marks.empty()) flush(marks);
    return search.counted();
}

XRamLayer XContentFilter::find(uint32_t maxMarks, XLineReaderDA& reader, WindowWatch* watch) {
    if (watch) watch->stopped = false;
    if (!symbols_ || !reader.isOpen()) {
        std::vector<XRam> none;
        return limit(none, maxMarks, reader.isBinary());
    }
    // Marks are collected in the worker's own vector, reused from file to file.
    std::vector<XRam>& marks = scratch().marks;
    marks.clear();
    // Past the marks kept, each window's marks are only counted (the search never
    // looks back at the marks it has given).
    const size_t keep = maxMarks == 0 && seekPos_ == 0 ? keepMarks_ : 0;
    uint64_t dropped = 0;
    std::function<void(std::vector<XRam>&)> cutBack;
    if (keep > 0) cutBack = [keep, &dropped](std::vector<XRam>& m) { keepFirst(m, keep, dropped); };
    dropped += searchReader(reader, marks, watch, keep, cutBack);
    XRamLayer layer = limit(marks, maxMarks, reader.isBinary());
    if (dropped > 0) layer.setHitCount(uint64_t(layer.size()) + dropped);
    // One file with a flood of hits should not keep its room for the rest of the search.
    scratch().trim();
    return layer;
}

XRamLayer XContentFilter::find(uint32_t maxMarks, const QByteArray& text) {
    std::vector<XRam> marks;
    if (!symbols_) return limit(marks, maxMarks, false);
    const size_t keep = maxMarks == 0 && seekPos_ == 0 ? keepMarks_ : 0;
    XContentSearch search(*symbols_, scratch(), scope_);
    search.setKeep(keep);
    search.window(text.constData(), size_t(text.size()), 0, marks);
    search.finish(marks);
    const bool binary = text.left(0x10000).contains('\0');
    uint64_t dropped = search.counted();
    if (keep > 0) keepFirst(marks, keep, dropped);
    XRamLayer layer = limit(marks, maxMarks, binary);
    if (dropped > 0) layer.setHitCount(uint64_t(layer.size()) + dropped);
    return layer;
}

uint64_t XContentFilter::forEachMark(XLineReaderDA& reader, const MarkSink& each, WindowWatch* watch) {
    if (watch) watch->stopped = false;
    if (!symbols_ || !reader.isOpen()) return 0;
    std::vector<XRam>& marks = scratch().marks;
    marks.clear();
    uint64_t n = 0;
    searchReader(reader, marks, watch, 0, [&](std::vector<XRam>& m) {
        each(m.data(), m.size());
        n += m.size();
        m.clear();
    });
    scratch().trim();
    return n;
}

uint64_t XContentFilter::forEachMark(const QByteArray& text, const MarkSink& each) {
    if (!symbols_) return 0;
    std::vector<XRam> marks;
    XContentSearch search(*symbols_, scratch(), scope_);
    search.window(text.constData(), size_t(text.size()), 0, marks);
    search.finish(marks);
    if (!marks.empty()) each(marks.data(), marks.size());
    return marks.size();
}

} // namespace find
} // namespace tav
