#pragma once
// A keyed tree of typed values (XVal): strings, booleans, integers, doubles,
// byte arrays, string lists, nested trees and arrays of trees or of records.
// Keys are kept sorted, so the binary form of equal trees is byte for byte equal.
//
// A type supporter (XTypeSupporter) names the value types a tree may hold when
// it is written, read, copied or shown; programs derive their own to store
// record classes derived from XTree (see XTypeSupporter).
//
// Binary form (all integers big endian; QDataStream, version Qt_5_15):
//
//   memory image (createMem / load / readFromDevice / writeToDevice)
//     u32  magic 0x58545245 ("XTRE")
//     u16  format version (kFormatVersion); a newer version is refused
//     u16  reserved, 0
//     u32  body length in bytes
//     u32  CRC-32 (IEEE) of the body
//     ...  body: one tree; nothing may follow it
//
//   tree:   u32 entry count, then per entry (sorted by key):
//             string key, string type name, u32 payload length, payload
//           A reader skips a payload whose type its supporter does not know.
//   string: u32 byte length + UTF-8 bytes
//   payloads by type name:
//     QString        string              bool     u8, 0 or 1
//     qint32/quint32 4 bytes             qint64/quint64  8 bytes
//     double         8 bytes IEEE 754    QByteArray  u32 length + bytes
//     QStringList    u32 count + strings
//     tav::XTree and record types: a tree (written by the supporter)
//     tav::XTreeArray: string element type, u32 count, count trees
//
//   compressed file (save_as_compressed_file / load_from_compressed_file)
//     u32  magic 0x5854525A ("XTRZ")
//     u16  format version, u16 reserved
//     u32  CRC-32 of what follows
//     ...  qCompress of the memory image (u32 unpacked size + zlib stream)
//
// Reading never trusts the input: every length and count is checked against
// the bytes left, nesting stops at XStreamIn::kMaxDepth, files and unpacked
// images are capped at XMem::kMaxSize. A bad input loads as false (or an empty
// tree for the static load) and leaves the target tree unchanged.
#include "base/tree/XTypeSet.h"
#include "base/tree/XVal.h"

#include <QFileInfo>
#include <QString>
#include <QStringList>
#include <map>
#include <memory>

class QDataStream;
class QIODevice;

namespace tav {

class XMem;
class XStreamIn;
class XTreeArray;
class XTypeSupporter;

class XTree {
public:
    static constexpr const char* str_XTree = "tav::XTree";
    static constexpr quint32 kMagic = 0x58545245;            // "XTRE"
    static constexpr quint32 kMagicCompressed = 0x5854525A;  // "XTRZ"
    static constexpr quint16 kFormatVersion = 1;

    XTree();
    virtual ~XTree();
    XTree(XTree&& other) noexcept;
    // Takes the other tree's content; this tree keeps its place (its parent).
    XTree& operator=(XTree&& other) noexcept;
    // Copies go through a type supporter: create_copy / copy.
    XTree(const XTree&) = delete;
    XTree& operator=(const XTree&) = delete;
    void swap(XTree& other) noexcept;

    // ---- keys -------------------------------------------------------------------
    int size() const { return int(entries_.size()); }
    bool isEmpty() const { return entries_.empty(); }   // no key at all
    bool containsKey(const QString& key) const;
    QStringList keys() const;
    bool erase(const QString& key);
    void clear();
    // Stored type name of a key; empty when missing.
    QString typeOf(const QString& key) const;
    const XVal* value(const QString& key) const;

    // ---- typed get and set --------------------------------------------------------
    // The value under 'key' when it holds a T; otherwise 'def'. A wrong type is
    // logged as a warning (level 4), a missing key at level 64.
    template <typename T>
    T get(const QString& key, const std::common_type_t<T>& def) const {
        const XVal* v = value(key);
        if (!v) {
            noteMissing(key, XTypeOf<T>::name);
            return def;
        }
        if (const T* p = v->template as<T>()) return *p;
        noteWrongType(key, v->type(), XTypeOf<T>::name);
        return def;
    }
    QString getString(const QString& key, const QString& def = QString()) const { return get<QString>(key, def); }
    // A boolean with its default for a missing key (missing is normal here, not logged).
    bool isFlag(const QString& key, bool def) const;

