#include "gui/viewText/XTextView.h"

#include "base/log/Logger.h"
#include "base/util/Format.h"
#include "gui/tools/XTools.h"

#include <QApplication>
#include <QFile>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QLabel>
#include <QPainter>
#include <QPaintEvent>
#include <QScrollBar>
#include <algorithm>
#include <climits>
#include <cmath>

namespace tav {
namespace viewText {

namespace {
// A line this long in the first megabyte makes automatic wrap wrap the file.
constexpr int64_t kAutoWrapBytes = 1000;
constexpr int64_t kAutoWrapProbe = 1024 * 1024;
// Resolution of the scroll bar when it follows byte positions.
constexpr int64_t kByteScrollRange = 1000000;
const QColor kActiveFrame(255, 110, 0);
const QColor kInvalidText(220, 40, 40);

int digitsOf(int64_t v) {
    int d = 1;
    while (v >= 10) {
        v /= 10;
        ++d;
    }
    return d;
}
}

XTextView::XTextView(QWidget* parent) : QAbstractScrollArea(parent) {
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setMouseTracking(true);
    viewport()->setCursor(Qt::IBeamCursor);
    setAttribute(Qt::WA_InputMethodEnabled, false);
    QFont f(QStringLiteral("Monospace"));
    f.setStyleHint(QFont::TypeWriter);
    setFont(f);
    mouseOver_.set_color_background(qRgba(90, 140, 255, 60));
    indexTimer_.setInterval(100);
    connect(&indexTimer_, &QTimer::timeout, this, &XTextView::onIndexTick);
    dragTimer_.setInterval(50);
    connect(&dragTimer_, &QTimer::timeout, this, [this]() {
        // Keeps scrolling while a selection is dragged above or below the view.
        const QPoint p = lastMousePos_;
        if (p.y() < 0) scrollRows(-1);
        else if (p.y() >= viewport()->height()) scrollRows(1);
        else return;
        setCaretPos(byteAtPoint(p, true), true);
    });
    selectionTimer_.setSingleShot(true);
    selectionTimer_.setInterval(250);
    connect(&selectionTimer_, &QTimer::timeout, this, &XTextView::fireSelectionIfChanged);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &XTextView::onVScroll);
    connect(horizontalScrollBar(), &QScrollBar::valueChanged, this, &XTextView::onHScroll);
    statusLine_ = new QLabel(this);
    statusLine_->setObjectName(QStringLiteral("statusLine"));
    statusLine_->setTextFormat(Qt::PlainText);
    statusLine_->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);   // the hit number first, whatever the width
    statusLine_->setContentsMargins(6, 1, 6, 1);
    {
        // The interface's font, not the text's: the line stays small when the text is zoomed.
        QFont f = QApplication::font();
        f.setFamily(f.family());
        f.setPointSizeF(f.pointSizeF());
        statusLine_->setFont(f);
    }
    statusLine_->setAutoFillBackground(true);
    statusLine_->setBackgroundRole(QPalette::Window);
    statusLine_->setForegroundRole(QPalette::WindowText);
    updateMetrics();
    layoutStatusLine();
}

XTextView::~XTextView() = default;

// ---- content ---------------------------------------------------------------------------------
void XTextView::resetContent() {
    pageStarts_.clear();
    indexTimer_.stop();
    index_.reset();
    src_.reset();
    cols_.clear();
    error_.clear();
    top_ = RowPos();
    hScroll_ = 0;
    maxColsSeen_ = 0;
    caret_ = anchor_ = 0;
    firedSelA_ = firedSelB_ = 0;
    desiredCol_ = -1;
    longLines_ = false;
    mouseOverPos_ = -1;
    rulerDigits_ = 3;
    // Marks belong to the file they were made for; the layers and their colours stay.
    for (int id : layers_.ids()) layers_.clear(id);
    for (const find::XRam& r : mouseOver_.marks()) {
        find::XRam* m = mouseOver_.mark_by_category(r.category());
        if (m) m->setRange(-1, 0);
    }
    lastTopValid_ = false;
    invalidateLayout();
}

bool XTextView::openFile(const QString& path) {
    resetContent();
    QString err;
    src_ = TextSource::openFile(path, &err);
    if (!src_) {
        error_ = err;
        log(tav::LOG_ERROR, "XTextView::openFile, <<<$>>> $", path, err);
        updateScrollBars();
        viewport()->update();
        return false;
    }
    afterOpen();
    return true;
}

void XTextView::setBytes(const QByteArray& bytes, const QString& name) {
    resetContent();
    src_ = TextSource::fromBytes(bytes, name);
    afterOpen();
}

void XTextView::closeFile() {
    resetContent();
    updateScrollBars();
    viewport()->update();
}

