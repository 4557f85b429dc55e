#include "src/gui/apps/XApp.h"

#include "base/env/Env.h"
#include "base/kernel/Kernel.h"
#include "base/log/Logger.h"
#include "base/tree/XMem.h"
#include "gui/tools/XTools.h"
#include "src/gui/apps/XType_App.h"

#include <QBuffer>

namespace tavFinder {

using tav::log;

tav::MersenneTwister& mersenneTwister() {
    static tav::MersenneTwister mt(false, 65536);
    return mt;
}

XApp::XApp() {
    set_name(mersenneTwister().randString(9));
    set_title(QString());
    set_path(QString());
    set_arguments(QString());
    set_environment(QString());
    set_icon_path(QString());
    set_working_dir(QString());
    set_tool_tip(QString());
    set_flag_terminal(false);
    set_flag_keep_term_open(false);
    set_flag_show_output(false);
}

XApp::XApp(const tav::XTree& source) : tav::XTree() { copyFrom(source); }
XApp::XApp(const XApp& other) : tav::XTree() { copyFrom(other); }
XApp::XApp(XApp&& other) noexcept : tav::XTree() { swap(other); }

XApp::~XApp() {
    if (tav::XTools::isDebug()) log(tav::LOG_VERBOSE, "XApp::~XApp");
}

XApp& XApp::operator=(const tav::XTree& source) {
    if (&source != this) copyFrom(source);
    return *this;
}

XApp& XApp::operator=(const XApp& other) {
    if (&other != this) copyFrom(other);
    return *this;
}

XApp& XApp::operator=(XApp&& other) noexcept {
    if (tav::Kernel::isDebug()) log(tav::LOG_VERBOSE, "XApp::operator=, MOVE");
    if (&other != this) swap(other);
    return *this;
}

void XApp::copyFrom(const tav::XTree& source) {
    const tav::XMem mem = source.createMem(XType_App::forCopy());
    QByteArray bytes = mem.bytes();
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadWrite);
    if (!mem.isOK() || !readFromDevice(buffer, XType_App::forCopy())) {
        log(tav::LOG_ERROR, "XApp::copyFrom, the tree cannot be copied");
        clear();
    }
}

QString XApp::str(const char* key, bool replaceEnv) const {
    const QString v = getString(QLatin1String(key));
    return replaceEnv ? tav::replaceEnv(v) : v;
}

void XApp::show(unsigned level) const {
    log(level, "XApp@$", get_name(false));
    log(level, "title:'$'", get_title(true));
    log(level, "path:'$'", get_path(true));
    log(level, "icon_path:'$'", get_icon_path(true));
    log(level, "is_flag_terminal:'$'", is_flag_terminal());
    log(level, "is_flag_keep_term_open:'$'", is_flag_keep_term_open());
    log(level, "is_flag_show_output:'$'", is_flag_show_output());
    log(level, "environment:'$'", get_environment(true));
    log(level, "arguments:'$'", get_arguments(true));
    log(level, "working_dir:'$'", get_working_dir(true));
    log(level, "toolTip:'$'", get_tool_tip(true));
}

} // namespace tavFinder
