#include "base/tree/XVal.h"

#include "base/tree/XTree.h"
#include "base/tree/XTreeArray.h"

namespace tav {

XVal::XVal() = default;
XVal::~XVal() = default;
XVal::XVal(XVal&&) noexcept = default;
XVal& XVal::operator=(XVal&&) noexcept = default;

#define TAV_SET_PAYLOAD(T)                          \
    void XVal::setPayload(T v) {                    \
        type_ = QLatin1String(XTypeOf<T>::name);    \
        v_ = std::move(v);                          \
    }
TAV_SET_PAYLOAD(QString)
TAV_SET_PAYLOAD(bool)
TAV_SET_PAYLOAD(qint32)
TAV_SET_PAYLOAD(quint32)
TAV_SET_PAYLOAD(qint64)
TAV_SET_PAYLOAD(quint64)
TAV_SET_PAYLOAD(double)
TAV_SET_PAYLOAD(QByteArray)
TAV_SET_PAYLOAD(QStringList)
#undef TAV_SET_PAYLOAD

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
