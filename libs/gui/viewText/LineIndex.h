#pragma once
// Line starts of a text, found in the background. Only every 64th line start
// (and every line start 16 KiB or more after the previous one kept) is stored,
// so the index of a 1 GiB log stays a few megabytes; everything in between is
// found again with a short scan. Every lookup touches at most 16 KiB of text,
// except while indexing has not reached the place asked for.
#include "gui/viewText/TextSource.h"

#include <QMutex>
#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

namespace tav {
namespace viewText {

class LineIndex {
public:
    static constexpr int64_t kLinesPerAnchor = 64;
    static constexpr int64_t kBytesPerAnchor = 16 * 1024;
    // Sources up to this size are indexed at once, larger ones in the background.
    static constexpr int64_t kSynchronousLimit = 4 * 1024 * 1024;

    explicit LineIndex(TextSourcePtr src);
    ~LineIndex();
    LineIndex(const LineIndex&) = delete;
    LineIndex& operator=(const LineIndex&) = delete;

    // Indexes small sources now and starts a worker on the global pool for the rest.
    void start();
    void cancel();

    bool isDone() const;
    // Bytes scanned so far; line starts up to here are known.
    int64_t indexedBytes() const;
    // Number of lines, -1 until indexing is done. An empty text has one line.
    int64_t lineCount() const;
    // Lines found so far.
    int64_t linesSoFar() const;
    // Bytes held by the index.
    size_t memoryBytes() const;
    size_t anchorCount() const;

    const TextSource& source() const { return *src_; }
    int64_t size() const { return src_->size(); }

    // ---- navigation; every 'lineStart' argument must be a true line start --------------
    // Start of the next line, or size() when 'lineStart' is on the last line.
    int64_t nextLineStart(int64_t lineStart) const;
    // Start of the previous line (0 for the first line).
    int64_t prevLineStart(int64_t lineStart) const;
    // Start of the line holding byte 'pos' (size() counts as part of the last line).
    int64_t lineStartContaining(int64_t pos) const;
    // End of the line's text: before its "\n" or "\r\n" (or the end of the text).
    int64_t lineContentEnd(int64_t lineStart) const;
    // 0-based line number of a line start; -1 while indexing has not reached it.
    int64_t lineNumberOf(int64_t lineStart) const;
    // Start of 0-based line 'n'; -1 while unknown or beyond the end.
    int64_t lineStartOfNumber(int64_t n) const;

private:
    struct Anchor {
        int64_t line;
        int64_t offset;
    };
    struct State {
        QMutex mutex;
        std::vector<Anchor> anchors{{0, 0}};
        std::atomic<int64_t> indexed{0};
        std::atomic<int64_t> lines{1};
        std::atomic<bool> done{false};
        std::atomic<bool> cancel{false};
    };
    static void run(const std::shared_ptr<State>& st, const TextSourcePtr& src);
    Anchor anchorAtOrBefore(int64_t offset, bool strictlyBefore, Anchor* next) const;
    Anchor anchorForLine(int64_t line) const;
    bool covered(int64_t pos) const;

    TextSourcePtr src_;
    std::shared_ptr<State> st_;
    bool started_ = false;
};

} // namespace viewText
} // namespace tav
