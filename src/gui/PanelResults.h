#pragma once
// The results of a search: the result table beside a stack that shows either
// the HTML summary of a file-only search or a preview container with the
// selected result. User actions on results go to the owner through listeners.
#include "base/core/XEventListener.h"
#include "base/find/XContentFilter.h"
#include "base/find/XFindStats.h"
#include "gui/panel/XPanel.h"
#include "src/find/FileResult.h"

#include <QFileInfo>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace tav {
class Preview;
class XBrowser;
class XPanelStacked;
class XSplitter;
class XTableViewClassic;
}

namespace tavFinder {

class ContextPreviews;
class FileResultModel;
class XContainerPreviews;
struct FindRequest;

class PanelResults : public tav::XPanel {
    Q_OBJECT
public:
    using FileListener = std::function<void(const QFileInfo&)>;
    using ResultListener = std::function<void(const FileResult&)>;
    // Layer of the text view that carries the hits of a result.
    static constexpr int LAYER_RESULT = 1000;

    explicit PanelResults(QWidget* parent = nullptr);
    ~PanelResults() override;

    // Hits of a content search, most hits first (the vector is moved out).
    void setFileResults(std::vector<FileResult>& ar);
    // A search whose results arrive while it runs: an empty table in hits mode,
    // then each batch in the table's sort, the current row kept where it is on screen.
    void beginLiveResults(bool documents);
    void addFileResults(std::vector<FileResult>& batch);
    // The search is over: the columns fitted, the first row chosen unless the user chose one.
    void endLiveResults();
    // Files of a file-only search, by path (the vector is moved out).
    void setFileResultsSimple(std::vector<QFileInfo>& ar);
    // The HTML summary of a file-only search.
    void setResultSummaryHtml(int64_t startMicros, const tav::XFindStats& stats, const FindRequest& request);
    // 0 the summary, 1 the preview container; other values change nothing.
    void showStack(int which);

    void on_jump_to_result(int row);
    void on_jump_to_result_simple(int row);
    void onTableHeaderSelected(int column);
    // Results of a search through documents and archives: their hits lie in extracted text.
    void setDocumentsMode(bool on) { documents_ = on; }
    // What found the results: a shown result that kept only its first marks is searched
    // again with it (on a pool thread) for all of them.
    void setResultFilter(const tav::find::XContentFilter& f) { resultFilter_ = f; }
    bool documentsMode() const { return documents_; }
    // A format the extraction layer reads (by the file's first bytes).
    static bool extractable(const QFileInfo& fi);
    // Next / previous hit of the shown result, in the text or the hex preview; false
    // when no result with hits is shown.
    bool step_hit(bool down);

    tav::XTableViewClassic* tableResult() const { return tableResult_; }
    FileResultModel* model() const { return model_; }
    XContainerPreviews* container() const { return container_; }
    ContextPreviews* context() const { return context_.get(); }
    tav::XBrowser* browser() const { return browser_; }
    tav::XPanelStacked* stack() const { return stack_; }
    tav::XPanel* summaryPanel() const { return summary_; }
    tav::XSplitter* splitter() const { return splitter_; }

    tav::XEventListener<FileListener>& eventContextMenuFile() { return eventContextFile_; }
    tav::XEventListener<ResultListener>& eventContextMenuFileResult() { return eventContextResult_; }
    tav::XEventListener<FileListener>& eventOpenFile() { return eventOpenFile_; }
    tav::XEventListener<ResultListener>& eventOpenFileResult() { return eventOpenResult_; }

    bool flagContent = true;

private:
    void on_double_click(int row);
    void on_context_menu(int row);
    void on_preview_activated(tav::Preview* p);
    void setHeader();
    // Sizes, dates and hits to their contents, the name elided, the path stretched:
    // the hits column stays in view however narrow the table is.
    void fitColumns();
    bool eventFilter(QObject* watched, QEvent* event) override;

    tav::XPanelStacked* stack_;
    tav::XTableViewClassic* tableResult_;
    XContainerPreviews* container_;
    std::unique_ptr<ContextPreviews> context_;
    tav::XPanel* summary_;
    tav::XBrowser* browser_;
    tav::XSplitter* splitter_;
    FileResultModel* model_;
    bool fitting_ = false;
    bool documents_ = false;
    tav::find::XContentFilter resultFilter_;
    // The shown result's search for all its marks: newer ones cancel older ones.
    std::shared_ptr<std::atomic<bool>> marksCancel_;
    void completeMarks(const FileResult& fr, std::function<void(tav::find::XRamLayer&&)> apply);
    int sortColumn_ = -1;   // the column the user sorted by; -1 until the first click
    bool sortAscending_ = true;
    bool userSized_ = false;
    bool headerPressed_ = false;   // a button is down on the header (the user may be dragging a column)   // the user dragged a column: keep their widths until the next results
    tav::XEventListener<FileListener> eventContextFile_;
    tav::XEventListener<ResultListener> eventContextResult_;
    tav::XEventListener<FileListener> eventOpenFile_;
    tav::XEventListener<ResultListener> eventOpenResult_;
};

} // namespace tavFinder