void XTextView::afterOpen() {
    index_ = std::make_unique<LineIndex>(src_);
    index_->start();
    // Automatic wrap looks at the first megabyte only; the rest is not read for it.
    const int64_t probe = std::min(src_->size(), kAutoWrapProbe);
    int64_t from = 0;
    while (from < probe) {
        const int64_t nl = src_->findNewline(from, probe);
        const int64_t end = nl < 0 ? probe : nl;
        if (end - from > kAutoWrapBytes) {
            longLines_ = true;
            break;
        }
        if (nl < 0) break;
        from = nl + 1;
    }
    if (!index_->isDone()) indexTimer_.start();
    invalidateLayout();
    updateScrollBars();
    viewport()->update();
}

QString XTextView::textOfBytes(int64_t a, int64_t b) const {
    if (!src_ || b <= a) return QString();
    b = std::min<int64_t>(b, a + INT_MAX);
    if (src_->shrunk()) {
        QFile f(src_->path());
        if (!f.open(QIODevice::ReadOnly) || !f.seek(a)) return QString();
        return QString::fromUtf8(f.read(b - a));
    }
    return QString::fromUtf8(src_->data() + a, int(b - a));
}

bool XTextView::reloadIfShrunk() {
    if (!src_ || !src_->shrunk()) return false;
    const QString path = src_->path();
    const int64_t top = top_.ls, caret = caret_;
    log(tav::LOG_NAVIGATION, "XTextView::reloadIfShrunk, <<<$>>> became shorter, opened again", path);
    if (!openFile(path)) return true;
    setCaretPos(std::min(caret, size()));
    scrollToByte(std::min(top, size()), false);
    return true;
}

QString XTextView::filePath() const { return src_ ? src_->path() : QString(); }
int64_t XTextView::size() const { return src_ ? src_->size() : 0; }
bool XTextView::isIndexing() const { return index_ && !index_->isDone(); }
int64_t XTextView::lineCount() const { return index_ ? index_->lineCount() : 0; }

void XTextView::onIndexTick() {
    if (!index_) {
        indexTimer_.stop();
        return;
    }
    const bool done = index_->isDone();
    if (done) indexTimer_.stop();
    invalidateLayout();
    updateScrollBars();
    viewport()->update();
    if (done) evIndexed_.fire();
}

// ---- settings ---------------------------------------------------------------------------------
void XTextView::set_ruler(bool on) {
    if (ruler_ == on) return;
    ruler_ = on;
    lastTopValid_ = false;
    invalidateLayout();
    updateScrollBars();
    viewport()->update();
}

void XTextView::set_wrap(bool on) {
    if (wrap_ == on) return;
    const bool was = isWrapping();
    wrap_ = on;
    if (was != isWrapping()) {
        top_.sub = 0;
        hScroll_ = 0;
        lastTopValid_ = false;
        invalidateLayout();
        updateScrollBars();
        viewport()->update();
    }
}

void XTextView::set_auto_wrap(bool on) {
    if (autoWrap_ == on) return;
    const bool was = isWrapping();
    autoWrap_ = on;
    if (was != isWrapping()) {
        top_.sub = 0;
        hScroll_ = 0;
        lastTopValid_ = false;
        invalidateLayout();
        updateScrollBars();
        viewport()->update();
    }
}

void XTextView::set_line_info_pos(LINE_INFO_POS pos) {
    linePos_ = pos;
    layoutStatusLine();
    viewport()->update();
}

QWidget* XTextView::statusLine() const { return statusLine_; }

void XTextView::setPageStarts(std::vector<int64_t> starts) {
    pageStarts_ = std::move(starts);
    viewport()->update();
}

QString XTextView::statusText() const { return linePos_ == LINE_INFO_OFF ? QString() : composeStatusText(); }

void XTextView::layoutStatusLine() {
    if (!statusLine_) return;
    if (linePos_ == LINE_INFO_OFF) {
        statusLine_->hide();
        setViewportMargins(0, 0, 0, 0);
        return;
    }
    // Below the text, never over it: the hits stay readable.
    const int h = statusLine_->fontMetrics().height() + 4;
    setViewportMargins(0, 0, 0, h);
    const QRect vp = viewport()->geometry();
    statusLine_->setGeometry(vp.left(), vp.bottom() + 1, vp.width(), h);
    statusLine_->show();
}

void XTextView::set_tab_width(int w) {
    cols_.setTabWidth(w);
    lastTopValid_ = false;
    invalidateLayout();
    viewport()->update();
}

void XTextView::setBackgroundColor(const QColor& c) {
    background_ = c;
    viewport()->update();
}

QColor XTextView::backgroundColor() const { return background_.isValid() ? background_ : palette().color(QPalette::Base); }

