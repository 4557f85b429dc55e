#pragma once
// An image on a scrollable surface: fit to the window (never enlarged) or a
// zoom factor, panning by dragging, zoom with Ctrl + wheel or + / - keys.
#include "base/core/XEventListener.h"

#include <QAbstractScrollArea>
#include <QImage>
#include <functional>

namespace tav {

class XView2D : public QAbstractScrollArea {
    Q_OBJECT
public:
    explicit XView2D(QWidget* parent = nullptr);

    void setImage(const QImage& img);
    const QImage& image() const { return image_; }
    // A text shown instead of an image (loading, errors).
    void setMessage(const QString& text);
    QString message() const { return message_; }
    void clear();

    // Zooms in or out by 'steps' steps of 25 %, about the centre of the view.
    void on_zoom(bool in, int steps = 1);
    void setZoom(double factor);
    double zoom() const;
    void setFit(bool on);
    bool isFit() const { return fit_; }

    // A double click or Return.
    XEventListener<std::function<void()>>& eventActivated() { return evActivated_; }

protected:
    void paintEvent(QPaintEvent* e) override;
    void resizeEvent(QResizeEvent* e) override;
    void wheelEvent(QWheelEvent* e) override;
    void mousePressEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void mouseReleaseEvent(QMouseEvent* e) override;
    void mouseDoubleClickEvent(QMouseEvent* e) override;
    void keyPressEvent(QKeyEvent* e) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    double fitFactor() const;
    void updateBars();
    void zoomAbout(double factor, const QPointF& viewportPoint);
    QRectF imageRect() const;

    QImage image_;
    QString message_;
    bool fit_ = true;
    double zoom_ = 1.0;
    QPoint dragStart_;
    QPoint barsAtDrag_;
    bool dragging_ = false;
    XEventListener<std::function<void()>> evActivated_;
};

} // namespace tav
