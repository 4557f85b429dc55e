#pragma once
// The finder's main window: the directory tree on the left; on the right a
// stack with the preview container or the results panel; the filter panel and
// the navigation bar above. Split over WinFinder_*.cpp by concern.
#include "base/core/AtomicBits.h"
#include "base/core/XProp.h"
#include "base/find/XFilter.h"
#include "gui/tools/XTimer.h"
#include "src/find/FileResult.h"
#include "src/gui/History.h"
#include "src/dir/FinderHost.h"
#include "src/gui/WindowBase.h"

#include <QColor>
#include <QFileInfo>
#include <functional>
#include <QStringList>
#include <memory>
#include <vector>

class QDateEdit;
class QLabel;
class QLineEdit;
class QMenu;
class QProgressBar;
class QSpinBox;
class QPushButton;
class QToolButton;

namespace tav {
namespace find {
class XContentFilter;
class XRamLayer;
}
class KernelGUI;
class Preview;
class XComboBox;
class XNode;
class XPanel;
class XPanelStacked;
class XSplitter;
class XTreeViewFiles;
class XMenu;
template <typename T>
class XTypedComboBox;
}

namespace tavFinder {

class AbstractPreviewDir;
struct FileResult;
class ContextPreviews;
class PanelResults;
class TavFind;
class SearchJob;
struct SavedSearch;
class SearchSink;
struct SearchProgress;
class XContainerPreviews;
struct FileResult;

class WinFinder : public WindowBase, public FinderHost {
    Q_OBJECT
public:
    class NavigationBar;

    // Filter bits of the filter panel (persisted as "filterFlags").
    enum FilterBits : uint32_t {
        FILTER_PATTERN = 2,
        FILTER_NOT_PATTERN = 4,
        FILTER_TIME = 8,
        FILTER_SIZE = 16,
        FILTER_TEXT_FILES = 32,
        FILTER_HIDDEN = 64,
        FILTER_CONTENT = 128,
        FILTER_SEPARATOR = 0x40000000,
    };
    static const std::vector<unsigned>& thumbSizes();

    // State of the search (2 is not used).
    enum FindState : uint32_t { FIND_IDLE = 0, FIND_SCAN = 1, FIND_CONTENT = 3, FIND_DONE = 4 };
    // Pages of the filter panel's stack.
    enum FindPage { PAGE_FILTER = 0, PAGE_SCAN = 1, PAGE_FILE_RESULTS = 2, PAGE_CONTENT = 3, PAGE_DONE = 4 };
    class ThreadScanDir;

    explicit WinFinder(bool flag);
    ~WinFinder() override;

    void init(tav::KernelGUI* kernel, tav::XNode* nWin);
    void setUp(const QString& selectPath);
    QString windowName() const override;
    QFileInfo getCurrentFile() const override { return fiCurrent; }

    // ---- selection, tree, windows (WinFinder.cpp) ----------------------------------------
    void on_treeView_selectFile(const QFileInfo& fi);
    void on_root_changed(const QString& path);
    void on_hidden_files(bool flag);
    void on_open_new_win_here(const QFileInfo& fi);
    static WinFinder* new_win(const QString& path);
    void open_stand_alone_preview(const QFileInfo& fi);
    // The details window; a layer with hits shows them in the text tab.
    void open_stand_alone_preview(const QFileInfo& fi, const tav::find::XRamLayer& layer,
                                  const tav::find::XContentFilter& filter);
    // The properties window of a file (nothing for a folder).
    void open_properties(const QFileInfo& fi);
    void key_cycle_previews(QWidget* widget);
    // Font, wrap, ruler and line information of a text preview, font size of a
    // hex preview, as configured.
    void apply_preview_settings(tav::Preview* p);
    // A preview is about to appear in this window's main container.
    tav::XEventListener<std::function<void(tav::Preview*)>>& eventPreviewAppears() { return eventPreviewAppears_; }
    void select_preview(QWidget* widget, const QString& previewType);
    void update_tree_color();
    // The text shown in the tooltip of a hovered tree entry.
    QString tree_tooltip(const QFileInfo& fi) const;

