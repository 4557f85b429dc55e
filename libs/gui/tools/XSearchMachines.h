#pragma once
// The web-search list: a text file, one item per line ("#" comment, empty
// ignored, "-" separator, otherwise "Title, URL" split at the first comma,
// "$" in the URL standing for the phrase). The user's own copy
// "search_machines.txt" in the configuration folder wins over the resource.
#include <QString>
#include <QUrl>
#include <vector>

namespace tav {

class XSearchMachine {
public:
    QString title;
    QString url;
    bool separator = false;

    bool isSeparator() const { return separator; }
    // The address for a phrase: every "$" replaced by the percent-encoded phrase.
    QUrl url_for(const QString& phrase) const;
    // Opens url_for(phrase) in the default browser.
    bool trigger_search_machine(const QString& phrase) const;
};

class XSearchMachines {
public:
    static void set_resource_file(const QString& path);
    static QString resource_file();
    // The file read: the user's copy when it exists, else the resource.
    static QString effective_file();
    // The list; 'cached' false reads the file again (edits apply at once).
    static std::vector<XSearchMachine> get_search_machines(bool cached);
    // Parses the text of a list; bad lines are logged and skipped.
    static std::vector<XSearchMachine> parse(const QString& text);
};

} // namespace tav
