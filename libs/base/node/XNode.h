#pragma once
// A tree of XML elements: the element's tag is the node's type, an optional
// "name" attribute its name; other attributes are typed through XRecord.
// Children are owned by their parent. Written to disk whole and atomically.
#include "base/node/XRecord.h"

#include <QString>
#include <atomic>
#include <memory>
#include <vector>

namespace tav {

class XNode : public XRecord {
public:
    // When set, empty elements are written as <a></a> instead of <a/>.
    static std::atomic<bool> atomicWriteFullEmptyTags;

    explicit XNode(const QString& type, const QString& name = QString());
    ~XNode() override;
    XNode(const XNode&) = delete;
    XNode& operator=(const XNode&) = delete;

    static std::unique_ptr<XNode> createRoot(const QString& type);

    const QString& type() const { return type_; }
    void setType(const QString& t) { type_ = t; }
    const QString& name() const { return name_; }
    void setName(const QString& n) { name_ = n; }

    XNode* parent() const { return parent_; }
    XNode* root();
    const XNode* root() const;

    // ---- children -------------------------------------------------------------
    int countChildren() const { return int(children_.size()); }
    XNode* child(int i) const;
    std::vector<XNode*> children() const;
    std::vector<XNode*> children_by_Type(const QString& type) const;
    // First child of this type (and name, when given), or null.
    XNode* query(const QString& type) const;
    XNode* query(const QString& type, const QString& name) const;
    // Get or create: the first child of this type (and name, when not empty).
    XNode* getCreateNode(const QString& type, const QString& name = QString(), int flags = 0);
    XNode* createChild(const QString& type, const QString& name = QString());
    // Takes ownership of 'child'.
    XNode* addNode(std::unique_ptr<XNode> child);
    // copy: add a deep copy of 'child' (which stays with its owner); otherwise
    // 'child' must be a parentless node allocated with new and is taken over.
    XNode* addNode(XNode* child, bool copy);
    // Removes a child; deletes it when 'del', else hands it back to the caller.
    XNode* removeNode(XNode* child, bool del);
    void removeChildren();
    // Removes children, attributes and text.
    void clear();

    // ---- content --------------------------------------------------------------
    const QString& getText() const { return text_; }
    void setText(const QString& t) { text_ = t; }

    std::unique_ptr<XNode> deepCopy() const;

    // A pointer the program attaches to a node (never saved, never copied).
    void set_pointer(void* p) { pointer_ = p; }
    void* pointer() const { return pointer_; }
    void remove_all_pointer();

    // ---- XML ------------------------------------------------------------------
    QByteArray toXml() const;
    // Whole and atomic; false when the file could not be written.
    bool saveNodeToXml(const QString& path) const;
    // Deeper files are refused: the program's own never pass a dozen levels, and
    // the recursive copy and writer must not run out of stack.
    static constexpr int kMaxDepth = 256;
    // Null and an error text on failure. A bare '&' that starts no entity is kept as text.
    static std::unique_ptr<XNode> fromXml(const QByteArray& xml, QString* error = nullptr);
    static std::unique_ptr<XNode> loadFromXml(const QString& path, QString* error = nullptr);

private:
    void writeXml(QByteArray& out, int depth) const;

    QString type_;
    QString name_;
    QString text_;
    XNode* parent_ = nullptr;
    void* pointer_ = nullptr;
    std::vector<std::unique_ptr<XNode>> children_;
};

} // namespace tav
