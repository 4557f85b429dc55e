#include "gui/window/XDialog.h"

namespace tav {

XDialog::XDialog(QWidget* parent) : QDialog(parent), AbstractWindow(this) {}
XDialog::~XDialog() = default;

bool XDialog::isExecOK(bool restore) {
    if (restore) restoreStateFromXml();
    const bool ok = exec() == QDialog::Accepted;
    saveStateToXml();
    return ok;
}

} // namespace tav