void XTextView::re_paint() {
    invalidateLayout();
    viewport()->update();
}

void XTextView::changeEvent(QEvent* e) {
    QAbstractScrollArea::changeEvent(e);
    if (e->type() == QEvent::FontChange) updateMetrics();
}

void XTextView::updateMetrics() {
    const QFontMetricsF fm(font());
    cw_ = fm.horizontalAdvance(QLatin1Char('x'));
    if (cw_ <= 0) cw_ = 8;
    rowH_ = std::max(4, int(std::ceil(fm.lineSpacing())));
    ascent_ = int(std::ceil(fm.ascent()));
    fixedPitch_ = QFontInfo(font()).fixedPitch();
    lastTopValid_ = false;
    invalidateLayout();
    updateScrollBars();
    viewport()->update();
}

void XTextView::resizeEvent(QResizeEvent* e) {
    QAbstractScrollArea::resizeEvent(e);
    layoutStatusLine();
    lastTopValid_ = false;
    invalidateLayout();
    if (src_) setTop(top_);   // a taller view may now show past the end
    updateScrollBars();
}

// ---- geometry -----------------------------------------------------------------------------------
int XTextView::gutterWidth() const { return ruler_ ? int(std::ceil((rulerDigits_ + 1.5) * cw_)) : 0; }
double XTextView::textX() const { return gutterWidth() + 4; }
int64_t XTextView::visibleColumns() const {
    return std::max<int64_t>(1, int64_t((viewport()->width() - textX()) / cw_));
}
int64_t XTextView::wrapColumns() const { return std::max<int64_t>(tabWidth() + 2, visibleColumns()); }
int XTextView::fullyVisibleRows() const { return std::max(1, viewport()->height() / rowH_); }

void XTextView::invalidateLayout() { layoutValid_ = false; }

void XTextView::ensureLayout() const {
    if (!layoutValid_) layoutRows();
}

int64_t XTextView::rowStartByte(const RowPos& p, int64_t* col) const {
    const int64_t le = index_->lineContentEnd(p.ls);
    const int64_t c = isWrapping() ? p.sub * wrapColumns() : hScroll_;
    return cols_.byteAtOrAfterCol(*src_, p.ls, le, c, col);
}

void XTextView::layoutRows() const {
    rows_.clear();
    layoutValid_ = true;
    if (!src_ || !index_) return;
    const int64_t size = src_->size();
    const bool wrapping = isWrapping();
    const int64_t W = wrapColumns();
    const int need = viewport()->height() / rowH_ + 2;
    RowPos p = top_;
    int64_t lineNo = index_->lineNumberOf(p.ls);
    int64_t next = index_->nextLineStart(p.ls);
    int64_t carryByte = -1, carryCol = 0;
    for (int i = 0; i < need; ++i) {
        Row r;
        r.pos = p;
        r.eolEnd = next;
        r.le = next;
        if (r.le > p.ls && src_->at(r.le - 1) == '\n') --r.le;
        if (r.le > p.ls && src_->at(r.le - 1) == '\r') --r.le;
        r.lineNo = lineNo;
        if (wrapping) {
            r.colStart = p.sub * W;
            if (carryByte >= 0) {
                r.byteStart = carryByte;
                r.firstCol = carryCol;
            } else {
                r.byteStart = cols_.byteAtOrAfterCol(*src_, p.ls, r.le, r.colStart, &r.firstCol);
            }
            r.byteEnd = cols_.byteAtOrAfterCol(*src_, p.ls, r.le, r.colStart + W, &carryCol);
            r.lastOfLine = r.byteEnd >= r.le;
            carryByte = r.byteEnd;
        } else {
            r.colStart = hScroll_;
            r.byteStart = cols_.byteAtOrAfterCol(*src_, p.ls, r.le, hScroll_, &r.firstCol);
            r.byteEnd = r.le;
            r.lastOfLine = true;
        }
        rows_.push_back(r);
        if (wrapping && !r.lastOfLine) {
            ++p.sub;
            continue;
        }
        if (next >= size) break;
        p = RowPos{next, 0};
        next = index_->nextLineStart(p.ls);
        carryByte = -1;
        if (lineNo >= 0) ++lineNo;
    }
    int64_t maxLine = index_->linesSoFar();
    if (!rows_.empty() && rows_.back().lineNo >= 0) maxLine = std::max(maxLine, rows_.back().lineNo + 1);
    rulerDigits_ = std::max(3, digitsOf(maxLine));
}

void XTextView::decodeRow(const Row& r, std::vector<Cell>& out) const {
    out.clear();
    if (!src_) return;
    const int64_t maxCol = isWrapping() ? r.colStart + wrapColumns() : r.colStart + visibleColumns() + 1;
    decodeCells(*src_, r.byteStart, r.le, r.firstCol, maxCol, tabWidth(), out);
}

