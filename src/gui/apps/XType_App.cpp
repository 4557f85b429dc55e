#include "src/gui/apps/XType_App.h"

#include "base/tree/XStream.h"
#include "base/tree/XTreeArray.h"
#include "base/tree/XVal.h"
#include "base/util/Demangle.h"
#include "src/gui/apps/XApp.h"

namespace tavFinder {

namespace {
// Created during static initialisation, in this order, within this file.
const XType_App kStore;
const XType_App kEditor;
const XType_App kCopy;
}

XType_App::XType_App() : tav::XTypeSupporter(QStringLiteral("app")) { addType(appType()); }

const QString& XType_App::appType() {
    static const QString name = tav::typeName<XApp>();
    return name;
}

const XType_App& XType_App::forStore() { return kStore; }
const XType_App& XType_App::forEditor() { return kEditor; }
const XType_App& XType_App::forCopy() { return kCopy; }

bool XType_App::arrayAsString(const tav::XTreeArray& array, QString& text) const {
    if (tav::XTypeSupporter::arrayAsString(array, text)) return true;
    if (array.elementType() != appType()) return false;
    text = arrayText(array);
    return true;
}

bool XType_App::showArray(const tav::XTreeArray& array, int indent, const QString& title, bool flagTypes, int maxDepth) const {
    if (tav::XTypeSupporter::showArray(array, indent, title, flagTypes, maxDepth)) return true;
    if (array.elementType() != appType()) return false;
    showElements(array, indent, title, flagTypes, maxDepth);
    return true;
}

bool XType_App::readTreeArray(tav::XStreamIn& in, const QString& elementType, quint32 count, tav::XVal& value) const {
    if (tav::XTypeSupporter::readTreeArray(in, elementType, count, value)) return true;
    if (elementType != appType()) return false;
    auto array = std::make_unique<tav::XTreeArray>(0, elementType);
    for (quint32 i = 0; i < count; ++i) {
        auto app = std::make_unique<XApp>(XApp::Empty{});
        if (!app->readFromStream(in, *this)) return true;   // the reader carries the error
        array->append(std::move(app));
    }
    value = tav::XVal::ofArray(std::move(array));
    return true;
}

bool XType_App::writeTree(QDataStream& out, const tav::XTree& tree, const QString& type) const {
    if (tav::XTypeSupporter::writeTree(out, tree, type)) return true;
    if (type != appType()) return false;
    return tree.writeToStream(out, *this);
}

bool XType_App::readTree(tav::XStreamIn& in, const QString& type, tav::XVal& value) const {
    if (tav::XTypeSupporter::readTree(in, type, value)) return true;
    if (type != appType()) return false;
    auto app = std::make_unique<XApp>(XApp::Empty{});
    if (app->readFromStream(in, *this)) value = tav::XVal::ofTree(std::move(app), type);
    return true;
}

} // namespace tavFinder
