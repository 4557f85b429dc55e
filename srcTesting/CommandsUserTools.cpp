// Developer commands for the user tools: the applications editor, a program
// runner on one test record, and the history editor, each on its own.
#include "base/log/Logger.h"
#include "gui/tools/XTools.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/kernel/XRuntime.h"
#include "gui/panel/XPanel.h"
#include "gui/window/XTestWindow.h"
#include "src/gui/apps/PanelProgram.h"
#include "src/gui/apps/WinEditorApps.h"
#include "src/gui/apps/XAppManager.h"
#include "src/gui/apps/XAppRunner.h"
#include "src/gui/dia/DiaHistory.h"

#include <QGuiApplication>
#include <QPushButton>

namespace {

using tav::log;

int appsEdit(tav::KernelGUI& kernel) {
    tav::Logger::setLogLevelSimple(5);
    QGuiApplication::setQuitOnLastWindowClosed(true);
    tavFinder::XAppManager::init_file();
    if (!tavFinder::XAppManager::load()) tavFinder::XAppManager::set_defaults();
    auto* w = new tavFinder::WinEditorApps();
    w->setup(tavFinder::XAppManager::get_copy());
    w->setGeometry(50, 50, 800, 500);
    w->show();
    return kernel.exec();
}

int appsRun(tav::KernelGUI& kernel) {
    tav::Logger::setLogLevelSimple(5);
    QGuiApplication::setQuitOnLastWindowClosed(true);
    tavFinder::XApp app;
    app.set_name(QStringLiteral("listing"));
    app.set_title(QStringLiteral("Folder listing in a terminal"));
    app.set_path(QStringLiteral("ls"));
    app.set_arguments(QStringLiteral("-la"));
    app.set_working_dir(QStringLiteral("$(HOME)"));
    app.set_flag_terminal(true);
    app.set_flag_keep_term_open(true);
    auto* panel = new tav::XPanel(nullptr, tav::XPanel::VERTICAL);
    auto* form = panel->add(new tavFinder::PanelProgram(panel));
    form->from_app(app);
    panel->createButton(tav::xt("Execute"), [form]() {
        log(tav::LOG_TRACE, "WinRunProgram::on_exec");
        tavFinder::XAppRunner::start_program(form->to_app());
    });
    panel->addSpacer();
    tav::XTestWindow::setTestingStandard(panel, QStringLiteral("Run Program"), 800, 420);
    return kernel.exec();
}

int editHistory(tav::KernelGUI&) {
    tav::Logger::setLogLevelSimple(5);
    const QStringList words{QStringLiteral("alpha"), QStringLiteral("beta"),  QStringLiteral("gamma"),
                            QStringLiteral("delta"), QStringLiteral("*.txt"), QStringLiteral("*.cpp,*.h"),
                            QStringLiteral("main"),  QStringLiteral("README*")};
    const std::optional<QStringList> edited = tavFinder::DiaHistory::edit_history(nullptr, words);
    if (!edited) {
        log(tav::LOG_TRACE, "dialog cancelled");
        return 0;
    }
    log(tav::LOG_TRACE, "history:$", edited->join(QLatin1Char(',')));
    return 0;
}

const tav::TestGuiContextAdder kAppsEdit(&appsEdit, QStringLiteral("apps.edit"), QString());
const tav::TestGuiContextAdder kAppsRun(&appsRun, QStringLiteral("apps.run"), QString());
const tav::TestGuiContextAdder kEditHist(&editHistory, QStringLiteral("dia.editHist"), QString());

} // namespace