    // Setting replaces whatever the key held.
    void setString(const QString& key, const QString& v) { put(key, XVal::of(v)); }
    void setBool(const QString& key, bool v) { put(key, XVal::of(v)); }
    void setInt32(const QString& key, qint32 v) { put(key, XVal::of(v)); }
    void setUInt32(const QString& key, quint32 v) { put(key, XVal::of(v)); }
    void setInt64(const QString& key, qint64 v) { put(key, XVal::of(v)); }
    void setUInt64(const QString& key, quint64 v) { put(key, XVal::of(v)); }
    void setDouble(const QString& key, double v) { put(key, XVal::of(v)); }
    void setBytes(const QString& key, const QByteArray& v) { put(key, XVal::of(v)); }
    void setStringList(const QString& key, const QStringList& v) { put(key, XVal::of(v)); }

    // ---- sub-trees and arrays -----------------------------------------------------------
    // The sub-tree under 'key' (plain or record), or null.
    XTree* getTree(const QString& key) const;
    XTree& setTree(const QString& key, XTree&& tree);
    // A record (a class derived from XTree) stored under its type name.
    XTree* setTree(const QString& key, std::unique_ptr<XTree> tree, const QString& type);
    // The array under 'key', or null (a missing key or another type is logged).
    XTreeArray* getArray(const QString& key) const;
    // The array under 'key'; an empty array when there is none.
    const XTreeArray& array(const QString& key) const;
    XTreeArray& setArray(const QString& key, XTreeArray&& array);

    // The tree that holds this one (directly or through an array), and that array.
    XTree* parent() const { return parent_; }
    XTreeArray* parentArray() const { return parentArray_; }

    // ---- binary form ----------------------------------------------------------------------
    // The body alone (no header). The device under 'out' must be random access.
    bool writeToStream(QDataStream& out, const XTypeSupporter& types) const;
    // Replaces the content by a tree read from 'in'; false (content undefined) on bad input.
    bool readFromStream(XStreamIn& in, const XTypeSupporter& types);
    // Header and body.
    bool writeToDevice(QIODevice& device, const XTypeSupporter& types) const;
    // Reads header and body from the device's position; the content changes only on success.
    bool readFromDevice(QIODevice& device, const XTypeSupporter& types);

    // The memory image; not OK (XError) when a value type is unknown to 'types'.
    XMem createMem(const XTypeSupporter& types) const;
    // The tree of a memory image; an empty tree when it does not load (logged).
    static XTree load(const XMem& mem, const XTypeSupporter& types);
    static bool load(const XMem& mem, const XTypeSupporter& types, XTree& out);

    // The compressed form in memory; empty when the tree cannot be written.
    QByteArray to_compressed_bytes(const XTypeSupporter& types) const;
    // False (tree unchanged) when the bytes do not unpack and load.
    bool load_from_compressed_bytes(const QByteArray& bytes, const XTypeSupporter& types);

    // Compressed file, written whole and atomically.
    bool save_as_compressed_file(const QFileInfo& file, const XTypeSupporter& types) const;
    // False (tree unchanged) when the file is missing, unreadable or does not load.
    bool load_from_compressed_file(const QFileInfo& file, const XTypeSupporter& types);

    // Deep copies through the binary form, so record types keep their class.
    XTree create_copy(const XTypeSupporter& types) const;
    // Replaces this content by a deep copy of 'source'; false (unchanged) on failure.
    bool copy(const XTree& source, const XTypeSupporter& types);

    // ---- text ------------------------------------------------------------------------
    // Writes the tree to the log (level 32), one line per value, indented by
    // 'indent' blanks; 'flagTypes' adds type names; maxDepth -1 = unlimited.
    void show(const XTypeSupporter& types, int indent, const QString& title, bool flagTypes, int maxDepth) const;
    // One line: {key:value, ...}
    QString toString(const XTypeSupporter& types) const;

private:
    friend class XTreeArray;
    void put(const QString& key, XVal&& v);
    void adopt(XVal& v);
    void adoptAll();
    static void noteMissing(const QString& key, const char* wanted);
    static void noteWrongType(const QString& key, const QString& has, const char* wanted);

    std::map<QString, XVal> entries_;
    XTree* parent_ = nullptr;
    XTreeArray* parentArray_ = nullptr;
};

} // namespace tav
