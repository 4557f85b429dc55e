#pragma once
// A group of exclusive buttons whose ids are the values of an enumeration (or
// any integral type), with a listener list called with the value on a click.
#include "base/core/XEventListener.h"
#include "base/log/Logger.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QPointer>
#include <functional>

namespace tav {

template <typename T>
class XButtonGroupTyped {
public:
    // 'typeName' only names the group in log lines. The Qt group is owned by 'parent'.
    XButtonGroupTyped(QObject* parent, const QString& typeName) : group_(new QButtonGroup(parent)), typeName_(typeName) {
        QObject::connect(group_, &QButtonGroup::idClicked, group_, [this](int id) { listeners_.fire(T(id)); });
    }
    // The Qt group may outlive this object (its parent owns it): no calls into a gone listener list.
    ~XButtonGroupTyped() {
        if (group_) QObject::disconnect(group_, &QButtonGroup::idClicked, nullptr, nullptr);
    }
    XButtonGroupTyped(const XButtonGroupTyped&) = delete;
    XButtonGroupTyped& operator=(const XButtonGroupTyped&) = delete;

    void addButton(QAbstractButton* b, T value) { group_->addButton(b, int(value)); }
    QAbstractButton* button(T value) const { return group_->button(int(value)); }
    QButtonGroup* group() const { return group_; }

    // Called with the value of a button the user clicked (not for select()).
    int addListener(std::function<void(T)> f) { return listeners_.add(std::move(f)); }

    // Checks the button of 'value' without calling the listeners.
    bool select(T value) {
        QAbstractButton* b = group_->button(int(value));
        if (!b) {
            log(tav::LOG_REJECTED, "XButtonGroupTyped<TYPE>::select, bt with ID:$ does not exist", int(value));
            return false;
        }
        b->setChecked(true);
        return true;
    }

    // The value of the checked button; 0 when none is checked.
    T currentEnum() const {
        const int id = group_->checkedId();
        if (id == -1 && !group_->checkedButton()) {
            log(tav::LOG_TRACE, "XButtonGroupTyped<$>::currentEnum, no current enum, return 0", typeName_);
            return T(0);
        }
        return T(id);
    }

private:
    QPointer<QButtonGroup> group_;
    QString typeName_;
    XEventListener<std::function<void(T)>> listeners_;
};

} // namespace tav