double XTextView::xOfByte(const Row& r, const std::vector<Cell>& cells, int64_t b) const {
    const double x0 = textX();
    auto it = std::lower_bound(cells.begin(), cells.end(), b, [](const Cell& c, int64_t v) { return c.byte < v; });
    if (it != cells.begin() && (it == cells.end() || it->byte > b) && std::prev(it)->end() > b) --it;
    if (it == cells.end()) {
        const int64_t c = cells.empty() ? r.firstCol : cells.back().col + cells.back().width;
        return x0 + double(c - r.colStart) * cw_;
    }
    return x0 + double(it->col - r.colStart) * cw_;
}

const XTextView::Row* XTextView::rowAtY(int y) const {
    ensureLayout();
    if (rows_.empty()) return nullptr;
    const int i = std::clamp(y / rowH_, 0, int(rows_.size()) - 1);
    return &rows_[size_t(i)];
}

// ---- row arithmetic ------------------------------------------------------------------------------
int64_t XTextView::rowsOfLine(int64_t ls) const {
    if (!isWrapping() || !src_) return 1;
    const int64_t le = index_->lineContentEnd(ls);
    if (le <= ls) return 1;
    int64_t total, lastCol;
    cols_.extent(*src_, ls, le, &total, &lastCol);
    return lastCol / wrapColumns() + 1;
}

XTextView::RowPos XTextView::rowPosOf(int64_t byte) const {
    if (!src_) return RowPos();
    const int64_t ls = index_->lineStartContaining(byte);
    if (!isWrapping()) return RowPos{ls, 0};
    const int64_t le = index_->lineContentEnd(ls);
    const int64_t col = cols_.colAtByte(*src_, ls, le, std::min(byte, le));
    int64_t sub = col / wrapColumns();
    if (byte >= le) sub = std::min(sub, rowsOfLine(ls) - 1);
    return RowPos{ls, sub};
}

bool XTextView::nextRow(RowPos& p) const {
    if (!src_) return false;
    if (isWrapping() && p.sub + 1 < rowsOfLine(p.ls)) {
        ++p.sub;
        return true;
    }
    const int64_t n = index_->nextLineStart(p.ls);
    if (n >= src_->size()) return false;
    p = RowPos{n, 0};
    return true;
}

bool XTextView::prevRow(RowPos& p) const {
    if (!src_) return false;
    if (p.sub > 0) {
        --p.sub;
        return true;
    }
    if (p.ls <= 0) return false;
    const int64_t pl = index_->prevLineStart(p.ls);
    p = RowPos{pl, rowsOfLine(pl) - 1};
    return true;
}

XTextView::RowPos XTextView::lastTop() const {
    if (lastTopValid_) return lastTopCache_;
    RowPos p;
    if (src_ && src_->size() > 0) {
        const int64_t ls = index_->lineStartContaining(src_->size());
        p = RowPos{ls, rowsOfLine(ls) - 1};
        for (int i = 1; i < fullyVisibleRows(); ++i)
            if (!prevRow(p)) break;
    }
    lastTopCache_ = p;
    lastTopValid_ = true;
    return p;
}

void XTextView::setTop(RowPos p) {
    if (!src_) return;
    const RowPos last = lastTop();
    if (last < p) p = last;
    if (p.ls < 0) p = RowPos();
    if (p == top_ && layoutValid_) return;
    top_ = p;
    invalidateLayout();
    updateScrollBars();
    viewport()->update();
}

int64_t XTextView::firstVisibleLine() const { return index_ ? index_->lineNumberOf(top_.ls) : -1; }

// ---- scrolling ------------------------------------------------------------------------------------
bool XTextView::lineScrollMode() const {
    return index_ && index_->isDone() && !isWrapping() && index_->lineCount() < int64_t(INT_MAX) - 1;
}

