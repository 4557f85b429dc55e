#pragma once
// The bookmark store: one process-wide value tree that holds the user's
// bookmarks as a tree array under "bookmarks" (elements with "title" and
// "path", the path being the key), read from "tavFind-bookmarks.bin" at start
// and written back after changes made through a dialog and at exit.
// All functions run on the GUI thread; callers pass the tree of get_tree().
#include "base/tree/XTree.h"

#include <QList>
#include <QString>

namespace tavFinder {

struct Bookmark {
    QString title;
    QString path;   // absolute, forward slashes; compared exactly
    bool operator==(const Bookmark& o) const { return title == o.title && path == o.path; }
};

namespace Bookmarks {

constexpr const char* KEY_BOOKMARKS = "bookmarks";
constexpr const char* KEY_TITLE = "title";
constexpr const char* KEY_PATH = "path";

tav::XTree& get_tree();

// Replaces the tree's content by the file's; a missing file leaves it alone,
// a file that does not parse is moved aside (NAME.bad) and gives an empty tree.
void load(tav::XTree& tree);
void save(const tav::XTree& tree);

bool contains_bookmark(const tav::XTree& tree, const QString& path);
// The bookmark with this path, or two empty strings.
Bookmark get_bookmark(const tav::XTree& tree, const QString& path);
QList<Bookmark> from_tree(const tav::XTree& tree);
// Replaces the array by the list; the key is present afterwards even for an empty list.
void to_tree(tav::XTree& tree, const QList<Bookmark>& list);
// Appends unless the path is present. Does not save.
void add_bookmark(tav::XTree& tree, const Bookmark& bm);
// Removes the bookmark with this path. Does not save.
void remove_bookmark(tav::XTree& tree, const QString& path);
// Changes the title of the bookmark with the same path.
void set_bookmark(tav::XTree& tree, const Bookmark& bm);
QString to_string(const Bookmark& bm);

} // namespace Bookmarks
} // namespace tavFinder
