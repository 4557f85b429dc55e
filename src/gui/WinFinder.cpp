#include "src/gui/WinFinder.h"

#include "base/env/Env.h"
#include "base/io/XFileIO.h"
#include "base/find/XContentFilter.h"
#include "base/log/Logger.h"
#include "base/node/XNode.h"
#include "base/thread/XThread.h"
#include "base/util/Format.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/panel/XPanel.h"
#include "gui/panel/XPanelStacked.h"
#include "gui/panel/XSplitter.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XBox.h"
#include "gui/widgets/XTreeViewFiles.h"
#include "gui/previews/PreviewAscii.h"
#include "gui/previews/PreviewHex.h"
#include "gui/viewText/XTextView.h"
#include "src/dir/ContextPreviews.h"
#include "src/dir/PreviewDir.h"
#include "src/dir/XContainerPreviews.h"
#include "src/gui/NavigationBar.h"
#include "src/find/SearchJob.h"
#include "src/find/TavFind.h"
#include "src/gui/PanelResults.h"
#include "src/gui/ThreadScanDir.h"
#include "src/gui/WinDetails.h"
#include "src/gui/WinProperties.h"
#include "src/gui/WinTray.h"
#include "src/gui/config/ConfigTavFinder.h"

#include <QAction>
#include <QSpinBox>
#include <algorithm>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileSystemModel>
#include <QPointer>
#include <QBoxLayout>
#include <QFrame>
#include <QLabel>
#include <QPalette>
#include <QToolButton>

