#include "gui/previews/XHexView.h"

#include "base/log/Logger.h"
#include "base/util/Format.h"
#include "gui/tools/XTools.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QFontMetricsF>
#include <QInputDialog>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QScrollBar>
#include <QSvgRenderer>
#include <algorithm>
#include <cmath>
#include <iterator>

namespace tav {

namespace {
// The scroll bar counts rows until they no longer fit an int, then groups of rows.
constexpr int64_t kMaxBarValue = 1000000000;
constexpr int64_t kMaxCopy = 16 * 1024 * 1024;
const char* kHex = "0123456789ABCDEF";
}

XHexView::XHexView(QWidget* parent) : QAbstractScrollArea(parent) {
    setFocusPolicy(Qt::StrongFocus);
    QFont f(QStringLiteral("Monospace"));
    f.setStyleHint(QFont::TypeWriter);
    setFont(f);
    horizontalScrollBar()->setRange(0, 0);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &XHexView::onScroll);
    connect(horizontalScrollBar(), &QScrollBar::valueChanged, this, [this]() { viewport()->update(); });
    updateMetrics();
}

XHexView::~XHexView() = default;

void XHexView::reset() {
    src_.reset();
    marks_.clear();
    activeMark_ = -1;
    error_.clear();
    topRow_ = 0;
    caret_ = anchor_ = 0;
}

bool XHexView::openFile(const QString& path) {
    reset();
    QString err;
    src_ = viewText::TextSource::openFile(path, &err);
    if (!src_) {
        error_ = err;
        log(tav::LOG_ERROR, "XHexView::openFile, <<<$>>> $", path, err);
    }
    updateScrollBar();
    viewport()->update();
    return bool(src_);
}

void XHexView::setBytes(const QByteArray& bytes, const QString& name) {
    reset();
    src_ = viewText::TextSource::fromBytes(bytes, name);
    updateScrollBar();
    viewport()->update();
}

void XHexView::closeFile() {
    reset();
    updateScrollBar();
    viewport()->update();
}

void XHexView::setDefaultImage(const QString& svgPath) {
    delete svg_;
    svg_ = new QSvgRenderer(svgPath, this);
    if (!svg_->isValid()) {
        log(tav::LOG_ERROR, "XHexView::setDefaultImage, <<<$>>> is no picture", svgPath);
        delete svg_;
        svg_ = nullptr;
    }
    viewport()->update();
}

bool XHexView::hasDefaultImage() const { return svg_ != nullptr; }

void XHexView::setFontSize(int points) {
    QFont f = font();
    f.setPointSize(std::clamp(points, 4, 96));
    setFont(f);
}

int XHexView::fontSize() const { return font().pointSize(); }

void XHexView::changeEvent(QEvent* e) {
    QAbstractScrollArea::changeEvent(e);
    if (e->type() == QEvent::FontChange) updateMetrics();
}

void XHexView::updateMetrics() {
    const QFontMetricsF fm(font());
    cw_ = fm.horizontalAdvance(QLatin1Char('0'));
    if (cw_ <= 0) cw_ = 8;
    rowH_ = std::max(4, int(std::ceil(fm.lineSpacing())));
    ascent_ = int(std::ceil(fm.ascent()));
    updateScrollBar();
    viewport()->update();
}

void XHexView::resizeEvent(QResizeEvent* e) {
    QAbstractScrollArea::resizeEvent(e);
    setTopRow(topRow_);
    updateScrollBar();
}

int64_t XHexView::rowCount() const { return src_ ? (src_->size() + kBytesPerRow - 1) / kBytesPerRow : 0; }
int XHexView::visibleRows() const { return std::max(1, viewport()->height() / rowH_); }
int64_t XHexView::selectionEnd() const { return src_ && src_->size() > 0 ? std::max(anchor_, caret_) + 1 : 0; }

int XHexView::offsetDigits() const {
    const int64_t s = size();
    if (s <= 0xFFFFFFFFLL) return 8;
    if (s <= 0xFFFFFFFFFFFFLL) return 12;
    return 16;
}