void XTextView::updateScrollBars() {
    syncingBars_ = true;
    QScrollBar* vb = verticalScrollBar();
    QScrollBar* hb = horizontalScrollBar();
    if (!src_ || !index_) {
        vb->setRange(0, 0);
        hb->setRange(0, 0);
        syncingBars_ = false;
        return;
    }
    const int rows = fullyVisibleRows();
    if (lineScrollMode()) {
        const int64_t lines = index_->lineCount();
        const int64_t lastTopLine = index_->lineNumberOf(lastTop().ls);
        vb->setRange(0, int(std::max<int64_t>(0, lastTopLine)));
        vb->setPageStep(rows);
        vb->setSingleStep(1);
        const int64_t v = index_->lineNumberOf(top_.ls);
        if (v >= 0) vb->setValue(int(std::min<int64_t>(v, lines)));
    } else {
        const int64_t size = std::max<int64_t>(1, src_->size());
        const int64_t range = std::min(size, kByteScrollRange);
        const RowPos last = lastTop();
        vb->setRange(0, last == RowPos() ? 0 : int(range));
        ensureLayout();
        const int64_t shownBytes = rows_.empty() ? 1 : rows_.back().byteEnd - rows_.front().byteStart;
        vb->setPageStep(int(std::clamp<int64_t>(shownBytes * range / size, 1, range)));
        vb->setSingleStep(std::max(1, vb->pageStep() / std::max(1, rows)));
        const int64_t topByte = rows_.empty() ? top_.ls : rows_.front().byteStart;
        vb->setValue(last <= top_ ? int(range) : int(double(topByte) * double(range) / double(size)));
    }
    if (isWrapping()) {
        hb->setRange(0, 0);
    } else {
        ensureLayout();
        for (const Row& r : rows_) {
            // Lines up to 64 KiB are measured; longer ones count by their bytes.
            int64_t cols = r.le - r.pos.ls;
            if (cols <= 64 * 1024) cols_.extent(*src_, r.pos.ls, r.le, &cols, nullptr);
            maxColsSeen_ = std::max(maxColsSeen_, cols);
        }
        const int64_t vis = visibleColumns();
        hb->setRange(0, int(std::min<int64_t>(INT_MAX - 1, std::max<int64_t>(0, maxColsSeen_ - vis + 1))));
        hb->setPageStep(int(std::min<int64_t>(vis, INT_MAX - 1)));
        hb->setValue(int(std::min<int64_t>(hScroll_, INT_MAX - 1)));
    }
    syncingBars_ = false;
}

void XTextView::scrollContentsBy(int, int) {
    // Painting follows the view state; the scroll bars only drive it.
}

void XTextView::onVScroll(int value) {
    if (syncingBars_ || !src_) return;
    if (lineScrollMode()) {
        const int64_t ls = index_->lineStartOfNumber(value);
        if (ls >= 0) setTop(RowPos{ls, 0});
        return;
    }
    const QScrollBar* vb = verticalScrollBar();
    if (value >= vb->maximum()) {
        setTop(lastTop());
        return;
    }
    const int64_t size = src_->size();
    const int64_t range = std::max(1, vb->maximum());
    const int64_t pos = int64_t(double(value) * double(size) / double(range));
    setTop(rowPosOf(pos));
}

void XTextView::onHScroll(int value) {
    if (syncingBars_ || isWrapping()) return;
    hScroll_ = std::max(0, value);
    invalidateLayout();
    viewport()->update();
}

void XTextView::scrollRows(int64_t delta) {
    if (!src_) return;
    RowPos p = top_;
    const RowPos last = lastTop();
    if (delta > 0) {
        for (int64_t i = 0; i < delta && p < last; ++i)
            if (!nextRow(p)) break;
    } else {
        for (int64_t i = 0; i < -delta; ++i)
            if (!prevRow(p)) break;
    }
    setTop(p);
}

void XTextView::scrollToStart() { setTop(RowPos()); }

void XTextView::scrollToEnd() { setTop(lastTop()); }

void XTextView::scrollToByte(int64_t pos, bool center, int64_t len) {
    if (!src_) return;
    pos = std::clamp<int64_t>(pos, 0, src_->size());
    RowPos p = rowPosOf(pos);
    if (center) {
        for (int i = 0; i < fullyVisibleRows() / 3; ++i)
            if (!prevRow(p)) break;
    }
    if (!isWrapping()) {
        const int64_t ls = index_->lineStartContaining(pos);
        const int64_t le = index_->lineContentEnd(ls);
        const int64_t col = cols_.colAtByte(*src_, ls, le, std::min(pos, le));
        const int64_t colEnd = len > 0 ? std::max(col + 1, cols_.colAtByte(*src_, ls, le, std::min(pos + len, le))) : col + 1;
        const int64_t vis = visibleColumns();
        if (colEnd <= vis) hScroll_ = 0;
        else if (col < hScroll_ || colEnd > hScroll_ + vis) hScroll_ = std::max<int64_t>(0, col - std::max<int64_t>(0, (vis - (colEnd - col)) / 2));
        invalidateLayout();
    }
    setTop(p);
    updateScrollBars();
    viewport()->update();
}

void XTextView::scrollToLine(int64_t line) {
    if (!index_) return;
    const int64_t ls = index_->lineStartOfNumber(line);
    if (ls >= 0) setTop(RowPos{ls, 0});
}

