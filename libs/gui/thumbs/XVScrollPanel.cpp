#include "gui/thumbs/XVScrollPanel.h"

#include <QCoreApplication>
#include <QLayout>
#include <QScrollBar>

namespace tav {

XVScrollPanel::XVScrollPanel(QWidget* parent) : QScrollArea(parent), panel_(new QWidget()) {
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWidget(panel_);
    throttle_.setSingleShot(true);
    throttle_.setInterval(kReportIntervalMs);
    connect(&throttle_, &QTimer::timeout, this, [this]() {
        if (pending_) report();
    });
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &XVScrollPanel::onScroll);
}

void XVScrollPanel::onScroll() {
    if (throttle_.isActive()) {
        pending_ = true;
        return;
    }
    report();
}

void XVScrollPanel::report() {
    pending_ = false;
    ++reports_;
    throttle_.start();
    evScrolled_.fire();
}

void XVScrollPanel::resizeEvent(QResizeEvent* e) {
    QScrollArea::resizeEvent(e);
    onScroll();   // a larger view shows more
}

QList<QWidget*> XVScrollPanel::visibleChildren() const {
    // Children just added sit at (0, 0) until their layout ran; run it now, or
    // every new child would count as visible.
    QCoreApplication::sendPostedEvents(panel_, QEvent::LayoutRequest);
    if (panel_->layout()) panel_->layout()->activate();
    QList<QWidget*> out;
    const QRect visible(QPoint(horizontalScrollBar()->value(), verticalScrollBar()->value()), viewport()->size());
    for (QObject* o : panel_->children()) {
        auto* w = qobject_cast<QWidget*>(o);
        if (w && !w->isHidden() && w->geometry().intersects(visible)) out << w;
    }
    return out;
}

} // namespace tav