    // Quit with the configured confirmation, and the end itself.
    static void quit_application();
    static void quit_the_app();
    // Writes this window's state (splitter, tree, filters, search history) into
    // its node without closing it: the session may end right after.
    void save_state();
    // A line at the top of the window that stays until the user closes it.
    void show_notice(const QString& text);
    QWidget* notice() const { return notice_; }
    // Files found damaged at start ("file moved aside, defaults used"), told once.
    static QString damaged_files_notice();
    // Files holding started programs' output shown in this window.
    const QStringList& output_files() const { return outputFiles_; }
    static void remove_output_files(const QStringList& files);

    // ---- navigation (WinFinder_navigate.cpp) ------------------------------------------------
    void on_navi_root();
    void on_navi_back();
    void on_navi_forward();
    void on_navi_parent();
    void on_refresh();
    void on_key_return();
    void on_thumb_size(bool bigger);
    // The next thumbnail size from 'current' (unchanged when there is none).
    static unsigned thumb_size_step(unsigned current, bool bigger);
    void on_hist_state_change();
    void on_history_menu(const QPoint& globalPos);
    void on_history_select(uint32_t index);
    void on_clear_history();

    // ---- keys, hover, status (WinFinder_hotkeys / _shift_control / _status_bar) -----------------
    void setup_hotkeys();
    void setUp_shift_control();
    void setup_status_bar();
    void set_status_text(const QString& text);
    // Status text for the main window that holds 'inside' (nothing when none does).
    static void show_status_for(QWidget* inside, const QFileInfo& fi);
    // What the folder previews ask of their window.
    QWidget* hostWidget() override { return this; }
    void putInSearchField(const QString& text) override;
    void showStatusFor(const QFileInfo& fi) override { show_status_for(this, fi); }
    void fileContextMenu(const QFileInfo& fi) override { on_contextMenu_rightSide(fi, nullptr); }
    static QString status_text_of(const QFileInfo& fi);

    // ---- filter panel (WinFinder_setup_panel_find.cpp) -------------------------------------------
    void setup_panel_find();
    void apply_filter_flags(uint32_t bits);
    void on_filter_menu();
    void on_settings_menu();
    void on_time_area();
    void on_size_area();
    void on_regex_toggled(bool on);
    // The filter of the visible inputs; pErrorWidget names an input that made it unusable.
    tav::find::XFilter filter_from_GUI();
    // The context menu of the three history combo boxes.
    void setup_combo_menus();
    void fill_combo_menu(QMenu& menu, tav::XComboBox* combo);

    // ---- search history (WinFinder_search_history.cpp) ---------------------------------------------
    void restoreSearchHistory();
    void saveSearchHistory();
    // Appends 'text' unless an item equals it exactly (case counts).
    void manage_combo_History(tav::XComboBox* combo, const QString& text);

    // ---- settings (WinFinder_config.cpp) ------------------------------------------------------
    void on_config();
    void on_lang_editor();