double XHexView::hexX(int i) const {
    // "OFFSET  xx xx xx xx xx xx xx xx  xx ..." with a wider gap in the middle.
    return 4 + (offsetDigits() + 2 + i * 3 + (i >= 8 ? 1 : 0)) * cw_ - horizontalScrollBar()->value();
}

double XHexView::charX(int i) const { return hexX(0) + (kBytesPerRow * 3 + 2 + i) * cw_; }

void XHexView::updateScrollBar() {
    syncing_ = true;
    const int64_t rows = rowCount();
    const int64_t scale = std::max<int64_t>(1, (rows + kMaxBarValue - 1) / kMaxBarValue);
    const int64_t maxTop = std::max<int64_t>(0, rows - visibleRows());
    verticalScrollBar()->setRange(0, int(maxTop / scale));
    verticalScrollBar()->setPageStep(int(std::max<int64_t>(1, visibleRows() / scale)));
    verticalScrollBar()->setValue(int(topRow_ / scale));
    const int width = int(std::ceil(charX(kBytesPerRow) + horizontalScrollBar()->value() + 8));
    horizontalScrollBar()->setRange(0, std::max(0, width - viewport()->width()));
    horizontalScrollBar()->setPageStep(viewport()->width());
    syncing_ = false;
}

void XHexView::onScroll(int value) {
    if (syncing_) return;
    const int64_t rows = rowCount();
    const int64_t scale = std::max<int64_t>(1, (rows + kMaxBarValue - 1) / kMaxBarValue);
    const int64_t maxTop = std::max<int64_t>(0, rows - visibleRows());
    setTopRow(value >= verticalScrollBar()->maximum() ? maxTop : int64_t(value) * scale);
}

void XHexView::scrollContentsBy(int, int) {}

void XHexView::setTopRow(int64_t row) {
    const int64_t maxTop = std::max<int64_t>(0, rowCount() - visibleRows());
    row = std::clamp<int64_t>(row, 0, maxTop);
    if (row == topRow_) return;
    topRow_ = row;
    updateScrollBar();
    viewport()->update();
}

void XHexView::scrollToOffset(int64_t offset) { setTopRow(offset / kBytesPerRow - visibleRows() / 3); }
void XHexView::scrollToEnd() { setTopRow(rowCount()); }

void XHexView::setCaretPos(int64_t pos, bool extend) {
    if (!src_) return;
    caret_ = std::clamp<int64_t>(pos, 0, std::max<int64_t>(0, src_->size() - 1));
    if (!extend) anchor_ = caret_;
    viewport()->update();
}

void XHexView::ensureCaretVisible() {
    const int64_t row = caret_ / kBytesPerRow;
    if (row < topRow_) setTopRow(row);
    else if (row >= topRow_ + visibleRows()) setTopRow(row - visibleRows() + 1);
}

QString XHexView::selectedHex() const {
    if (!src_ || src_->size() == 0) return QString();
    const int64_t a = selectionStart(), b = std::min(selectionEnd(), a + kMaxCopy);
    QString out;
    out.reserve(int((b - a) * 3));
    for (int64_t i = a; i < b; ++i) {
        if (i > a) out += QLatin1Char(' ');
        out += QLatin1Char(kHex[src_->at(i) >> 4]);
        out += QLatin1Char(kHex[src_->at(i) & 15]);
    }
    return out;
}

QString XHexView::selectedText() const {
    if (!src_ || src_->size() == 0) return QString();
    const int64_t a = selectionStart(), b = std::min(selectionEnd(), a + kMaxCopy);
    return QString::fromUtf8(src_->data() + a, int(b - a));
}

