#include "gui/panel/XSplitter.h"

#include "base/log/Logger.h"
#include "base/node/XNode.h"

namespace tav {

XSplitter::XSplitter(Qt::Orientation o, QWidget* parent) : QSplitter(o, parent) { setChildrenCollapsible(false); }

void XSplitter::stateToNode(XNode* node, const QString& key) const {
    if (!X_ASSERT_MSG(node, "node == NULL")) return;
    node->setString(key, QString::fromLatin1(saveState().toBase64()));
}

bool XSplitter::nodeToState(const XNode* node, const QString& key) {
    if (!X_ASSERT_MSG(node, "node == NULL")) return false;
    const QString s = node->getString(key);
    if (s.isEmpty()) return false;
    return restoreState(QByteArray::fromBase64(s.toLatin1()));
}

} // namespace tav
