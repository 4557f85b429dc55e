#include "src/gui/apps/XAppManager.h"

#include "base/io/XFileIO.h"
#include "base/log/Logger.h"
#include "base/tree/XTreeArray.h"
#include "base/tree/XTypeSupporter.h"
#include "gui/tools/XTools.h"
#include "src/FindApplication.h"
#include "src/gui/apps/XType_App.h"

namespace tavFinder {

using tav::log;

namespace {
QFileInfo& fileInfoRef() {
    static QFileInfo fi;
    return fi;
}
}

tav::XTree& XAppManager::tree() {
    static tav::XTree t;
    return t;
}

const QFileInfo& XAppManager::fileInfo() { return fileInfoRef(); }
const XType_App& XAppManager::types() { return XType_App::forStore(); }

void XAppManager::init_file() { fileInfoRef() = tav::XTools::get_absolute_config_file_path(QLatin1String(APPS_FILE)); }

bool XAppManager::load() {
    QFileInfo& fi = fileInfoRef();
    fi.refresh();
    if (!fi.exists()) return false;
    if (tree().load_from_compressed_file(fi, types())) return true;
    // The editor saves over it later: keep the user's file.
    log(4, "XAppManager::load <<<$>>> cannot be read, moved aside", fi);
    tav::moveAside(fi.absoluteFilePath());
    return false;
}

bool XAppManager::save() { return tree().save_as_compressed_file(fileInfo(), types()); }

tav::XTree XAppManager::defaults() {
    tav::XTree t;
    tav::XTreeArray& programs = t.setArray(QLatin1String(KEY_PROGRAMS), tav::XTreeArray(0, XType_App::appType()));
    auto app = std::make_unique<XApp>(XApp::Empty{});
    app->set_name(QStringLiteral("notepad"));
    app->set_path(QStringLiteral("notepad"));
    app->set_title(QStringLiteral("Classical notepad"));
    app->set_flag_terminal(false);
    app->set_arguments(QStringLiteral("$(G_PATH)"));
    app->set_tool_tip(QStringLiteral("Windows Standard Editor"));
    programs.append(std::move(app));
    return t;
}

void XAppManager::set_defaults() {
    tree() = defaults();
    tree().show(tav::XTypeSupporter::basicTypes(), 0, QString(), false, -1);
}

tav::XTree XAppManager::get_copy() { return tree().create_copy(types()); }

std::vector<XApp*> XAppManager::get_apps() {
    std::vector<XApp*> apps;
    const tav::XTreeArray* programs = tree().getArray(QLatin1String(KEY_PROGRAMS));
    if (!programs) return apps;
    for (const auto& e : programs->elements()) {
        if (auto* app = dynamic_cast<XApp*>(e.get())) apps.push_back(app);
        else log(4, "XAppManager::get_apps, an element is not an application");
    }
    return apps;
}

} // namespace tavFinder
