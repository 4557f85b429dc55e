#pragma once
// An ordered array of trees of one element type: plain trees (XTree::str_XTree)
// or records of a class derived from XTree, named by their type name.
#include "base/tree/XTree.h"

#include <QString>
#include <memory>
#include <vector>

namespace tav {

class XTreeArray {
public:
    static constexpr const char* str_XTreeArray = "tav::XTreeArray";

    // 'count' empty plain trees; arrays of records start empty and get append().
    explicit XTreeArray(int count = 0, const QString& elementType = QLatin1String(XTree::str_XTree));
    ~XTreeArray();
    XTreeArray(XTreeArray&& other) noexcept;
    XTreeArray& operator=(XTreeArray&& other) noexcept;
    XTreeArray(const XTreeArray&) = delete;
    XTreeArray& operator=(const XTreeArray&) = delete;

    const QString& elementType() const { return elementType_; }
    int size() const { return int(elements_.size()); }
    bool isEmpty() const { return elements_.empty(); }
    // Null outside 0 .. size-1.
    XTree* at(int i) const;
    const std::vector<std::unique_ptr<XTree>>& elements() const { return elements_; }

    XTree* append(std::unique_ptr<XTree> tree);
    // 'i' is clamped into 0 .. size.
    XTree* insert(int i, std::unique_ptr<XTree> tree);
    std::unique_ptr<XTree> take(int i);
    void clear() { elements_.clear(); }

    // Points every element at this array and at the tree that holds it.
    void setParentToChildren();
    XTree* parent() const { return parent_; }

private:
    friend class XTree;
    QString elementType_;
    std::vector<std::unique_ptr<XTree>> elements_;
    XTree* parent_ = nullptr;
};

} // namespace tav
