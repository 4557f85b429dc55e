#pragma once
// A framework main window: a QMainWindow that is an AbstractWindow, with
// events for its first appearance and for its closing.
#include "base/core/XEventListener.h"
#include "gui/window/AbstractWindow.h"

#include <QMainWindow>
#include <cstdint>

namespace tav {

class XMainWindow : public QMainWindow, public AbstractWindow {
    Q_OBJECT
public:
    explicit XMainWindow(QWidget* parent = nullptr);
    ~XMainWindow() override;

    // Fired once, when the window is shown the first time; the argument is the
    // microseconds since the window was constructed.
    XEventListener<std::function<void(int64_t)>>& eventAppearFirstTime() { return eventAppear_; }
    // Fired when the window accepts a close, before it goes.
    XEventListener<std::function<void()>>& eventClose() { return eventClose_; }
    // Fired on every show (true) and hide (false).
    XEventListener<std::function<void(bool)>>& eventVisible() { return eventVisible_; }

    bool wasShown() const { return shown_; }

protected:
    void showEvent(QShowEvent* e) override;
    void hideEvent(QHideEvent* e) override;
    void closeEvent(QCloseEvent* e) override;

private:
    XEventListener<std::function<void(int64_t)>> eventAppear_;
    XEventListener<std::function<void()>> eventClose_;
    XEventListener<std::function<void(bool)>> eventVisible_;
    int64_t created_;
    bool shown_ = false;
    bool closed_ = false;
};

} // namespace tav
