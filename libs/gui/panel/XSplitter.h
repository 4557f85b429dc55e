#pragma once
// A splitter whose state goes into a node attribute (base64) and back.
#include <QSplitter>

namespace tav {

class XNode;

class XSplitter : public QSplitter {
    Q_OBJECT
public:
    explicit XSplitter(Qt::Orientation o = Qt::Horizontal, QWidget* parent = nullptr);
    void stateToNode(XNode* node, const QString& key) const;
    // False when the node lacks the key or the state does not fit this splitter.
    bool nodeToState(const XNode* node, const QString& key);
};

} // namespace tav
