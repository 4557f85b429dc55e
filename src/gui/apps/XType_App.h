#pragma once
// Value-type support for XApp records: the basic types plus the record's
// type name ("tavFinder::XApp"), so arrays of records read back as XApp objects.
#include "base/tree/XTypeSupporter.h"

namespace tavFinder {

class XType_App : public tav::XTypeSupporter {
public:
    XType_App();

    // The record's type name as the demangler gives it.
    static const QString& appType();

    // The three process-wide instances: the store, the editor's copies, single-record copies.
    static const XType_App& forStore();
    static const XType_App& forEditor();
    static const XType_App& forCopy();

    bool arrayAsString(const tav::XTreeArray& array, QString& text) const override;
    bool showArray(const tav::XTreeArray& array, int indent, const QString& title, bool flagTypes, int maxDepth) const override;
    bool readTreeArray(tav::XStreamIn& in, const QString& elementType, quint32 count, tav::XVal& value) const override;
    bool writeTree(QDataStream& out, const tav::XTree& tree, const QString& type) const override;
    bool readTree(tav::XStreamIn& in, const QString& type, tav::XVal& value) const override;
};

} // namespace tavFinder
