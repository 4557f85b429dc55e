#include "gui/thumbs/XElidedLabel.h"

#include <QPainter>

namespace tav {

XElidedLabel::XElidedLabel(const QString& text, QWidget* parent) : QFrame(parent), text_(text) {
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void XElidedLabel::setText(const QString& text) {
    if (text == text_) return;
    text_ = text;
    setToolTip(text.contains(QLatin1Char('\n')) ? text.section(QLatin1Char('\n'), -1) : text);
    updateGeometry();
    update();
}

QStringList XElidedLabel::shownLines() const {
    QStringList out;
    const QFontMetrics fm(font());
    const int w = contentsRect().width();
    for (const QString& line : text_.split(QLatin1Char('\n'))) out << fm.elidedText(line, Qt::ElideMiddle, w);
    return out;
}

QSize XElidedLabel::sizeHint() const {
    const QFontMetrics fm(font());
    const int lines = text_.count(QLatin1Char('\n')) + 1;
    return QSize(100, lines * fm.lineSpacing() + 4);
}

QSize XElidedLabel::minimumSizeHint() const { return QSize(10, QFontMetrics(font()).lineSpacing()); }

void XElidedLabel::paintEvent(QPaintEvent* e) {
    QFrame::paintEvent(e);
    QPainter p(this);
    const QFontMetrics fm(font());
    const QRect r = contentsRect();
    int y = r.top() + 2;
    for (const QString& line : shownLines()) {
        // Not clipped to the line: an underscore hangs below the line height in some fonts.
        p.drawText(QRect(r.left(), y, r.width(), fm.lineSpacing()), Qt::AlignHCenter | Qt::AlignTop | Qt::TextDontClip, line);
        y += fm.lineSpacing();
    }
}

} // namespace tav