QString XHexView::rowText(int64_t row) const {
    if (!src_ || row < 0 || row >= rowCount()) return QString();
    const int64_t base = row * kBytesPerRow;
    const int n = int(std::min<int64_t>(kBytesPerRow, src_->size() - base));
    QString s = QStringLiteral("%1  ").arg(quint64(base), offsetDigits(), 16, QLatin1Char('0')).toUpper();
    for (int i = 0; i < kBytesPerRow; ++i) {
        if (i == 8) s += QLatin1Char(' ');
        if (i < n) {
            const unsigned char c = src_->at(base + i);
            s += QLatin1Char(kHex[c >> 4]);
            s += QLatin1Char(kHex[c & 15]);
            s += QLatin1Char(' ');
        } else {
            s += QStringLiteral("   ");
        }
    }
    s += QLatin1Char(' ');
    for (int i = 0; i < n; ++i) {
        const unsigned char c = src_->at(base + i);
        s += (c >= 0x20 && c < 0x7F) ? QLatin1Char(char(c)) : QLatin1Char('.');
    }
    return s;
}

int64_t XHexView::byteAtPoint(const QPoint& p) const {
    if (!src_ || src_->size() == 0) return 0;
    const int64_t row = topRow_ + std::max(0, p.y()) / rowH_;
    int col = 0;
    if (p.x() >= charX(0) - cw_) {
        col = int((p.x() - charX(0)) / cw_);
    } else {
        for (int i = 0; i < kBytesPerRow; ++i)
            if (p.x() >= hexX(i) - cw_ / 2) col = i;
    }
    col = std::clamp(col, 0, kBytesPerRow - 1);
    return std::clamp<int64_t>(row * kBytesPerRow + col, 0, src_->size() - 1);
}

void XHexView::reloadIfShrunk() {
    if (!src_ || !src_->shrunk()) return;
    const QString path = src_->path();
    const int64_t top = topRow_, caret = caret_;
    log(tav::LOG_NAVIGATION, "XHexView::reloadIfShrunk, <<<$>>> became shorter, opened again", path);
    if (!openFile(path)) return;
    setCaretPos(caret);
    setTopRow(top);
}

void XHexView::setMarks(std::vector<std::pair<int64_t, int64_t>> marks, const QColor& color) {
    std::sort(marks.begin(), marks.end());
    marks_ = std::move(marks);
    markColor_ = color;
    activeMark_ = marks_.empty() ? -1 : 0;
    viewport()->update();
}

bool XHexView::setActiveMark(int i) {
    if (i < 0 || i >= int(marks_.size()) || !src_) return false;
    activeMark_ = i;
    const int64_t at = marks_[size_t(i)].first;
    const int64_t row = at / kBytesPerRow;
    // A third from the top, like the text view, so the bytes before the hit show too.
    if (row < topRow_ || row >= topRow_ + std::max(1, visibleRows())) setTopRow(std::max<int64_t>(0, row - visibleRows() / 3));
    caret_ = anchor_ = std::clamp<int64_t>(at, 0, src_->size());
    viewport()->update();
    return true;
}

bool XHexView::moveActiveMark(bool down) {
    if (marks_.empty()) return false;
    const int n = int(marks_.size());
    return setActiveMark(((activeMark_ < 0 ? 0 : activeMark_ + (down ? 1 : -1)) + n) % n);
}

size_t XHexView::firstMarkEndingAfter(int64_t pos) const {
    auto it = std::partition_point(marks_.begin(), marks_.end(), [pos](const std::pair<int64_t, int64_t>& m) {
        return m.first + m.second <= pos;
    });
    // Marks are sorted by start; an earlier long mark may still cover 'pos'.
    while (it != marks_.begin() && std::prev(it)->first + std::prev(it)->second > pos) --it;
    return size_t(it - marks_.begin());
}

