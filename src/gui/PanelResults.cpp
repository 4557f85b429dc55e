#include "src/gui/PanelResults.h"

#include "base/extract/XExtract.h"
#include "base/log/Logger.h"
#include "base/thread/XThread.h"
#include "base/util/Format.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/panel/XPanelStacked.h"
#include "gui/panel/XSplitter.h"
#include "gui/previews/PreviewAscii.h"
#include "gui/previews/PreviewHex.h"
#include "gui/previews/XHexView.h"
#include "gui/tools/XDragOut.h"
#include "gui/tools/XTools.h"
#include "gui/viewText/XTextView.h"
#include "gui/widgets/XBrowser.h"
#include "gui/widgets/XTableViewClassic.h"
#include "src/dir/ContextPreviews.h"
#include "src/dir/XContainerPreviews.h"
#include "src/find/FileMarks.h"
#include "src/find/TavFind.h"
#include "src/gui/FileResultModel.h"
#include "src/gui/WinFinder.h"
#include "src/gui/config/ConfigTavFinder.h"

#include <QApplication>
#include <QColor>
#include <QEvent>
#include <QFile>
#include <QKeyEvent>
#include <QHeaderView>
#include <QScrollBar>
#include <QStyle>

#include <algorithm>
#include <QPointer>

namespace tavFinder {

using tav::log;

PanelResults::PanelResults(QWidget* parent)
    : tav::XPanel(parent, VERTICAL, QStringLiteral("findResults")), context_(std::make_unique<ContextPreviews>(QStringLiteral("CONTEXT-RESULT"))) {
    setTight();
    stack_ = new tav::XPanelStacked(this);
    tableResult_ = new tav::XTableViewClassic(this);
    tableResult_->setObjectName(QStringLiteral("tableResult"));
    tableResult_->set_args(1, 1);
    tableResult_->setTextElideMode(Qt::ElideMiddle);
    tableResult_->installEventFilter(this);
    // The viewport's own resize comes after the table laid out its scroll bars.
    tableResult_->viewport()->installEventFilter(this);
    tableResult_->setToolTip(tav::xt("Up / Down: previous / next file\nN / Shift+N, F3 / Shift+F3: next / previous hit"));
    // Only a drag on the header counts; the stretched path column and hiding resize sections too.
    tableResult_->horizontalHeader()->viewport()->installEventFilter(this);
    connect(tableResult_->horizontalHeader(), &QHeaderView::sectionResized, this, [this](int column, int, int) {
        if (!fitting_ && headerPressed_ && column != FileResultModel::COL_PATH) userSized_ = true;
    });
    model_ = new FileResultModel(this);
    container_ = new XContainerPreviews(stack_);
    container_->addStandardPreviews();
    stack_->addPanel(container_);
    context_->ini(tableResult_, container_);
    summary_ = new tav::XPanel(stack_, VERTICAL, QStringLiteral("resultSummary"));
    summary_->setTight();
    browser_ = summary_->createBrowser();
    stack_->addPanel(summary_);
    splitter_ = new tav::XSplitter(Qt::Horizontal, this);
    splitter_->addWidget(tableResult_);
    splitter_->addWidget(stack_);
    // Half and half: a narrower preview cuts the text lines too short to read.
    splitter_->setStretchFactor(0, 1);
    splitter_->setStretchFactor(1, 1);
    splitter_->setSizes({500, 500});
    add(splitter_, 1);

    tableResult_->eventHeaderClicked().add([this](int column) { onTableHeaderSelected(column); });
    tableResult_->eventRowSelected().add([this](int row) {
        if (flagContent) on_jump_to_result(row);
        else on_jump_to_result_simple(row);
    });
    tableResult_->eventContextMenu().add([this](int row) { on_context_menu(row); });
    tav::XDragOut::install(tableResult_, [this](const QPoint& pos) {
        const QModelIndex idx = tableResult_->indexAt(pos);
        return idx.isValid() && idx.row() < model_->rowCount() ? model_->fromRow(idx.row()) : QFileInfo();
    });
    tableResult_->eventDoubleClick().add([this](const QModelIndex& index) {
        if (index.isValid()) on_double_click(index.row());
    });
    container_->addPreviewListener([this](tav::Preview* p) { on_preview_activated(p); });
}

PanelResults::~PanelResults() = default;

void PanelResults::showStack(int which) {
    if (which == 0) stack_->showPanel(summary_);
    else if (which == 1) stack_->showPanel(container_);
}

void PanelResults::setHeader() {
    model_->setHorizontalHeaderLabels({tav::xt("Name"), tav::xt("Size"), tav::xt("Date"), tav::xt("Hits"), tav::xt("Path")});
    QHeaderView* h = tableResult_->horizontalHeader();
    h->setSectionResizeMode(FileResultModel::COL_PATH, QHeaderView::Stretch);
    h->show();
    userSized_ = false;
}

void PanelResults::fitColumns() {
    if (userSized_ || !tableResult_->model()) return;
    QHeaderView* h = tableResult_->horizontalHeader();
    const QFontMetrics fm(tableResult_->font());
    const QFontMetrics fmHeader(h->font());
    const int pad = 2 * tableResult_->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, tableResult_) + 12;
    // The header also carries the sort arrow.
    const int arrow = tableResult_->style()->pixelMetric(QStyle::PM_HeaderMarkSize, nullptr, h) + 8;
    auto header = [&](int col) { return fmHeader.horizontalAdvance(model_->headerData(col, Qt::Horizontal).toString()) + pad + arrow; };
    int64_t maxSize = 0, maxHits = 0;
    for (int r = 0, n = model_->rowCount(); r < n; ++r) {
        if (flagContent) {
            // The search knows each size: no stat per row on this thread.
            const FileResult& fr = model_->fileResultFromRow(r);
            maxSize = std::max<int64_t>(maxSize, fr.size >= 0 ? fr.size : fr.fileInfo.size());
            maxHits = std::max<int64_t>(maxHits, int64_t(fr.hits()));
        } else {
            maxSize = std::max<int64_t>(maxSize, model_->fromRow(r).size());
        }
    }
    int wSize = std::max(header(FileResultModel::COL_SIZE), fm.horizontalAdvance(tav::format1000(maxSize)) + pad);
    int wDate = std::max(header(FileResultModel::COL_DATE), fm.horizontalAdvance(QStringLiteral("0000/00/00 - 00:00")) + pad);
    const int wHits = flagContent ? std::max(header(FileResultModel::COL_HITS), fm.horizontalAdvance(tav::format1000(maxHits)) + pad) : 0;
    const int icon = tableResult_->style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, tableResult_) + 6;
    const int avail = tableResult_->viewport()->width();
    const int minName = icon + fm.horizontalAdvance(QStringLiteral("abcdefghijkl"));
    // Too narrow for all: the date, then the size give way (elided), never the hits.
    int deficit = minName + wSize + wDate + wHits - avail;
    if (deficit > 0) {
        const int d = std::min(deficit, wDate - std::min(wDate, fm.horizontalAdvance(QStringLiteral("00/00")) + pad));
        wDate -= d;
        deficit -= d;
    }
    if (deficit > 0) {
        const int d = std::min(deficit, wSize - std::min(wSize, fm.horizontalAdvance(QStringLiteral("00")) + pad));
        wSize -= d;
        deficit -= d;
    }
    // Then the name, down to a few letters.
    const int floorName = std::max(icon + fm.horizontalAdvance(QStringLiteral("abcd")), minName - std::max(0, deficit));
    // The name gets a little more than half of what is left, the path the rest.
    const int rest = avail - wSize - wDate - wHits;
    const int wName = std::max(floorName, std::min(icon + fm.horizontalAdvance(QLatin1Char('x')) * 40, rest * 11 / 20));
    fitting_ = true;
    h->resizeSection(FileResultModel::COL_NAME, wName);
    h->resizeSection(FileResultModel::COL_SIZE, wSize);
    h->resizeSection(FileResultModel::COL_DATE, wDate);
    if (flagContent) h->resizeSection(FileResultModel::COL_HITS, wHits);
    fitting_ = false;
}

