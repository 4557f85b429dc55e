// Developer commands: the configuration dialog, the first-run message and the
// language editor, each on its own.
#include "base/kernel/Kernel.h"
#include "base/log/Logger.h"
#include "base/node/XNode.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/kernel/XRuntime.h"
#include "gui/tools/XTools.h"
#include "src/gui/config/ConfigTavFinder.h"
#include "src/gui/config/DiaWinFinderConfig.h"
#include "src/gui/dia/DiaFirstMessage.h"
#include "src/gui/lang/WinLang.h"

#include <QDir>
#include <QGuiApplication>
#include <QScreen>

namespace tavFinder {
namespace {


using tav::log;

int diaConfig(tav::KernelGUI& kernel) {
    tav::Logger::setLogLevelSimple(5);
    cfg().fromNode(kernel.getCreateNodeApplication()->getCreateNode(QStringLiteral("Config")));
    DiaTavFinderConfig dia;
    dia.set_gui_from_cfg(cfg());
    dia.resize(600, 400);
    if (!dia.isExecOK(false)) {
        log(tav::LOG_TRACE, "dialog cancelled");
        return 0;
    }
    log(tav::LOG_TRACE, "$", dia.config().toString());
    return 0;
}

int diaShowFirstMessage(tav::KernelGUI&) {
    tav::Logger::setLogLevelSimple(5);
    const auto [code, sLang] = DiaFirstMessage::show_first_message(nullptr);
    log(tav::LOG_TRACE, "$", DiaFirstMessage::result_text(code));
    log(tav::LOG_TRACE, "sLang:$", sLang);
    return 0;
}

int winLang(tav::KernelGUI& kernel) {
    tav::Logger::setLogLevelSimple(5);
    tav::CommandLine& cl = kernel.commandLine();
    if (!cl.checkKeys()) {
        cl.showExample(QStringLiteral("--file /tmp/myLang.xml"));
        return 1;
    }
    // A catalogue given on the command line becomes the live one for this run.
    QString file = cl.getString(QStringLiteral("file"), QString());
    if (!file.isEmpty()) file = QFileInfo(file).absoluteFilePath();
    // A file that exists and is no catalogue is not edited (saving would replace it);
    // a new one is created by the first save.
    if (!file.isEmpty() && QFileInfo::exists(file)) {
        QString err;
        auto cat = tav::XNode::loadFromXml(file, &err);
        if (!cat || cat->type() != QLatin1String("GUI")) {
            if (cat) err = QStringLiteral("unexpected root <%1>").arg(cat->type());
            log(tav::LOG_ERROR, "winLang, <<<$>>> is no catalogue ($)", file, err);
            return 1;
        }
        tav::XTools::set_catalogue_content(cat.get());
    }
    tav::XNode* nLang = tav::XTools::nGUI();
    if (!X_ASSERT_MSG(nLang, "nLang == NULL")) return 1;
    QGuiApplication::setQuitOnLastWindowClosed(true);
    auto* win = new WinLang(nullptr);
    win->setDeleteOnClose(false);   // kept after closing
    win->set_lang_root(nLang);
    if (!file.isEmpty()) win->setSaveFile(file);
    // Right of a first screen where there is room; on a small one it stays visible.
    QRect geo(1970, 50, 800, 500);
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (screen && !screen->virtualGeometry().contains(geo.topLeft())) geo.moveLeft(50);
    win->setGeometry(geo);
    win->show();
    return kernel.exec();
}

const tav::TestGuiContextAdder kDiaConfig(&diaConfig, QStringLiteral("dia.config"), QString());
const tav::TestGuiContextAdder kDiaFirst(&diaShowFirstMessage, QStringLiteral("dia.showFirstMessage"), QString());
const tav::TestGuiContextAdder kWinLang(&winLang, QStringLiteral("winLang"), QString(), false,
                                         {QString(), QStringLiteral("file=file")});

} // namespace
} // namespace tavFinder
