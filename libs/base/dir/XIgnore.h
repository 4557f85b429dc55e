#pragma once
// Ignore files as git reads them (.gitignore, .git/info/exclude) and the
// ".ignore" files other search tools read: blank lines and '#' comments, '!'
// to take a file back, a trailing '/' for folders only, a leading or inner '/'
// to anchor a pattern to its file's folder, '*', '?', '[...]' and '**'.
// The rules of a folder are its own files' patterns over those of its parents;
// the last pattern that matches decides.
#include <QString>
#include <memory>
#include <string>
#include <vector>

namespace tav {

class XIgnoreRules {
public:
    struct Pattern {
        std::string glob;     // without '!', the anchoring '/' and the trailing '/'
        bool negated = false;
        bool dirOnly = false;
        bool anchored = false;   // matched against the path below the rules' folder, not the name
    };

    // The rules in force in 'folder' (its bytes, without a trailing '/'), read from
    // its ignore files, over 'parent'. Null when the folder has none (use 'parent').
    static std::shared_ptr<const XIgnoreRules> forFolder(const std::string& folder, std::shared_ptr<const XIgnoreRules> parent,
                                                         bool withInfoExclude = false);
    // The rules in force in 'folder' from the repository's root down (the
    // folders above 'folder' and 'folder' itself); null outside a repository
    // without any ignore file on the way.
    static std::shared_ptr<const XIgnoreRules> forSearchRoot(const std::string& folder);

    // Whether the entry 'path' (its bytes; 'name' its last part) is ignored.
    bool ignored(const std::string& path, const char* name, size_t nameLen, bool isDir) const;

    // One file's patterns (exposed for tests).
    static std::vector<Pattern> parse(const std::string& text);
    // git's wildcard match of a whole string ('/' matched only by '/' and '**').
    static bool globMatch(const char* p, const char* pe, const char* s, const char* se);

private:
    std::shared_ptr<const XIgnoreRules> parent_;
    std::string base_;   // the folder, with a trailing '/'
    std::vector<Pattern> patterns_;
};

} // namespace tav
