#include "src/dir/PreviewDirSimple.h"

#include "base/log/Logger.h"
#include "base/util/Format.h"
#include "gui/panel/XPanel.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XBrowser.h"

#include <QColor>
#include <QDir>

namespace tavFinder {

using tav::log;
using tav::xt;

// ---- the scan thread ----------------------------------------------------------------------
class PreviewDirSimple::DirScannerThread : public tav::XLightweightThread {
public:
    ~DirScannerThread() override {
        info.cancel();
        stopAndWait();
    }
    void runCustom() override {
        const QDir dir(path);
        const QDateTime modified = QFileInfo(path).lastModified();
        QString page = pageHead();
        info.scan_dir(path);
        page += tav::fill("<h2>$ \"$\"</h2>", xt("Directory"), path.toHtmlEscaped());
        page += QStringLiteral("<h3>");
        page += QStringLiteral("Total (recursive)<br/>");
        page += pairTable({
            {xt("Date+Time"), modified.toString(QStringLiteral("yyyy/MM/dd - hh:mm"))},
            {xt("Subdirectories"), tav::format1000(info.dirs.load())},
            {xt("Files"), tav::format1000(info.files.load())},
            {xt("Text Files"), tav::format1000(info.textFiles.load())},
            {xt("Text Bytes"), tav::formatBytes(info.textBytes.load())},
        });
        page += QStringLiteral("</h3>");
        page += pageTail();
        html = page;
        log(tav::LOG_TRACE, "PreviewDirSimple::DirScannerThread::~runCustom");
    }
    QString path;
    PDirInfo info;
    QString html;
};

// ---- the preview ---------------------------------------------------------------------------
PreviewDirSimple::PreviewDirSimple() : scanner_(std::make_unique<DirScannerThread>()) {}

PreviewDirSimple::~PreviewDirSimple() { scanner_.reset(); }

void PreviewDirSimple::ini() {
    if (panel_) {
        log(tav::LOG_ERROR, "PreviewDirSimple::ini, already called");
        return;
    }
    panel_ = new tav::XPanel(nullptr, tav::XPanel::VERTICAL, QStringLiteral("PreviewDirSimple"));
    panel_->setTight();
    browser_ = panel_->createBrowser();
    browser_->setFrameShape(QFrame::StyledPanel);
    browser_->setFrameShadow(QFrame::Sunken);
    browser_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    set_widget(panel_);
    scanner_->addListener([this]() {
        log(tav::LOG_TRACE, "PreviewDirSimple::ini, done");
        scanner_->enableListener(false);
        setPage(scanner_->html);
    });
    scanner_->enableListener(false);
}

QString PreviewDirSimple::pageHead() {
    QString s = QStringLiteral("<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 4.0 Transitional//EN\">\n");
    s += QStringLiteral("<html>\n");
    if (tav::XTools::isTavStyleDark()) s += QStringLiteral("<body style=\"background-color:#2d3339;color:white;\">\n");
    else s += tav::fill("<body style=\"background-color:$;\">\n", QColor(222, 222, 222).name());
    return s;
}

QString PreviewDirSimple::pageTail() { return QStringLiteral("</body>\n") + QStringLiteral("</html>\n"); }

QString PreviewDirSimple::pairTable(const std::vector<std::pair<QString, QString>>& pairs) {
    // The element name is kept as it always was; the viewer shows the rows as plain cells.
    QString s = QStringLiteral("<tableResult>");
    for (const auto& [label, value] : pairs) {
        s += QStringLiteral("<tr>");
        s += QStringLiteral("<td style=\"padding-right:20px;padding-left:20px;\">");
        s += label;
        s += QStringLiteral("</td>");
        s += QStringLiteral("<td>");
        s += value;
        s += QStringLiteral("</td>");
        s += QStringLiteral("</tr>");
    }
    s += QStringLiteral("</tableResult>");
    return s;
}

void PreviewDirSimple::setPage(const QString& html) {
    html_ = html;
    if (browser_) browser_->setHtmlText(html);
}

bool PreviewDirSimple::open_file(const QFileInfo& fi) {
    if (!panel_) ini();
    fileInfo_ = fi;
    const QDir dir(fi.absoluteFilePath());
    int subdirs = 0, others = 0;
    const int filter = showHidden_ ? PDirInfo::kFilterAll : PDirInfo::kFilterVisible;
    for (const QFileInfo& e : dir.entryInfoList(QDir::Filters(filter), QDir::SortFlags(QDir::DirsFirst))) {
        if (e.isDir()) ++subdirs;
        else ++others;
    }
    const QDateTime modified = fi.lastModified();
    QString page = pageHead();
    page += tav::fill("<h2>$ \"$\"</h2>", xt("Directory"), fi.absoluteFilePath().toHtmlEscaped());
    page += QStringLiteral("<h3>");
    page += pairTable({
        {xt("Date"), modified.toString(QStringLiteral("yyyy/MM/dd"))},
        {xt("Time"), modified.toString(QStringLiteral("hh:mm"))},
        {xt("Subdirs"), tav::format1000(subdirs)},
        {xt("Files"), tav::format1000(others)},
    });
    page += QStringLiteral("</h3>");
    page += pageTail();
    setPage(page);
    path_ = fi.absoluteFilePath();
    return true;
}

QString PreviewDirSimple::toString() { return tav::fill("$: can handle directories ", name()); }

void PreviewDirSimple::refresh() {
    log(tav::LOG_NAVIGATION, "PreviewDirSimple::refresh....");
    open_file(file_info());
}

void PreviewDirSimple::set_text_file_extensions(const std::unordered_set<QString>& ext) {
    textExtensions_ = ext;
    if (!isScanning()) scanner_->info.textExtensions = ext;
}

bool PreviewDirSimple::isScanning() const { return scanner_->isActive(); }

void PreviewDirSimple::setScanProgress(std::function<void(const PDirInfo&)> f) {
    if (!isScanning()) scanner_->info.onEntry = std::move(f);
}

void PreviewDirSimple::onDeepInfo() {
    log(tav::LOG_TRACE, "PreviewDirSimple::onDeepInfo");
    if (!panel_) ini();
    if (isScanning()) {
        log(tav::LOG_TRACE, "PreviewDirSimple::onDeepInfo - Cancelled");
        scanner_->info.cancel();
        return;
    }
    if (path_.isEmpty()) return;
    scanner_->path = path_;
    scanner_->info.textExtensions = textExtensions_;
    scanner_->info.cancelled = false;
    scanner_->prepareListener(true);
    scanner_->enableListener(true);
    tav::XThreadPool::start_global(scanner_.get(), false);
}

} // namespace tavFinder
