#include "src/find/SavedSearches.h"

#include "base/io/XFileIO.h"
#include "base/io/XPaths.h"
#include "base/log/Logger.h"
#include "base/node/XNode.h"

#include <QDir>
#include <QFileInfo>

namespace tavFinder {

namespace {
// Every field but the name, with its key in the store: load and save walk the
// same list, so a new field cannot be forgotten in one of them.
template <typename S, typename F>
void eachField(S& s, F&& f) {
    f("folder", s.folder);
    f("pattern", s.pattern);
    f("notPattern", s.notPattern);
    f("timeArea", s.timeArea);
    f("time1", s.time1);
    f("time2", s.time2);
    f("sizeArea", s.sizeArea);
    f("size1", s.size1);
    f("size2", s.size2);
    f("hidden", s.hidden);
    f("textFiles", s.textFiles);
    f("content", s.content);
    f("regex", s.regex);
    f("scope", s.scope);
    f("wholeWords", s.wholeWords);
    f("matchCase", s.matchCase);
    f("documents", s.documents);
    f("ignoreFiles", s.ignoreFiles);
}

void read(const tav::XNode* n, const char* key, QString& v) { v = n->getString(QLatin1String(key)); }
void read(const tav::XNode* n, const char* key, bool& v) { v = n->isBool(QLatin1String(key), false); }
void read(const tav::XNode* n, const char* key, uint32_t& v) { v = n->getUInt(QLatin1String(key), 0); }
void read(const tav::XNode* n, const char* key, int64_t& v) { v = n->getInt64(QLatin1String(key), 0); }
void read(const tav::XNode* n, const char* key, uint64_t& v) { v = uint64_t(n->getInt64(QLatin1String(key), 0)); }
void write(tav::XNode* n, const char* key, const QString& v) { n->setString(QLatin1String(key), v); }
void write(tav::XNode* n, const char* key, bool v) { n->setBool(QLatin1String(key), v); }
void write(tav::XNode* n, const char* key, uint32_t v) { n->setUInt(QLatin1String(key), v); }
void write(tav::XNode* n, const char* key, int64_t v) { n->setInt64(QLatin1String(key), v); }
void write(tav::XNode* n, const char* key, uint64_t v) { n->setInt64(QLatin1String(key), int64_t(v)); }
} // namespace

namespace SavedSearches {

namespace {
const QString kRoot = QStringLiteral("SavedSearches");
const QString kSearch = QStringLiteral("Search");
}

QString storePath() { return tav::get_absolute_config_dir().absoluteFilePath(QStringLiteral("saved-searches.xml")); }

QList<SavedSearch> load() {
    QList<SavedSearch> out;
    const QString path = storePath();
    if (!QFileInfo::exists(path)) return out;
    QString error;
    std::unique_ptr<tav::XNode> root = tav::XNode::loadFromXml(path, &error);
    if (!root || root->type() != kRoot) {
        // The next save would write an empty store over it: keep the user's file.
        tav::log(tav::LOG_ERROR, "SavedSearches::load <<<$>>> cannot be read ($), moved aside", path, error);
        tav::moveAside(path);
        return out;
    }
    for (tav::XNode* n : root->children_by_Type(kSearch)) {
        SavedSearch s;
        s.name = n->name();
        if (s.name.isEmpty()) continue;
        eachField(s, [n](const char* key, auto& v) { read(n, key, v); });
        put(out, s);
    }
    return out;
}

bool save(const QList<SavedSearch>& all) {
    std::unique_ptr<tav::XNode> root = tav::XNode::createRoot(kRoot);
    for (const SavedSearch& s : all) {
        // The node's name is the search's name.
        tav::XNode* n = root->createChild(kSearch, s.name);
        eachField(s, [n](const char* key, const auto& v) { write(n, key, v); });
    }
    return root->saveNodeToXml(storePath());
}

SavedSearch find(const QList<SavedSearch>& all, const QString& name) {
    for (const SavedSearch& s : all)
        if (s.name == name) return s;
    return SavedSearch();
}

void put(QList<SavedSearch>& all, const SavedSearch& s) {
    for (SavedSearch& e : all)
        if (e.name == s.name) {
            e = s;
            return;
        }
    all << s;
}

bool rename(QList<SavedSearch>& all, const QString& from, const QString& to) {
    if (to.trimmed().isEmpty() || from == to || !find(all, to).name.isEmpty()) return false;
    for (SavedSearch& e : all)
        if (e.name == from) {
            e.name = to.trimmed();
            return true;
        }
    return false;
}

bool remove(QList<SavedSearch>& all, const QString& name) {
    for (int i = 0; i < all.size(); ++i)
        if (all[i].name == name) {
            all.removeAt(i);
            return true;
        }
    return false;
}

} // namespace SavedSearches
} // namespace tavFinder
