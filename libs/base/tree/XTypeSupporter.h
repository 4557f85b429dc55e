#pragma once
// Knows the value types a value tree may hold and how to write, read and show
// them. The basic supporter (basicTypes()) handles scalars, strings, byte
// arrays, string lists, plain sub-trees and arrays of plain trees.
//
// A program stores its own record class (derived from XTree) by deriving a
// supporter: register the record's type name with addType() and override the
// tree operations below. Each override first lets the base class try and
// handles the value only when the base declines (returns false) and the type
// is the record's. Readers report bad input through XStreamIn::fail, not
// through the return value: false means only "not my type".
#include "base/core/XProp.h"

#include <QDataStream>
#include <QSet>
#include <QString>
#include <QStringList>

namespace tav {

class XStreamIn;
class XTree;
class XTreeArray;
class XVal;

class XTypeSupporter : public NameAble {
public:
    explicit XTypeSupporter(const QString& name = QStringLiteral("basic"));
    ~XTypeSupporter() override;

    static const XTypeSupporter& basicTypes();

    void addType(const QString& type);
    bool knowsType(const QString& type) const { return types_.contains(type); }
    QStringList types() const;

    // A value's payload; false when its type is unknown here.
    bool writeValue(QDataStream& out, const XVal& value) const;
    // The payload of a value of 'type'; false when the type is unknown here
    // (the caller skips the payload).
    bool readValue(XStreamIn& in, const QString& type, XVal& value) const;
    QString valueAsString(const XVal& value) const;

    // ---- operations a program's supporter overrides for its record type -----------
    virtual bool writeTree(QDataStream& out, const XTree& tree, const QString& type) const;
    // Reads one tree of 'type' into a new object and stores it in 'value'.
    virtual bool readTree(XStreamIn& in, const QString& type, XVal& value) const;
    // Reads 'count' trees of 'elementType' into a new array stored in 'value'.
    virtual bool readTreeArray(XStreamIn& in, const QString& elementType, quint32 count, XVal& value) const;
    virtual bool arrayAsString(const XTreeArray& array, QString& text) const;
    // Logs the array (level 32) as part of XTree::show.
    virtual bool showArray(const XTreeArray& array, int indent, const QString& title, bool flagTypes, int maxDepth) const;

    // Helpers for the overrides: "type [n] {elem, elem}" and the log lines of an array.
    QString arrayText(const XTreeArray& array) const;
    void showElements(const XTreeArray& array, int indent, const QString& title, bool flagTypes, int maxDepth) const;

private:
    QSet<QString> types_;
};

} // namespace tav
