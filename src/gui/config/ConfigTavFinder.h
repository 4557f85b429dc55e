#pragma once
// The one configuration record of the process: every user setting that is not
// a window's geometry. Filled from the "Config" node at start, written back at
// the kernel's save event.
#include <QFileInfo>
#include <QList>
#include <QString>
#include <QStringList>
#include <unordered_set>

namespace tav {
class XNode;
}

namespace tavFinder {

class WinFinderConfig {
public:
    WinFinderConfig();

    // ---- persisted members (member name = key unless noted) ----------------------
    bool flagUseFilter = true;
    bool flagTreeDirOnly = false;
    bool flagTreeDateSize = false;
    bool flagTreeMouseOverInfo = true;
    bool flagDarkTheme = false;            // not persisted
    bool flagStatusBar = false;
    bool flagConfirmQuit = false;
    bool flag_tf_read_only = true;
    int li_pos = 1;                        // 0 Off, 1 Top Right, 2 Bottom Right
    QStringList ext;                       // child "TextFiles", attribute "ext"; unique, in insertion order
    QList<QFileInfo> filter;               // folders hidden in the tree
    unsigned countThreads = 2;
    // Documents and archives: a member's text stops at this many MiB, and past
    // documentsRatioFromMB it may not expand more than documentsMaxRatio times.
    unsigned documentsMaxMemberMB = 1024;
    unsigned documentsRatioFromMB = 100;
    unsigned documentsMaxRatio = 100;
    // Name pattern, text files only and the content field: a new user sees where to type.
    unsigned filterBits = 2 | 32 | 128;
    unsigned scope = 1;
    bool flagRegEx = true;
    int fontSizeHexView = 14;
    int fontSize = 14;
    bool flagRuler = true;
    bool flagAutoWrap = false;
    unsigned HotkeyCyclePreviews = 0x06000000;
    bool flagUseStartFolder = true;
    QString sStartFolder;                  // key "startFolder"
    bool flagUseRootFolder = false;
    QString sRootFolder;                   // key "root"
    bool flagPropAutoLoad = true;
    unsigned max_file_size_auto_calc_checksums = 3;   // decimal megabytes

    // ---- operations ---------------------------------------------------------------------
    void fromNode(tav::XNode* config);
    void toNode(tav::XNode* config) const;
    QString toString() const;

    // Adds the extensions of a text (split at commas and blanks); false for an empty text.
    bool ext_from_string(const QString& text);
    QString ext_to_string(bool sorted) const;
    bool hasExt(const QString& e) const { return ext.contains(e); }
    std::unordered_set<QString> extSet() const;

    // "filter" as stored: absolute paths joined by ';'.
    QString filter_to_string() const;
    void filter_from_string(const QString& text);

    // ProgramData, ProgramFiles, ProgramFiles(x86), SystemRoot - those that are set.
    static QList<QFileInfo> default_special_folders();
};

// The record of this process.
WinFinderConfig& cfg();

} // namespace tavFinder
