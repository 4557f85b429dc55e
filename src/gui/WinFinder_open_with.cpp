// Custom applications from the main window: the "Open with ..." submenu, the
// applications editor, and the way back of a program's output.
#include "base/env/Env.h"

#include <QCoreApplication>
#include <QFile>

#include "base/log/Logger.h"
#include "base/thread/XThread.h"
#include "gui/panel/XPanelStacked.h"
#include "gui/previews/Preview.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XMenu.h"
#include "gui/widgets/XTreeViewFiles.h"
#include "src/dir/ContextPreviews.h"
#include "src/dir/XContainerPreviews.h"
#include "src/gui/PanelResults.h"
#include "src/gui/WinFinder.h"
#include "src/gui/apps/WinEditorApps.h"
#include "src/gui/apps/XAppManager.h"
#include "src/gui/apps/XAppRunner.h"

#include <QAction>
#include <QDir>
#include <QTemporaryFile>
#include <memory>

namespace tavFinder {

using tav::log;
using tav::xt;

void WinFinder::create_open_with_app(tav::XMenu& menu, const QFileInfo& fi) {
    log(tav::LOG_NAVIGATION, "WinFinder::create_open_with_app ...");
    tav::XMenu* sub = menu.createSubMenu(xt("Open with ..."));
    const std::vector<XApp*> apps = XAppManager::get_apps();
    for (XApp* app : apps) {
        QString text = app->get_title(true).trimmed();
        if (text.isEmpty()) text = app->get_name(false);
        QAction* a = sub->createAction(text, false, false, true, 200);
        a->setIcon(QIcon(app->get_icon_path(true)));
        a->setToolTip(app->get_tool_tip(true));
        a->setEnabled(app->is_flag_enabled());
        connect(a, &QAction::triggered, this, [fi, app]() {
            // The previewed file is let go before another program opens it.
            if (tav::Preview* p = ContextPreviews::currentPreview()) p->close_preview();
            // A copy: the store may be replaced before the queued start runs.
            std::shared_ptr<XApp> record = app ? std::make_shared<XApp>(*app) : nullptr;
            tav::run_in_gui_thread([fi, record]() {
                if (!X_ASSERT_MSG(record.get(), "app == NULL")) return;
                tav::fileInfo_to_env(fi);
                XAppRunner::start_program(*record);
            }, 200);
        });
    }
    if (!apps.empty()) sub->addSeparator();
    QAction* editor = sub->createAction(xt("Application Editor"), [this]() { on_app_editor(this); },
                                        QIcon(QStringLiteral(":/tf/icons/app.svg")));
    editor->setEnabled(!WinEditorApps::isOpen());
}

void WinFinder::on_app_editor(QWidget*) {
    if (WinEditorApps::isOpen()) return;
    auto* w = new WinEditorApps();
    w->setup(XAppManager::get_copy());
    w->setGeometry(50, 50, 800, 500);
    w->show();
}

QString WinFinder::output_target(const QString& text) {
    const int marker = text.indexOf(QLatin1String("$OUTPUT"));
    if (marker < 0) return QString();
    const int eq = text.indexOf(QLatin1Char('='), marker);
    if (eq < 0) return QString();
    int end = text.indexOf(QLatin1Char('\n'), eq + 1);
    if (end < 0) end = text.size();
    QString target = text.mid(eq + 1, end - eq - 1);
    target.remove(QLatin1Char('"'));
    target.remove(QLatin1Char('\''));
    return target.trimmed();
}

void WinFinder::show_process_output(const QString& text) {
    // The text goes to a file of its own, shown like any other file; it goes
    // when this window closes or the program ends.
    QTemporaryFile tmp(QDir::temp().absoluteFilePath(QStringLiteral("tavFind-output-XXXXXXXXXXXXXXXX.txt")));
    tmp.setAutoRemove(false);
    if (!tmp.open() || tmp.write(text.toUtf8()) <= 0) {
        log(tav::LOG_ERROR, "WinFinder::show_process_output, cannot write <<<$>>>", tmp.fileName());
        if (tmp.isOpen()) tmp.remove();
        return;
    }
    tmp.close();
    const QString tmpPath = tmp.fileName();
    outputFiles_ << tmpPath;
    outputFilesOfAll() << tmpPath;
    // A program that names a file in its output: that file is shown.
    QString target = output_target(text);
    if (!target.isEmpty() && !QFileInfo::exists(target)) {
        log(tav::LOG_TRACE, "WinFinder::show_process_output, <<<$>>> 404", target);
        target.clear();
    }
    // Shown in the tree, else the output file in the preview.
    if (!target.isEmpty()) {
        treeView_->selectFile(target, true);
        return;
    }
    if (stacked_ && stacked_->isShowing(findResults_)) stacked_->showPanel(container_preview_);
    contextMain_->select_file(QFileInfo(tmpPath));
}

QStringList& WinFinder::outputFilesOfAll() {
    static QStringList files;
    return files;
}

void WinFinder::remove_output_files(const QStringList& files) {
    for (const QString& f : files) {
        QFile::remove(f);
        outputFilesOfAll().removeAll(f);
    }
}

void WinFinder::register_process_output_consumer() {
    static bool registered = false;
    if (registered) return;
    registered = true;
    // Windows still open at the end are not deleted: their output files go here.
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, qApp, []() {
        const QStringList all = outputFilesOfAll();
        remove_output_files(all);
    });
    XAppRunner::eventProcessOutput().add([](const QString& text) {
        for (tav::AbstractWindow* w : tav::XTools::getAbstractWindows(true, false)) {
            auto* win = dynamic_cast<WinFinder*>(w);
            if (win && win->isActiveWindow()) {
                win->show_process_output(text);
                return;
            }
        }
        // No active main window: the text is dropped.
    });
}

} // namespace tavFinder
