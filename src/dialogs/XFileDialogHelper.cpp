#include "src/dialogs/XFileDialogHelper.h"

namespace tavFinder {

XFileDialogHelper::XFileDialogHelper(QWidget* parent) : QFileDialog(parent) {
    connect(this, &QFileDialog::currentChanged, this, [this](const QString& path) { currentPath_.fireLocked(path); });
}

void XFileDialogHelper::done(int result) {
    QFileDialog::done(result);
    finished_.fireLocked(result);
}

} // namespace tavFinder
