#include "src/dialogs/DiaSelectFile.h"

#include "base/log/Logger.h"
#include "base/node/XNode.h"
#include "gui/panel/XSplitter.h"
#include "gui/previews/Preview.h"
#include "gui/tools/XTools.h"
#include "src/dialogs/XFileDialogHelper.h"
#include "src/dir/AbstractPreviewDir.h"
#include "src/dir/XContainerPreviews.h"

#include <QDir>
#include <QHBoxLayout>
#include <QMutex>

namespace tavFinder {

using tav::log;

namespace {
QMutex gMutex;
QString gSelected;

void setSelected(const QString& path) {
    QMutexLocker l(&gMutex);
    gSelected = path;
}
}

DiaSelectFile::DiaSelectFile(QWidget* parent) : tav::XDialog(parent) {}
DiaSelectFile::~DiaSelectFile() = default;

QString DiaSelectFile::selectedPath() {
    QMutexLocker l(&gMutex);
    return gSelected;
}

QString DiaSelectFile::getSelectedFile(tav::XNode* node, std::function<void(DiaSelectFile&)> customize) {
    DiaSelectFile dia;
    dia.setup(node);
    if (customize) customize(dia);
    dia.exec();
    const QString path = selectedPath();
    if (path.isEmpty()) {
        if (tav::XTools::isDebug()) log(tav::LOG_TRACE, "XFileDialogMultiPreview::getSelectedFile, Dialog cancelled ...");
        return QString();
    }
    if (tav::XTools::isDebug()) log(tav::LOG_TRACE, "XFileDialogMultiPreview::getSelectedFile, selected file '$'", path);
    return path;
}

void DiaSelectFile::setup(tav::XNode* node) {
    // The node keeps the last folder.
    setNodeWin(node);
    const QString start = node ? node->getString(QStringLiteral("path"), QString()) : QString();
    // Set up once.
    if (fileDialog_) {
        log(tav::LOG_ERROR, "XFileDialogMultiPreview::setup, already setup!");
        return;
    }
    node_ = node;
    setSelected(QString());
    // The file dialog inside with a preview beside it.
    setMinimumSize(800, 500);
    fileDialog_ = new XFileDialogHelper(this);
    // Qt's own widget, so that it can live inside this dialog.
    fileDialog_->setOption(QFileDialog::DontUseNativeDialog, true);
    fileDialog_->setWindowFlags(Qt::Widget);
    fileDialog_->setViewMode(QFileDialog::Detail);
    if (!start.isEmpty() && QFileInfo(start).isDir()) fileDialog_->setDirectory(start);
    panPreview_ = new XContainerPreviews(this);
    panPreview_->addStandardPreviews();
    splitter_ = new tav::XSplitter(Qt::Horizontal, this);
    splitter_->addWidget(fileDialog_);
    splitter_->addWidget(panPreview_);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->addWidget(splitter_);
    // The current folder and the end of the dialog.
    fileDialog_->eventCurrentPath().add([this](const QString& path) { on_current_path(path); });
    fileDialog_->eventFinished().add([this](int result) { on_finished(result); });
    // The saved geometry.
    setGeometry(50, 50, 950, 600);
    if (node) {
        splitter_->nodeToState(node, QStringLiteral("splitter"));
        panPreview_->from_node(node);
    }
    X_ASSERT_MSG(panPreview_, "panPreview == NULL");
}

void DiaSelectFile::add_preview(tav::Preview* preview) {
    if (!X_ASSERT_MSG(panPreview_, "panPreview == NULL")) return;
    if (!X_ASSERT_MSG(preview, "preview == NULL")) return;
    panPreview_->addPreview(preview, true, true);
}

void DiaSelectFile::on_current_path(const QString& path) {
    if (path.isEmpty()) return;
    const QFileInfo fi(path);
    tav::Preview* preview = nullptr;
    if (fi.isDir()) {
        preview = panPreview_->previewDirectory();
        if (!preview) return;
    } else {
        preview = panPreview_->previewByExtension(fi.suffix().toLower());
        if (!preview) preview = panPreview_->hexPreview();
    }
    setSelected(fi.absoluteFilePath());
    setWindowTitle(fi.absoluteFilePath());
    if (!preview) return;
    preview->open_file(fi);
    panPreview_->showPreview(preview);
}

void DiaSelectFile::on_finished(int result) {
    if (result == QDialog::Rejected) {
        setSelected(QString());
        reject();
        return;
    }
    const QFileInfo fi(selectedPath());
    if (node_) {
        splitter_->stateToNode(node_, QStringLiteral("splitter"));
        node_->setString(QStringLiteral("path"), fi.isDir() ? fi.absoluteFilePath() : fi.absolutePath());
        panPreview_->to_node();
    }
    accept();
}

} // namespace tavFinder
