#include "gui/window/XBrowserWindow.h"

#include "base/log/Logger.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XBrowser.h"

#include <QAction>
#include <QStyle>
#include <QToolBar>

namespace tav {

XBrowserWindow::XBrowserWindow(const QString& page, const QString& title, int mode)
    : browser_(new XBrowser(this)), mode_(mode) {
    setDeleteOnClose(true);
    setXName(QStringLiteral("help"));
    setWindowTitle(title);
    setCentralWidget(browser_);
    if (mode == 1) {
        QToolBar* bar = addToolBar(xt("Navigation"));
        bar->setMovable(false);
        QAction* back = bar->addAction(style()->standardIcon(QStyle::SP_ArrowBack), xt("Back"), browser_, &QTextBrowser::backward);
        QAction* fwd = bar->addAction(style()->standardIcon(QStyle::SP_ArrowForward), xt("Forward"), browser_, &QTextBrowser::forward);
        bar->addAction(style()->standardIcon(QStyle::SP_DirHomeIcon), xt("Home"), browser_, &QTextBrowser::home);
        back->setEnabled(false);
        fwd->setEnabled(false);
        connect(browser_, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
        connect(browser_, &QTextBrowser::forwardAvailable, fwd, &QAction::setEnabled);
    }
    browser_->showPage(page);
    addHotKeyMethod(QKeySequence(Qt::Key_Escape), [this]() { close(); });
}

XBrowserWindow* XBrowserWindow::showHelp(const QString& page, const QString& title, int mode) {
    log(tav::LOG_TRACE, "XBrowserWindow::showHelp, <<<$>>>, mode:$", page, mode);
    auto* w = new XBrowserWindow(page, title, mode);
    if (w->browser()->source().isEmpty()) {
        delete w;
        return nullptr;
    }
    XTools::centerOnScreen(w, 900, 700);
    w->show();
    return w;
}

} // namespace tav
