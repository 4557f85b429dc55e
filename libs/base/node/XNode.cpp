#include "base/node/XNode.h"

#include "base/io/XFileIO.h"
#include "base/log/Logger.h"

#include <QFile>
#include <QXmlStreamReader>

namespace tav {

std::atomic<bool> XNode::atomicWriteFullEmptyTags{false};

XNode::XNode(const QString& type, const QString& name) : type_(type), name_(name) {}
// Children are taken apart with a list instead of each destructor calling the
// next: a file of a few megabytes can nest deep enough to overflow the stack.
XNode::~XNode() {
    std::vector<std::unique_ptr<XNode>> pending = std::move(children_);
    while (!pending.empty()) {
        std::unique_ptr<XNode> n = std::move(pending.back());
        pending.pop_back();
        for (auto& c : n->children_) pending.push_back(std::move(c));
        n->children_.clear();
    }
}

std::unique_ptr<XNode> XNode::createRoot(const QString& type) { return std::make_unique<XNode>(type); }

XNode* XNode::root() {
    XNode* n = this;
    while (n->parent_) n = n->parent_;
    return n;
}
const XNode* XNode::root() const {
    const XNode* n = this;
    while (n->parent_) n = n->parent_;
    return n;
}

XNode* XNode::child(int i) const {
    return (i >= 0 && i < int(children_.size())) ? children_[size_t(i)].get() : nullptr;
}

std::vector<XNode*> XNode::children() const {
    std::vector<XNode*> out;
    out.reserve(children_.size());
    for (auto& c : children_) out.push_back(c.get());
    return out;
}

std::vector<XNode*> XNode::children_by_Type(const QString& type) const {
    std::vector<XNode*> out;
    for (auto& c : children_)
        if (c->type_ == type) out.push_back(c.get());
    return out;
}

XNode* XNode::query(const QString& type) const {
    for (auto& c : children_)
        if (c->type_ == type) return c.get();
    return nullptr;
}

XNode* XNode::query(const QString& type, const QString& name) const {
    for (auto& c : children_)
        if (c->type_ == type && c->name_ == name) return c.get();
    return nullptr;
}

XNode* XNode::getCreateNode(const QString& type, const QString& name, int) {
    XNode* n = name.isEmpty() ? query(type) : query(type, name);
    return n ? n : createChild(type, name);
}

XNode* XNode::createChild(const QString& type, const QString& name) {
    return addNode(std::make_unique<XNode>(type, name));
}

XNode* XNode::addNode(std::unique_ptr<XNode> child) {
    if (!child) return nullptr;
    child->parent_ = this;
    children_.push_back(std::move(child));
    return children_.back().get();
}

XNode* XNode::addNode(XNode* child, bool copy) {
    if (!X_ASSERT(child)) return nullptr;
    if (copy) return addNode(child->deepCopy());
    if (child->parent_) {
        log(tav::LOG_ERROR, "XNode::addNode, node <$> has a parent already", child->type_);
        return nullptr;
    }
    return addNode(std::unique_ptr<XNode>(child));
}

XNode* XNode::removeNode(XNode* child, bool del) {
    for (auto it = children_.begin(); it != children_.end(); ++it) {
        if (it->get() == child) {
            std::unique_ptr<XNode> owned = std::move(*it);
            children_.erase(it);
            owned->parent_ = nullptr;
            if (del) return nullptr;
            return owned.release();
        }
    }
    return nullptr;
}

void XNode::removeChildren() { children_.clear(); }

void XNode::clear() {
    children_.clear();
    attrs_.clear();
    text_.clear();
}

std::unique_ptr<XNode> XNode::deepCopy() const {
    auto n = std::make_unique<XNode>(type_, name_);
    n->attrs_ = attrs_;
    n->text_ = text_;
    for (auto& c : children_) n->addNode(c->deepCopy());
    return n;
}

void XNode::remove_all_pointer() {
    pointer_ = nullptr;
    for (auto& c : children_) c->remove_all_pointer();
}

namespace {
// Whether p[0] == '&' starts what an XML reader takes for an entity or a
// character reference: "&#123;", "&#x1F;" or "&name;". The writer escapes
// exactly these and the reader keeps every other '&' as text, so the two
// always agree on what a written file means.
inline int code(QChar c) { return c.unicode(); }
inline int code(char c) { return static_cast<unsigned char>(c); }

template <typename C>
bool isEntityAt(const C* p, size_t n) {
    auto at = [&](size_t i) -> int { return i < n ? code(p[i]) : -1; };
    auto digit = [](int c) { return c >= '0' && c <= '9'; };
    auto hex = [&](int c) { return digit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); };
    auto alpha = [](int c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    size_t i = 1;
    if (at(i) == '#') {
        ++i;
        const bool isHex = at(i) == 'x';
        if (isHex) ++i;
        const size_t start = i;
        while (isHex ? hex(at(i)) : digit(at(i))) ++i;
        return i > start && at(i) == ';';
    }
    if (!alpha(at(i))) return false;
    ++i;
    while (alpha(at(i)) || digit(at(i)) || at(i) == '.' || at(i) == '_' || at(i) == '-') ++i;
    return at(i) == ';';
}

bool looksLikeEntity(const QString& s, int amp) { return isEntityAt(s.constData() + amp, size_t(s.size() - amp)); }
}

// ---- writing -------------------------------------------------------------------
namespace {

// A bare '&' stays bare (so accelerators such as "&add" read naturally in the
// file); only an '&' that would read back as an entity is escaped.
QString escapeText(const QString& s, bool attribute) {
    QString out;
    out.reserve(s.size() + 8);
    for (int i = 0; i < s.size(); ++i) {
        const QChar c = s[i];
        switch (c.unicode()) {
        case '<': out += QLatin1String("&lt;"); break;
        case '>': out += QLatin1String("&gt;"); break;
        case '&': out += looksLikeEntity(s, i) || attribute ? QLatin1String("&amp;") : QLatin1String("&"); break;
        case '"': out += attribute ? QLatin1String("&quot;") : QLatin1String("\""); break;
        case '\n': out += attribute ? QLatin1String("&#10;") : QLatin1String("\n"); break;
        case '\r': out += QLatin1String("&#13;"); break;
        case '\t': out += attribute ? QLatin1String("&#9;") : QLatin1String("\t"); break;
        default:
            // Not representable in XML 1.0: a reader would refuse the whole file.
            if (c.unicode() < 0x20 || c.unicode() == 0xFFFE || c.unicode() == 0xFFFF) continue;
            if (c.isHighSurrogate() && i + 1 < s.size() && s[i + 1].isLowSurrogate()) {
                out += c;
                out += s[++i];
                continue;
            }
            if (c.isSurrogate()) continue;   // half of a pair
            out += c;
        }
    }
    return out;
}
}

void XNode::writeXml(QByteArray& out, int depth) const {
    const QByteArray indent(depth * 2, ' ');
    out += indent;
    out += '<';
    out += type_.toUtf8();
    if (!name_.isEmpty()) {
        out += " name=\"";
        out += escapeText(name_, true).toUtf8();
        out += '"';
    }
    for (auto& [k, v] : attrs_) {
        out += ' ';
        out += k.toUtf8();
        out += "=\"";
        out += escapeText(v, true).toUtf8();
        out += '"';
    }
    if (children_.empty() && text_.isEmpty()) {
        if (atomicWriteFullEmptyTags) out += "></" + type_.toUtf8() + ">\n";
        else out += "/>\n";
        return;
    }
    out += '>';
    out += escapeText(text_, false).toUtf8();
    if (!children_.empty()) {
        out += '\n';
        for (auto& c : children_) c->writeXml(out, depth + 1);
        out += indent;
    }
    out += "</" + type_.toUtf8() + ">\n";
}

QByteArray XNode::toXml() const {
    QByteArray out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    writeXml(out, 0);
    return out;
}

bool XNode::saveNodeToXml(const QString& path) const {
    QString err;
    if (!writeFileAtomic(path, toXml(), &err)) {
        log(tav::LOG_ERROR, "XNode::saveNodeToXml <<<$>>> - $", path, err);
        return false;
    }
    return true;
}

// ---- reading -------------------------------------------------------------------
namespace {
QByteArray escapeBareAmpersands(const QByteArray& in) {
    if (!in.contains('&')) return in;
    QByteArray out;
    out.reserve(in.size() + 64);
    for (int i = 0; i < in.size(); ++i) {
        if (in[i] == '&' && !isEntityAt(in.constData() + i, size_t(in.size() - i))) {
            out += "&amp;";
            continue;
        }
        out += in[i];
    }
    return out;
}
}

std::unique_ptr<XNode> XNode::fromXml(const QByteArray& raw, QString* error) {
    QXmlStreamReader xml(escapeBareAmpersands(raw));
    std::unique_ptr<XNode> root;
    XNode* cur = nullptr;
    int depth = 0;
    while (!xml.atEnd()) {
        const auto tok = xml.readNext();
        if (tok == QXmlStreamReader::StartElement) {
            if (++depth > kMaxDepth) {
                if (error) *error = QStringLiteral("line %1: elements nested deeper than %2 levels").arg(xml.lineNumber()).arg(kMaxDepth);
                return nullptr;
            }
            auto n = std::make_unique<XNode>(xml.name().toString());
            for (const auto& a : xml.attributes()) {
                if (a.name() == QLatin1String("name")) n->name_ = a.value().toString();
                else n->attrs_.emplace_back(a.name().toString(), a.value().toString());
            }
            if (!cur) {
                if (root) {
                    if (error) *error = QStringLiteral("more than one root element");
                    return nullptr;
                }
                root = std::move(n);
                cur = root.get();
            } else {
                // The writer puts a line end and indentation between an element's
                // text and its first child: that layout is not part of the text.
                if (cur->children_.empty()) {
                    int end = cur->text_.size();
                    while (end > 0 && cur->text_[end - 1].isSpace()) --end;
                    cur->text_.truncate(end);
                }
                cur = cur->addNode(std::move(n));
            }
        } else if (tok == QXmlStreamReader::EndElement) {
            --depth;
            if (cur) {
                // Text between child elements is layout, not content.
                if (!cur->children_.empty() && cur->text_.trimmed().isEmpty()) cur->text_.clear();
                cur = cur->parent_;
            }
        } else if (tok == QXmlStreamReader::Characters) {
            if (cur && cur->children_.empty()) cur->text_ += xml.text();
        }
    }
    if (xml.hasError() || !root) {
        if (error) *error = xml.hasError() ? QStringLiteral("line %1: %2").arg(xml.lineNumber()).arg(xml.errorString())
                                           : QStringLiteral("no root element");
        return nullptr;
    }
    return root;
}

std::unique_ptr<XNode> XNode::loadFromXml(const QString& path, QString* error) {
    QByteArray data;
    if (!readUserFile(path, kMaxUserFileBytes, data, error)) return nullptr;
    return fromXml(data, error);
}

} // namespace tav