namespace tavFinder {

using tav::log;

const std::vector<unsigned>& WinFinder::thumbSizes() {
    static const std::vector<unsigned> sizes{64, 90, 128, 160, 200, 256};
    return sizes;
}

WinFinder::WinFinder(bool) : contextMain_(std::make_unique<ContextPreviews>(QStringLiteral("CONTEXT-MAIN"))), timer_(200) {
    setWindowTitle(tav::xt("Talvo Finder"));
    setWindowIcon(QIcon(QIcon(QStringLiteral(":/tf/icons/find2.svg")).pixmap(64, 64)));
    propUseFilter_.set(cfg().flagUseFilter);
    history_.listeners().add([this]() { on_hist_state_change(); });
}

WinFinder::~WinFinder() {
    log(tav::LOG_TRACE, "WinFinder::~WinFinder");
    timer_.stop();
    // Background work of a search ends before the window's parts go.
    if (thScanDir) thScanDir->dirInfo.flagStop = true;
    job_.reset();   // cancels; its threads end on their own
    thScanDir.reset();
    // A window deleted without closing must not leave listeners on the kernel.
    remove_modifier_listeners();
    remove_output_files(outputFiles_);
    // The contexts point into widgets that go with this window.
    contexts_.clear();
}

void WinFinder::init(tav::KernelGUI* kernel, tav::XNode* nWin) {
    kernel_ = kernel ? kernel : tav::KernelGUI::instanceGui();
    initWindow(nWin, tav::xt("Talvo Finder"), QStringLiteral(":/html/en.index.html"));
}

QString WinFinder::windowName() const {
    return xName().isEmpty() ? QStringLiteral("WinFinder") : tav::fill("WinFinder@$", xName());
}

void WinFinder::setUp(const QString& selectPath) {
    log(tav::LOG_TRACE, "WinFinder::setUp, sSelectFile '$'", selectPath);
    if (treeView_) {
        log(tav::LOG_TRACE, "WinFinder::setUp, treeView");
        return;
    }
    sSelectFile_ = selectPath;
    // The window's node holds its layout and choices.
    tav::XNode* nWin = nodeWin();
    X_ASSERT_MSG(nWin, "nWin == NULL");
    tav::XNode* nTree = nWin ? nWin->getCreateNode(QStringLiteral("XTreeView")) : nullptr;

    // Navigation bar above a splitter with the tree and the stack.
    content_ = new tav::XPanel(this, tav::XPanel::VERTICAL, QStringLiteral("content"));
    content_->setTight();
    setCentralWidget(content_);
    naviBar_ = content_->add(new NavigationBar(this, content_));
    splitter_ = content_->add(new tav::XSplitter(Qt::Horizontal, content_), 1);
    splitter_->setObjectName(QStringLiteral("splitter"));
    treeView_ = new tav::XTreeViewFiles(splitter_);
    treeView_->setSortingEnabled(true);
    stacked_ = new tav::XPanelStacked(splitter_, QStringLiteral("stacked"));
    container_preview_ = new XContainerPreviews(stacked_);
    container_preview_->setObjectName(QStringLiteral("container_preview"));
    container_preview_->addStandardPreviews();
    findResults_ = new PanelResults(stacked_);
    findResults_->setObjectName(QStringLiteral("findResults"));
    stacked_->addPanel(container_preview_);
    stacked_->addPanel(findResults_);
    splitter_->addWidget(treeView_);
    splitter_->addWidget(stacked_);
    splitter_->setStretchFactor(0, 0);
    splitter_->setStretchFactor(1, 1);
    splitter_->setSizes({360, 840});
    contextMain_->ini(treeView_, container_preview_);
    contexts_ = {contextMain_.get(), findResults_->context()};
    stacked_->showPanel(container_preview_);

    // A preview asks for a window of its own.
    container_preview_->eventOpenStandAlone().add([this](const QFileInfo& fi) { open_stand_alone_preview(fi); });

    // Previews know the text extensions; the splitter gets its saved sizes.
    container_preview_->setTextFileExtensions(cfg().extSet());
    if (nWin) splitter_->nodeToState(nWin, QStringLiteral("splitter"));
    treeView_->showHeaderDetails(nTree && nTree->isBool(QStringLiteral("header"), false));
    if (nTree) treeView_->restoreStates(nTree);

    // The tree: selection, reloads, double clicks, menus and hover tooltips.
    treeView_->eventSelectFile().add([this](const QFileInfo& fi) { on_treeView_selectFile(fi); });
    treeView_->eventDirReload().add([this](const QString& path) {
        log(tav::LOG_TRACE, "WinFinder::setUp - dir reload, '$'", path);
        on_treeView_selectFile(QFileInfo(path));
    });
    treeView_->eventDoubleClick().add([this](const QFileInfo& fi) {
        if (!fi.isFile()) return;
        log(tav::LOG_TRACE, "WinFinder::on_double_click_file, fi <<<$>>>", fi);
        open_stand_alone_preview(fi);
    });
    treeView_->eventContextMenu().add([this](const QFileInfo& fi) { on_contextMenu_treeView(fi); });
    treeView_->eventHover().add([this](const QFileInfo& fi) {
        if (tav::XTools::is_modifier_control()) return;
        treeView_->setHoverToolTip(tree_tooltip(fi));
    });

    // The filter switch of the navigation bar filters the tree's top folders.
    propUseFilter_.addListener([this](bool on) {
        cfg().flagUseFilter = on;
        if (on) treeView_->setFolderFilter(cfg().filter);
        else treeView_->removeFolderFilter();
        treeView_->setDirsOnly(cfg().flagTreeDirOnly);
        treeView_->invalidateModel();
    });
    if (cfg().flagUseFilter) treeView_->setFolderFilter(cfg().filter);
    treeView_->setDirsOnly(cfg().flagTreeDirOnly);

    // The folder table on the right: its menus, activation, hidden files and view kind.
    AbstractPreviewDir* previewDir = container_preview_->previewDirectory();
    if (X_ASSERT_MSG(previewDir, "previewDir == NULL")) {
        previewDir->eventContextMenu().add([this, previewDir](const QFileInfo& fi) { on_contextMenu_rightSide(fi, previewDir); });
        previewDir->eventFileActivated().add([this](const QFileInfo& fi) {
            log(tav::LOG_TRACE, "WinFinder::setUp, doubleClick:$", fi);
            if (fi.isDir()) treeView_->selectFile(fi.absoluteFilePath(), true);
            else open_stand_alone_preview(fi);
        });
        previewDir->eventFileSelected().add([](const QFileInfo&) {});
        previewDir->eventHover().add([](const QFileInfo&) {});
        previewDir->set_show_hidden(nWin && nWin->isBool(QStringLiteral("flagHiddenFiles"), false));
        // Ctrl+1 / Ctrl+2 and the thumbnail button set the view flags: 2 thumbnails, 0 table.
        viewFlags_.addListener([previewDir](uint32_t bits) {
            if (auto* pd = dynamic_cast<PreviewDir*>(previewDir)) pd->on_active_win_view((bits & 2) ? PreviewDir::VIEW_THUMB : PreviewDir::VIEW_TABLE);
        });
    }

    // Previews appearing in either container are announced once, by the window.
    container_preview_->eventPreviewAppears().add([this](tav::Preview* p) { eventPreviewAppears_.fire(p); });
    findResults_->container()->eventPreviewAppears().add([this](tav::Preview* p) { eventPreviewAppears_.fire(p); });
    eventPreviewAppears_.add([this](tav::Preview* p) {
        if (!p) return;
        log(tav::LOG_TRACE, "WinFinder::setUp, will appear:$", p->name());
        apply_preview_settings(p);
    });

    // The tree's saved header and sort; the configuration decides the detail columns.
    if (nTree) treeView_->restoreStates(nTree);
    treeView_->showHeaderDetails(cfg().flagTreeDateSize);

    // Filter panel, keys and the rest of the window's furniture.
    setup_panel_find();
    setup_hotkeys();
    log(tav::LOG_TRACE, "WinFinder::setUp, selectFile:<<<$>>>", selectPath);

    // A new root colours the tree; the first appearance finishes the layout.
    treeView_->eventRootChanged().add([this](const QString& path) { on_root_changed(path); });
    eventAppearFirstTime().add([this](int64_t mc) { setup_window_appear_first_time(mc); });
    eventClose().add([this]() { on_close_save_state(); });

    // The previews' saved settings.
    if (nWin) container_preview_->from_node(nWin->getCreateNode(QStringLiteral("Previews")));

    // The results panel's menus and double clicks.
    findResults_->eventContextMenuFile().add([this](const QFileInfo& fi) { on_contextMenu_rightSide(fi, nullptr); });
    findResults_->eventContextMenuFileResult().add([this](const FileResult& fr) { on_contextMenu_fileResult(fr); });
    findResults_->eventOpenFile().add([this](const QFileInfo& fi) {
        log(tav::LOG_TRACE, "WinFinder::setUp, double click for <$>", fi);
        open_stand_alone_preview(fi);
    });
    findResults_->eventOpenFileResult().add([this](const FileResult& fr) { on_open_fileResult(fr); });

    // The filter bits show and hide the rows of the filter panel.
    filterFlags_.addListener([this](uint32_t bits) { apply_filter_flags(bits); });

    // The tree's colours at the root (set before a root is applied, so it gets them at once).
    if (tav::KernelGUI::isTavStyleDark()) {
        colorTreeAtRoot_ = QColor(QStringLiteral("#1d2125"));
        colorTreeBelowRoot_ = QColor(QStringLiteral("#212245"));
    } else {
        colorTreeAtRoot_ = QColor(Qt::white);
        colorTreeBelowRoot_ = QColor(QStringLiteral("#f3e7e3"));
    }
    colorTreeCurrent_ = colorTreeAtRoot_;
    treeView_->setStyleSheet(tav::replace_variables(QStringLiteral(".QTreeView { background: $(BG); }"),
                                                    QStringLiteral("BG"), colorTreeAtRoot_.name()));

    // A configured root folder.
    if (cfg().flagUseRootFolder && cfg().sRootFolder.length() > 1) {
        const QString abs = QFileInfo(cfg().sRootFolder).absoluteFilePath();
        treeView_->setRoot(abs);
        cfg().sRootFolder = abs;
    }

    // Ctrl / Shift previews of the hovered entry, and the history buttons' state.
    setUp_shift_control();
    on_hist_state_change();
}

void WinFinder::apply_preview_settings(tav::Preview* p) {
    if (auto* asc = dynamic_cast<tav::PreviewAscii*>(p)) {
        asc->set_font(tav::XTools::getMonoFont(cfg().fontSize));
        asc->set_auto_wrap(cfg().flagAutoWrap);
        asc->set_ruler(cfg().flagRuler);
        asc->set_line_info_pos(tav::LINE_INFO_POS(std::clamp(cfg().li_pos, 0, 2)));
    } else if (auto* hex = dynamic_cast<tav::PreviewHex*>(p)) {
        hex->set_font_size(cfg().fontSizeHexView);
    }
}

void WinFinder::setup_window_appear_first_time(int64_t mc) {
    log(tav::LOG_TRACE, "WinFinder::setup_window_appear_first_time, mc:$, sel: <<<$>>>", tav::formatMicrosecond_as_Sec(mc), sSelectFile_);
    if (!treeView_) return;
    if (!sSelectFile_.isEmpty()) {
        treeView_->selectFile(sSelectFile_, true);
    } else {
        const QModelIndex first = treeView_->model()->index(0, 0, treeView_->rootIndex());
        if (treeView_->isAtRoot() && first.isValid()) treeView_->expand(first);
        else treeView_->expand(treeView_->rootIndex());
    }
    tav::XNode* nWin = nodeWin();
    filterFlags_.set_flags(nWin ? nWin->getUInt(QStringLiteral("filterFlags"), cfg().filterBits) : cfg().filterBits, 0);
    filterFlags_.notify();
    update_tree_color();
}

void WinFinder::remove_modifier_listeners() {
    // The kernel may already be gone when the last windows are deleted.
    tav::KernelGUI* k = tav::KernelGUI::instanceGui();
    for (int i = 0; i < 2; ++i) {
        if (k && idModifier_[i] >= 0) k->removeModifierListener(i, idModifier_[i]);
        idModifier_[i] = -1;
    }
}

void WinFinder::on_close_save_state() {
    remove_modifier_listeners();
    save_state();
}

void WinFinder::save_state() {
    tav::XNode* nWin = nodeWin();
    if (!X_ASSERT_MSG(nWin, "nWin == NULL") || !treeView_) return;
    splitter_->stateToNode(nWin, QStringLiteral("splitter"));
    tav::XNode* nTree = nWin->getCreateNode(QStringLiteral("XTreeView"));
    treeView_->saveStates(nTree);
    nTree->setBool(QStringLiteral("header"), treeView_->isHeaderDetails());
    container_preview_->to_node();
    nWin->setUInt(QStringLiteral("filterFlags"), filterFlags_.flags());
    if (buttonWholeWords_) nWin->setBool(QStringLiteral("flagWholeWords"), buttonWholeWords_->isChecked());
    if (buttonMatchCase_) nWin->setBool(QStringLiteral("flagMatchCase"), buttonMatchCase_->isChecked());
    if (buttonDocuments_) nWin->setBool(QStringLiteral("flagDocuments"), buttonDocuments_->isChecked());
    if (buttonIgnoreFiles_) nWin->setBool(QStringLiteral("flagIgnoreFiles"), buttonIgnoreFiles_->isChecked());
    if (spinMaxFiles_) nWin->setUInt(QStringLiteral("maxFiles"), unsigned(spinMaxFiles_->value()));
    saveSearchHistory();
}

void WinFinder::show_notice(const QString& text) {
    if (text.isEmpty() || !content_) return;
    delete notice_.data();
    auto* frame = new QFrame(content_);
    frame->setObjectName(QStringLiteral("notice"));
    frame->setFrameShape(QFrame::StyledPanel);
    frame->setAutoFillBackground(true);
    QPalette pal = frame->palette();
    pal.setColor(QPalette::Window, pal.color(QPalette::ToolTipBase));
    pal.setColor(QPalette::WindowText, pal.color(QPalette::ToolTipText));
    frame->setPalette(pal);
    auto* row = new QHBoxLayout(frame);
    row->setContentsMargins(8, 4, 4, 4);
    auto* label = new QLabel(text, frame);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    row->addWidget(label, 1);
    auto* close = new QToolButton(frame);
    close->setObjectName(QStringLiteral("noticeClose"));
    close->setText(QStringLiteral("✕"));
    close->setToolTip(tav::xt("Close"));
    close->setAutoRaise(true);
    row->addWidget(close, 0, Qt::AlignTop);
    connect(close, &QToolButton::clicked, frame, &QObject::deleteLater);
    if (auto* box = qobject_cast<QBoxLayout*>(content_->layout())) box->insertWidget(0, frame);
    notice_ = frame;
    log(tav::LOG_ERROR, "WinFinder::show_notice, $", text);
}

QString WinFinder::damaged_files_notice() {
    QStringList lines;
    for (const tav::MovedAside& m : tav::takeMovedAside())
        lines << tav::fill(tav::xt("The file $ was damaged and could not be read; Talvo Finder uses defaults instead. "
                                   "The damaged file was kept as $."),
                           m.path, m.copy);
    return lines.join(QLatin1Char('\n'));
}

void WinFinder::on_treeView_selectFile(const QFileInfo& fi) {
    if (tav::XTools::isDebug()) log(tav::LOG_TRACE, "WinFinder::on_treeView_selectFile, fi: '$'", fi);
    if (flagAddToHistory && fi.exists()) history_.addFile(fi);
    flagAddToHistory = true;
    const QString abs = fi.absoluteFilePath();
    if (trayAction()) trayAction()->setText(QStringLiteral("TF ") + abs);
    setWindowTitle(tav::fill("TF $", abs));
    fiCurrent = fi;
    contextMain_->select_file(fi);
    if (stacked_ && stacked_->isShowing(findResults_)) stacked_->showPanel(container_preview_);
    if (naviBar_) naviBar_->setPath(abs);
}

void WinFinder::on_root_changed(const QString& path) {
    log(tav::LOG_TRACE, "WinFinder::on_root_changed, is_root:$", treeView_ && treeView_->isAtRoot());
    cfg().sRootFolder = path;
    update_tree_color();
}

void WinFinder::update_tree_color() {
    if (!treeView_) return;
    colorTreeCurrent_ = treeView_->isAtRoot() ? colorTreeAtRoot_ : colorTreeBelowRoot_;
    treeView_->setStyleSheet(tav::replace_variables(QStringLiteral(".QTreeView { background: $(BG); }"),
                                                    QStringLiteral("BG"), colorTreeCurrent_.name()));
}

QString WinFinder::tree_tooltip(const QFileInfo& fi) const {
    if (!cfg().flagTreeMouseOverInfo) return QString();
    if (treeView_ && treeView_->isHeaderDetails()) return fi.absoluteFilePath();
    if (fi.isDir()) return tav::fill("[$]", fi.absoluteFilePath());
    return fi.absoluteFilePath() + QLatin1Char('\n') + tav::formatBytes(uint64_t(fi.size())) + QLatin1Char('\n') +
           fi.lastModified().toString(QStringLiteral("yyyy/MM/dd - hh:mm"));
}

void WinFinder::on_hidden_files(bool flag) {
    log(tav::LOG_TRACE, "WinFinder::on_hidden_files, flag:$", flag);
    tav::XNode* nWin = nodeWin();
    const bool before = nWin ? nWin->isBool(QStringLiteral("flagHiddenFiles"), false) : treeView_->isHiddenFiles();
    if (nWin) nWin->setBool(QStringLiteral("flagHiddenFiles"), flag);
    if (before == flag) return;
    container_preview_->setShowHidden(flag);
    if (AbstractPreviewDir* d = container_preview_->existingPreviewDirectory()) {
        if (!d->file_info().filePath().isEmpty()) d->refresh();
    }
    treeView_->setHiddenFiles(flag);
    treeView_->invalidateModel();
}

void WinFinder::on_open_new_win_here(const QFileInfo& fi) {
    log(tav::LOG_TRACE, "WinFinder::on_open_new_win_here, fi:$", fi);
    auto* w = new WinFinder(true);
    w->init(kernel_, nodeWin());
    w->setupTray();
    w->setUp(fi.absoluteFilePath());
    w->setGeometry(50, 50, 900, 500);
    w->show();
}

WinFinder* WinFinder::new_win(const QString& path) {
    log(tav::LOG_TRACE, "WinFinder::new_win");
    tav::KernelGUI* k = tav::KernelGUI::instanceGui();
    tav::XNode* nApp = k ? k->getCreateNodeApplication() : nullptr;
    if (!X_ASSERT_MSG(nApp, "nApp == NULL")) return nullptr;
    QString start;
    if (!path.isEmpty() && QFileInfo::exists(path)) start = path;
    else if (cfg().flagUseStartFolder) start = cfg().sStartFolder;
    tav::XNode* nWin = nApp->getCreateNode(QStringLiteral("GUI"))->getCreateNode(QStringLiteral("Window"));
    auto* w = new WinFinder(true);
    w->init(k, nWin);
    w->setupTray();
    w->setUp(start);
    // Most of the screen: the tree, the results table and the preview all need room.
    tav::XTools::centerOnScreenPart(w, 0.8, 800, 500);
    w->show();
    return w;
}

void WinFinder::open_stand_alone_preview(const QFileInfo& fi) {
    open_stand_alone_preview(fi, tav::find::XRamLayer(), tav::find::XContentFilter());
}

void WinFinder::open_stand_alone_preview(const QFileInfo& fi, const tav::find::XRamLayer& layer,
                                         const tav::find::XContentFilter& filter) {
    log(tav::LOG_TRACE, "WinFinder::open_stand_alone_preview, * <<<$>>>, fResult:$", fi, layer.toString());
    if (!fi.isFile()) return;
    WinDetails::open_window(fi, layer, filter);
}

void WinFinder::open_properties(const QFileInfo& fi) {
    log(tav::LOG_TRACE, "WinFinder::open_properties, <<<$>>>", fi);
    WinProperties::open_window(fi);
}

namespace {
// Walks up from 'widget' to the first widget a context of 'contexts' owns. The
// walk stops without a context at a text view, at the directory preview and at
// the main window.
ContextPreviews* contextOf(QWidget* widget, const std::vector<ContextPreviews*>& contexts, QWidget* previewDir,
                           bool* reachedNull, bool* atTextView) {
    QWidget* w = widget;
    while (w) {
        for (ContextPreviews* c : contexts)
            if (c && c->ownsWidget(w)) return c;
        if (qobject_cast<tav::viewText::XTextView*>(w)) {
            *atTextView = true;
            return nullptr;
        }
        if ((previewDir && w == previewDir) || qobject_cast<WinFinder*>(w)) return nullptr;
        w = w->parentWidget();
    }
    *reachedNull = true;
    return nullptr;
}
}

void WinFinder::key_cycle_previews(QWidget* widget) {
    bool reachedNull = false, atTextView = false;
    AbstractPreviewDir* dir = container_preview_ ? container_preview_->existingPreviewDirectory() : nullptr;
    ContextPreviews* c = contextOf(widget, contexts_, dir ? dir->widget_preview() : nullptr, &reachedNull, &atTextView);
    if (reachedNull) X_ASSERT_MSG(nullptr, "widget == NULL");
    if (c) c->cycle_previews();
    else if (atTextView) log(tav::LOG_TRACE, "WinFinder::key_cycle_previews, TextView-Result");
}

void WinFinder::select_preview(QWidget* widget, const QString& previewType) {
    bool reachedNull = false, atTextView = false;
    AbstractPreviewDir* dir = container_preview_ ? container_preview_->existingPreviewDirectory() : nullptr;
    ContextPreviews* c = contextOf(widget, contexts_, dir ? dir->widget_preview() : nullptr, &reachedNull, &atTextView);
    if (reachedNull) X_ASSERT_MSG(nullptr, "widget == NULL");
    if (!c) {
        log(tav::LOG_TRACE, "WinFinder::select_preview - no contextFocus");
        return;
    }
    c->set_preview(previewType);
}

void WinFinder::quit_application() {
    if (cfg().flagConfirmQuit &&
        !tav::XBox::ask_yes_no(nullptr, tav::xt("Quit Talvo Finder"), tav::xt("Do you want to quit Talvo Finder Application ?"))) {
        log(tav::LOG_TRACE, "WinFinder::quit_application - CANCEL");
        return;
    }
    quit_the_app();
}

void WinFinder::quit_the_app() {
    log(tav::LOG_TRACE, "WinFinder::quit_the_app");
    for (tav::AbstractWindow* w : tav::XTools::getAbstractWindows(true, false)) tav::XTools::closeAbstractWindow(w);
    // No wait here: searches stop within a read window, and the runtime waits for the
    // pool's last work once the event loop has ended.
    QCoreApplication::exit(0);
}

} // namespace tavFinder
