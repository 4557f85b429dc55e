#pragma once
// A text view for files of any size. The file is mapped, its lines are indexed
// in the background, and only the visible rows are decoded and painted, so the
// first screen of a multi-gigabyte log shows at once and memory stays near the
// size of the (sparse) line index. Marks of a layer group are painted as
// coloured backgrounds; the marks of a row are found by binary search, so a
// million marks cost nothing while scrolling.
#include "base/core/XEventListener.h"
#include "base/find/XRamLayerGroup.h"
#include "gui/viewText/LineIndex.h"
#include "gui/viewText/TextCells.h"
#include "gui/viewText/TextMarks.h"

#include <QAbstractScrollArea>
#include <QColor>
#include <QTimer>
#include <functional>
#include <memory>
#include <vector>

class QLabel;

namespace tav {
class XMenu;
}

namespace tav {
namespace viewText {

class XTextView : public QAbstractScrollArea {
    Q_OBJECT
public:
    using MenuBuilder = std::function<void(XMenu&, const QString&)>;

    explicit XTextView(QWidget* parent = nullptr);
    ~XTextView() override;

    // ---- content ---------------------------------------------------------------------
    // Shows a file; false (and errorString()) when it cannot be read. The view is empty then.
    bool openFile(const QString& path);
    // Shows bytes held in memory under a name.
    void setBytes(const QByteArray& bytes, const QString& name);
    // Lets go of the file (the mapping is released, the view is empty).
    void closeFile();
    bool hasContent() const { return bool(src_); }
    QString filePath() const;
    int64_t size() const;
    QString errorString() const { return error_; }
    const LineIndex* lineIndex() const { return index_.get(); }
    bool isIndexing() const;
    // Number of lines, -1 while indexing.
    int64_t lineCount() const;

    // ---- settings --------------------------------------------------------------------
    void set_ruler(bool on);
    bool ruler() const { return ruler_; }
    void set_wrap(bool on);
    bool wrap() const { return wrap_; }
    // Automatic wrap: files whose first megabyte holds a line longer than a few
    // screens are wrapped even when wrap is off.
    void set_auto_wrap(bool on);
    bool autoWrap() const { return autoWrap_; }
    bool isWrapping() const { return wrap_ || (autoWrap_ && longLines_); }
    void set_line_info_pos(LINE_INFO_POS pos);
    LINE_INFO_POS line_info_pos() const { return linePos_; }
    void set_tab_width(int w);
    int tabWidth() const { return cols_.tabWidth(); }
    void setBackgroundColor(const QColor& c);
    QColor backgroundColor() const;
    void re_paint();
    // The line under the text: the active hit's place after hit navigation, the
    // cursor's place after the cursor moved.
    QString statusText() const;
    // Where the pages of an extracted document begin: the status line names the page.
    void setPageStarts(std::vector<int64_t> starts);
    QWidget* statusLine() const;

    // ---- positions (0-based lines and display columns) -----------------------------------
    struct TextPos {
        int64_t line = -1;      // -1 while indexing has not reached the place
        int64_t column = -1;
    };
    TextPos positionOfByte(int64_t pos) const;
    // Byte of a line and column; columns beyond the line give its end. -1 when unknown.
    int64_t byteOfPosition(int64_t line, int64_t column) const;
    int64_t caretPos() const { return caret_; }
    void setCaretPos(int64_t pos, bool extendSelection = false);
    // The first row shown: its line start and its row within a wrapped line.
    int64_t topLineStart() const { return top_.ls; }
    int64_t topSubRow() const { return top_.sub; }
    // Line number of the first row shown, -1 while unknown.
    int64_t firstVisibleLine() const;
    // The texts of the rows on screen as painted (tabs expanded, symbols for
    // control and invalid bytes).
    QStringList visibleRowTexts() const;
    int fullyVisibleRows() const;
    int horizontalScrollColumn() const { return int(hScroll_); }

    // Shows 'pos' ('len' bytes from it): the line start stays in view whenever the
    // bytes fit beside it, otherwise they are centred.
    void scrollToByte(int64_t pos, bool center = true, int64_t len = 0);
    void scrollToLine(int64_t line);
    void scrollToStart();
    void scrollToEnd();
    // Moves the first row by 'delta' rows (negative: up), stopping at the ends.
    void scrollRows(int64_t delta);
    // Byte under a viewport point: the character cell that holds it ('boundary'
    // false), or the nearest gap between characters ('boundary' true).
    int64_t byteAtPoint(const QPoint& p, bool boundary = false) const;
    // Viewport rectangle of the cell that holds 'pos'; empty when it is not on screen.
    QRect cellRect(int64_t pos) const;

