#include "src/FindApplication.h"
#include "src/StartPath.h"
#include "src/find/CommandFind.h"

#include "base/env/Env.h"
#include "base/io/XPaths.h"
#include "base/kernel/Kernel.h"
#include "base/kernel/XRunGuard.h"
#include "base/log/Logger.h"
#include "base/thread/XThread.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/kernel/XInstanceChannel.h"
#include "gui/kernel/XQuitSignals.h"
#include "base/io/XFileIO.h"
#include "gui/kernel/XRuntime.h"
#include "gui/tools/XTools.h"
#include "gui/tools/XSearchMachines.h"
#include "src/gui/Bookmarks.h"
#include "src/gui/WinFinder.h"
#include "src/gui/WinTray.h"
#include "src/gui/apps/XAppManager.h"
#include "src/gui/config/ConfigTavFinder.h"
#include "src/gui/dia/DiaFirstMessage.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QApplication>
#include <QSessionManager>

namespace tavFinder {

using tav::log;

QString buildDate() { return QStringLiteral(__DATE__); }
QString buildTime() { return QStringLiteral(__TIME__); }

namespace {
// The library information line, registered once at static initialisation.
const bool kLibInfo = tav::XAdditionalLibInfos::addLibInfo(
    tav::fill("TavFinder $ - build at $ / $", QString::fromLatin1(TAVFINDER_VERSION), buildDate(), buildTime()), false);

// The command table: "app" here, the developer commands where they are built.
const tav::TestGuiContextAdder kApp(&FindApplication::tavFind, QStringLiteral("app"), QString(), false,
                                    {QString(), QStringLiteral("file=file,dir=folder,newWindow=true|false"), true});
const tav::TestGuiContextAdder kFind([](tav::KernelGUI& k) { return runFindCommand(k.commandLine()); }, QStringLiteral("find"),
                                     QString(), true, findCommandKeys());

}

void set_env_variables() {
    tav::setEnv(QStringLiteral("TAVFINDER_VERSION"), QString::fromLatin1(TAVFINDER_VERSION));
    tav::setEnv(QStringLiteral("BUILD_DATE"), buildDate());
    tav::setEnv(QStringLiteral("BUILD_TIME"), buildTime());
    // The working folder stays the caller's: relative paths on the command line,
    // started programs and file dialogs belong there. Resources are found by path.
    const QString exeDir = tav::get_exe_path(false);
#ifdef Q_OS_WIN
    tav::setEnv(QStringLiteral("OS"), QStringLiteral("WINDOWS"));
#else
    tav::setEnv(QStringLiteral("OS"), QStringLiteral("LINUX"));
#endif
    if (tav::getEnv(QStringLiteral("TAV_WINDOWS_DEVELOP")).isEmpty())
        tav::setEnv(QStringLiteral("QT_PLUGIN_PATH"), tav::fill("$/plugins", exeDir));
}

bool FindApplication::lang_initialiser(tav::KernelGUI& kernel) {
    tav::XTools::set_lang_path(QStringLiteral(":/tf/lang/lang.xml"));
    tav::XSearchMachines::set_resource_file(QStringLiteral(":/tf/search/search_machines.txt"));
    tav::TalvoEngine* engine = kernel.getNodeRoot();
    X_ASSERT_MSG(engine, "nEngine == NULL");
    tav::XNode::atomicWriteFullEmptyTags = true;
    // A console command prints no translated text: the catalogue is loaded when one is asked for.
    if (kernel.hasDisplay()) tav::XTools::lang_ini(true);
    if (engine) tav::XTools::set_lang(engine->get_lang());
    tav::Logger::setLogLevelSimple(1);
    return true;
}

int FindApplication::tavFind(tav::KernelGUI& kernel) {
    // Normal logging, and the program lives on in the tray when its last window closes.
    tav::Logger::setLogLevelSimple(3);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    // Lets the desktop match the windows to the menu entry and its icon.
    QGuiApplication::setDesktopFileName(QStringLiteral(TF_APP_ID));
    // The command line first, so a second start can hand its folder on.
    tav::CommandLine& cl = kernel.commandLine();
    if (!cl.checkKeys()) {
        log(tav::LOG_ERROR, "Keys !");
        return 1;
    }
    QString sFile, error;
    if (!start_path(cl, sFile, error)) {
        tav::Logger::printToCerr(error);
        return 2;
    }
    if (!sFile.isEmpty()) sFile = QFileInfo(sFile).absoluteFilePath();
    const bool newWindow = cl.getBool(QStringLiteral("newWindow"), false);
    tav::XRunGuard guard(QStringLiteral("tavFind"));
    if (!guard.run_instance_of_program()) {
        // The running instance opens a window at the path (or shows the windows it
        // has: they may be hidden or minimised).
        const QByteArray request = !sFile.isEmpty() || newWindow ? QByteArrayLiteral("open ") + sFile.toUtf8()
                                                                 : QByteArrayLiteral("show");
        const bool done = tav::XInstanceChannel::send(QStringLiteral("tavFind"), request);
        log(tav::LOG_NAVIGATION, "FindApplication::tavFind, running instance asked to '$': $", QString::fromUtf8(request), done);
        log(tav::LOG_ERROR, "ONE-INSTANCE-ONLY!");
        kernel.setSaveOnExit(false);
        return 0;
    }
    tav::XInstanceChannel channel(QStringLiteral("tavFind"));
    channel.eventRequest().add([](const QByteArray& request) { on_instance_request(request); });
    channel.listen();
    // The configuration read at start.
    tav::XNode* nApp = kernel.getCreateNodeApplication();
    tav::XNode* root = nApp ? nApp->root() : nullptr;
    // The first-run page: also after a damaged configuration (its language is gone with it); the
    // notice in the window then says what happened.
    if (damagedConfiguration()) log(tav::LOG_NAVIGATION, "FindApplication::tavFind, configuration damaged");
    first_run_message(root);
    // The settings record.
    cfg().fromNode(nApp->getCreateNode(QStringLiteral("Config")));
    // The folder to open (the command line was read before the run guard).
    log(tav::LOG_TRACE, "FindApplication::tavFind <<<$>>>", sFile);
    // Without one, the configured start folder.
    if (sFile.isEmpty() && cfg().flagUseStartFolder) sFile = cfg().sStartFolder;
    // Started programs are told there is no console to write to.
    tav::setEnv(QStringLiteral("NOCONSOLE"), QStringLiteral("X"));
    // The main window's node.
    tav::XNode* nWin = nApp->getCreateNode(QStringLiteral("GUI"))->getCreateNode(QStringLiteral("Window"));
    // Bookmarks and the custom applications (defaults when there is no store yet).
    Bookmarks::load(Bookmarks::get_tree());
    XAppManager::init_file();
    if (!XAppManager::load()) {
        log(tav::LOG_TRACE, "FindApplication::tavFind, XAppManager::load() == false");
        XAppManager::set_defaults();
        log(tav::LOG_TRACE, "FindApplication::tavFind, XAppManager::load() == false, after defaults");
    }
    // Output of started programs goes to the active main window.
    WinFinder::register_process_output_consumer();
    // The first window (the tray's watchdog ends the program when no window is left).
    auto* win = new WinFinder(true);
    win->init(&kernel, nWin);
    win->setupTray();
    win->setUp(sFile);
    // Most of the screen: the tree, the results table and the preview all need room.
    tav::XTools::centerOnScreenPart(win, 0.8, 800, 500);
    // The modifier keys that cycle the previews.
    kernel.replaceModifierListener(0, []() {
        if (!tav::XTools::is_modifier(cfg().HotkeyCyclePreviews)) return;
        QWidget* focus = QApplication::focusWidget();
        if (!focus) return;
        for (QWidget* w = focus; w; w = w->parentWidget()) {
            if (auto* wf = qobject_cast<WinFinder*>(w)) {
                wf->key_cycle_previews(focus);
                return;
            }
        }
    });
    kernel.addSaveListener([nApp]() {
        cfg().toNode(nApp->getCreateNode(QStringLiteral("Config")));
        Bookmarks::save(Bookmarks::get_tree());
    });
    // Log-out, shutdown and kill quit as Ctrl+Q does (no question), so nothing is lost;
    // a desktop session that ends saves first, in case it does not wait for us.
    tav::XQuitSignals::install([](int) { quit_the_app(); });
    QObject::connect(qApp, &QGuiApplication::commitDataRequest, qApp, [&kernel](QSessionManager&) {
        log(tav::LOG_NAVIGATION, "FindApplication, the desktop session ends: saving");
        for (QWidget* w : QApplication::topLevelWidgets())
            if (auto* wf = qobject_cast<WinFinder*>(w)) wf->save_state();
        kernel.save();
    }, Qt::DirectConnection);
    // Shown, with a notice when damaged files were moved aside.
    win->show();
    win->show_notice(WinFinder::damaged_files_notice());
    const int code = kernel.exec();
    WinTray::destroy();
    return code;
}

void FindApplication::on_instance_request(const QByteArray& request) {
    if (request.startsWith("open ")) {
        const QString path = QString::fromUtf8(request.mid(5));
        log(tav::LOG_NAVIGATION, "FindApplication, open request <<<$>>>", path);
        if (WinFinder* w = WinFinder::new_win(path)) {
            w->raise();
            w->activateWindow();
        }
        return;
    }
    if (request != "show") {
        log(tav::LOG_ERROR, "FindApplication, unknown request '$'", QString::fromUtf8(request.left(200)));
        return;
    }
    log(tav::LOG_NAVIGATION, "FindApplication, show request");
    bool any = false;
    for (QWidget* w : QApplication::topLevelWidgets()) any = any || qobject_cast<WinFinder*>(w);
    if (!any) WinFinder::new_win(QString());
    WindowBase::showAllWindows();
}

bool FindApplication::damagedConfiguration() {
    const QString config = tav::Kernel::nodeFilePath();
    for (const tav::MovedAside& m : tav::movedAside())
        if (m.path == config) return true;
    return false;
}

void FindApplication::quit_application() { WinFinder::quit_application(); }
void FindApplication::quit_the_app() { WinFinder::quit_the_app(); }

void FindApplication::first_run_message(tav::XNode* root) {
    if (!root || !root->isBool(QStringLiteral("flagSeeIniMessage"), true)) return;
    const auto [code, sLang] = DiaFirstMessage::show_first_message(nullptr);
    log(tav::LOG_TRACE, "$", DiaFirstMessage::result_text(code));
    log(tav::LOG_TRACE, "sLang:$", sLang);
    if (code != DiaFirstMessage::OK && code != DiaFirstMessage::OK_SAVE) return;
    tav::XTools::set_lang(sLang);
    if (code == DiaFirstMessage::OK_SAVE) {
        tav::XTools::set_lang(sLang);
        root->setString(QStringLiteral("lang"), sLang);
        root->setBool(QStringLiteral("flagSeeIniMessage"), false);
    }
}

void FindApplication::restart_later() {
    tav::run_in_gui_thread([]() {
        tav::Kernel::setRebootProgram(true);
        QCoreApplication::exit(0);
    }, 1000);
}

} // namespace tavFinder