bool PanelResults::extractable(const QFileInfo& fi) {
    QFile f(fi.absoluteFilePath());
    if (!f.open(QIODevice::ReadOnly)) return false;
    const QByteArray head = f.read(qint64(tav::extract::kSniffBytes));
    return tav::extract::sniff(head.constData(), size_t(head.size()), fi.fileName()) != tav::extract::Family::None;
}

bool PanelResults::step_hit(bool down) {
    if (!flagContent || !isVisible() || model_->rowCount() == 0) return false;
    tav::Preview* hex = container_->hexPreview();
    if (hex && container_->currentWidget() == hex->widget_preview()) {
        auto* h = dynamic_cast<tav::PreviewHex*>(hex);
        return h && h->hex_view() && h->hex_view()->moveActiveMark(down);
    }
    auto* ascii = dynamic_cast<tav::PreviewAscii*>(container_->previewByExtension(QStringLiteral("txt")));
    if (!ascii || !ascii->get_XTextView() || container_->currentWidget() != ascii->widget_preview()) return false;
    return ascii->get_XTextView()->moveActiveMark(down);
}

bool PanelResults::eventFilter(QObject* watched, QEvent* event) {
    if (watched == tableResult_->horizontalHeader()->viewport()) {
        if (event->type() == QEvent::MouseButtonPress) headerPressed_ = true;
        else if (event->type() == QEvent::MouseButtonRelease) headerPressed_ = false;
    }
    if (watched == tableResult_->viewport() && event->type() == QEvent::Resize) fitColumns();
    // N steps through the hits here too; the table would take it as a jump to a name.
    if (watched == tableResult_ && event->type() == QEvent::KeyPress) {
        auto* ke = static_cast<QKeyEvent*>(event);
        const Qt::KeyboardModifiers mods = ke->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier);
        if ((ke->key() == Qt::Key_N || ke->key() == Qt::Key_F3) && mods == Qt::NoModifier) {
            step_hit(!(ke->modifiers() & Qt::ShiftModifier));
            return true;
        }
    }
    return tav::XPanel::eventFilter(watched, event);
}

