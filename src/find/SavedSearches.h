#pragma once
// Searches kept under a name: the whole filter of the search panel (folder,
// name patterns, excluded patterns, time and size conditions, hidden files,
// text files only, the content and its switches). The store is an XML file in
// the configuration folder, written whole and atomically; one that does not
// parse is moved aside and the store starts empty.
#include <QList>
#include <QString>
#include <cstdint>

namespace tavFinder {

struct SavedSearch {
    QString name;
    QString folder;
    QString pattern, notPattern;   // empty: not used
    uint32_t timeArea = 0;         // XFileFilter's areas (0: none)
    int64_t time1 = 0, time2 = 0;  // milliseconds since the epoch
    uint32_t sizeArea = 0;
    uint64_t size1 = 0, size2 = 0;
    bool hidden = false;
    bool textFiles = false;
    QString content;               // empty: names only
    bool regex = false;
    uint32_t scope = 0;            // File, Paragraph, Sentence
    bool wholeWords = false;
    bool matchCase = false;
    bool documents = false;
    bool ignoreFiles = false;
};

namespace SavedSearches {

QString storePath();
QList<SavedSearch> load();
// False (with a log line) when the store cannot be written.
bool save(const QList<SavedSearch>& all);
// By name; null-named when missing.
SavedSearch find(const QList<SavedSearch>& all, const QString& name);
// Adds or replaces by name.
void put(QList<SavedSearch>& all, const SavedSearch& s);
bool rename(QList<SavedSearch>& all, const QString& from, const QString& to);
bool remove(QList<SavedSearch>& all, const QString& name);

} // namespace SavedSearches
} // namespace tavFinder
