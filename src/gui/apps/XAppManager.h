#pragma once
// The process-wide store of custom applications: one value tree whose
// "programs" array holds XApp records, kept in the compressed file
// "tavFind-apps.bin" of the configuration folder. The file is read at start
// and written only by the applications editor. GUI thread only.
#include "base/tree/XTree.h"
#include "src/gui/apps/XApp.h"

#include <QFileInfo>
#include <vector>

namespace tavFinder {

class XType_App;

class XAppManager {
public:
    static constexpr const char* KEY_PROGRAMS = "programs";

    // The applications tree; the editor assigns a new tree and calls save().
    static tav::XTree& tree();
    static const QFileInfo& fileInfo();
    static const XType_App& types();

    static void init_file();
    // False, tree unchanged, when the file is missing; a file that does not load is
    // moved aside (NAME.bad) and gives false as well.
    static bool load();
    static bool save();
    // The editor the "Terminal editor" default starts: $VISUAL, $EDITOR, editor, nano, vim, vi.
    static QString terminal_editor();
    static void set_defaults();
    // The built-in list: one record that opens a file in the plain text editor.
    static tav::XTree defaults();
    static tav::XTree get_copy();
    // Pointers into the store, valid until the tree is replaced.
    static std::vector<XApp*> get_apps();
};

} // namespace tavFinder
