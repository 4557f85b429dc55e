#include "gui/previews/XView2D.h"

#include "base/util/Format.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace tav {

namespace {
constexpr double kMinZoom = 0.02;
constexpr double kMaxZoom = 32.0;
constexpr double kStep = 1.25;
}

XView2D::XView2D(QWidget* parent) : QAbstractScrollArea(parent) {
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setCursor(Qt::OpenHandCursor);
}

void XView2D::setImage(const QImage& img) {
    image_ = img;
    message_.clear();
    fit_ = true;
    updateBars();
    viewport()->update();
}

void XView2D::setMessage(const QString& text) {
    image_ = QImage();
    message_ = text;
    updateBars();
    viewport()->update();
}

void XView2D::clear() { setMessage(QString()); }

double XView2D::fitFactor() const {
    if (image_.isNull()) return 1.0;
    const double fx = double(viewport()->width()) / image_.width();
    const double fy = double(viewport()->height()) / image_.height();
    return std::min(1.0, std::min(fx, fy));   // large pictures shrink, small ones stay 1:1
}

double XView2D::zoom() const { return fit_ ? fitFactor() : zoom_; }

void XView2D::setZoom(double factor) {
    fit_ = false;
    zoom_ = std::clamp(factor, kMinZoom, kMaxZoom);
    updateBars();
    viewport()->update();
}

void XView2D::setFit(bool on) {
    fit_ = on;
    updateBars();
    viewport()->update();
}

void XView2D::on_zoom(bool in, int steps) {
    const double f = std::pow(kStep, in ? steps : -steps);
    zoomAbout(f, QPointF(viewport()->width() / 2.0, viewport()->height() / 2.0));
}

void XView2D::zoomAbout(double factor, const QPointF& vp) {
    if (image_.isNull()) return;
    const double old = zoom();
    // The image point under 'vp' stays under it.
    const QRectF r = imageRect();
    const QPointF imgPt = (vp - r.topLeft()) / old;
    fit_ = false;
    zoom_ = std::clamp(old * factor, kMinZoom, kMaxZoom);
    updateBars();
    const QPointF want = imgPt * zoom_;
    horizontalScrollBar()->setValue(int(want.x() - vp.x()));
    verticalScrollBar()->setValue(int(want.y() - vp.y()));
    viewport()->update();
}

QRectF XView2D::imageRect() const {
    const double z = zoom();
    const QSizeF s(image_.width() * z, image_.height() * z);
    // Centred when smaller than the view, else placed by the scroll bars.
    const double x = s.width() < viewport()->width() ? (viewport()->width() - s.width()) / 2 : -horizontalScrollBar()->value();
    const double y = s.height() < viewport()->height() ? (viewport()->height() - s.height()) / 2 : -verticalScrollBar()->value();
    return QRectF(QPointF(x, y), s);
}

void XView2D::updateBars() {
    const double z = zoom();
    const int w = image_.isNull() ? 0 : int(std::ceil(image_.width() * z));
    const int h = image_.isNull() ? 0 : int(std::ceil(image_.height() * z));
    horizontalScrollBar()->setRange(0, std::max(0, w - viewport()->width()));
    verticalScrollBar()->setRange(0, std::max(0, h - viewport()->height()));
    horizontalScrollBar()->setPageStep(viewport()->width());
    verticalScrollBar()->setPageStep(viewport()->height());
}

void XView2D::scrollContentsBy(int, int) { viewport()->update(); }

void XView2D::resizeEvent(QResizeEvent* e) {
    QAbstractScrollArea::resizeEvent(e);
    updateBars();
}

void XView2D::paintEvent(QPaintEvent*) {
    QPainter p(viewport());
    p.fillRect(viewport()->rect(), palette().color(QPalette::Window));
    if (image_.isNull()) {
        if (!message_.isEmpty()) {
            p.setPen(palette().color(QPalette::WindowText));
            p.drawText(viewport()->rect().adjusted(10, 10, -10, -10), Qt::AlignCenter | Qt::TextWordWrap, message_);
        }
        return;
    }
    const QRectF r = imageRect();
    if (image_.hasAlphaChannel()) {
        // A chequer board shows what is transparent.
        const int c = 8;
        const QRect area = r.toAlignedRect() & viewport()->rect();
        p.save();
        p.setClipRect(area);
        for (int y = area.top() - area.top() % c; y < area.bottom(); y += c)
            for (int x = area.left() - area.left() % c; x < area.right(); x += c)
                p.fillRect(x, y, c, c, ((x / c + y / c) & 1) ? QColor(200, 200, 200) : QColor(235, 235, 235));
        p.restore();
    }
    p.setRenderHint(QPainter::SmoothPixmapTransform, zoom() < 1.0);
    p.drawImage(r, image_);
    // Size and zoom in a corner.
    const QString info = QStringLiteral("%1 \u00d7 %2  %3%").arg(image_.width()).arg(image_.height()).arg(int(std::lround(zoom() * 100)));
    const QFontMetrics fm(font());
    const QRect box(6, viewport()->height() - fm.height() - 8, fm.horizontalAdvance(info) + 10, fm.height() + 4);
    QColor bg = palette().color(QPalette::ToolTipBase);
    bg.setAlpha(200);
    p.fillRect(box, bg);
    p.setPen(palette().color(QPalette::ToolTipText));
    p.drawText(box, Qt::AlignCenter, info);
}

void XView2D::wheelEvent(QWheelEvent* e) {
    if (e->modifiers() & Qt::ControlModifier) {
        zoomAbout(e->angleDelta().y() > 0 ? kStep : 1.0 / kStep, e->position());
        e->accept();
        return;
    }
    QAbstractScrollArea::wheelEvent(e);
}

void XView2D::mousePressEvent(QMouseEvent* e) {
    setFocus(Qt::MouseFocusReason);
    if (e->button() != Qt::LeftButton) return;
    dragging_ = true;
    dragStart_ = e->pos();
    barsAtDrag_ = QPoint(horizontalScrollBar()->value(), verticalScrollBar()->value());
    viewport()->setCursor(Qt::ClosedHandCursor);
}

void XView2D::mouseMoveEvent(QMouseEvent* e) {
    if (!dragging_) return;
    const QPoint d = e->pos() - dragStart_;
    horizontalScrollBar()->setValue(barsAtDrag_.x() - d.x());
    verticalScrollBar()->setValue(barsAtDrag_.y() - d.y());
    viewport()->update();
}

void XView2D::mouseReleaseEvent(QMouseEvent*) {
    dragging_ = false;
    viewport()->setCursor(Qt::OpenHandCursor);
}

void XView2D::mouseDoubleClickEvent(QMouseEvent* e) {
    if (e->button() == Qt::LeftButton) evActivated_.fire();
}

void XView2D::keyPressEvent(QKeyEvent* e) {
    switch (e->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal: on_zoom(true); return;
    case Qt::Key_Minus: on_zoom(false); return;
    case Qt::Key_0: setFit(true); return;
    case Qt::Key_1: setZoom(1.0); return;
    case Qt::Key_Return:
    case Qt::Key_Enter: evActivated_.fire(); return;
    default: QAbstractScrollArea::keyPressEvent(e);
    }
}

} // namespace tav
