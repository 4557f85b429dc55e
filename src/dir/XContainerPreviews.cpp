#include "src/dir/XContainerPreviews.h"

#include "base/log/Logger.h"
#include "base/util/Format.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XBrowser.h"

#include <QDateTime>
#include <QDir>

namespace tavFinder {

using tav::log;

XContainerPreviews::XContainerPreviews(QWidget* parent)
    : tav::XPanelStacked(parent, QStringLiteral("ContainerPreviews")), infoPage_(new tav::XBrowser(this)) {
    addPanel(infoPage_);
    showPanel(infoPage_);
}

XContainerPreviews::~XContainerPreviews() = default;

void XContainerPreviews::addPreview(tav::Preview* p, bool, bool) { X_ASSERT_MSG(p, "preview == NULL"); }
void XContainerPreviews::addStandardPreviews() {}
void XContainerPreviews::addPreviewListener(std::function<void(tav::Preview*)>) {}
AbstractPreviewDir* XContainerPreviews::previewDirectory() { return nullptr; }
void XContainerPreviews::from_node(tav::XNode* node) { node_ = node; }
void XContainerPreviews::to_node() {}
tav::Preview* XContainerPreviews::previewByExtension(const QString&) const { return nullptr; }
tav::Preview* XContainerPreviews::previewByWidget(QWidget*) const { return nullptr; }
void XContainerPreviews::cancelVisibleLoading() {}

void XContainerPreviews::showInfoPage(const QFileInfo& fi) {
    QString html = QStringLiteral("<h3>%1</h3>").arg(fi.fileName().isEmpty() ? fi.absoluteFilePath().toHtmlEscaped()
                                                                            : fi.fileName().toHtmlEscaped());
    html += QStringLiteral("<p>%1</p>").arg(fi.absoluteFilePath().toHtmlEscaped());
    const QString date = fi.lastModified().toString(QStringLiteral("yyyy/MM/dd - hh:mm"));
    if (fi.isDir()) {
        const QDir d(fi.absoluteFilePath());
        const int dirs = d.entryList(QDir::AllDirs | QDir::NoDotAndDotDot | QDir::Hidden).size();
        const int files = d.entryList(QDir::Files | QDir::Hidden | QDir::System).size();
        html += QStringLiteral("<table><tr><td>%1&nbsp;&nbsp;</td><td>%2</td></tr><tr><td>%3</td><td>%4</td></tr>"
                               "<tr><td>%5</td><td>%6</td></tr></table>")
                    .arg(tav::xt("Date"), date, tav::xt("Subdirs"), tav::format1000(dirs), tav::xt("Files"),
                         tav::format1000(files));
    } else {
        html += QStringLiteral("<table><tr><td>%1&nbsp;&nbsp;</td><td>%2</td></tr><tr><td>%3</td><td>%4</td></tr></table>")
                    .arg(tav::xt("Date"), date, tav::xt("Size"), tav::formatBytes(uint64_t(fi.size())));
    }
    infoPage_->setHtmlText(html);
    showPanel(infoPage_);
}

} // namespace tavFinder
