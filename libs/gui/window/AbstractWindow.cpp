#include "gui/window/AbstractWindow.h"

#include "base/log/Logger.h"

#include <QShortcut>
#include <QWidget>
#include <algorithm>

namespace tav {

namespace {
std::vector<AbstractWindow*>& registry() {
    static std::vector<AbstractWindow*> r;
    return r;
}
}

AbstractWindow::AbstractWindow(QWidget* self) : self_(self) { registry().push_back(this); }

AbstractWindow::~AbstractWindow() {
    auto& r = registry();
    r.erase(std::remove(r.begin(), r.end(), this), r.end());
}

std::vector<AbstractWindow*> AbstractWindow::allWindows() { return registry(); }

QString AbstractWindow::windowName() const { return xname_; }

void AbstractWindow::initWindow(XNode* node, const QString& title, const QString& helpPage) {
    nodeWin_ = node;
    helpPage_ = helpPage;
    if (self_) self_->setWindowTitle(title);
}

void AbstractWindow::saveStateToXml() {
    if (!nodeWin_ || !self_) return;
    nodeWin_->setString(QStringLiteral("geometry"), QString::fromLatin1(self_->saveGeometry().toBase64()));
}

bool AbstractWindow::restoreStateFromXml() {
    if (!nodeWin_ || !self_) return false;
    const QString g = nodeWin_->getString(QStringLiteral("geometry"));
    if (g.isEmpty()) return false;
    return self_->restoreGeometry(QByteArray::fromBase64(g.toLatin1()));
}

QShortcut* AbstractWindow::addHotKeyMethod(const QKeySequence& keys, std::function<void()> f,
                                           Qt::ShortcutContext context) {
    auto* sc = new QShortcut(keys, self_);
    sc->setContext(context);
    QObject::connect(sc, &QShortcut::activated, self_, [f = std::move(f)]() { if (f) f(); });
    return sc;
}

void AbstractWindow::setDeleteOnClose(bool on) {
    if (self_) self_->setAttribute(Qt::WA_DeleteOnClose, on);
}

} // namespace tav
