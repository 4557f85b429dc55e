#include "src/gui/WinFinder.h"

#include "base/log/Logger.h"

namespace tavFinder {

WinFinder::WinFinder(bool) {
    setDeleteOnClose(true);
    setWindowTitle(QStringLiteral("Talvo Finder"));
}

WinFinder::~WinFinder() { tav::log(32, "WinFinder::~WinFinder"); }

void WinFinder::init(tav::KernelGUI* kernel, tav::XNode* nWin) {
    kernel_ = kernel;
    setNodeWin(nWin);
    setWindowTitle(QStringLiteral("Talvo Finder"));
}

void WinFinder::setUp(const QString& selectPath) {
    tav::log(32, "WinFinder::setUp, sSelectFile '$'", selectPath);
    if (setUpDone_) return;
    setUpDone_ = true;
}

QString WinFinder::windowName() const {
    return xName().isEmpty() ? QStringLiteral("WinFinder") : tav::fill("WinFinder@$", xName());
}

} // namespace tavFinder
