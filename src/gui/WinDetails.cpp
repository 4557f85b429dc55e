#include "src/gui/WinDetails.h"

#include "base/find/XContentFilter.h"
#include "base/kernel/Kernel.h"
#include "base/log/Logger.h"
#include "base/node/XNode.h"
#include "gui/panel/XPanel.h"
#include "gui/panel/XPanelStacked.h"
#include "gui/tools/XTools.h"
#include "gui/viewText/XTextView.h"
#include "gui/widgets/XTabWidget.h"
#include "src/gui/WinFinder.h"
#include "src/gui/panPreview/PanPreviewHex.h"
#include "src/gui/panPreview/PanPreviewImg.h"
#include "src/gui/panPreview/PanPreviewXml.h"
#include "src/gui/panPreview/PanStats.h"
#include "src/gui/panPreview/asc/PanPreviewAsc.h"

#include <QEvent>
#include <QToolButton>

namespace tavFinder {

using tav::log;
using tav::xt;

namespace {
QIcon detailsIcon() { return QIcon(QStringLiteral(":/tf/icons/find3.svg")); }
}

WinDetails::WinDetails(tav::XNode* nWin, QWidget* parent) : WindowBase(parent) {
    initWindow(nWin, xt("View"), QString());
    setWindowIcon(detailsIcon());
    setup();
    eventClose().add([this]() { on_close(); });
    addHotKeyMethod(QKeySequence(Qt::Key_Escape), [this]() { close(); });
    addHotKeyMethod(QKeySequence(Qt::Key_Return), [this]() { on_return(); });
    addHotKeyMethod(QKeySequence(Qt::Key_Enter), [this]() { on_return(); });
}

WinDetails::~WinDetails() = default;

QString WinDetails::windowName() const {
    return xName().isEmpty() ? QStringLiteral("WinDetails") : tav::fill("WinDetails@$", xName());
}

WinDetails* WinDetails::open_window(const QFileInfo& fi, const tav::find::XRamLayer& layer,
                                    const tav::find::XContentFilter& filter, bool stats) {
    if (!fi.isFile()) return nullptr;
    tav::Kernel* k = tav::Kernel::instance();
    tav::XNode* nApp = k ? k->getCreateNodeApplication() : nullptr;
    if (!X_ASSERT_MSG(nApp, "nApp == NULL")) return nullptr;
    tav::XNode* nWin = nApp->getCreateNode(QStringLiteral("GUI"))->getCreateNode(QStringLiteral("View"));
    auto* w = new WinDetails(nWin);
    w->setupTray();
    tav::XTools::centerOnScreen(w, 800, 500);
    w->restoreStateFromXml();
    w->set_file(fi, stats);
    if (layer) w->set_file_result(FileResult(layer, fi), filter);
    w->show();
    return w;
}

WinDetails* WinDetails::open_extracted(const FileResult& r, const QByteArray& text, const std::vector<int64_t>& pageStarts,
                                       const tav::find::XContentFilter& filter) {
    WinDetails* w = open_window(r.fileInfo, tav::find::XRamLayer(), filter, false);
    if (!w) return nullptr;
    w->tabs_->setCurrentWidget(w->panText_);
    w->panText_->preview()->set_mem_file(tav::XMemFile{r.displayPath(), text});
    w->panText_->textView()->setPageStarts(pageStarts);
    w->panText_->update_search_results(r.layer, filter, 0);
    w->setWindowTitle(r.displayPath());
    return w;
}

void WinDetails::setup() {
    auto* content = new tav::XPanel(this, tav::XPanel::VERTICAL, QStringLiteral("content"));
    content->setTight();
    setCentralWidget(content);
    tav::XPanel* bar = content->createPanel(tav::XPanel::HORIZONTAL, QStringLiteral("toolbar"));
    bar->setMargins(4, 2, 4, 2);
    tabs_ = content->add(new tav::XTabWidget(content), 1);

    panText_ = new PanPreviewAsc(tabs_);
    panXml_ = new PanPreviewXml(tabs_);
    panImg_ = new PanPreviewImg(tabs_);
    panHex_ = new PanPreviewHex(tabs_);
    panStats_ = new PanStats(tabs_);
    // Titles are the file kinds' own names, not translated.
    tabs_->addPanel(panText_, QStringLiteral("Text"), icon(QStringLiteral("text.svg")));
    tabs_->addPanel(panXml_, QStringLiteral("XML"), icon(QStringLiteral("xml.svg")));
    tabs_->addPanel(panImg_, QStringLiteral("Image"), icon(QStringLiteral("picture.svg")));
    tabs_->addPanel(panHex_, QStringLiteral("HEX"), icon(QStringLiteral("bin.svg")));
    tabs_->addPanel(panStats_, QStringLiteral("Stats"));
    panels_ = {panText_, panXml_, panImg_, panHex_, panStats_};
    for (PanPreview* p : panels_) p->ini();
    if (tav::XNode* nWin = nodeWin()) panText_->from_node(nWin->getCreateNode(QStringLiteral("PreviewAsc")));

    tabs_->eventPanelChanged().add([this](tav::XPanel* p) { on_tab_changed(p); });
    tabs_->eventIndexChanged().add([this](int index) {
        const QIcon i = tabs_->tabIcon(index);
        setWindowIcon(i.isNull() ? detailsIcon() : i);
    });
    setup_toolbar(bar);
    eventVisible().add([this](bool visible) {
        if (!visible) return;
        if (PanPreview* p = currentPanel()) p->preview()->post_first_time_visibilty_action();
    });
    panText_->textView()->eventSelectionChanged().add([this](const QString& text) { panText_->on_direct_mark_search(text); });
}

void WinDetails::setup_toolbar(tav::XPanel* bar) {
    buttonPattern_ = bar->createImageButton(icon(QStringLiteral("pattern.svg")), xt("Pattern Selection Mode"), nullptr, true);
    buttonPattern_->setObjectName(QStringLiteral("pattern"));
    connect(buttonPattern_, &QToolButton::toggled, this, [this](bool on) { panText_->patternSelectionMode().set(on); });
    panText_->patternSelectionMode().addListener([this](const bool& on) {
        if (buttonPattern_->isChecked() != on) buttonPattern_->setChecked(on);
    });
    bar->createImageButton(icon(QStringLiteral("fileManager1.svg")), xt("File Manager"), [this]() {
        log(tav::LOG_TRACE, "WinDetails::on_fileManager, fi '$'", fi_);
        tav::XTools::showFolderInFileManager(fi_.absoluteFilePath());
    });
    bar->createImageButton(icon(QStringLiteral("minus.svg")), xt("Smaller Font"), [this]() { on_zoom(false); })
        ->setObjectName(QStringLiteral("smaller"));
    bar->createImageButton(icon(QStringLiteral("plus.svg")), xt("Bigger Font"), [this]() { on_zoom(true); })
        ->setObjectName(QStringLiteral("bigger"));
    bar->createImageButton(icon(QStringLiteral("window.svg")), xt("New Window"), [this]() {
        WinFinder::new_win(fi_.absoluteFilePath());
    });
    buttonFullScreen_ = bar->createImageButton(icon(QStringLiteral("expand.svg")), xt("Toggle Full Screen\nRight click close Window"),
                                               nullptr, true);
    buttonFullScreen_->setObjectName(QStringLiteral("fullScreen"));
    connect(buttonFullScreen_, &QToolButton::clicked, this, [this]() {
        if (isFullScreen()) showNormal();
        else showFullScreen();
        buttonFullScreen_->setChecked(isFullScreen());
    });
    buttonFullScreen_->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(buttonFullScreen_, &QWidget::customContextMenuRequested, this, [this]() { close(); });
    bar->createImageButton(icon(QStringLiteral("hide.svg")), xt("Hide to Tray Menu"), [this]() { hideToTray(); });

    stackToolbar_ = bar->add(new tav::XPanelStacked(bar, QStringLiteral("toolbarStack")), 1);
    pageText_ = new tav::XPanel(stackToolbar_, tav::XPanel::HORIZONTAL, QStringLiteral("pageText"));
    pageText_->setMargins(8, 0, 0, 0);
    pageOther_ = new tav::XPanel(stackToolbar_, tav::XPanel::HORIZONTAL, QStringLiteral("pageOther"));
    stackToolbar_->addPanel(pageText_);
    stackToolbar_->addPanel(pageOther_);
    panText_->set_panel_from_outside(pageText_);
    pageText_->addSpacer();
    stackToolbar_->showPanel(pageText_);
}

void WinDetails::changeEvent(QEvent* e) {
    WindowBase::changeEvent(e);
    if (e->type() != QEvent::WindowStateChange || !buttonFullScreen_) return;
    log(tav::LOG_TRACE, "PanPreviewAsc::ini, fullscreen:$", isFullScreen());
    buttonFullScreen_->setChecked(isFullScreen());
}

PanPreview* WinDetails::currentPanel() const { return tabs_ ? qobject_cast<PanPreview*>(tabs_->currentWidget()) : nullptr; }

void WinDetails::on_return() {
    PanPreview* p = currentPanel();
    if (!p) return;
    // Return in the text itself is the preview's own gesture (pattern selection mode).
    if (p == panText_ && panText_->textView()->hasFocus()) {
        panText_->preview()->fire_preview_event();
        return;
    }
    p->search_focused();
}

void WinDetails::set_file(const QFileInfo& fi, bool stats) {
    log(tav::LOG_TRACE, "WinDetails::set_file");
    fi_ = fi;
    setWindowTitle(tav::fill("$ - $", fi.fileName(), fi.absolutePath()));
    PanPreview* chosen = nullptr;
    // An XML file goes to the XML tab before the text tab can take it.
    for (PanPreview* p : panels_) {
        if (auto* x = qobject_cast<PanPreviewXml*>(p)) {
            if (x->preview()->can_handle_file(fi)) chosen = x;
            break;
        }
    }
    if (!chosen) {
        for (PanPreview* p : panels_) {
            if (!p->is_fallback() && p->preview()->can_handle_file(fi)) {
                chosen = p;
                break;
            }
        }
    }
    if (stats) {
        log(tav::LOG_TRACE, "WinDetails::set_file - STATS");
        chosen = panStats_;
    }
    if (!chosen) chosen = panHex_;
    if (!chosen->preview()->open_file(fi)) {
        log(tav::LOG_TRACE, "WinDetails::set_file - CANNOT open file with:$", chosen->objectName());
    }
    if (tabs_->currentWidget() == chosen) on_tab_changed(chosen);
    else tabs_->setCurrentPanel(chosen);
    updateTrayAction(isVisible());
}

void WinDetails::set_file_result(const FileResult& r, const tav::find::XContentFilter& filter) {
    log(tav::LOG_TRACE, "WinView::set_file_result, fResult:$, filter:$", r.toString(), filter.toString(false));
    // Opening a file empties the layers; the hits must go into the file shown.
    tav::Preview* text = panText_->preview();
    if (text->file_info().absoluteFilePath() != r.fileInfo.absoluteFilePath() || !panText_->textView()->hasContent())
        text->open_file(r.fileInfo);
    panText_->update_search_results(r.layer, filter, 0);
}

void WinDetails::on_tab_changed(tav::XPanel* panel) {
    auto* p = qobject_cast<PanPreview*>(panel);
    if (!p) return;
    stackToolbar_->showPanel(p == panText_ ? pageText_ : pageOther_);
    tav::Preview* prev = p->preview();
    if (fi_.filePath().isEmpty() || prev->file_info().absoluteFilePath() == fi_.absoluteFilePath()) return;
    if (!prev->open_file(fi_)) {
        log(tav::LOG_TRACE, "WinDetails::on_tab_changed - CANNOT open file with:$", p->objectName());
        tabs_->setTabEnabled(tabs_->indexOf(p), false);
    }
}

void WinDetails::on_zoom(bool in) {
    log(tav::LOG_TRACE, "WinDetails::on_zoom");
    if (PanPreview* p = currentPanel()) p->on_zoom(in);
}

void WinDetails::on_close() {
    log(tav::LOG_TRACE, "WinDetails::on_close");
    tav::XNode* nWin = nodeWin();
    if (!X_ASSERT_MSG(nWin, "nWin == NULL")) return;
    panText_->to_node(nWin->getCreateNode(QStringLiteral("PreviewAsc")));
    saveStateToXml();
}

} // namespace tavFinder