void PanelResults::setFileResults(std::vector<FileResult>& ar) {
    flagContent = true;
    log(tav::LOG_TRACE, "PanelResults::setFileResults, ar.size():$", quint64(ar.size()));
    model_->clear();
    model_->setRowCount(int(ar.size()));
    model_->setFileResults(std::move(ar));
    model_->sort(FileResultModel::COL_HITS, false);
    sortColumn_ = -1;
    tableResult_->setModel(model_);
    setHeader();
    tableResult_->setColumnHidden(FileResultModel::COL_HITS, false);
    fitColumns();
    tableResult_->setSortColum(FileResultModel::COL_HITS, 1);
}

void PanelResults::beginLiveResults(bool documents) {
    std::vector<FileResult> none;
    setFileResults(none);
    documents_ = documents;
}

void PanelResults::addFileResults(std::vector<FileResult>& batch) {
    if (batch.empty()) return;
    // The table's sort: the user's, or most hits first.
    const int column = sortColumn_ < 0 ? int(FileResultModel::COL_HITS) : sortColumn_;
    const bool ascending = sortColumn_ < 0 ? false : sortAscending_;
    const QModelIndex current = tableResult_->currentIndex();
    const int rowBefore = current.isValid() ? current.row() : -1;
    model_->addFileResults(batch, column, ascending);
    // Rows sorted in above the current one push it down: the view follows, so it stays put on screen.
    const QModelIndex now = tableResult_->currentIndex();
    if (rowBefore >= 0 && now.isValid() && now.row() != rowBefore) {
        QScrollBar* bar = tableResult_->verticalScrollBar();
        const int value = bar->value() + (now.row() - rowBefore);
        tableResult_->doItemsLayout();   // the bar's range must know the new rows now, not at the next paint
        bar->setValue(value);
    }
    fitColumns();
}

void PanelResults::endLiveResults() {
    fitColumns();
    if (!tableResult_->currentIndex().isValid() && model_->rowCount() > 0) tableResult_->selectRow(0, true);
}

