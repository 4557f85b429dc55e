#include "src/gui/Bookmarks.h"

#include "base/io/XFileIO.h"
#include "base/log/Logger.h"
#include "base/tree/XMem.h"
#include "base/tree/XTreeArray.h"
#include "base/tree/XTypeSupporter.h"
#include "gui/tools/XTools.h"
#include "src/FindApplication.h"

#include <QDir>

namespace tavFinder {
namespace Bookmarks {

using tav::log;

namespace {
const QString kBookmarks = QLatin1String(KEY_BOOKMARKS);
const QString kTitle = QLatin1String(KEY_TITLE);
const QString kPath = QLatin1String(KEY_PATH);
const tav::XTypeSupporter& types() { return tav::XTypeSupporter::basicTypes(); }
}

tav::XTree& get_tree() {
    static tav::XTree tree;
    return tree;
}

void load(tav::XTree& tree) {
    log(tav::LOG_TRACE, "Bookmarks::load");
    const QFileInfo fi = tav::XTools::get_absolute_config_file_path(QLatin1String(BOOKMARKS_FILE));
    tav::XMem mem;
    if (!mem.loadMem(fi.absoluteFilePath())) {
        log(tav::LOG_TRACE, "Bookmarks::load - empty ?");
        return;
    }
    tav::XTree check;
    if (tav::XTree::load(mem, types(), check)) {
        log(tav::LOG_TRACE, "Bookmarks::load - ok");
    } else {
        // The next save would write the empty store over it: keep the user's file.
        log(tav::LOG_ERROR, "Bookmarks::load <<<$>>> does not parse, moved aside", fi);
        tav::moveAside(fi.absoluteFilePath());
    }
    tree = tav::XTree::load(mem, types());
}

void save(const tav::XTree& tree) {
    log(tav::LOG_TRACE, "Bookmarks::save");
    const QFileInfo fi(tav::XTools::get_absolute_config_dir().absoluteFilePath(QLatin1String(BOOKMARKS_FILE)));
    const tav::XMem mem = tree.createMem(types());
    if (mem.size() == 0 || !mem.isOK()) {
        log(tav::LOG_TRACE, "Bookmarks::save, mem ?");
        return;
    }
    if (!mem.saveToFile(fi.absoluteFilePath(), 0)) log(tav::LOG_TRACE, "Bookmarks::save <<<$>>>", fi);
}

bool contains_bookmark(const tav::XTree& tree, const QString& path) {
    if (path.isEmpty()) return false;
    const tav::XTreeArray& arr = tree.array(kBookmarks);
    if (arr.size() == 0) return false;
    for (const auto& e : arr.elements())
        if (e->getString(kPath) == path) return true;
    return false;
}

Bookmark get_bookmark(const tav::XTree& tree, const QString& path) {
    Bookmark bm;
    const tav::XTreeArray& arr = tree.array(kBookmarks);
    if (arr.size() == 0) return bm;
    for (const auto& e : arr.elements()) {
        if (e->getString(kPath) == path) {
            bm.title = e->getString(kTitle);
            bm.path = path;
            break;
        }
    }
    return bm;
}

QList<Bookmark> from_tree(const tav::XTree& tree) {
    QList<Bookmark> list;
    const tav::XTreeArray& arr = tree.array(kBookmarks);
    if (arr.size() == 0) {
        log(tav::LOG_TRACE, "Bookmarks::from_tree - empty");
        return list;
    }
    for (const auto& e : arr.elements()) list << Bookmark{e->getString(kTitle), e->getString(kPath)};
    return list;
}

void to_tree(tav::XTree& tree, const QList<Bookmark>& list) {
    if (tree.containsKey(kBookmarks)) tree.erase(kBookmarks);
    tav::XTreeArray arr(list.size(), QLatin1String(tav::XTree::str_XTree));
    for (int i = 0; i < list.size(); ++i) {
        arr.at(i)->setString(kTitle, list[i].title);
        arr.at(i)->setString(kPath, list[i].path);
    }
    tree.setArray(kBookmarks, std::move(arr)).setParentToChildren();
}

void add_bookmark(tav::XTree& tree, const Bookmark& bm) {
    if (contains_bookmark(tree, bm.path)) {
        log(tav::LOG_TRACE, "Bookmarks::add_bookmark, '$' => '$', already added !", bm.title, bm.path);
        return;
    }
    log(tav::LOG_TRACE, "Bookmarks::add_bookmark, '$' => '$'", bm.title, bm.path);
    QList<Bookmark> list = from_tree(tree);
    list << bm;
    to_tree(tree, list);
}

void remove_bookmark(tav::XTree& tree, const QString& path) {
    if (!contains_bookmark(tree, path)) {
        log(tav::LOG_TRACE, "Bookmarks::remove_bookmark, '$' ?", path);
        return;
    }
    QList<Bookmark> list = from_tree(tree);
    for (int i = 0; i < list.size(); ++i) {
        if (list[i].path == path) {
            list.removeAt(i);
            break;
        }
    }
    to_tree(tree, list);
}

void set_bookmark(tav::XTree& tree, const Bookmark& bm) {
    tav::XTreeArray* arr = tree.getArray(kBookmarks);
    if (!arr) return;
    for (const auto& e : arr->elements()) {
        if (e->getString(kPath) == bm.path) {
            log(tav::LOG_TRACE, "Bookmarks::set_bookmark, got the right tree");
            e->setString(kTitle, bm.title);
            return;
        }
    }
}

QString to_string(const Bookmark& bm) { return tav::fill("$,$", bm.title, bm.path); }

} // namespace Bookmarks
} // namespace tavFinder
