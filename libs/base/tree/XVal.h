#pragma once
// One typed value of a value tree: the stored type name and the payload.
// Scalars, strings, byte arrays and string lists are held directly; a sub-tree
// (a plain tree or a record class derived from XTree) and a tree array are
// owned through pointers, so their addresses stay put while the tree changes.
#include "base/tree/XTypeSet.h"

#include <QString>
#include <memory>
#include <variant>

namespace tav {

class XTree;
class XTreeArray;

class XVal {
public:
    XVal();
    ~XVal();
    XVal(XVal&&) noexcept;
    XVal& operator=(XVal&&) noexcept;
    XVal(const XVal&) = delete;
    XVal& operator=(const XVal&) = delete;

    template <typename T>
    static XVal of(T v) {
        XVal x;
        x.setPayload(std::move(v));
        return x;
    }
    // 'type' is the tree's stored type name: XTree::str_XTree or a record type.
    static XVal ofTree(std::unique_ptr<XTree> tree, const QString& type);
    static XVal ofArray(std::unique_ptr<XTreeArray> array);

    // The stored type name; empty for no value.
    const QString& type() const { return type_; }
    bool isNull() const { return std::holds_alternative<std::monostate>(v_); }

    // The payload when it has exactly this C++ type and matching type name, else null.
    template <typename T>
    const T* as() const {
        if (type_ != QLatin1String(XTypeOf<T>::name)) return nullptr;
        return std::get_if<T>(&v_);
    }
    XTree* tree() const;        // any tree-typed value, else null
    XTreeArray* array() const;  // an array, else null

private:
    // Out of line: assigning the variant needs the complete tree types.
    void setPayload(QString v);
    void setPayload(bool v);
    void setPayload(qint32 v);
    void setPayload(quint32 v);
    void setPayload(qint64 v);
    void setPayload(quint64 v);
    void setPayload(double v);
    void setPayload(QByteArray v);
    void setPayload(QStringList v);

    QString type_;
    std::variant<std::monostate, QString, bool, qint32, quint32, qint64, quint64, double, QByteArray, QStringList,
                 std::unique_ptr<XTree>, std::unique_ptr<XTreeArray>>
        v_;
};

} // namespace tav
