#include "gui/widgets/XColorLabel.h"

#include <QColorDialog>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>

namespace tav {

XColorLabel::XColorLabel(int size, const QColor& c, QWidget* parent) : QLabel(parent), color_(c), size_(size) {
    setFixedSize(size, size);
    setCursor(Qt::PointingHandCursor);
    chooser_ = [this](const QColor& old) { return QColorDialog::getColor(old, this, QString(), QColorDialog::ShowAlphaChannel); };
    repaintSwatch();
}

void XColorLabel::setColor(const QColor& c, bool notify) {
    if (!c.isValid()) return;
    const bool changed = c != color_;
    color_ = c;
    repaintSwatch();
    if (notify && changed) changed_.fire(color_);
}

void XColorLabel::repaintSwatch() {
    QPixmap pm(size_, size_);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(palette().color(QPalette::WindowText), 1));
    p.setBrush(color_);
    p.drawRoundedRect(QRectF(1.5, 1.5, size_ - 3, size_ - 3), 3, 3);
    setPixmap(pm);
}

void XColorLabel::mousePressEvent(QMouseEvent* e) {
    if (e->button() != Qt::LeftButton) {
        QLabel::mousePressEvent(e);
        return;
    }
    const bool control = e->modifiers() & Qt::ControlModifier;
    if (needControl_ && !control) {
        clicked_.fire();
        return;
    }
    const QColor c = chooser_ ? chooser_(color_) : QColor();
    if (c.isValid()) setColor(c, true);
}

} // namespace tav
