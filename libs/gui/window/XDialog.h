#pragma once
// A framework dialog: a QDialog that is an AbstractWindow.
#include "gui/window/AbstractWindow.h"

#include <QDialog>

namespace tav {

class XDialog : public QDialog, public AbstractWindow {
    Q_OBJECT
public:
    explicit XDialog(QWidget* parent = nullptr);
    ~XDialog() override;
    // Runs the dialog modally; true when it was accepted. 'restore' restores
    // the geometry from the window node first.
    bool isExecOK(bool restore = true);
};

} // namespace tav