    // ---- search (WinFinder_find.cpp) ---------------------------------------------------------------
    void on_find();
    void on_escape_key();
    void on_find_dir_scanned();
    // The sink of the content search: batches, progress and the end.
    void on_search_results(std::vector<FileResult>& batch);
    void on_search_progress(const SearchProgress& p);
    void on_search_done(bool cancelled, const QStringList& unreadable, uint64_t badDirs, uint64_t badFiles);
    void on_timer_progress();
    // The results panel on top of the right-hand stack.
    void show_results_panel(const char* logLine);
    // Menu and double click of a hit file in the results panel.
    void on_contextMenu_fileResult(const FileResult& fr);
    void on_open_fileResult(const FileResult& fr);
    // ---- saved searches (WinFinder_saved_searches.cpp) -------------------------------------
    SavedSearch saved_search_from_GUI(const QString& name) const;
    // Fills the panel with a saved search and starts it.
    void apply_saved_search(const SavedSearch& s);
    void fill_saved_searches_menu(QMenu& menu);
    bool save_search(const QString& name);
    void edit_saved_searches();
    // "Export...": asks for a file and writes the shown results to it.
    void on_export_results();
    // Writes the results as the table shows them to 'path' (CSV, JSON or HTML by its
    // ending) on a pool thread, whole and atomically; 'done' on the GUI thread.
    void export_results(const QString& path, std::function<void(bool ok, const QString& message)> done);
    uint32_t findState() const { return stateFind; }
    int findPage() const;
    const tav::find::XFilter& currentFilter() const { return filterCurrent; }
    // The content search of the last start (its totals and filter).
    TavFind& tavFind();
    SearchJob& searchJob() { return *job_; }
    ThreadScanDir& threadScanDir() { return *thScanDir; }

    // ---- context menus, file actions (WinFinder_context_menu / _modify) ------------------------------
    void on_contextMenu_treeView(const QFileInfo& fi);
    void on_contextMenu_rightSide(const QFileInfo& fi, AbstractPreviewDir* previewDir);
    // The entries of the two menus above, for 'fi' ('fromTree': the tree menu).
    // 'view', when set, is what "View" does (a result opens with its hits).
    void fill_contextMenu(tav::XMenu& menu, const QFileInfo& fi, AbstractPreviewDir* previewDir, bool fromTree,
                          std::function<void()> view = {});
    // The menu of a search result; "View" shows its hits found with 'filter'.
    void onContextMenu_rightSide_FileResults(const FileResult& fileResult, const tav::find::XContentFilter& filter);
    void fill_contextMenu_FileResults(tav::XMenu& menu, const FileResult& fileResult, const tav::find::XContentFilter& filter);
    void context_menu_fi_path_to_clipboard(tav::XMenu& menu, const QFileInfo& fi);
    void context_menu_fi_name_to_clipboard(tav::XMenu& menu, const QFileInfo& fi);
    void context_menu_webSearchFile(tav::XMenu& menu, const QFileInfo& fi);
    void context_menu_bookmark(tav::XMenu& menu, const QFileInfo& fi);
    void on_add_bookmark(const QFileInfo& fi);
    void on_edit_bookmark(const QFileInfo& fi);
    void on_remove_bookmark(const QFileInfo& fi);
    void on_bookmarks();
    // The bookmarks menu's entries (false when the store is empty).
    bool fill_bookmarks_menu(tav::XMenu& menu);
    void on_edit_bookmarks();
    void fill_settings_menu(tav::XMenu& menu);
    void on_rename();
    void rename_file(const QFileInfo& fi);
    // Empty when 'name' can be a new file name here, else why not.
    static QString check_new_name(const QString& name);
    // Delete moves to the desktop's trash; off, it asks twice and deletes for good
    // (tests turn it off to act as a place without a trash).
    static void set_trash_enabled(bool on);
    static bool trash_enabled();
    void on_delete(const QFileInfo& fi);
    // "Rename" and "Delete" after a separator, unless the configuration is read-only.
    void add_modify_entries(tav::XMenu& menu, const QFileInfo& fi);
    // "Deep Info" of a folder: the recursive count of its directory preview.
    void add_deep_info(tav::XMenu& menu, const QFileInfo& fi, AbstractPreviewDir* previewDir, bool fromTree);
    // The recursive count of the main container's directory preview, for 'fi'.
    void on_deep_view(const QFileInfo& fi);