void PanelResults::setFileResultsSimple(std::vector<QFileInfo>& ar) {
    flagContent = false;
    log(tav::LOG_TRACE, "PanelResults::setFileResultsSimple, ar.size():$", quint64(ar.size()));
    model_->clear();
    model_->setRowCount(int(ar.size()));
    model_->setFiles(std::move(ar));
    model_->sort(FileResultModel::COL_PATH, true);
    sortColumn_ = -1;
    tableResult_->setModel(model_);
    setHeader();
    tableResult_->setSortColum(FileResultModel::COL_PATH, 0);
    tableResult_->setColumnHidden(FileResultModel::COL_HITS, true);
    fitColumns();
}

void PanelResults::setResultSummaryHtml(int64_t startMicros, const tav::XFindStats& stats, const FindRequest& request) {
    QString html = QStringLiteral("<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 4.0 Transitional//EN\">\n");
    html += QStringLiteral("<html>\n");
    if (tav::KernelGUI::isTavStyleDark()) html += QStringLiteral("<body style=\"background-color:#2d3339;color:white;\">\n");
    else html += tav::fill("<body style=\"background-color:$;\">\n", QColor(222, 222, 222).name());
    html += tav::fill("<h3>$</h3>", tav::xt("Search Results").toHtmlEscaped());
    html += QStringLiteral("<p style=\"font-size:18px;\">");
    html += tav::fill(tav::xt("Time:$ sec") + QStringLiteral(" <br/>"), tav::formatMicrosecond_as_Sec(tav::getMicroseconds() - startMicros));
    html += tav::fill(tav::xt("Path:$") + QStringLiteral(" <br/>"), request.sPath.toHtmlEscaped());
    // A search by name only has no pattern to report: it found files.
    if (request.contentFilter.text().isEmpty())
        html += tav::fill("<b>$</b><br/>", tav::fill(tav::xt("$ files found"), tav::format1000(stats.countMatch.load())).toHtmlEscaped());
    else
        html += tav::fill(tav::xt("Pattern '$' found $ times").toHtmlEscaped() + QStringLiteral("<br/>"), request.contentFilter.text().toHtmlEscaped(),
                          tav::format1000(stats.countHits.load()));
    if (stats.countMatch.load() == 0) html += tav::fill(tav::xt("Files total:$"), tav::format1000(stats.countFiles.load()));
    else
        html += tav::fill(tav::xt("Files total:$, found in files:$"), tav::format1000(stats.countFiles.load()),
                          tav::format1000(stats.countMatch.load()));
    html += QStringLiteral("</p>");
    html += QStringLiteral("</body>\n");
    html += QStringLiteral("</html>\n");
    browser_->setHtmlText(html);
}

void PanelResults::onTableHeaderSelected(int column) {
    // The first click sorts a column its natural way (names A to Z; sizes, dates and hits
    // largest first), the next click on it reverses; the arrow shows the order of the data.
    const bool ascending = column == sortColumn_ ? !sortAscending_ : (column == FileResultModel::COL_NAME || column == FileResultModel::COL_PATH);
    sortColumn_ = column;
    sortAscending_ = ascending;
    tableResult_->setSortColum(column, ascending ? 0 : 1);
    log(tav::LOG_TRACE, "PanelResults::onTableHeaderSelected, column:$, sort:$", column, ascending ? "UP" : "DOWN");
    // The chosen row stays chosen in the new order (its preview stays as it is).
    const int row = tableResult_->currentRow();
    const QString chosen = row < 0                  ? QString()
                           : model_->isBasicMode() ? model_->fromRow(row).absoluteFilePath()
                                                   : model_->fileResultFromRow(row).displayPath();
    model_->sort(column, ascending);
    model_->refreshAll();
    if (chosen.isEmpty()) return;
    for (int r = 0, n = model_->rowCount(); r < n; ++r) {
        const QString path = model_->isBasicMode() ? model_->fromRow(r).absoluteFilePath() : model_->fileResultFromRow(r).displayPath();
        if (path != chosen) continue;
        tableResult_->selectRow(r, false);
        tableResult_->scrollTo(model_->index(r, 0));
        break;
    }
}

