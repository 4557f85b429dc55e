#include "gui/window/XMainWindow.h"

#include "base/util/Format.h"

#include <QCloseEvent>
#include <QHideEvent>
#include <QShowEvent>

namespace tav {

XMainWindow::XMainWindow(QWidget* parent) : QMainWindow(parent), AbstractWindow(this), created_(getMicroseconds()) {}
XMainWindow::~XMainWindow() = default;

void XMainWindow::showEvent(QShowEvent* e) {
    QMainWindow::showEvent(e);
    if (e->spontaneous()) return;
    closed_ = false;
    eventVisible_.fire(true);
    if (!shown_) {
        shown_ = true;
        eventAppear_.fire(getMicroseconds() - created_);
    }
}

void XMainWindow::hideEvent(QHideEvent* e) {
    QMainWindow::hideEvent(e);
    if (!e->spontaneous()) eventVisible_.fire(false);
}

void XMainWindow::closeEvent(QCloseEvent* e) {
    QMainWindow::closeEvent(e);
    // A window is closed by the user and again by quit; save its state once.
    if (e->isAccepted() && !closed_) {
        closed_ = true;
        eventClose_.fire();
    }
}

} // namespace tav