    // ---- custom applications and their output (WinFinder_open_with) ----------------------------------
    void create_open_with_app(tav::XMenu& menu, const QFileInfo& fi);
    // Opens the applications editor on a copy of the store; nothing while one is open.
    static void on_app_editor(QWidget* parent);
    // Shows a program's output: selects the file a "$OUTPUT=path" line names, else
    // shows the text as a file in the previews.
    void show_process_output(const QString& text);
    // The target path of a "$OUTPUT=path" line in 'text'; empty without one.
    static QString output_target(const QString& text);
    // Sends the process output to the active main window (once per process).
    static void register_process_output_consumer();

    // ---- parts -----------------------------------------------------------------------------------------
    tav::XTreeViewFiles* treeView() const { return treeView_; }
    NavigationBar* naviBar() const { return naviBar_; }
    tav::XPanelStacked* stacked() const { return stacked_; }
    tav::XSplitter* splitter() const { return splitter_; }
    XContainerPreviews* containerPreview() const { return container_preview_; }
    PanelResults* panelResults() const { return findResults_; }
    ContextPreviews* contextMain() const { return contextMain_.get(); }
    History& history() { return history_; }
    tav::AtomicBits& filterFlags() { return filterFlags_; }
    tav::AtomicBits& viewFlags() { return viewFlags_; }
    tav::XPropBool& propUseFilter() { return propUseFilter_; }
    QLabel* statusLabel() const { return statusLabel_; }
    tav::XComboBox* comboPattern() const { return comboPattern_; }
    tav::XComboBox* comboNotPattern() const { return comboNotPattern_; }
    tav::XComboBox* comboContent() const { return comboContent_; }
    QWidget* rowTime() const { return rowTime_; }
    QWidget* rowSize() const { return rowSize_; }
    QWidget* rowContent() const { return rowContent_; }
    QToolButton* buttonFilter() const { return buttonFilter_; }
    QToolButton* buttonRegEx() const { return buttonRegEx_; }
    QToolButton* buttonWholeWords() const { return buttonWholeWords_; }
    QToolButton* buttonMatchCase() const { return buttonMatchCase_; }
    QToolButton* buttonDocuments() const { return buttonDocuments_; }
    QToolButton* buttonIgnoreFiles() const { return buttonIgnoreFiles_; }
    QSpinBox* spinMaxFiles() const { return spinMaxFiles_; }
    tav::XPropBool& propRegEx() { return propRegEx_; }
    tav::XTypedComboBox<uint32_t>* comboTimeArea() const { return comboTimeArea_; }
    tav::XTypedComboBox<uint32_t>* comboSizeArea() const { return comboSizeArea_; }
    tav::XTypedComboBox<uint32_t>* comboScope() const { return comboScope_; }
    QDateEdit* date1() const { return date1_; }
    QDateEdit* date2() const { return date2_; }
    QLineEdit* size1() const { return size1_; }
    QLineEdit* size2() const { return size2_; }
    tav::XPanelStacked* panelFind() const { return panelFind_; }
    QLabel* labelScan() const { return labelScan_; }
    QLabel* labelContent() const { return labelContent_; }
    QLabel* labelFileTotals() const { return labelFileTotals_; }
    QLabel* labelFileFilter() const { return labelFileFilter_; }
    QLabel* labelDone() const { return labelDone_; }
    QProgressBar* progressFind() const { return progressFind_; }
    QPushButton* buttonResultsDone() const { return buttonResultsDone_; }
    QPushButton* buttonScope() const { return buttonScope_; }
    QLineEdit* editPattern() const { return editPattern_; }
    tav::XTimer& timerProgress() { return timer_; }
    const QColor& colorTree() const { return colorTreeCurrent_; }
    int modifierListenerId(int which) const { return idModifier_[which & 1]; }
    bool isRecordHistory() const { return flagAddToHistory; }
    tav::KernelGUI* kernel() const { return kernel_; }

protected:
    void on_close_save_state();
    void setup_window_appear_first_time(int64_t microseconds);
    void forceViewHovered();
    void remove_modifier_listeners();

private:
    tav::KernelGUI* kernel_ = nullptr;
    QString sSelectFile_;