    // ---- layers ----------------------------------------------------------------------
    find::XRamLayerGroup& layers() { return layers_; }
    // Marks of the mouse-over categories (20 char, 30 word, 40 line, 45 sentence,
    // 50 paragraph); each follows the pointer when present.
    find::XRamLayer& mouseOverLayer() { return mouseOver_; }
    // The layer whose active mark is drawn distinctly and moved by n / N.
    void set_active_layer(find::XRamLayer* layer);
    find::XRamLayer* activeLayer() const;
    int activeLayerId() const;
    void scrollToRam(const find::XRam& ram);
    QString textFromMarkRam(const find::XRam& ram) const;
    // Moves the active mark of the active layer (down: towards the end) and shows it.
    bool moveActiveMark(bool down);

    // ---- selection -------------------------------------------------------------------
    int64_t selectionStart() const { return std::min(anchor_, caret_); }
    int64_t selectionEnd() const { return std::max(anchor_, caret_); }
    bool hasSelection() const { return anchor_ != caret_; }
    void setSelection(int64_t from, int64_t to);
    void clearSelection();
    void selectAll();
    // Selected text, at most 'maxBytes' bytes of it.
    QString selectedText(int64_t maxBytes = 64LL * 1024 * 1024) const;
    void copy() const;

    // ---- context menu ------------------------------------------------------------------
    // Builders run every time the menu opens, with the menu and the selected text.
    void add_extra_context_menu(MenuBuilder builder);
    // A submenu with this title listing the web-search machines; an entry searches the
    // web for the selection.
    void add_extra_context_menu_web_search(const QString& title);
    QString webSearchTitle() const { return webSearchTitle_; }
    // Fills a menu as the context menu does: the view's own entries, the web search, the builders.
    void buildContextMenu(XMenu& menu);

    // ---- events ----------------------------------------------------------------------
    XEventListener<std::function<void(const MouseOverMark&)>>& eventMouseOver() { return evMouseOver_; }
    XEventListener<std::function<void(const XActiveMark&)>>& eventActiveMark() { return evActiveMark_; }
    XEventListener<std::function<void(const QString&)>>& eventSelectionChanged() { return evSelection_; }
    XEventListener<std::function<void(int)>>& eventLayerChanged() { return evLayerChanged_; }
    // Return / Enter pressed in the view.
    XEventListener<std::function<void()>>& eventActivated() { return evActivated_; }
    // Indexing finished (line numbers and line count are known).
    XEventListener<std::function<void()>>& eventIndexed() { return evIndexed_; }

    // ---- measurements --------------------------------------------------------------------
    int paintCount() const { return paintCount_; }
    int64_t lastPaintMicros() const { return lastPaintMicros_; }

protected:
    void paintEvent(QPaintEvent* e) override;
    void resizeEvent(QResizeEvent* e) override;
    void changeEvent(QEvent* e) override;
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent* e) override;
    void mousePressEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void mouseReleaseEvent(QMouseEvent* e) override;
    void mouseDoubleClickEvent(QMouseEvent* e) override;
    void wheelEvent(QWheelEvent* e) override;
    void contextMenuEvent(QContextMenuEvent* e) override;
    void leaveEvent(QEvent* e) override;
    void focusInEvent(QFocusEvent* e) override;
    void focusOutEvent(QFocusEvent* e) override;

private:
    // A position of a row: the line's start and the row within the wrapped line.
    struct RowPos {
        int64_t ls = 0;
        int64_t sub = 0;
        bool operator<(const RowPos& o) const { return ls < o.ls || (ls == o.ls && sub < o.sub); }
        bool operator==(const RowPos& o) const { return ls == o.ls && sub == o.sub; }
        bool operator<=(const RowPos& o) const { return !(o < *this); }
    };
    // A row on screen.
    struct Row {
        RowPos pos;
        int64_t le = 0;          // end of the line's text
        int64_t eolEnd = 0;      // start of the next line
        int64_t byteStart = 0;   // first byte shown
        int64_t byteEnd = 0;     // after the last byte of this row
        int64_t colStart = 0;    // column of the row's left edge
        int64_t firstCol = 0;    // column of the first cell shown
        int64_t lineNo = -1;
        bool lastOfLine = true;
    };

