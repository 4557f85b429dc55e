#include "gui/window/XMainWindow.h"

namespace tav {

XMainWindow::XMainWindow(QWidget* parent) : QMainWindow(parent), AbstractWindow(this) {}
XMainWindow::~XMainWindow() = default;

} // namespace tav
