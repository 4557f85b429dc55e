#include "src/find/SavedSearches.h"

#include "base/io/XFileIO.h"
#include "base/io/XPaths.h"
#include "base/log/Logger.h"
#include "base/node/XNode.h"

#include <QDir>
#include <QFileInfo>

namespace tavFinder {

bool SavedSearch::operator==(const SavedSearch& o) const {
    return name == o.name && folder == o.folder && pattern == o.pattern && notPattern == o.notPattern && timeArea == o.timeArea &&
           time1 == o.time1 && time2 == o.time2 && sizeArea == o.sizeArea && size1 == o.size1 && size2 == o.size2 &&
           hidden == o.hidden && textFiles == o.textFiles && content == o.content && regex == o.regex && scope == o.scope &&
           wholeWords == o.wholeWords && matchCase == o.matchCase && documents == o.documents && ignoreFiles == o.ignoreFiles;
}

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
        s.folder = n->getString(QStringLiteral("folder"));
        s.pattern = n->getString(QStringLiteral("pattern"));
        s.notPattern = n->getString(QStringLiteral("notPattern"));
        s.timeArea = n->getUInt(QStringLiteral("timeArea"), 0);
        s.time1 = n->getInt64(QStringLiteral("time1"), 0);
        s.time2 = n->getInt64(QStringLiteral("time2"), 0);
        s.sizeArea = n->getUInt(QStringLiteral("sizeArea"), 0);
        s.size1 = uint64_t(n->getInt64(QStringLiteral("size1"), 0));
        s.size2 = uint64_t(n->getInt64(QStringLiteral("size2"), 0));
        s.hidden = n->isBool(QStringLiteral("hidden"), false);
        s.textFiles = n->isBool(QStringLiteral("textFiles"), false);
        s.content = n->getString(QStringLiteral("content"));
        s.regex = n->isBool(QStringLiteral("regex"), false);
        s.scope = n->getUInt(QStringLiteral("scope"), 0);
        s.wholeWords = n->isBool(QStringLiteral("wholeWords"), false);
        s.matchCase = n->isBool(QStringLiteral("matchCase"), false);
        s.documents = n->isBool(QStringLiteral("documents"), false);
        s.ignoreFiles = n->isBool(QStringLiteral("ignoreFiles"), false);
        put(out, s);
    }
    return out;
}

bool save(const QList<SavedSearch>& all) {
    std::unique_ptr<tav::XNode> root = tav::XNode::createRoot(kRoot);
    for (const SavedSearch& s : all) {
        // The node's name is the search's name.
        tav::XNode* n = root->createChild(kSearch, s.name);
        n->setString(QStringLiteral("folder"), s.folder);
        n->setString(QStringLiteral("pattern"), s.pattern);
        n->setString(QStringLiteral("notPattern"), s.notPattern);
        n->setUInt(QStringLiteral("timeArea"), s.timeArea);
        n->setInt64(QStringLiteral("time1"), s.time1);
        n->setInt64(QStringLiteral("time2"), s.time2);
        n->setUInt(QStringLiteral("sizeArea"), s.sizeArea);
        n->setInt64(QStringLiteral("size1"), int64_t(s.size1));
        n->setInt64(QStringLiteral("size2"), int64_t(s.size2));
        n->setBool(QStringLiteral("hidden"), s.hidden);
        n->setBool(QStringLiteral("textFiles"), s.textFiles);
        n->setString(QStringLiteral("content"), s.content);
        n->setBool(QStringLiteral("regex"), s.regex);
        n->setUInt(QStringLiteral("scope"), s.scope);
        n->setBool(QStringLiteral("wholeWords"), s.wholeWords);
        n->setBool(QStringLiteral("matchCase"), s.matchCase);
        n->setBool(QStringLiteral("documents"), s.documents);
        n->setBool(QStringLiteral("ignoreFiles"), s.ignoreFiles);
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
