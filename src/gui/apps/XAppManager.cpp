#include "src/gui/apps/XAppManager.h"

#include "base/io/XFileIO.h"
#include "base/log/Logger.h"
#include "base/tree/XTreeArray.h"
#include "base/tree/XTypeSupporter.h"

#include <QStandardPaths>
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
    log(tav::LOG_ERROR, "XAppManager::load <<<$>>> cannot be read, moved aside", fi);
    tav::moveAside(fi.absoluteFilePath());
    return false;
}

bool XAppManager::save() { return tree().save_as_compressed_file(fileInfo(), types()); }

tav::XTree XAppManager::defaults() {
    tav::XTree t;
    tav::XTreeArray& programs = t.setArray(QLatin1String(KEY_PROGRAMS), tav::XTreeArray(0, XType_App::appType()));
    // What every Linux desktop has: its own program for the file, and an editor in a terminal.
    auto desktop = std::make_unique<XApp>(XApp::Empty{});
    desktop->set_name(QStringLiteral("desktop"));
    desktop->set_path(QStringLiteral("xdg-open"));
    desktop->set_title(QStringLiteral("Desktop editor"));
    desktop->set_flag_terminal(false);
    desktop->set_arguments(QStringLiteral("$(G_PATH)"));
    desktop->set_tool_tip(QStringLiteral("The desktop's program for the file (xdg-open)"));
    programs.append(std::move(desktop));
    auto editor = std::make_unique<XApp>(XApp::Empty{});
    editor->set_name(QStringLiteral("terminalEditor"));
    editor->set_path(terminal_editor());
    editor->set_title(QStringLiteral("Terminal editor"));
    editor->set_flag_terminal(true);
    editor->set_arguments(QStringLiteral("$(G_PATH)"));
    editor->set_tool_tip(QStringLiteral("The file in a text editor in a terminal"));
    programs.append(std::move(editor));
    return t;
}

QString XAppManager::terminal_editor() {
    // $VISUAL / $EDITOR as the user chose, then the system's choice, then the usual ones.
    for (const char* var : {"VISUAL", "EDITOR"}) {
        const QString v = qEnvironmentVariable(var).trimmed();
        if (!v.isEmpty() && !v.contains(QLatin1Char(' ')) && !QStandardPaths::findExecutable(v).isEmpty()) return v;
    }
    for (const char* p : {"editor", "nano", "vim", "vi"})
        if (!QStandardPaths::findExecutable(QString::fromLatin1(p)).isEmpty()) return QString::fromLatin1(p);
    return QStringLiteral("vi");
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
        else log(tav::LOG_ERROR, "XAppManager::get_apps, an element is not an application");
    }
    return apps;
}

} // namespace tavFinder
