#include "src/dir/impl/private_PreviewDir.h"

#include "base/util/NaturalCompare.h"

#include "base/log/Logger.h"
#include "base/node/XNode.h"
#include "base/thread/XThread.h"
#include "base/util/Format.h"
#include "gui/panel/XPanelStacked.h"
#include "gui/panel/XSplitter.h"
#include "gui/table/XTableWidget.h"
#include "gui/thumbs/XVScrollPanel.h"
#include "gui/tools/XDragOut.h"
#include "gui/tools/XTools.h"
#include "src/dir/ContextPreviews.h"
#include "src/dir/LimitedPreviewContainer.h"
#include "src/dir/PDirInfo.h"
#include "src/dir/PreviewDir.h"
#include "src/gui/PanThumb.h"
#include "src/gui/PanelThumbs.h"
#include "src/dir/FinderHost.h"
#include "src/gui/config/ConfigTavFinder.h"

#include <algorithm>
#include <QDateTime>
#include <QHeaderView>
#include <QPointer>

namespace tavFinder {

using tav::log;
using tav::xt;

namespace {
// Icons come from the desktop's theme and cost time; huge folders list without them.
constexpr int kMaxIconRows = 5000;
}

private_PreviewDir::private_PreviewDir(PreviewDir* owner)
    : owner_(owner), context_(std::make_unique<ContextPreviews>(QStringLiteral("CONTEXT-RIGHT-DIR"))) {}

private_PreviewDir::~private_PreviewDir() {
    loader_.clear();
    // The context refers to widgets of the splitter; it goes first.
    context_.reset();
}

QWidget* private_PreviewDir::widget() const { return splitter_.data(); }

void private_PreviewDir::ini() {
    if (splitter_) {
        log(tav::LOG_TRACE, "PreviewDir::Impl::ini - already initialized");
        return;
    }
    splitter_ = new tav::XSplitter(Qt::Horizontal, nullptr);
    splitter_->setObjectName(QStringLiteral("PreviewDir"));
    stack_ = new tav::XPanelStacked(splitter_, QStringLiteral("tableThumbs"));
    table_ = new tav::XTableWidget(stack_);
    table_->setObjectName(QStringLiteral("previewDir"));
    table_->setColumnCount(3);
    table_->setupRows(20);
    table_->verticalHeader()->setDefaultSectionSize(22);
    table_->verticalHeader()->hide();
    table_->setShowGrid(false);
    table_->setStyleSheet(tav::XTools::isTavStyleDark()
                              ? tav::fill("QTableView::item:hover {color:$; background-color:$; }", QStringLiteral("white"), QStringLiteral("#005986"))
                              : tav::fill("QTableView::item:hover {color:$; background-color:$; }", QStringLiteral("black"), QStringLiteral("#D3F1FC")));
    thumbs_ = new PanelThumbs(stack_);
    stack_->addPanel(table_);
    stack_->addPanel(thumbs_);
    stack_->showPanel(table_);
    limited_ = new LimitedPreviewContainer(splitter_);
    limited_->addStandardPreviews();
    limited_->eventPreviewAppears().add([this](tav::Preview* p) { owner_->eventInnerPreview().fire(p); });
    splitter_->addWidget(stack_);
    splitter_->addWidget(limited_);
    splitter_->setStretchFactor(0, 1);
    splitter_->setStretchFactor(1, 1);
    context_->ini(table_, limited_);

    table_->eventHeaderClicked().add([this](int c) { onHeaderClicked(c); });
    table_->eventRowClicked().add([this](int r) { onRowClicked(r); });
    tav::XDragOut::install(table_, [this](const QPoint& pos) {
        const int row = table_->rowAt(pos.y());
        return row >= 0 && row < entries_.size() ? entries_[row] : QFileInfo();
    });
    table_->eventRowDoubleClicked().add([this](int r) {
        if (r >= 0 && r < entries_.size()) owner_->eventFileActivated().fire(entries_[r]);
    });
    table_->eventContextMenu().add([this](int r) {
        if (r >= 0 && r < entries_.size()) owner_->eventContextMenu().fire(entries_[r]);
    });
    table_->eventHover().add([this](int r) {
        if (r >= 0 && r < entries_.size()) owner_->eventHover().fire(entries_[r]);
    });
    thumbs_->scrollPanel()->eventScrolled().add([this]() { loadVisibleThumbs(); });
    thumbs_->eventThumbsAppear().add([this]() { loadVisibleThumbs(); });
}

void private_PreviewDir::fromNode(tav::XNode* node) {
    if (!node) return;
    sortColumn_ = std::clamp(node->getInt(QStringLiteral("sortColumn"), sortColumn_), 0, 2);
    orderBits_ = node->getUInt(QStringLiteral("sortOrder"), orderBits_);
    sortKind_ = sortColumn_ == 1 ? QDir::Size : (sortColumn_ == 2 ? QDir::Time : QDir::Name);
    if (limited_) limited_->from_node(node->getCreateNode(QStringLiteral("Limited")));
}

void private_PreviewDir::toNode(tav::XNode* node) {
    if (!node) return;
    node->setInt(QStringLiteral("sortColumn"), sortColumn_);
    node->setUInt(QStringLiteral("sortOrder"), orderBits_);
    if (limited_) limited_->to_node();
}

void private_PreviewDir::setTextFileExtensions(const std::unordered_set<QString>& ext) {
    if (limited_) limited_->setTextFileExtensions(ext);
}

bool private_PreviewDir::thumbsShown() const { return stack_ && thumbs_ && stack_->currentWidget() == thumbs_; }

int private_PreviewDir::activeView() const { return thumbsShown() ? PreviewDir::VIEW_THUMB : PreviewDir::VIEW_TABLE; }

FinderHost* private_PreviewDir::mainWindow() const { return splitter_ ? FinderHost::of(splitter_) : nullptr; }

QDir::SortFlags private_PreviewDir::sortFlags() const {
    int flags = sortKind_ | QDir::DirsFirst | QDir::IgnoreCase;
    if (!(orderBits_ & (1u << sortColumn_))) flags |= QDir::Reversed;
    return QDir::SortFlags(flags);
}

QList<QFileInfo> private_PreviewDir::listEntries(const QString& path) const {
    QList<QFileInfo> list = QDir(path).entryInfoList(QDir::Filters(showHidden ? PDirInfo::kFilterAll : PDirInfo::kFilterVisible), sortFlags());
    if (sortKind_ == QDir::Name) {
        // Folders first, then reading order (numbers by value) in the chosen direction.
        const bool reversed = sortFlags() & QDir::Reversed;
        std::stable_sort(list.begin(), list.end(), [reversed](const QFileInfo& a, const QFileInfo& b) {
            if (a.isDir() != b.isDir()) return a.isDir();
            const int c = tav::naturalCompare(a.fileName(), b.fileName());
            return reversed ? c > 0 : c < 0;
        });
    }
    return list;
}

void private_PreviewDir::selectInner(const QFileInfo& fi) {
    if (context_) context_->select_file(fi);
}

void private_PreviewDir::setFilepath(const QString& path) {
    log(tav::LOG_TRACE, "PreviewDir::Impl::setFilepath, '$'", path);
    if (!splitter_) ini();
    path_ = path;
    const int gen = ++generation_;
    if (thumbsShown()) {
        loader_.clear();
        QPointer<tav::XSplitter> guard(splitter_);
        tav::run_in_gui_thread(
            [this, guard, gen, path]() {
                if (!guard || gen != generation_) return;   // gone, or another folder meanwhile
                const QList<QFileInfo> list = listEntries(path);
                entries_ = list;
                thumbs_->set_dirs_and_files(mainWindow(), std::vector<QFileInfo>(list.begin(), list.end()), thumbs_->thumbSize());
                thumbs_->trigger_thumbs_appear_event();
                selectInner(QFileInfo(path));
            },
            500);
        return;
    }
    fillTable();
    const QFileInfo fi(path);
    if (fi.isDir()) selectInner(fi);
    table_->horizontalHeader()->setSortIndicatorShown(true);
    bool bit = orderBits_ & (1u << sortColumn_);
    if (sortColumn_ == 1 || sortColumn_ == 2) bit = !bit;
    table_->horizontalHeader()->setSortIndicator(sortColumn_, bit ? Qt::AscendingOrder : Qt::DescendingOrder);
}

void private_PreviewDir::fillTable() {
    const QSignalBlocker block(table_);
    table_->clear();
    entries_ = listEntries(path_);
    table_->setRowCount(entries_.size());
    table_->setColumnCount(3);
    table_->setHorizontalHeaderLabels({xt("Name"), xt("Size"), xt("Date")});
    QHeaderView* h = table_->horizontalHeader();
    h->setSectionResizeMode(0, QHeaderView::Stretch);
    h->setSectionResizeMode(1, QHeaderView::Interactive);
    h->setSectionResizeMode(2, QHeaderView::Interactive);
    table_->setColumnWidth(1, 140);
    table_->setColumnWidth(2, 160);
    const bool icons = entries_.size() <= kMaxIconRows;
    for (int r = 0; r < entries_.size(); ++r) {
        const QFileInfo& fi = entries_[r];
        auto* name = new QTableWidgetItem(fi.fileName());
        if (icons) name->setIcon(tav::XTools::get_file_icon_association(fi));
        name->setTextAlignment(Qt::AlignLeft | Qt::AlignVCenter);
        auto* size = new QTableWidgetItem(tav::format1000(int64_t(fi.size())));
        size->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        auto* date = new QTableWidgetItem(fi.lastModified().toString(QStringLiteral("yyyy/MM/dd - hh:mm")));
        date->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        table_->setItem(r, 0, name);
        table_->setItem(r, 1, size);
        table_->setItem(r, 2, date);
    }
}

void private_PreviewDir::onHeaderClicked(int column) {
    if (column == sortColumn_) orderBits_ ^= (1u << column);
    sortColumn_ = column;
    if (column == 0) sortKind_ = QDir::Name;
    else if (column == 1) sortKind_ = QDir::Size;
    else if (column == 2) sortKind_ = QDir::Time;
    setFilepath(path_);
    table_->viewport()->update();
}

void private_PreviewDir::onRowClicked(int row) {
    if (row < 0 || row >= entries_.size()) return;
    const QFileInfo fi = entries_[row];
    selectInner(fi);
    owner_->eventFileSelected().fire(fi);
}

void private_PreviewDir::onActiveWinView(int view) {
    if (!splitter_) ini();
    if (view == PreviewDir::VIEW_TABLE) {
        log(tav::LOG_TRACE, "private_PreviewDir::on_active_win_view, da table");
        loader_.clear();
        stack_->showPanel(table_);
    } else if (view == PreviewDir::VIEW_THUMB) {
        log(tav::LOG_TRACE, "private_PreviewDir::on_active_win_view, da thumb");
        stack_->showPanel(thumbs_);
    } else {
        return;
    }
    if (!path_.isEmpty()) setFilepath(path_);
}

void private_PreviewDir::stopThumbs() { loader_.clear(); }

void private_PreviewDir::loadVisibleThumbs() {
    if (!thumbsShown()) return;
    const QList<PanThumb*> tiles = thumbs_->visibleTiles();
    log(tav::LOG_TRACE, "scroll contents, ar:$", tiles.size());
    for (PanThumb* t : tiles) {
        loader_.add(t);
        if (t->property("tfWired").toBool()) continue;
        t->setProperty("tfWired", true);
        const QFileInfo fi = t->file();
        t->eventClicked().add([this, fi]() {
            selectInner(fi);
            owner_->eventFileSelected().fire(fi);
        });
        t->eventDoubleClicked().add([this, fi]() { owner_->eventFileActivated().fire(fi); });
    }
    loader_.start();
}

} // namespace tavFinder