void XHexView::paintEvent(QPaintEvent*) {
    reloadIfShrunk();
    QPainter p(viewport());
    p.fillRect(viewport()->rect(), palette().color(QPalette::Base));
    ++paintCount_;
    if (!src_) {
        if (svg_) {
            QSizeF s = svg_->defaultSize();
            const QSizeF room = QSizeF(viewport()->size()) * 0.6;
            s.scale(room, Qt::KeepAspectRatio);
            const QRectF r(QPointF((viewport()->width() - s.width()) / 2, (viewport()->height() - s.height()) / 2), s);
            svg_->render(&p, r);
        } else if (!error_.isEmpty()) {
            p.setPen(palette().color(QPalette::PlaceholderText));
            p.drawText(viewport()->rect(), Qt::AlignCenter, error_);
        }
        return;
    }
    p.setFont(font());
    const QColor text = palette().color(QPalette::Text);
    QColor dim = text;
    dim.setAlpha(130);
    QColor sel = palette().color(QPalette::Highlight);
    sel.setAlpha(110);
    const int64_t sa = selectionStart(), sb = selectionEnd();
    const int64_t rows = rowCount();
    for (int i = 0; i * rowH_ < viewport()->height() && topRow_ + i < rows; ++i) {
        const int64_t row = topRow_ + i;
        const int64_t base = row * kBytesPerRow;
        const int n = int(std::min<int64_t>(kBytesPerRow, src_->size() - base));
        const int y = i * rowH_;
        const int baseline = y + ascent_;
        // Hits, selection and caret first, text over them.
        if (!marks_.empty()) {
            QColor active = markColor_.darker(140);
            for (size_t m = firstMarkEndingAfter(base); m < marks_.size() && marks_[m].first < base + n; ++m) {
                const int64_t a = std::max(base, marks_[m].first), b = std::min(base + n, marks_[m].first + marks_[m].second);
                const QColor& c = int(m) == activeMark_ ? active : markColor_;
                for (int64_t x = a; x < b; ++x) {
                    const int k = int(x - base);
                    p.fillRect(QRectF(hexX(k), y, 2 * cw_, rowH_), c);
                    p.fillRect(QRectF(charX(k), y, cw_, rowH_), c);
                }
            }
        }
        for (int k = 0; k < n; ++k) {
            const int64_t b = base + k;
            const bool selected = (sb - sa > 1 || anchor_ != caret_) && b >= sa && b < sb;
            if (selected) {
                p.fillRect(QRectF(hexX(k), y, 2 * cw_, rowH_), sel);
                p.fillRect(QRectF(charX(k), y, cw_, rowH_), sel);
            }
            if (b == caret_ && hasFocus()) {
                p.setPen(QPen(text, 1));
                p.drawRect(QRectF(hexX(k) - 1, y, 2 * cw_ + 1, rowH_ - 1));
                p.drawRect(QRectF(charX(k), y, cw_, rowH_ - 1));
            }
        }
        p.setPen(dim);
        p.drawText(QPointF(4 - horizontalScrollBar()->value(), baseline),
                   QStringLiteral("%1").arg(quint64(base), offsetDigits(), 16, QLatin1Char('0')).toUpper());
        QString hex, chars;
        for (int k = 0; k < n; ++k) {
            const unsigned char c = src_->at(base + k);
            if (k == 8) hex += QLatin1Char(' ');
            hex += QLatin1Char(kHex[c >> 4]);
            hex += QLatin1Char(kHex[c & 15]);
            hex += QLatin1Char(' ');
            chars += (c >= 0x20 && c < 0x7F) ? QLatin1Char(char(c)) : QLatin1Char('.');
        }
        p.setPen(text);
        p.drawText(QPointF(hexX(0), baseline), hex);
        p.drawText(QPointF(charX(0), baseline), chars);
    }
}