void PanelResults::on_jump_to_result(int row) {
    showStack(1);
    const FileResult fr = model_->fileResultFromRow(row);
    const QFileInfo& fi = fr.fileInfo;
    WinFinder::show_status_for(this, fi);
    // Hits in the extracted text of a document or member are shown in that text, not in the container's bytes.
    const bool viaText = documents_ && (fr.isMember() || extractable(fi));
    if (fr.layer.isBinary() && !viaText) {
        log(tav::LOG_TRACE, "PanelResults::on_jump_to_result, BIN FILE !");
        if (tav::Preview* hex = container_->hexPreview()) {
            hex->open_file(fi);
            // The hits marked and the first one in view, as in the text preview.
            if (auto* h = dynamic_cast<tav::PreviewHex*>(hex); h && h->hex_view()) {
                auto toHex = [](const tav::find::XRamLayer& layer) {
                    std::vector<std::pair<int64_t, int64_t>> marks;
                    marks.reserve(size_t(layer.size()));
                    for (const tav::find::XRam& m : layer.marks()) marks.emplace_back(m.pos(), std::max<int64_t>(1, m.len()));
                    return marks;
                };
                h->hex_view()->setMarks(toHex(fr.layer), QColor(Qt::green));
                h->hex_view()->setActiveMark(0);
                QPointer<tav::XHexView> guard(h->hex_view());
                completeMarks(fr, [guard, toHex](tav::find::XRamLayer&& all) {
                    if (!guard) return;
                    const int active = guard->activeMark();
                    guard->setMarks(toHex(all), QColor(Qt::green));
                    guard->setActiveMark(std::max(0, active));
                });
            }
            container_->showPreview(hex);
        } else {
            X_ASSERT_MSG(nullptr, "previewHex == NULL");
        }
        return;
    }
    container_->cancelVisibleLoading();
    tav::Preview* p = container_->previewByExtension(QStringLiteral("txt"));
    if (!p) {
        p = container_->hexPreview();
        if (auto* hex = dynamic_cast<tav::PreviewHex*>(p)) hex->set_font_size(cfg().fontSizeHexView);
    }
    if (!p) {
        log(tav::LOG_ERROR, "PanelResults::on_jump_to_result, no preview for <<<$>>>", fi);
        return;
    }
    p->set_font(tav::XTools::getMonoFont(cfg().fontSize));
    auto* ascii = dynamic_cast<tav::PreviewAscii*>(p);
    if (!ascii) {
        p->open_file(fi);
        container_->showPreview(p);
        log(tav::LOG_ERROR, "PanelResults::on_jump_to_result, previewAscii == nullptr");
        return;
    }
    ascii->set_ruler(cfg().flagRuler);
    ascii->set_auto_wrap(cfg().flagAutoWrap);
    ascii->set_line_info_pos(tav::LINE_INFO_POS(cfg().li_pos));
    // A member or a document was searched as its extracted text: that text is shown, so
    // the marks fall on the words they were found in (and a PDF hit names its page).
    tav::extract::Part part;
    bool extracted = false;
    if (viaText) {
        tav::extract::XExtractor ex;
        extracted = ex.partOf(fi.absoluteFilePath(), fr.member, part);
        if (!extracted) log(tav::LOG_ERROR, "PanelResults::on_jump_to_result, no text of <<<$>>>", fr.displayPath());
    }
    if (extracted) ascii->set_mem_file(tav::XMemFile{fr.displayPath(), part.text});
    else ascii->open_file(fi);
    tav::viewText::XTextView* view = ascii->get_XTextView();
    if (view) view->setPageStarts(extracted ? part.pageStarts : std::vector<int64_t>());
    if (!X_ASSERT_MSG(view, "textView == NULL")) return;
    tav::find::XRamLayerGroup& group = view->layers();
    if (!group.contains_layer(LAYER_RESULT)) group.add_layer(LAYER_RESULT, 1);
    tav::find::XRamLayer* pLayerActive = group.layer_by_ID(LAYER_RESULT);
    if (X_ASSERT_MSG(pLayerActive, "pLayerActive == NULL")) {
        if (fr.layer) {
            ascii->set_XRamLayer(pLayerActive);
            pLayerActive->clear();
            pLayerActive->add_ram_layer(fr.layer);
            pLayerActive->set_color_background(QColor(Qt::green).rgba());
            pLayerActive->set_active_mark_index(0);
            if (const tav::find::XRam* mark = pLayerActive->active_mark()) {
                // The view lays the new file out first.
                QPointer<tav::viewText::XTextView> guard(view);
                const tav::find::XRam ram = *mark;
                tav::run_in_gui_thread([guard, ram]() {
                    if (guard) guard->scrollToRam(ram);
                }, 200);
            }
            // Marks past the kept ones come when the file has been searched again.
            QPointer<tav::viewText::XTextView> guardView(view);
            completeMarks(fr, [guardView](tav::find::XRamLayer&& all) {
                tav::find::XRamLayer* l = guardView ? guardView->layers().layer_by_ID(LAYER_RESULT) : nullptr;
                if (!l) return;
                const int active = l->active_mark_index();
                const tav::find::XRgb color = l->color_background();
                *l = std::move(all);
                l->set_color_background(color);
                l->set_active_mark_index(std::max(0, active));
                guardView->viewport()->update();
            });
        } else {
            log(tav::LOG_TRACE, "PanelResults::on_jump_to_result, NIX");
        }
    }
    view->viewport()->update();
    // The focus stays in the table: Up / Down go on through the results.
    container_->showPreview(p);
}

