#pragma once
// A slider whose value can be set with or without telling the listeners, and
// set "reversed" (maximum - index), for navigation where the top is the first.
#include <QSlider>

namespace tav {

// No Q_OBJECT on purpose: the class name stays "QSlider", so style sheets
// written for ".QSlider" apply to it.
class XSlider : public QSlider {
public:
    explicit XSlider(Qt::Orientation o, QWidget* parent = nullptr) : QSlider(o, parent) {}

    // notify false: the value changes without valueChanged.
    void setValue(int v, bool notify) {
        if (notify) {
            QSlider::setValue(v);
            return;
        }
        const bool old = blockSignals(true);
        QSlider::setValue(v);
        blockSignals(old);
    }
    using QSlider::setValue;
    void set_value_revers(int index, bool notify) { setValue(maximum() - index, notify); }
    int value_revers() const { return maximum() - value(); }
};

} // namespace tav