// ---- positions --------------------------------------------------------------------------------------
XTextView::TextPos XTextView::positionOfByte(int64_t pos) const {
    TextPos tp;
    if (!src_) return tp;
    pos = std::clamp<int64_t>(pos, 0, src_->size());
    const int64_t ls = index_->lineStartContaining(pos);
    const int64_t le = index_->lineContentEnd(ls);
    tp.line = index_->lineNumberOf(ls);
    tp.column = cols_.colAtByte(*src_, ls, le, std::min(pos, le));
    return tp;
}

int64_t XTextView::byteOfPosition(int64_t line, int64_t column) const {
    if (!index_) return -1;
    const int64_t ls = index_->lineStartOfNumber(line);
    if (ls < 0) return -1;
    const int64_t le = index_->lineContentEnd(ls);
    return cols_.byteAtCol(*src_, ls, le, std::max<int64_t>(0, column));
}

QStringList XTextView::visibleRowTexts() const {
    QStringList out;
    ensureLayout();
    std::vector<Cell> cells;
    const int shown = (viewport()->height() + rowH_ - 1) / rowH_;
    for (int i = 0; i < int(rows_.size()) && i < shown; ++i) {
        decodeRow(rows_[size_t(i)], cells);
        QString s;
        for (const Cell& c : cells) {
            if (c.kind == CellKind::Tab) s += QString(c.width, QLatin1Char(' '));
            else s += cellText(c);
        }
        out << s;
    }
    return out;
}

QRect XTextView::cellRect(int64_t pos) const {
    ensureLayout();
    std::vector<Cell> cells;
    for (size_t i = 0; i < rows_.size(); ++i) {
        const Row& r = rows_[i];
        const bool inRow = (pos >= r.byteStart && pos < r.byteEnd) || (r.lastOfLine && pos >= r.byteStart && pos <= r.le);
        if (!inRow) continue;
        decodeRow(r, cells);
        const double x = xOfByte(r, cells, pos);
        return QRect(int(x), int(i) * rowH_, std::max(1, int(cw_)), rowH_);
    }
    return QRect();
}

int64_t XTextView::byteAtPoint(const QPoint& pt, bool boundary) const {
    if (!src_) return 0;
    ensureLayout();
    if (rows_.empty()) return 0;
    if (pt.y() < 0 && boundary) return rows_.front().byteStart;
    const Row* r = rowAtY(pt.y());
    if (!r) return 0;
    if (pt.y() >= int(rows_.size()) * rowH_ && boundary) return r->lastOfLine ? r->le : r->byteEnd;
    std::vector<Cell> cells;
    decodeRow(*r, cells);
    const double colF = (pt.x() - textX()) / cw_ + double(r->colStart);
    for (size_t i = 0; i < cells.size(); ++i) {
        const Cell& c = cells[i];
        if (c.width == 0) continue;   // a combining mark belongs to the character before it
        const double w = c.width;
        if (colF < double(c.col) + w) {
            if (boundary && colF >= double(c.col) + w / 2) {
                size_t k = i + 1;
                while (k < cells.size() && cells[k].width == 0) ++k;
                return k < cells.size() ? cells[k].byte : (r->lastOfLine ? r->le : r->byteEnd);
            }
            return c.byte;
        }
    }
    return r->lastOfLine ? r->le : r->byteEnd;
}

// ---- layers -----------------------------------------------------------------------------------------
void XTextView::set_active_layer(find::XRamLayer* layer) {
    activeLayer_ = layer;
    infoHit_ = layer && layer->active_mark();
    viewport()->update();
}

find::XRamLayer* XTextView::activeLayer() const {
    // Only a layer of the group counts: a removed one must not be used.
    for (int id : layers_.ids())
        if (const_cast<find::XRamLayerGroup&>(layers_).layer_by_ID(id) == activeLayer_) return activeLayer_;
    return nullptr;
}

int XTextView::activeLayerId() const {
    for (int id : layers_.ids())
        if (const_cast<find::XRamLayerGroup&>(layers_).layer_by_ID(id) == activeLayer_) return id;
    return -1;
}

void XTextView::scrollToRam(const find::XRam& ram) {
    if (!src_ || ram.pos() < 0) return;
    infoHit_ = true;
    scrollToByte(ram.pos(), true, ram.len());
}

QString XTextView::textFromMarkRam(const find::XRam& ram) const {
    if (!src_ || ram.pos() < 0 || ram.len() <= 0) return QString();
    const int64_t a = std::min(ram.pos(), src_->size());
    const int64_t b = std::min<int64_t>(ram.end(), std::min<int64_t>(src_->size(), a + 16LL * 1024 * 1024));
    return textOfBytes(a, b);
}

