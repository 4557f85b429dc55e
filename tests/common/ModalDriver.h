#pragma once
// Drives modal dialogs from a test: the action runs once the next modal dialog
// of type D is up (inside its event loop), so code that calls exec() can be
// tested with real dialogs. A dialog of another kind, or none in time, is
// rejected so a test never hangs.
#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QTimer>
#include <functional>
#include <memory>

namespace tftest {

struct ModalWatch {
    bool ran = false;        // the action ran on a dialog of type D
    bool rejected = false;   // a dialog had to be rejected instead
    QTimer* timer = nullptr;
    void stop() {
        if (timer) timer->deleteLater();
        timer = nullptr;
    }
};

template <typename D>
std::shared_ptr<ModalWatch> onModal(std::function<void(D*)> action, int timeoutMs = 5000) {
    auto watch = std::make_shared<ModalWatch>();
    watch->timer = new QTimer;
    auto clock = std::make_shared<QElapsedTimer>();
    clock->start();
    QObject::connect(watch->timer, &QTimer::timeout, watch->timer, [watch, clock, action, timeoutMs]() {
        if (!watch->timer) return;
        QWidget* modal = QApplication::activeModalWidget();
        if (auto* d = qobject_cast<D*>(modal)) {
            watch->stop();
            watch->ran = true;
            action(d);
            return;
        }
        if (clock->elapsed() < timeoutMs) return;
        watch->stop();
        if (auto* other = qobject_cast<QDialog*>(modal)) {
            watch->rejected = true;
            other->reject();
        }
    });
    watch->timer->start(20);
    return watch;
}

} // namespace tftest
