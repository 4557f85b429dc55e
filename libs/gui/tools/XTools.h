#pragma once
// Tools of the GUI framework: language catalogue and translation, themed
// icons, fonts, remembered modifier keys, windows, desktop services.
#include "base/node/XNode.h"

#include <QFileInfo>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <functional>

class QWidget;

namespace tav {

class XTools {
public:
    // ---- language ----------------------------------------------------------------
    // The catalogue resource used when the user has no "lang.xml" of their own.
    static void set_lang_path(const QString& resourcePath);
    static QString lang_path();
    // Loads the catalogue: the user's "lang.xml" in the configuration folder when
    // it exists and parses, else the resource.
    static bool lang_ini(bool reload);
    static void set_lang(const QString& lang);
    static QString lang();
    // The live catalogue root ("GUI" with "Message" children).
    static XNode* nGUI();
    // Language names of the live catalogue / of a catalogue, in order of first appearance.
    static QStringList get_ar_lang();
    static QStringList get_ar_lang_from_node(XNode* catalogue);
    // Translation of an English text into the current language; the English text
    // when there is no entry. Line breaks and indentation do not matter for the match.
    static QString translate(const QString& english);
    // The form of a text used to match catalogue keys.
    static QString normalizeKey(const QString& text);

    // ---- modifiers ----------------------------------------------------------------
    // Qt keyboard-modifier bits of the last input event (or as set).
    static void set_modifier(uint32_t bits);
    static uint32_t get_modifier();
    // The held modifiers are exactly 'bits' (Ctrl, Shift, Alt, Meta); 0 never matches.
    static bool is_modifier(uint32_t bits);
    static bool is_modifier_control();
    static bool is_modifier_shift();

    // ---- misc ----------------------------------------------------------------------
    static bool isDebug();
    static void setDebug(bool on);
    static bool isTavStyleDark();
    static void run_in_gui_thread(std::function<void()> f, int delayMs = 0);

    // ---- folders ---------------------------------------------------------------------
    static QDir get_absolute_config_dir();
    static QFileInfo get_absolute_config_file_path(const QString& name);
    static QDir get_create_cache_dir();
    static bool empty_out_cache_dir();

    // ---- windows ---------------------------------------------------------------------
    static void centerOnScreen(QWidget* w, int width, int height);
};

// Translation call used for every user-visible text.
QString xt(const QString& english);
inline QString xt(const char* english) { return xt(QString::fromUtf8(english)); }

} // namespace tav
