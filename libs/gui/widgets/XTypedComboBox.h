#pragma once
// A combo box with a value of type T beside each item.
#include "base/log/Logger.h"

#include <QComboBox>
#include <vector>

namespace tav {

template <typename T = uint32_t>
class XTypedComboBox : public QComboBox {
public:
    explicit XTypedComboBox(QWidget* parent = nullptr) : QComboBox(parent) {}

    // An empty text shows the value in decimal.
    void addItem(T value, const QString& text = QString()) {
        values_.push_back(value);
        QComboBox::addItem(text.isEmpty() ? QString::number(value) : text);
    }
    // The value at the current index; a negative index counts as 0, an index
    // without a value gives 0 and a level-4 log line.
    T selected() const {
        int i = currentIndex();
        if (i < 0) i = 0;
        if (size_t(i) >= values_.size()) {
            log(tav::LOG_ERROR, "XTypedComboBox_inline::selected, index:$ - type problem", i);
            return T(0);
        }
        return values_[size_t(i)];
    }
    // Selects the first item with this value; false when there is none.
    bool setSelected(T value) {
        for (size_t i = 0; i < values_.size(); ++i) {
            if (values_[i] == value) {
                setCurrentIndex(int(i));
                return true;
            }
        }
        return false;
    }
    const std::vector<T>& values() const { return values_; }
    void clearItems() {
        values_.clear();
        clear();
    }

private:
    std::vector<T> values_;
};

} // namespace tav
