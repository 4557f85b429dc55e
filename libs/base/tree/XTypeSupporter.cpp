#include "base/tree/XTypeSupporter.h"

#include "base/log/Logger.h"
#include "base/tree/XStream.h"
#include "base/tree/XTree.h"
#include "base/tree/XTreeArray.h"
#include "base/tree/XVal.h"
#include "base/util/Format.h"

namespace tav {

XTypeSupporter::XTypeSupporter(const QString& name) : NameAble(name) {
    for (const char* t : {XTypeSet::str_QString, XTypeSet::str_bool, XTypeSet::str_int32, XTypeSet::str_uint32,
                          XTypeSet::str_int64, XTypeSet::str_uint64, XTypeSet::str_double, XTypeSet::str_QByteArray,
                          XTypeSet::str_QStringList, XTree::str_XTree, XTreeArray::str_XTreeArray})
        types_.insert(QLatin1String(t));
}

XTypeSupporter::~XTypeSupporter() = default;

const XTypeSupporter& XTypeSupporter::basicTypes() {
    static const XTypeSupporter basic;
    return basic;
}

void XTypeSupporter::addType(const QString& type) { types_.insert(type); }

QStringList XTypeSupporter::types() const {
    QStringList l = types_.values();
    l.sort();
    return l;
}

bool XTypeSupporter::writeValue(QDataStream& out, const XVal& v) const {
    if (!knowsType(v.type())) return false;
    if (const auto* p = v.as<QString>()) xstream::writeString(out, *p);
    else if (const auto* p = v.as<bool>()) out << quint8(*p ? 1 : 0);
    else if (const auto* p = v.as<qint32>()) out << *p;
    else if (const auto* p = v.as<quint32>()) out << *p;
    else if (const auto* p = v.as<qint64>()) out << *p;
    else if (const auto* p = v.as<quint64>()) out << *p;
    else if (const auto* p = v.as<double>()) out << *p;
    else if (const auto* p = v.as<QByteArray>()) xstream::writeBytes(out, *p);
    else if (const auto* p = v.as<QStringList>()) xstream::writeStringList(out, *p);
    else if (XTreeArray* a = v.array()) {
        xstream::writeString(out, a->elementType());
        out << quint32(a->size());
        for (const auto& e : a->elements())
            if (!writeTree(out, *e, a->elementType())) return false;
    } else if (XTree* t = v.tree()) {
        return writeTree(out, *t, v.type());
    } else {
        return false;
    }
    return out.status() == QDataStream::Ok;
}

namespace {
template <typename T, typename R>
bool readScalar(XStreamIn& in, XVal& v, R reader) {
    T x{};
    if ((in.*reader)(x)) v = XVal::of<T>(x);
    return true;
}
}

bool XTypeSupporter::readValue(XStreamIn& in, const QString& type, XVal& v) const {
    if (!knowsType(type)) return false;
    if (type == QLatin1String(XTypeSet::str_QString)) return readScalar<QString>(in, v, &XStreamIn::readString);
    if (type == QLatin1String(XTypeSet::str_bool)) return readScalar<bool>(in, v, &XStreamIn::readBool);
    if (type == QLatin1String(XTypeSet::str_int32)) return readScalar<qint32>(in, v, &XStreamIn::readI32);
    if (type == QLatin1String(XTypeSet::str_uint32)) return readScalar<quint32>(in, v, &XStreamIn::readU32);
    if (type == QLatin1String(XTypeSet::str_int64)) return readScalar<qint64>(in, v, &XStreamIn::readI64);
    if (type == QLatin1String(XTypeSet::str_uint64)) return readScalar<quint64>(in, v, &XStreamIn::readU64);
    if (type == QLatin1String(XTypeSet::str_double)) return readScalar<double>(in, v, &XStreamIn::readDouble);
    if (type == QLatin1String(XTypeSet::str_QByteArray)) return readScalar<QByteArray>(in, v, &XStreamIn::readBytes);
    if (type == QLatin1String(XTypeSet::str_QStringList))
        return readScalar<QStringList>(in, v, &XStreamIn::readStringList);
    if (type == QLatin1String(XTreeArray::str_XTreeArray)) {
        QString elementType;
        quint32 count = 0;
        // Every element is a tree of at least 4 bytes (its entry count).
        if (!in.readString(elementType) || !in.readCount(count, 4)) return true;
        return readTreeArray(in, elementType, count, v);
    }
    return readTree(in, type, v);
}

QString XTypeSupporter::valueAsString(const XVal& v) const {
    if (const auto* p = v.as<QString>()) return QLatin1Char('\'') + *p + QLatin1Char('\'');
    if (const auto* p = v.as<bool>()) return toLogString(*p);
    if (const auto* p = v.as<qint32>()) return QString::number(*p);
    if (const auto* p = v.as<quint32>()) return QString::number(*p);
    if (const auto* p = v.as<qint64>()) return QString::number(*p);
    if (const auto* p = v.as<quint64>()) return QString::number(*p);
    if (const auto* p = v.as<double>()) return QString::number(*p, 'g', 17);
    if (const auto* p = v.as<QByteArray>()) return QStringLiteral("<%1 bytes>").arg(p->size());
    if (const auto* p = v.as<QStringList>()) return QLatin1Char('[') + p->join(QStringLiteral(", ")) + QLatin1Char(']');
    if (XTreeArray* a = v.array()) {
        QString text;
        return arrayAsString(*a, text) ? text : arrayText(*a);
    }
    if (XTree* t = v.tree()) return t->toString(*this);
    return QStringLiteral("<%1>").arg(v.type());
}

bool XTypeSupporter::writeTree(QDataStream& out, const XTree& tree, const QString& type) const {
    if (type != QLatin1String(XTree::str_XTree)) return false;
    return tree.writeToStream(out, *this);
}

bool XTypeSupporter::readTree(XStreamIn& in, const QString& type, XVal& v) const {
    if (type != QLatin1String(XTree::str_XTree)) return false;
    auto t = std::make_unique<XTree>();
    if (t->readFromStream(in, *this)) v = XVal::ofTree(std::move(t), type);
    return true;
}

bool XTypeSupporter::readTreeArray(XStreamIn& in, const QString& elementType, quint32 count, XVal& v) const {
    if (elementType != QLatin1String(XTree::str_XTree)) return false;
    auto a = std::make_unique<XTreeArray>(0, elementType);
    for (quint32 i = 0; i < count; ++i) {
        auto t = std::make_unique<XTree>();
        if (!t->readFromStream(in, *this)) return true;
        a->append(std::move(t));
    }
    v = XVal::ofArray(std::move(a));
    return true;
}

bool XTypeSupporter::arrayAsString(const XTreeArray& array, QString& text) const {
    if (array.elementType() != QLatin1String(XTree::str_XTree)) return false;
    text = arrayText(array);
    return true;
}

bool XTypeSupporter::showArray(const XTreeArray& array, int indent, const QString& title, bool flagTypes, int maxDepth) const {
    if (array.elementType() != QLatin1String(XTree::str_XTree)) return false;
    showElements(array, indent, title, flagTypes, maxDepth);
    return true;
}

QString XTypeSupporter::arrayText(const XTreeArray& array) const {
    QStringList parts;
    for (const auto& e : array.elements()) parts << e->toString(*this);
    return fill("$ [$] ", array.elementType(), array.size()) + QLatin1Char('{') + parts.join(QStringLiteral(", ")) +
           QLatin1Char('}');
}

void XTypeSupporter::showElements(const XTreeArray& array, int indent, const QString& title, bool flagTypes, int maxDepth) const {
    const QString sp = createSpace(indent);
    QStringList head;
    if (!title.isEmpty()) head << title;
    if (flagTypes) head << QStringLiteral("<%1>").arg(array.elementType());
    head << QStringLiteral("[%1] {").arg(array.size());
    log(tav::LOG_TRACE, "$$", sp, head.join(QLatin1Char(' ')));
    for (int i = 0; i < array.size(); ++i) {
        const QString label = QStringLiteral("[%1]").arg(i);
        if (maxDepth == 0) log(tav::LOG_TRACE, "$  $ {...}", sp, label);
        else array.at(i)->show(*this, indent + 2, label, flagTypes, maxDepth < 0 ? -1 : maxDepth - 1);
    }
    log(tav::LOG_TRACE, "$}", sp);
}

} // namespace tav