void PanelResults::completeMarks(const FileResult& fr, std::function<void(tav::find::XRamLayer&&)> apply) {
    if (marksCancel_) marksCancel_->store(true);
    marksCancel_.reset();
    if (fr.layer.isComplete() || !resultFilter_.isValid()) return;
    auto cancel = std::make_shared<std::atomic<bool>>(false);
    marksCancel_ = cancel;
    const tav::find::XContentFilter filter = resultFilter_;
    QPointer<PanelResults> self(this);
    tav::XThreadPool::start_global([fr, filter, cancel, self, apply = std::move(apply)]() {
        tav::find::XRamLayer all = allMarks(fr, filter, cancel.get());
        if (cancel->load() || !all.isComplete()) return;
        tav::run_in_gui_thread(
            [self, cancel, apply, all = std::move(all)]() mutable {
                if (!self || cancel->load()) return;
                apply(std::move(all));
            },
            0);
    });
}

void PanelResults::on_jump_to_result_simple(int row) {
    log(tav::LOG_TRACE, "PanelResults::on_jump_to_result_simple");
    showStack(1);
    const QFileInfo fi = model_->fromRow(row);
    context_->select_file(fi);
}

void PanelResults::on_double_click(int row) {
    if (row < 0 || row >= model_->rowCount()) return;
    log(tav::LOG_TRACE, "PanelResults::setup, double click");
    if (flagContent) {
        const FileResult fr = model_->fileResultFromRow(row);
        log(tav::LOG_NAVIGATION, "PanelResults::setup, double click, fileResult <<<$>>>", fr.toString());
        eventOpenResult_.fire(fr);
    } else {
        const QFileInfo fi = model_->fromRow(row);
        log(tav::LOG_TRACE, "PanelResults::setup, double click, fi <<<$>>>", fi);
        eventOpenFile_.fire(fi);
    }
}

void PanelResults::on_context_menu(int row) {
    log(tav::LOG_TRACE, "PanelResults::setup, context at row:$, model row count:$", row, model_->rowCount());
    if (row < 0 || row >= model_->rowCount()) return;
    if (flagContent) eventContextResult_.fire(model_->fileResultFromRow(row));
    else eventContextFile_.fire(model_->fromRow(row));
}

void PanelResults::on_preview_activated(tav::Preview* p) {
    if (flagContent && model_->rowCount() > 0) {
        const int row = tableResult_->currentRow();
        eventOpenResult_.fire(model_->fileResultFromRow(row));
        return;
    }
    if (p) eventOpenFile_.fire(p->file_info());
}

} // namespace tavFinder
