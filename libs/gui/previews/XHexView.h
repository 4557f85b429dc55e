#pragma once
// Bytes as offset, sixteen hexadecimal values and their characters, for files
// of any size: the file is mapped and only the rows on screen are formatted.
#include "base/core/XEventListener.h"
#include "gui/viewText/TextSource.h"

#include <QAbstractScrollArea>
#include <QColor>
#include <functional>
#include <utility>
#include <vector>

class QMenu;
class QSvgRenderer;

namespace tav {

class XHexView : public QAbstractScrollArea {
    Q_OBJECT
public:
    static constexpr int kBytesPerRow = 16;

    explicit XHexView(QWidget* parent = nullptr);
    ~XHexView() override;

    bool openFile(const QString& path);
    void setBytes(const QByteArray& bytes, const QString& name);
    void closeFile();
    bool hasContent() const { return bool(src_); }
    int64_t size() const { return src_ ? src_->size() : 0; }
    QString errorString() const { return error_; }

    // Picture shown while no file is open (an SVG resource or file).
    void setDefaultImage(const QString& svgPath);
    bool hasDefaultImage() const;

    void setFontSize(int points);
    int fontSize() const;

    int64_t topRow() const { return topRow_; }
    int64_t rowCount() const;
    int visibleRows() const;
    void scrollToOffset(int64_t offset);
    void scrollToEnd();
    int64_t caretPos() const { return caret_; }
    void setCaretPos(int64_t pos, bool extend = false);
    int64_t selectionStart() const { return std::min(anchor_, caret_); }
    int64_t selectionEnd() const;   // one past the last selected byte
    // Selected bytes as "48 65 6C", or as text; at most 16 MiB of them.
    QString selectedHex() const;
    QString selectedText() const;
    // The text of a row as painted.
    QString rowText(int64_t row) const;
    int64_t byteAtPoint(const QPoint& p) const;
    void buildContextMenu(QMenu& menu);

    // Hits as coloured bytes (offset, length; sorted by offset). The active one is drawn
    // stronger and moved by N / Shift+N and F3 / Shift+F3. Opening another file clears them.
    void setMarks(std::vector<std::pair<int64_t, int64_t>> marks, const QColor& color);
    int markCount() const { return int(marks_.size()); }
    int activeMark() const { return activeMark_; }
    // Makes mark 'i' active and scrolls it into view; false when there is no such mark.
    bool setActiveMark(int i);
    bool moveActiveMark(bool down);

    // Return pressed or a double click.
    XEventListener<std::function<void()>>& eventActivated() { return evActivated_; }
    int paintCount() const { return paintCount_; }

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

private:
    void reset();
    // Opens the file again when it became shorter than its mapping.
    void reloadIfShrunk();
    void updateMetrics();
    void updateScrollBar();
    void setTopRow(int64_t row);
    void ensureCaretVisible();
    int offsetDigits() const;
    double hexX(int i) const;
    double charX(int i) const;
    void onScroll(int value);

    // Index of the first mark that ends after 'pos', for painting a row.
    size_t firstMarkEndingAfter(int64_t pos) const;

    viewText::TextSourcePtr src_;
    std::vector<std::pair<int64_t, int64_t>> marks_;
    QColor markColor_;
    int activeMark_ = -1;
    QString error_;
    QSvgRenderer* svg_ = nullptr;
    int64_t topRow_ = 0;
    int64_t caret_ = 0;
    int64_t anchor_ = 0;
    bool dragging_ = false;
    double cw_ = 8;
    int rowH_ = 16;
    int ascent_ = 12;
    bool syncing_ = false;
    int paintCount_ = 0;
    XEventListener<std::function<void()>> evActivated_;
};

} // namespace tav
