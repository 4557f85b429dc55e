#pragma once
// A small square showing a colour. A click is reported; the colour dialog opens
// on a click (or only on [Ctrl] + click when asked), and a chosen colour is
// reported as a change.
#include "base/core/XEventListener.h"

#include <QColor>
#include <QLabel>
#include <functional>

namespace tav {

class XColorLabel : public QLabel {
    Q_OBJECT
public:
    explicit XColorLabel(int size, const QColor& c = Qt::green, QWidget* parent = nullptr);

    QColor color() const { return color_; }
    // Sets the colour; listeners of the change are told only when 'notify'.
    void setColor(const QColor& c, bool notify = false);
    // true: only [Ctrl] + click opens the colour dialog, a plain click is just reported.
    void setNeedControlForDialog(bool on) { needControl_ = on; }
    bool needControlForDialog() const { return needControl_; }
    // The dialog; tests replace it (returns an invalid colour for "cancelled").
    void setColorChooser(std::function<QColor(const QColor&)> f) { chooser_ = std::move(f); }

    XEventListener<std::function<void()>>& eventClicked() { return clicked_; }
    XEventListener<std::function<void(const QColor&)>>& eventColorChanged() { return changed_; }

protected:
    void mousePressEvent(QMouseEvent* e) override;

private:
    void repaintSwatch();
    QColor color_;
    int size_;
    bool needControl_ = false;
    std::function<QColor(const QColor&)> chooser_;
    XEventListener<std::function<void()>> clicked_;
    XEventListener<std::function<void(const QColor&)>> changed_;
};

} // namespace tav
