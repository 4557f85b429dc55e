#pragma once
// Reads a file's bytes with read() into a buffer that the owner reuses from
// file to file. Files up to the window size are held whole; bigger ones are
// handed out window by window, each window ending at a line (or paragraph)
// boundary with the partial rest carried into the next one, so memory stays
// bounded whatever the file size. A window without such a boundary grows up to
// the largest window size before a line or paragraph is cut. Line starts are
// indexed only when asked.
#include <QByteArray>
#include <QFileInfo>
#include <QString>
#include <cstdint>
#include <memory>
#include <vector>

namespace tav {

class XLineReaderDA {
public:
    static constexpr size_t DEFAULT_WINDOW = size_t(8) << 20;

    XLineReaderDA();
    ~XLineReaderDA();
    XLineReaderDA(const XLineReaderDA&) = delete;
    XLineReaderDA& operator=(const XLineReaderDA&) = delete;

    // Opens a regular file and reads its first window. 'probeBytes': how many
    // leading bytes decide binary or text (a NUL among them) when 'checkBinary'.
    // False (nothing changed but the reader closed) when the file cannot be read.
    bool openFile(const QString& path, uint64_t probeBytes, bool checkBinary);
    // The same for a file whose size a directory scan just found: it is read up
    // to that size without another stat, and a link put in its place is not followed.
    bool openFile(const QString& path, uint64_t probeBytes, bool checkBinary, uint64_t knownSize);
    bool openFile(const QFileInfo& fi, uint64_t probeBytes, bool checkBinary);
    void close();

    bool isOpen() const { return open_; }
    const QString& path() const { return path_; }
    bool isBinary() const { return binary_; }
    // The file's size in bytes (what was read when the whole file is held).
    uint64_t getMemorySize() const;
    // Lines: newline characters, plus one for a last line without a newline.
    uint64_t countLines();
    // Line i (from 0) without its line end; empty beyond the last line.
    QString lineAt(uint64_t i);
    QByteArray lineBytesAt(uint64_t i);

    // Largest part of a file held at once (at least 4 KiB); set before openFile.
    void setWindowSize(size_t bytes);
    // Windows of 'bytes' (they stay in the processor's cache while searched), each
    // growing up to 'maxBytes' when it holds no line or paragraph end.
    void setWindowSizes(size_t bytes, size_t maxBytes);
    size_t windowSize() const { return window_; }
    size_t maxWindowSize() const { return maxWindow_; }
    bool isWhole() const { return whole_; }
    // The open file's modification time in nanoseconds since 1970 (INT64_MIN: unknown).
    int64_t modifiedNs() const;
    // The file's first bytes, right after openFile (before any window is handed out).
    const char* head() const { return bufOffset_ == 0 ? buf_.get() : nullptr; }
    size_t headSize() const { return bufOffset_ == 0 ? len_ : 0; }
    // A read failed after the file was opened (the windows ended early); errno's value.
    int readError() const { return readError_; }
    // Bytes of holes a sparse file's windows skipped (they hold only zeros).
    uint64_t skippedHoleBytes() const { return holeBytes_; }

    // ---- windows for the content search ---------------------------------------------
    enum Cut { CUT_LINE, CUT_PARAGRAPH };
    struct Window {
        const char* data = nullptr;
        size_t size = 0;
        uint64_t offset = 0;   // file position of data[0]
        bool last = true;
    };
    // The first window (rewinds a file read in windows); false when nothing is open.
    bool firstWindow(Cut cut, Window& w);
    // The window after the one last handed out; false at the end of the file.
    bool nextWindow(Cut cut, Window& w);

private:
    bool open(const QString& path, uint64_t probeBytes, bool checkBinary, int64_t knownSize);
    bool fill() { return fill(window_); }
    bool fill(size_t target);                 // reads until the buffer holds 'target' bytes or the file ends
    bool skipHole();                          // at a hole: past it when the buffer is empty, else stop there
    bool readFrom(uint64_t offset);           // restarts the buffer at a file position
    void reserve(size_t bytes);
    // Where the window ends; 'boundary' false when it had to cut a line (or a paragraph).
    size_t cutPosition(Cut cut, bool& boundary) const;
    void handOut(Cut cut, Window& w);
    bool buildLineIndex();
    uint64_t countLinesByPass();

    QString path_;
    int fd_ = -1;
    bool open_ = false;
    bool whole_ = false;
    bool binary_ = false;
    bool eof_ = false;
    uint64_t fileSize_ = 0;      // from fstat (0: read to the end) or from the caller
    bool sizeGiven_ = false;     // fileSize_ came from the caller and bounds every read
    bool sparse_ = false;        // holes are skipped instead of read as zeros
    bool holeAhead_ = false;     // the buffer ends where a hole begins
    bool trailingHole_ = false;  // the file ends in a hole
    uint64_t holeBytes_ = 0;
    int readError_ = 0;
    uint64_t readPos_ = 0;       // file position of the next read
    size_t window_ = DEFAULT_WINDOW;
    size_t maxWindow_ = DEFAULT_WINDOW;

    std::unique_ptr<char[]> buf_;
    size_t cap_ = 0;
    size_t len_ = 0;             // valid bytes in buf_
    uint64_t bufOffset_ = 0;     // file position of buf_[0]
    size_t emitted_ = 0;         // bytes of buf_ handed out in the current window
    bool windowsDone_ = false;

    // line counting while windows are handed out
    uint64_t newlines_ = 0;
    char lastByte_ = '\n';
    bool linesKnown_ = false;
    uint64_t lines_ = 0;
    std::vector<uint64_t> lineStarts_;
    bool lineIndexBuilt_ = false;
};

} // namespace tav
