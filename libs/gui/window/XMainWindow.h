#pragma once
// A framework main window: a QMainWindow that is an AbstractWindow.
#include "gui/window/AbstractWindow.h"

#include <QMainWindow>

namespace tav {

class XMainWindow : public QMainWindow, public AbstractWindow {
    Q_OBJECT
public:
    explicit XMainWindow(QWidget* parent = nullptr);
    ~XMainWindow() override;
};

} // namespace tav
