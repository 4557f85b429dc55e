// Developer commands for the value tree: a round trip through a memory block
// and one through the compressed file form.
#include "base/checksum/CheckSum.h"
#include "base/log/Logger.h"
#include "base/tree/XMem.h"
#include "base/tree/XTree.h"
#include "base/tree/XTreeArray.h"
#include "base/tree/XTypeSupporter.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/kernel/XRuntime.h"

#include <QDir>
#include <QTemporaryDir>

namespace {

using tav::log;

// A small tree with every kind of value the basic types carry.
tav::XTree sampleTree() {
    tav::XTree t;
    t.setString(QStringLiteral("name"), QStringLiteral("Talvo \u00e4\u00f6\u00fc \u0436"));
    t.setBool(QStringLiteral("flag"), true);
    t.setInt32(QStringLiteral("int32"), -42);
    t.setUInt64(QStringLiteral("uint64"), 0x1234567890ULL);
    t.setDouble(QStringLiteral("double"), 3.25);
    t.setStringList(QStringLiteral("words"), {QStringLiteral("alpha"), QStringLiteral("beta")});
    t.setBytes(QStringLiteral("bytes"), QByteArray("\x00\x01\xfe\xff", 4));
    tav::XTree inner;
    inner.setString(QStringLiteral("path"), QDir::homePath());
    t.setTree(QStringLiteral("inner"), std::move(inner));
    tav::XTreeArray ar(3);
    for (int i = 0; i < ar.size(); ++i) ar.at(i)->setInt32(QStringLiteral("index"), i);
    t.setArray(QStringLiteral("items"), std::move(ar));
    return t;
}

int writeReadTree2(tav::KernelGUI&) {
    tav::Logger::setLogLevelSimple(5);
    const tav::XTypeSupporter& types = tav::XTypeSupporter::basicTypes();
    const tav::XTree tree = sampleTree();
    const tav::XMem mem = tree.createMem(types);
    if (!mem.isOK()) {
        log(tav::LOG_ERROR, "xtree.writeReadTree2, cannot write the tree: $", mem.errorText());
        return 1;
    }
    log(tav::LOG_TRACE, "ramInfo:$", tav::fill("$ bytes", mem.size()));
    tav::XTree back;
    if (!tav::XTree::load(mem, types, back)) {
        log(tav::LOG_ERROR, "xtree.writeReadTree2, cannot read the tree back");
        return 1;
    }
    back.show(types, 2, QStringLiteral("tree read back"), true, -1);
    const bool same = back.toString(types) == tree.toString(types);
    log(same ? tav::LOG_TRACE : tav::LOG_ERROR, same ? "tree read back equals the tree written" : "tree read back differs from the tree written");
    return same ? 0 : 1;
}

int prog(tav::KernelGUI&) {
    tav::Logger::setLogLevelSimple(5);
    const tav::XTypeSupporter& types = tav::XTypeSupporter::basicTypes();
    QTemporaryDir dir;
    if (!dir.isValid()) {
        log(tav::LOG_ERROR, "prog, no temporary folder");
        return 1;
    }
    const QFileInfo first(dir.filePath(QStringLiteral("tree1.bin")));
    const QFileInfo second(dir.filePath(QStringLiteral("tree2.bin")));
    const tav::XTree tree = sampleTree();
    if (!tree.save_as_compressed_file(first, types)) {
        log(tav::LOG_ERROR, "prog, cannot write '$'", first);
        return 1;
    }
    tav::XTree back;
    if (!back.load_from_compressed_file(first, types)) {
        log(tav::LOG_ERROR, "prog, cannot read '$'", first);
        return 1;
    }
    // Written again from what was read: equal files mean nothing was lost on the way.
    if (!back.save_as_compressed_file(second, types)) {
        log(tav::LOG_ERROR, "prog, cannot write '$'", second);
        return 1;
    }
    const QString md1 = tav::MD5::ofFile(first.absoluteFilePath());
    const QString md2 = tav::MD5::ofFile(second.absoluteFilePath());
    log(tav::LOG_TRACE, "MD5 '$': $, '$': $", first.fileName(), md1, second.fileName(), md2);
    if (md1.isEmpty() || md1 != md2) {
        log(tav::LOG_ERROR, "MD5 sums differ");
        return 1;
    }
    log(tav::LOG_TRACE, "MD5 sums are equal");
    return 0;
}

const tav::TestGuiContextAdder kWriteRead(&writeReadTree2, QStringLiteral("xtree.writeReadTree2"), QString(), true);
const tav::TestGuiContextAdder kProg(&prog, QStringLiteral("prog"), QString(), true);

} // namespace