bool XTextView::moveActiveMark(bool down) {
    find::XRamLayer* l = activeLayer();
    if (!l || l->isEmpty()) return false;
    l->move_active_mark_index(!down);
    const find::XRam* m = l->active_mark();
    if (!m) return false;
    scrollToRam(*m);
    evActiveMark_.fire(XActiveMark{activeLayerId(), l->active_mark_index(), *m});
    re_paint();
    return true;
}

bool XTextView::activateMarkAt(int64_t pos) {
    const std::vector<int> ids = layers_.ids();
    for (auto it = ids.rbegin(); it != ids.rend(); ++it) {
        if (!layers_.isEnabled(*it)) continue;
        find::XRamLayer* l = layers_.layer_by_ID(*it);
        const int i = l->mark_at(pos);
        if (i < 0) continue;
        if (l != activeLayer()) {
            activeLayer_ = l;
            evLayerChanged_.fire(*it);
        }
        l->set_active_mark_index(i);
        infoHit_ = true;
        evActiveMark_.fire(XActiveMark{*it, i, l->at(i)});
        re_paint();
        return true;
    }
    return false;
}

// ---- painting ------------------------------------------------------------------------------------------
void XTextView::paintEvent(QPaintEvent*) {
    const int64_t t0 = getMicroseconds();
    reloadIfShrunk();
    QPainter p(viewport());
    const QColor bg = backgroundColor();
    p.fillRect(viewport()->rect(), bg);
    if (src_) {
        ensureLayout();
        std::vector<Cell> cells;
        cells.reserve(256);
        p.setFont(font());
        if (ruler_) {
            const QColor g = bg.lightness() < 128 ? bg.lighter(130) : bg.darker(106);
            p.fillRect(QRect(0, 0, gutterWidth(), viewport()->height()), g);
        }
        for (size_t i = 0; i < rows_.size(); ++i) {
            const int y = int(i) * rowH_;
            if (y >= viewport()->height()) break;
            paintRow(p, rows_[i], y, cells);
        }
    } else if (!error_.isEmpty()) {
        p.setPen(palette().color(QPalette::PlaceholderText));
        p.drawText(viewport()->rect(), Qt::AlignCenter, error_);
    }
    updateStatusLine();
    ++paintCount_;
    lastPaintMicros_ = getMicroseconds() - t0;
}

