#pragma once
// The finder's main window.
#include "gui/window/XMainWindow.h"

namespace tav {
class KernelGUI;
class XNode;
}

namespace tavFinder {

class WinFinder : public tav::XMainWindow {
    Q_OBJECT
public:
    explicit WinFinder(bool flag);
    ~WinFinder() override;

    void init(tav::KernelGUI* kernel, tav::XNode* nWin);
    void setUp(const QString& selectPath);
    QString windowName() const override;

private:
    tav::KernelGUI* kernel_ = nullptr;
    bool setUpDone_ = false;
};

} // namespace tavFinder
