#pragma once
// The simple directory page: date, time and the number of subfolders and files
// of a folder, and on request the recursive totals counted in the background.
#include "base/thread/XThread.h"
#include "src/dir/AbstractPreviewDir.h"
#include "src/dir/PDirInfo.h"

#include <QDateTime>
#include <memory>

namespace tav {
class XBrowser;
class XPanel;
}

namespace tavFinder {

class PreviewDirSimple : public AbstractPreviewDir {
public:
    PreviewDirSimple();
    ~PreviewDirSimple() override;

    void ini() override;
    bool open_file(const QFileInfo& fi) override;
    QString type() override { return QStringLiteral("PreviewDirSimple"); }
    QString name() override { return QStringLiteral("simpleDirViewer"); }
    QString toString() override;
    void refresh() override;

    void set_text_file_extensions(const std::unordered_set<QString>& ext) override;
    void set_show_hidden(bool on) override { showHidden_ = on; }
    bool show_hidden() const override { return false; }
    ContextPreviews* context() override { return nullptr; }
    void onDeepInfo() override;

    bool isScanning() const;
    // Runs on the scanning thread after each entry of a deep count.
    void setScanProgress(std::function<void(const PDirInfo&)> f);
    QString html() const { return html_; }
    tav::XBrowser* browser() const { return browser_; }

    // Pieces of the pages, shared with the scan thread.
    static QString pageHead();
    static QString pageTail();
    static QString pairTable(const std::vector<std::pair<QString, QString>>& pairs);

private:
    bool showHidden_ = false;   // the folder page counts what the listing shows
    class DirScannerThread;
    void setPage(const QString& html);

    tav::XPanel* panel_ = nullptr;
    tav::XBrowser* browser_ = nullptr;
    QString html_;
    QString path_;
    std::unordered_set<QString> textExtensions_;
    std::unique_ptr<DirScannerThread> scanner_;
};

} // namespace tavFinder
