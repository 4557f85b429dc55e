#include "src/find/FileMarks.h"

#include "base/extract/XExtract.h"
#include "base/io/XLineReaderDA.h"
#include "base/log/Logger.h"

namespace tavFinder {

bool forEachMark(const FileResult& r, const tav::find::XContentFilter& filter, const tav::find::XContentFilter::MarkSink& each,
                 const std::atomic<bool>* cancel, const QByteArray* text) {
    if (r.layer.isComplete()) {
        if (r.layer.size() > 0) each(r.layer.marks().data(), r.layer.marks().size());
        return true;
    }
    tav::find::XContentFilter own(filter);
    own.setKeepMarks(0);
    own.seekHome();
    if (text) {
        own.forEachMark(*text, each);
        return true;
    }
    const QString path = r.fileInfo.absoluteFilePath();
    if (r.extracted) {
        tav::extract::XExtractor ex;
        if (cancel) ex.setKeepGoing([cancel]() { return !cancel->load(); });
        tav::extract::Part part;
        if (!ex.partOf(path, r.member, part)) {
            tav::log(tav::LOG_ERROR, "forEachMark, no text of <<<$>>>", r.displayPath());
            return false;
        }
        own.forEachMark(part.text, each);
        return !(cancel && cancel->load());
    }
    tav::XLineReaderDA reader;
    if (!reader.openFile(path, 0x10000, true)) {
        tav::log(tav::LOG_ERROR, "forEachMark, cannot open <<<$>>>", path);
        return false;
    }
    tav::find::XContentFilter::WindowWatch watch;
    if (cancel) watch.keepGoing = [cancel]() { return !cancel->load(); };
    own.forEachMark(reader, each, &watch);
    if (reader.readError()) tav::log(tav::LOG_ERROR, "forEachMark, read error in <<<$>>>", path);
    return !watch.stopped && !reader.readError();
}

tav::find::XRamLayer allMarks(const FileResult& r, const tav::find::XContentFilter& filter, const std::atomic<bool>* cancel) {
    if (r.layer.isComplete()) return r.layer;
    std::vector<tav::find::XRam> marks;
    marks.reserve(size_t(std::min<uint64_t>(r.layer.hitCount(), uint64_t(1) << 24)));
    const bool whole = forEachMark(r, filter, [&marks](const tav::find::XRam* m, size_t n) { marks.insert(marks.end(), m, m + n); },
                                   cancel);
    if (!whole && marks.size() < size_t(r.layer.size())) return r.layer;   // the file went: what was kept
    tav::find::XRamLayer layer;
    layer.assign_sorted(std::move(marks));
    layer.setBinary(r.layer.isBinary());
    layer.set_color_background(r.layer.color_background());
    return layer;
}

} // namespace tavFinder