void XHexView::keyPressEvent(QKeyEvent* e) {
    reloadIfShrunk();
    if (!src_) {
        QAbstractScrollArea::keyPressEvent(e);
        return;
    }
    if (e == QKeySequence::Copy) {
        QApplication::clipboard()->setText(selectedHex());
        return;
    }
    const bool shift = e->modifiers() & Qt::ShiftModifier;
    const bool ctrl = e->modifiers() & Qt::ControlModifier;
    const int64_t page = int64_t(std::max(1, visibleRows() - 1)) * kBytesPerRow;
    switch (e->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: evActivated_.fire(); return;
    case Qt::Key_N:
        if (ctrl) {
            QAbstractScrollArea::keyPressEvent(e);
            return;
        }
        moveActiveMark(!shift);
        return;
    case Qt::Key_F3: moveActiveMark(!shift); return;
    case Qt::Key_Left: setCaretPos(caret_ - 1, shift); break;
    case Qt::Key_Right: setCaretPos(caret_ + 1, shift); break;
    case Qt::Key_Up: setCaretPos(caret_ - kBytesPerRow, shift); break;
    case Qt::Key_Down: setCaretPos(caret_ + kBytesPerRow, shift); break;
    case Qt::Key_PageUp:
        setTopRow(topRow_ - visibleRows() + 1);
        setCaretPos(caret_ - page, shift);
        break;
    case Qt::Key_PageDown:
        setTopRow(topRow_ + visibleRows() - 1);
        setCaretPos(caret_ + page, shift);
        break;
    case Qt::Key_Home: setCaretPos(ctrl ? 0 : caret_ - caret_ % kBytesPerRow, shift); break;
    case Qt::Key_End:
        setCaretPos(ctrl ? src_->size() - 1 : caret_ - caret_ % kBytesPerRow + kBytesPerRow - 1, shift);
        break;
    case Qt::Key_G:
        if (ctrl) {
            bool ok = false;
            const QString t = QInputDialog::getText(this, xt("Go to Offset"), xt("Offset (decimal, or hex with 0x):"),
                                                    QLineEdit::Normal, QString(), &ok)
                                  .trimmed();
            if (!ok || t.isEmpty()) return;
            const qint64 off = t.startsWith(QLatin1String("0x"), Qt::CaseInsensitive) ? t.mid(2).toLongLong(&ok, 16)
                                                                                       : t.toLongLong(&ok, 10);
            if (!ok || off < 0) {
                log(tav::LOG_REJECTED, "XHexView::keyPressEvent, offset '$' not understood", t);
                return;
            }
            setCaretPos(off);
            scrollToOffset(off);
            return;
        }
        QAbstractScrollArea::keyPressEvent(e);
        return;
    default: QAbstractScrollArea::keyPressEvent(e); return;
    }
    ensureCaretVisible();
}

void XHexView::mousePressEvent(QMouseEvent* e) {
    reloadIfShrunk();
    setFocus(Qt::MouseFocusReason);
    if (!src_ || e->button() != Qt::LeftButton) return;
    setCaretPos(byteAtPoint(e->pos()), e->modifiers() & Qt::ShiftModifier);
    dragging_ = true;
}

void XHexView::mouseMoveEvent(QMouseEvent* e) {
    if (!dragging_ || !src_) return;
    if (e->pos().y() < 0) setTopRow(topRow_ - 1);
    else if (e->pos().y() > viewport()->height()) setTopRow(topRow_ + 1);
    setCaretPos(byteAtPoint(e->pos()), true);
}

void XHexView::mouseReleaseEvent(QMouseEvent*) { dragging_ = false; }

void XHexView::mouseDoubleClickEvent(QMouseEvent* e) {
    if (e->button() == Qt::LeftButton) evActivated_.fire();
}

void XHexView::wheelEvent(QWheelEvent* e) {
    const int steps = e->angleDelta().y() / 40;
    if (e->modifiers() & Qt::ControlModifier) {
        setFontSize(fontSize() + (steps > 0 ? 1 : -1));
    } else {
        setTopRow(topRow_ - steps);
    }
    e->accept();
}

void XHexView::buildContextMenu(QMenu& menu) {
    QAction* a = menu.addAction(xt("Copy as Hex"), this, [this]() { QApplication::clipboard()->setText(selectedHex()); });
    a->setEnabled(src_ && src_->size() > 0);
    a = menu.addAction(xt("Copy as Text"), this, [this]() { QApplication::clipboard()->setText(selectedText()); });
    a->setEnabled(src_ && src_->size() > 0);
    menu.addSeparator();
    a = menu.addAction(xt("Go to Offset ..."), this, [this]() {
        QKeyEvent k(QEvent::KeyPress, Qt::Key_G, Qt::ControlModifier);
        keyPressEvent(&k);
    });
    a->setEnabled(bool(src_));
}

void XHexView::contextMenuEvent(QContextMenuEvent* e) {
    QMenu menu(this);
    buildContextMenu(menu);
    menu.exec(e->globalPos());
}

} // namespace tav
