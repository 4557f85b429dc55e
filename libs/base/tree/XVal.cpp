#include "base/tree/XVal.h"

#include "base/tree/XTree.h"
#include "base/tree/XTreeArray.h"

namespace tav {

XVal::XVal() = default;
XVal::~XVal() = default;
XVal::XVal(XVal&&) noexcept = default;
XVal& XVal::operator=(XVal&&) noexcept = default;

XVal XVal::ofTree(std::unique_ptr<XTree> tree, const QString& type) {
    XVal x;
    if (!tree) return x;
    x.type_ = type;
    x.v_ = std::move(tree);
    return x;
}

XVal XVal::ofArray(std::unique_ptr<XTreeArray> array) {
    XVal x;
    if (!array) return x;
    x.type_ = QLatin1String(XTreeArray::str_XTreeArray);
    x.v_ = std::move(array);
    return x;
}

XTree* XVal::tree() const {
    auto* p = std::get_if<std::unique_ptr<XTree>>(&v_);
    return p ? p->get() : nullptr;
}

XTreeArray* XVal::array() const {
    auto* p = std::get_if<std::unique_ptr<XTreeArray>>(&v_);
    return p ? p->get() : nullptr;
}

} // namespace tav