    void resetContent();
    void afterOpen();
    // Opens the file again when it became shorter than its mapping; true when it did.
    bool reloadIfShrunk();
    // Text of the bytes [a, b); reads a file that became shorter than its mapping
    // through a file handle, as the mapping's lost pages would fault.
    QString textOfBytes(int64_t a, int64_t b) const;
    void updateMetrics();
    int64_t wrapColumns() const;
    int64_t visibleColumns() const;
    int gutterWidth() const;
    double textX() const;
    void invalidateLayout();
    void ensureLayout() const;
    void layoutRows() const;
    void decodeRow(const Row& r, std::vector<Cell>& out) const;
    double xOfByte(const Row& r, const std::vector<Cell>& cells, int64_t b) const;
    const Row* rowAtY(int y) const;

    // Row arithmetic.
    int64_t rowsOfLine(int64_t ls) const;
    RowPos rowPosOf(int64_t byte) const;
    bool nextRow(RowPos& p) const;
    bool prevRow(RowPos& p) const;
    RowPos lastTop() const;
    void setTop(RowPos p);
    int64_t rowStartByte(const RowPos& p, int64_t* col) const;

    void updateScrollBars();
    bool lineScrollMode() const;
    void onVScroll(int value);
    void onHScroll(int value);
    void onIndexTick();
    void ensureCaretVisible();
    void updateMouseOver(const QPoint& p);
    void clearMouseOver();
    void fireSelectionIfChanged();
    bool activateMarkAt(int64_t pos);
    void moveCaretVertical(int64_t rows, bool extend);

    void paintRow(QPainter& p, const Row& r, int y, std::vector<Cell>& cells);
    void updateStatusLine();
    QString composeStatusText() const;
    void layoutStatusLine();

    // content
    TextSourcePtr src_;
    std::unique_ptr<LineIndex> index_;
    mutable ColumnMapper cols_;
    QString error_;
    bool longLines_ = false;

    // settings
    bool ruler_ = true;
    bool wrap_ = false;
    bool autoWrap_ = false;
    LINE_INFO_POS linePos_ = LINE_INFO_TOP_RIGHT;
    QColor background_;
    QLabel* statusLine_ = nullptr;
    bool infoHit_ = false;   // the status line follows the active hit, not the cursor
    std::vector<int64_t> pageStarts_;

    // view state
    RowPos top_;
    int64_t hScroll_ = 0;
    int64_t maxColsSeen_ = 0;
    mutable std::vector<Row> rows_;
    mutable bool layoutValid_ = false;
    mutable RowPos lastTopCache_;
    mutable bool lastTopValid_ = false;
    double cw_ = 8;
    int rowH_ = 16;
    int ascent_ = 12;
    bool fixedPitch_ = true;
    bool syncingBars_ = false;
    mutable int rulerDigits_ = 3;

    // caret and selection
    int64_t caret_ = 0;
    int64_t anchor_ = 0;
    int64_t desiredCol_ = -1;
    bool dragging_ = false;
    bool pressOnMark_ = false;
    QPoint pressPoint_;
    int64_t firedSelA_ = 0, firedSelB_ = 0;
    QTimer dragTimer_;
    QTimer selectionTimer_;
    QPoint lastMousePos_;

    // layers
    find::XRamLayerGroup layers_;
    find::XRamLayer mouseOver_;
    find::XRamLayer* activeLayer_ = nullptr;
    int64_t mouseOverPos_ = -1;

    // menu
    std::vector<MenuBuilder> menuBuilders_;
    QString webSearchTitle_;

    QTimer indexTimer_;
    int paintCount_ = 0;
    int64_t lastPaintMicros_ = 0;

    XEventListener<std::function<void(const MouseOverMark&)>> evMouseOver_;
    XEventListener<std::function<void(const XActiveMark&)>> evActiveMark_;
    XEventListener<std::function<void(const QString&)>> evSelection_;
    XEventListener<std::function<void(int)>> evLayerChanged_;
    XEventListener<std::function<void()>> evActivated_;
    XEventListener<std::function<void()>> evIndexed_;
};

} // namespace viewText
} // namespace tav
