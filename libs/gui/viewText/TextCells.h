#pragma once
// Turning the bytes of a line into display cells: UTF-8 decoding where every
// invalid byte becomes a cell of its own, tabs expanded to tab stops, control
// characters shown as symbols, wide East Asian characters two columns,
// combining marks none. Columns always count from the start of the line.
#include "gui/viewText/TextSource.h"

#include <cstdint>
#include <list>
#include <vector>

namespace tav {
namespace viewText {

enum class CellKind : uint8_t { Normal, Tab, Control, Invalid, Combining };

struct Cell {
    int64_t byte = 0;       // first byte in the text
    int64_t col = 0;        // first display column in its line
    char32_t cp = 0;        // code point (the byte value for an invalid byte)
    int8_t len = 1;         // bytes
    int8_t width = 1;       // display columns
    CellKind kind = CellKind::Normal;
    int64_t end() const { return byte + len; }
};

// Decodes one character at p (p < end). Returns its length in bytes (1..4);
// 'valid' false means p[0] is a byte that starts no valid sequence.
int decodeUtf8(const unsigned char* p, const unsigned char* end, char32_t* cp, bool* valid);
// Display width of a code point: 0 combining, 2 wide, else 1.
int codePointWidth(char32_t cp);
// The one cell at 'pos' (pos < lineEnd) starting at display column 'col'.
Cell cellAt(const TextSource& src, int64_t pos, int64_t lineEnd, int64_t col, int tabWidth);
// What a cell looks like: the character itself, or the symbol for a control or invalid byte.
QString cellText(const Cell& c);

// Cells of [from, lineEnd) starting at column 'startCol', until a cell would start at
// or after 'maxCol' (the last cell may reach beyond maxCol). Appends to 'out'.
void decodeCells(const TextSource& src, int64_t from, int64_t lineEnd, int64_t startCol, int64_t maxCol, int tabWidth,
                 std::vector<Cell>& out);

// Columns of lines, with checkpoints for long lines so that a column deep in a
// line of hundreds of megabytes is found without decoding it all again.
class ColumnMapper {
public:
    static constexpr int64_t kCheckpointBytes = 16 * 1024;

    explicit ColumnMapper(int tabWidth = 4) : tabWidth_(tabWidth) {}
    void setTabWidth(int w);
    int tabWidth() const { return tabWidth_; }
    void clear() { cache_.clear(); }

    // First cell of line [ls, le) that starts at column 'col' or later; (le, column
    // after the last cell) when there is none.
    int64_t byteAtOrAfterCol(const TextSource& src, int64_t ls, int64_t le, int64_t col, int64_t* cellCol);
    // Byte of the cell that covers column 'col' of line [ls, le); le when the line is shorter.
    int64_t byteAtCol(const TextSource& src, int64_t ls, int64_t le, int64_t col);
    // Column of the cell that holds byte 'pos' of line [ls, le); the column after the
    // last cell for pos >= le.
    int64_t colAtByte(const TextSource& src, int64_t ls, int64_t le, int64_t pos);
    // Column after the last cell, and the start column of the last cell (0, 0 for an empty line).
    void extent(const TextSource& src, int64_t ls, int64_t le, int64_t* totalCols, int64_t* lastCellCol);

private:
    struct Checkpoint {
        int64_t byte;
        int64_t col;
    };
    struct Entry {
        int64_t ls = -1;
        std::vector<Checkpoint> points;   // sorted, first is (ls, 0)
    };
    // Best known starting point at or before byte 'pos' / column 'col'.
    Checkpoint startFor(const TextSource& src, int64_t ls, int64_t le, int64_t pos, int64_t col, Entry** entry);
    // Walks from 'cp' until byte >= stopByte or col >= stopCol (whichever first),
    // recording checkpoints into 'e'. Returns the cell position reached; 'last' the
    // start of the last cell passed ('cp' when none was passed).
    Checkpoint walk(const TextSource& src, Checkpoint cp, int64_t le, int64_t stopByte, int64_t stopCol, Entry* e,
                    Checkpoint* last);

    int tabWidth_;
    std::list<Entry> cache_;   // most recently used first
};

} // namespace viewText
} // namespace tav
