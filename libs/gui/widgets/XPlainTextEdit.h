#pragma once
// A plain-text edit that reports through a boolean event whether it became
// active (got the keyboard focus) or inactive (lost it).
#include "base/core/XEventListener.h"

#include <QPlainTextEdit>
#include <functional>

namespace tav {

class XPlainTextEdit : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit XPlainTextEdit(QWidget* parent = nullptr);
    XEventListener<std::function<void(bool)>>& eventActive() { return eventActive_; }

protected:
    void focusInEvent(QFocusEvent* e) override;
    void focusOutEvent(QFocusEvent* e) override;

private:
    XEventListener<std::function<void(bool)>> eventActive_;
};

} // namespace tav
