#include "base/tree/XTreeArray.h"

namespace tav {

XTreeArray::XTreeArray(int count, const QString& elementType) : elementType_(elementType) {
    elements_.reserve(size_t(qMax(0, count)));
    for (int i = 0; i < count; ++i) elements_.push_back(std::make_unique<XTree>());
    setParentToChildren();
}

XTreeArray::~XTreeArray() = default;

XTreeArray::XTreeArray(XTreeArray&& other) noexcept
    : elementType_(std::move(other.elementType_)), elements_(std::move(other.elements_)) {
    other.elements_.clear();
    setParentToChildren();
}

XTreeArray& XTreeArray::operator=(XTreeArray&& other) noexcept {
    if (this != &other) {
        elementType_ = std::move(other.elementType_);
        elements_ = std::move(other.elements_);
        other.elements_.clear();
        setParentToChildren();
    }
    return *this;
}

XTree* XTreeArray::at(int i) const {
    if (i < 0 || i >= size()) return nullptr;
    return elements_[size_t(i)].get();
}

XTree* XTreeArray::append(std::unique_ptr<XTree> tree) { return insert(size(), std::move(tree)); }

XTree* XTreeArray::insert(int i, std::unique_ptr<XTree> tree) {
    if (!tree) return nullptr;
    i = qBound(0, i, size());
    tree->parent_ = parent_;
    tree->parentArray_ = this;
    XTree* raw = tree.get();
    elements_.insert(elements_.begin() + i, std::move(tree));
    return raw;
}

std::unique_ptr<XTree> XTreeArray::take(int i) {
    if (i < 0 || i >= size()) return nullptr;
    std::unique_ptr<XTree> t = std::move(elements_[size_t(i)]);
    elements_.erase(elements_.begin() + i);
    t->parent_ = nullptr;
    t->parentArray_ = nullptr;
    return t;
}

void XTreeArray::setParentToChildren() {
    for (auto& e : elements_) {
        e->parent_ = parent_;
        e->parentArray_ = this;
    }
}

} // namespace tav