void XTextView::paintRow(QPainter& p, const Row& r, int y, std::vector<Cell>& cells) {
    decodeRow(r, cells);
    const double x0 = textX();
    const int64_t visibleEnd = cells.empty() ? r.byteStart : cells.back().end();
    // Marks that cover the line break are shown as a stub after the last character.
    int64_t qEnd = r.byteEnd;
    if (r.lastOfLine) qEnd = visibleEnd < r.le ? visibleEnd : r.eolEnd;
    const double right = viewport()->width();

    auto spanX = [&](int64_t a, int64_t b, double* xa, double* xb) {
        a = std::max(a, r.byteStart);
        b = std::min(b, qEnd);
        *xa = xOfByte(r, cells, a);
        *xb = xOfByte(r, cells, std::min(b, r.le));
        if (b > r.le && r.lastOfLine) *xb += cw_ / 2;
        if (*xb - *xa < 2) *xb = *xa + 2;
        *xa = std::max(*xa, x0);
        *xb = std::min(*xb, right);
    };

    // Layers, lowest ID first so higher IDs paint over lower ones.
    const find::XRamLayer* active = activeLayer();
    for (int id : layers_.ids()) {
        if (!layers_.isEnabled(id)) continue;
        const find::XRamLayer* l = layers_.layer_by_ID(id);
        if (!l || l->isEmpty()) continue;
        const auto [a, b] = l->marks_in_range(r.byteStart, std::max(qEnd, r.byteStart + 1));
        if (a >= b) continue;
        const QColor c = QColor::fromRgba(l->color_background());
        const int activeIndex = (l == active) ? l->active_mark_index() : -1;
        for (int i = a; i < b; ++i) {
            const find::XRam& m = l->at(i);
            if (m.len() <= 0) continue;
            double xa, xb;
            spanX(m.pos(), m.end(), &xa, &xb);
            if (xb <= xa) continue;
            const QRectF rect(xa, y, xb - xa, rowH_);
            p.fillRect(rect, c);
            if (i == activeIndex) {
                p.setPen(QPen(kActiveFrame, 2));
                p.drawRect(rect.adjusted(1, 1, -1, -1));
            }
        }
    }
    // Mouse-over marks nest (paragraph, sentence, line, word, character), so every one is tested.
    if (!mouseOver_.isEmpty()) {
        const QColor c = QColor::fromRgba(mouseOver_.color_background());
        for (const find::XRam& m : mouseOver_.marks()) {
            if (!m.isValid() || m.end() <= r.byteStart || m.pos() >= std::max(qEnd, r.byteStart + 1)) continue;
            double xa, xb;
            spanX(m.pos(), m.end(), &xa, &xb);
            if (xb > xa) p.fillRect(QRectF(xa, y, xb - xa, rowH_), c);
        }
    }
    // Selection.
    if (hasSelection()) {
        const int64_t sa = selectionStart(), sb = selectionEnd();
        if (sb > r.byteStart && sa < std::max(qEnd, r.byteStart + 1)) {
            QColor c = palette().color(QPalette::Highlight);
            c.setAlpha(110);
            double xa, xb;
            spanX(sa, sb, &xa, &xb);
            if (xb > xa) p.fillRect(QRectF(xa, y, xb - xa, rowH_), c);
        }
    }
    // Text: runs of ASCII in one call when the font is fixed-pitch, everything else per cell.
    const QColor textColor = palette().color(QPalette::Text);
    QColor dim = textColor;
    dim.setAlpha(120);
    const int baseline = y + ascent_;
    QString run;
    double runX = 0;
    auto flush = [&]() {
        if (run.isEmpty()) return;
        p.setPen(textColor);
        p.drawText(QPointF(runX, baseline), run);
        run.clear();
    };
    for (size_t i = 0; i < cells.size(); ++i) {
        const Cell& c = cells[i];
        const double x = x0 + double(c.col - r.colStart) * cw_;
        if (x >= right) break;
        if (c.kind == CellKind::Normal && c.cp < 0x80 && fixedPitch_) {
            if (run.isEmpty()) runX = x;
            run += QChar(ushort(c.cp));
            continue;
        }
        flush();
        if (c.kind == CellKind::Tab) continue;
        if (c.kind == CellKind::Combining) {
            // A mark without a base character in this row: shown on its own.
            p.setPen(textColor);
            p.drawText(QPointF(x, baseline), cellText(c));
            continue;
        }
        QString cluster = cellText(c);
        while (i + 1 < cells.size() && cells[i + 1].kind == CellKind::Combining) cluster += cellText(cells[++i]);
        p.setPen(c.kind == CellKind::Invalid ? kInvalidText : (c.kind == CellKind::Control ? dim : textColor));
        p.drawText(QPointF(x, baseline), cluster);
    }
    flush();
    // Caret.
    if (hasFocus() && caret_ >= r.byteStart &&
        (caret_ < r.byteEnd || (r.lastOfLine && caret_ <= r.le) || (!isWrapping() && caret_ <= r.le))) {
        const double cx = xOfByte(r, cells, caret_);
        if (cx >= x0 && cx < right) p.fillRect(QRectF(cx, y, 2, rowH_), textColor);
    }
    // Ruler.
    if (ruler_ && r.pos.sub == 0) {
        QColor c = textColor;
        c.setAlpha(140);
        p.setPen(c);
        const QString num = r.lineNo >= 0 ? QString::number(r.lineNo + 1) : QStringLiteral("\u00b7");
        p.drawText(QRectF(0, y, gutterWidth() - cw_ * 0.75, rowH_), Qt::AlignRight | Qt::AlignVCenter, num);
    }
}

void XTextView::updateStatusLine() {
    if (!statusLine_ || linePos_ == LINE_INFO_OFF) return;
    const QString text = composeStatusText();
    if (statusLine_->text() != text) statusLine_->setText(text);
}

QString XTextView::composeStatusText() const {
    QString text;
    if (src_) {
        const find::XRamLayer* l = infoHit_ ? activeLayer() : nullptr;
        const find::XRam* hit = l ? l->active_mark() : nullptr;
        const int64_t at = hit ? hit->pos() : caret_;
        const TextPos tp = positionOfByte(at);
        const QString place = fill("$ $  $ $  $ $", xt("Line"), tp.line >= 0 ? format1000(tp.line + 1) : QStringLiteral("?"), xt("Col"),
                                   format1000(tp.column + 1), xt("Byte"), format1000(at));
        text = hit ? fill("$ $/$:  $", xt("Hit"), format1000(int64_t(l->active_mark_index()) + 1), format1000(int64_t(l->size())), place)
                   : place;
        if (!pageStarts_.empty()) {
            const auto it = std::upper_bound(pageStarts_.begin(), pageStarts_.end(), at);
            text += fill("  $ $", xt("Page"), format1000(int64_t(it - pageStarts_.begin())));
        }
        if (isIndexing() && src_->size() > 0)
            text += fill("  $ $%", xt("indexing"), int(100.0 * double(index_->indexedBytes()) / double(src_->size())));
    }
    return text;
}

} // namespace viewText
} // namespace tav
