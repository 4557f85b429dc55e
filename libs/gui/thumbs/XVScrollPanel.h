#pragma once
// A vertically scrolling panel. Scrolling is reported to listeners at most
// once every 500 ms (the last position is always reported), so that work that
// follows the visible part is not started for every pixel.
#include "base/core/XEventListener.h"

#include <QScrollArea>
#include <QTimer>
#include <functional>

namespace tav {

class XVScrollPanel : public QScrollArea {
    Q_OBJECT
public:
    static constexpr int kReportIntervalMs = 500;

    explicit XVScrollPanel(QWidget* parent = nullptr);
    // The widget that holds the content (its layout is the caller's).
    QWidget* panel() const { return panel_; }
    // Children of the panel whose geometry meets the visible part.
    QList<QWidget*> visibleChildren() const;

    XEventListener<std::function<void()>>& eventScrolled() { return evScrolled_; }
    int reportCount() const { return reports_; }

protected:
    void resizeEvent(QResizeEvent* e) override;

private:
    void onScroll();
    void report();
    QWidget* panel_;
    QTimer throttle_;
    bool pending_ = false;
    int reports_ = 0;
    XEventListener<std::function<void()>> evScrolled_;
};

} // namespace tav
