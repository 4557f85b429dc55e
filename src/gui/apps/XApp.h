#pragma once
// A custom application: a small value tree with fixed keys (title, program
// path, arguments, environment, working folder, icon, tool tip and flags).
// String getters take replace-environment: true passes the stored value
// through tav::replaceEnv ("$(G_PATH)" and friends), false gives it raw.
#include "base/tree/XTree.h"
#include "base/util/Format.h"

#include <QString>

namespace tavFinder {

// The program's one random source (random names of new records).
tav::MersenneTwister& mersenneTwister();

class XApp : public tav::XTree {
public:
    static constexpr const char* KEY_NAME = "name";
    static constexpr const char* KEY_TITLE = "title";
    static constexpr const char* KEY_PATH = "path";
    static constexpr const char* KEY_ARGUMENTS = "arguments";
    static constexpr const char* KEY_ENVIRO = "enviro";
    static constexpr const char* KEY_ICON_PATH = "iconPath";
    static constexpr const char* KEY_WORKING_DIR = "workingDir";
    static constexpr const char* KEY_TOOL_TIP = "toolTip";
    static constexpr const char* KEY_FLAG_ENABLED = "flagEnabled";
    static constexpr const char* KEY_FLAG_TERMINAL = "flagTerminal";
    static constexpr const char* KEY_FLAG_TERM_WIN_OPEN = "flagTermWinOpen";
    static constexpr const char* KEY_FLAG_SHOW_OUTPUT = "flagShowOutput";

    // A random 9-character name, empty strings and cleared flags ("flagEnabled" unset).
    XApp();
    // A record without any key (what a reader fills).
    struct Empty {};
    explicit XApp(Empty) {}
    // Deep copies through the binary form; a tree without keys gives a record without keys.
    explicit XApp(const tav::XTree& source);
    XApp(const XApp& other);
    XApp(XApp&& other) noexcept;
    ~XApp() override;
    XApp& operator=(const tav::XTree& source);
    XApp& operator=(const XApp& other);
    XApp& operator=(XApp&& other) noexcept;

    QString get_name(bool replaceEnv) const { return str(KEY_NAME, replaceEnv); }
    QString get_title(bool replaceEnv) const { return str(KEY_TITLE, replaceEnv); }
    QString get_path(bool replaceEnv) const { return str(KEY_PATH, replaceEnv); }
    QString get_arguments(bool replaceEnv) const { return str(KEY_ARGUMENTS, replaceEnv); }
    bool has_arguments() const { return !get_arguments(true).isEmpty(); }
    QString get_environment(bool replaceEnv) const { return str(KEY_ENVIRO, replaceEnv); }
    QString get_icon_path(bool replaceEnv) const { return str(KEY_ICON_PATH, replaceEnv); }
    QString get_working_dir(bool replaceEnv) const { return str(KEY_WORKING_DIR, replaceEnv); }
    QString get_tool_tip(bool replaceEnv) const { return str(KEY_TOOL_TIP, replaceEnv); }

    void set_name(const QString& v) { setString(QLatin1String(KEY_NAME), v); }
    void set_title(const QString& v) { setString(QLatin1String(KEY_TITLE), v); }
    void set_path(const QString& v) { setString(QLatin1String(KEY_PATH), v); }
    void set_arguments(const QString& v) { setString(QLatin1String(KEY_ARGUMENTS), v); }
    void set_environment(const QString& v) { setString(QLatin1String(KEY_ENVIRO), v); }
    void set_icon_path(const QString& v) { setString(QLatin1String(KEY_ICON_PATH), v); }
    void set_working_dir(const QString& v) { setString(QLatin1String(KEY_WORKING_DIR), v); }
    void set_tool_tip(const QString& v) { setString(QLatin1String(KEY_TOOL_TIP), v); }

    bool is_flag_enabled() const { return isFlag(QLatin1String(KEY_FLAG_ENABLED), true); }
    bool is_flag_terminal() const { return isFlag(QLatin1String(KEY_FLAG_TERMINAL), false); }
    bool is_flag_keep_term_open() const { return isFlag(QLatin1String(KEY_FLAG_TERM_WIN_OPEN), false); }
    bool is_flag_show_output() const { return isFlag(QLatin1String(KEY_FLAG_SHOW_OUTPUT), false); }
    void set_flag_enabled(bool v) { setBool(QLatin1String(KEY_FLAG_ENABLED), v); }
    void set_flag_terminal(bool v) { setBool(QLatin1String(KEY_FLAG_TERMINAL), v); }
    void set_flag_keep_term_open(bool v) { setBool(QLatin1String(KEY_FLAG_TERM_WIN_OPEN), v); }
    void set_flag_show_output(bool v) { setBool(QLatin1String(KEY_FLAG_SHOW_OUTPUT), v); }

    // The raw name equals 'name' exactly.
    bool is_name(const QString& name) const { return get_name(false) == name; }
    // The record in the log, one line per field, at 'level'.
    void show(unsigned level) const;

private:
    QString str(const char* key, bool replaceEnv) const;
    void copyFrom(const tav::XTree& source);
};

} // namespace tavFinder
