#pragma once
// Names of the value types a value tree stores. The names are written into
// files, so they never change. Plain char constants: they are safe to use
// during static initialisation of other translation units.
#include <QString>
#include <QStringList>
#include <QByteArray>

namespace tav {

struct XTypeSet {
    static constexpr const char* str_QString = "QString";
    static constexpr const char* str_bool = "bool";
    static constexpr const char* str_int32 = "qint32";
    static constexpr const char* str_uint32 = "quint32";
    static constexpr const char* str_int64 = "qint64";
    static constexpr const char* str_uint64 = "quint64";
    static constexpr const char* str_double = "double";
    static constexpr const char* str_QByteArray = "QByteArray";
    static constexpr const char* str_QStringList = "QStringList";
};

// C++ type -> stored type name, for the typed get of a tree.
template <typename T>
struct XTypeOf;
template <> struct XTypeOf<QString> { static constexpr const char* name = XTypeSet::str_QString; };
template <> struct XTypeOf<bool> { static constexpr const char* name = XTypeSet::str_bool; };
template <> struct XTypeOf<qint32> { static constexpr const char* name = XTypeSet::str_int32; };
template <> struct XTypeOf<quint32> { static constexpr const char* name = XTypeSet::str_uint32; };
template <> struct XTypeOf<qint64> { static constexpr const char* name = XTypeSet::str_int64; };
template <> struct XTypeOf<quint64> { static constexpr const char* name = XTypeSet::str_uint64; };
template <> struct XTypeOf<double> { static constexpr const char* name = XTypeSet::str_double; };
template <> struct XTypeOf<QByteArray> { static constexpr const char* name = XTypeSet::str_QByteArray; };
template <> struct XTypeOf<QStringList> { static constexpr const char* name = XTypeSet::str_QStringList; };

} // namespace tav