    tav::AtomicBits viewFlags_;
    tav::AtomicBits filterFlags_;
    NavigationBar* naviBar_ = nullptr;
    tav::XTreeViewFiles* treeView_ = nullptr;
    tav::XPanelStacked* stacked_ = nullptr;
    XContainerPreviews* container_preview_ = nullptr;
    PanelResults* findResults_ = nullptr;
    std::unique_ptr<ContextPreviews> contextMain_;
    std::vector<ContextPreviews*> contexts_;
    int idModifier_[2] = {-1, -1};
    tav::XPropBool propUseFilter_;
    tav::XTimer timer_;
    QFileInfo fiCurrent;
    QColor colorTreeAtRoot_;
    QColor colorTreeBelowRoot_;
    QColor colorTreeCurrent_;
    tav::XEventListener<std::function<void(tav::Preview*)>> eventPreviewAppears_;
    History history_;
    bool flagAddToHistory = true;

    tav::XPanel* content_ = nullptr;
    tav::XSplitter* splitter_ = nullptr;
    QLabel* statusLabel_ = nullptr;
    QPointer<QWidget> notice_;
    QStringList outputFiles_;
    static QStringList& outputFilesOfAll();

    // filter panel
    tav::XPanelStacked* panelFind_ = nullptr;
    QWidget* rowContent_ = nullptr;
    QWidget* rowTime_ = nullptr;
    QWidget* rowSize_ = nullptr;
    tav::XComboBox* comboPattern_ = nullptr;
    tav::XComboBox* comboNotPattern_ = nullptr;
    tav::XComboBox* comboContent_ = nullptr;
    tav::XTypedComboBox<uint32_t>* comboTimeArea_ = nullptr;
    tav::XTypedComboBox<uint32_t>* comboSizeArea_ = nullptr;
    tav::XTypedComboBox<uint32_t>* comboScope_ = nullptr;
    QDateEdit* date1_ = nullptr;
    QDateEdit* date2_ = nullptr;
    QLineEdit* size1_ = nullptr;
    QLineEdit* size2_ = nullptr;
    QToolButton* buttonFilter_ = nullptr;
    QToolButton* buttonRegEx_ = nullptr;
    QToolButton* buttonWholeWords_ = nullptr;
    QToolButton* buttonMatchCase_ = nullptr;
    QToolButton* buttonDocuments_ = nullptr;   // documents and archives are searched through their text
    QToolButton* buttonIgnoreFiles_ = nullptr; // what .gitignore and .ignore files name is left out
    QSpinBox* spinMaxFiles_ = nullptr;         // stop after this many files with hits (0: all)
    tav::XPropBool propRegEx_;

    // search (the scan thread goes after the search, whose workers read its file list)
    void setup_panel_find_pages();
    tav::find::XFilter filterCurrent;
    uint32_t stateFind = FIND_IDLE;
    int64_t timeStartFind = 0;
    int64_t timeStartScan = 0;
    uint32_t scanStarted_ = 0;        // number of the last scan started
    uint32_t scanHandled_ = 0;        // number of the last scan whose end was handled
    bool findCancelled_ = false;      // Escape stopped the running content search
    // Name-only searches: the scan; content searches: the job, walking and searching at once.
    void start_content_search(const QFileInfo& folder);
    std::unique_ptr<ThreadScanDir> thScanDir;
    std::unique_ptr<SearchSink> searchSink_;
    std::unique_ptr<SearchJob> job_;
    QLabel* labelScan_ = nullptr;
    QLabel* labelContent_ = nullptr;   // folders walked and files searched so far
    QLabel* labelFileTotals_ = nullptr;
    QLabel* labelFileFilter_ = nullptr;
    QLabel* labelDone_ = nullptr;
    QProgressBar* progressFind_ = nullptr;
    QPushButton* buttonResultsDone_ = nullptr;
    QPushButton* buttonScope_ = nullptr;
    QLineEdit* editPattern_ = nullptr;
};

} // namespace tavFinder
