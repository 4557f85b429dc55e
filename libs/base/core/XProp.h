#pragma once
// A value with change listeners: assigning a different value fires them.
#include "base/core/XEventListener.h"
#include "base/log/Logger.h"

#include <functional>

namespace tav {

template <typename T>
class XProp {
public:
    using Listener = std::function<void(const T&)>;
    XProp(T v = T()) : value_(std::move(v)) {}

    const T& value() const { return value_; }
    operator const T&() const { return value_; }

    // Returns true when the value changed (and the listeners were told).
    bool set(const T& v) {
        if (v == value_) return false;
        value_ = v;
        listeners_.fire(value_);
        return true;
    }
    XProp& operator=(const T& v) { set(v); return *this; }
    int addListener(Listener l) { return listeners_.add(std::move(l)); }
    XEventListener<Listener>& listeners() { return listeners_; }

private:
    T value_;
    XEventListener<Listener> listeners_;
};

using XPropBool = XProp<bool>;

// An object with a name for log lines ("Class@name").
class NameAble {
public:
    NameAble() = default;
    explicit NameAble(QString n) : name_(std::move(n)) {}
    virtual ~NameAble() = default;
    const QString& getName() const { return name_; }
    void setName(const QString& n) { name_ = n; }

private:
    QString name_;
};

} // namespace tav
