// Developer commands for the file selection dialog: its standard variants and a
// variant with a preview of the caller's own.
#include "base/log/Logger.h"
#include "base/util/Format.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/kernel/XRuntime.h"
#include "gui/panel/XPanel.h"
#include "gui/previews/Preview.h"
#include "gui/window/XTestWindow.h"
#include "src/dialogs/DiaSelectFile.h"
#include "src/dialogs/XFileDialogHelper.h"

#include <QDateTime>
#include <QFile>
#include <QGuiApplication>
#include <QPushButton>
#include <QTextBrowser>

namespace {

using tav::log;

// What a caller may add: a page of facts about configuration and log files.
class PreviewFileFacts : public tav::Preview {
public:
    PreviewFileFacts() { set_file_extensions({QStringLiteral("log"), QStringLiteral("cfg"), QStringLiteral("ini")}); }
    unsigned get_category() const override { return CATEGORY_OTHER; }
    void ini() override {
        browser_ = new QTextBrowser();
        set_widget(browser_);
    }
    bool open_file(const QFileInfo& fi) override {
        fileInfo_ = fi;
        if (!browser_) return false;
        QFile f(fi.absoluteFilePath());
        const QString first = f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readLine(4096)).trimmed() : QString();
        browser_->setHtml(QStringLiteral("<h3>%1</h3><p>%2</p><p>%3</p><pre>%4</pre>")
                              .arg(fi.fileName().toHtmlEscaped(), tav::formatBytes(uint64_t(fi.size())),
                                   fi.lastModified().toString(QStringLiteral("yyyy/MM/dd - hh:mm")), first.toHtmlEscaped()));
        return true;
    }
    QString type() override { return QStringLiteral("FileFacts"); }
    QString name() override { return QStringLiteral("File Facts"); }

private:
    QTextBrowser* browser_ = nullptr;
};

tav::XNode* dialogNode(tav::KernelGUI& kernel) {
    tav::XNode* nApp = kernel.getCreateNodeApplication();
    return nApp ? nApp->getCreateNode(QStringLiteral("GUI"))->getCreateNode(QStringLiteral("SelectFile")) : nullptr;
}

void report(const QString& path) {
    if (path.isEmpty()) log(tav::LOG_TRACE, "dialog cancelled");
    else log(tav::LOG_TRACE, "selected <<<$>>>", path);
}

const QStringList kMultiFilter{QStringLiteral("Text (*.txt *.md *.log)"), QStringLiteral("Images (*.png *.jpg *.svg)"),
                               QStringLiteral("All (*)")};

int selectFile(tav::KernelGUI& kernel) {
    tav::Logger::setLogLevelSimple(5);
    QGuiApplication::setQuitOnLastWindowClosed(true);
    tav::XNode* node = dialogNode(kernel);
    auto* panel = new tav::XPanel(nullptr, tav::XPanel::VERTICAL);
    panel->createButton(QStringLiteral("&1 open file"), [node]() {
        log(tav::LOG_TRACE, "Multi Filter, static version");
        report(tavFinder::DiaSelectFile::getSelectedFile(node, [](tavFinder::DiaSelectFile& d) {
            d.fileDialog()->setNameFilters(kMultiFilter);
        }));
    });
    panel->createButton(QStringLiteral("&2 open file"), [node]() {
        log(tav::LOG_TRACE, "Simple Filter, static version");
        report(tavFinder::DiaSelectFile::getSelectedFile(node, [](tavFinder::DiaSelectFile& d) {
            d.fileDialog()->setNameFilter(QStringLiteral("Text (*.txt)"));
        }));
    });
    panel->createButton(QStringLiteral("&3 open file"), [node]() {
        log(tav::LOG_TRACE, "Multi Filter, CUSTOM version");
        report(tavFinder::DiaSelectFile::getSelectedFile(node, [](tavFinder::DiaSelectFile& d) {
            d.fileDialog()->setNameFilters(kMultiFilter);
            d.add_preview(new PreviewFileFacts());
        }));
    });
    panel->addSpacer();
    tav::XTestWindow::setTestingStandard(panel, QStringLiteral("Select File"), 400, 200);
    return kernel.exec();
}

int selectFilePlugin(tav::KernelGUI& kernel) {
    tav::Logger::setLogLevelSimple(5);
    QGuiApplication::setQuitOnLastWindowClosed(true);
    tav::XNode* node = dialogNode(kernel);
    auto* panel = new tav::XPanel(nullptr, tav::XPanel::VERTICAL);
    panel->createButton(QStringLiteral("open file (standard)"), [node]() { report(tavFinder::DiaSelectFile::getSelectedFile(node)); });
    panel->createButton(QStringLiteral("open file (CUSTOM)"), [node]() {
        report(tavFinder::DiaSelectFile::getSelectedFile(node, [](tavFinder::DiaSelectFile& d) { d.add_preview(new PreviewFileFacts()); }));
    });
    panel->addSpacer();
    tav::XTestWindow::setTestingStandard(panel, QStringLiteral("Select File"), 400, 160);
    return kernel.exec();
}

const tav::TestGuiContextAdder kSelFile(&selectFile, QStringLiteral("dia.selFile"), QString());
const tav::TestGuiContextAdder kSelFilePlugin(&selectFilePlugin, QStringLiteral("dialogs.selectFile.pluginTest"), QString());

} // namespace
