#pragma once
// Tools of the GUI framework: language catalogue and translation, themed
// icons, fonts, remembered modifier keys, windows, desktop services.
#include "base/node/XNode.h"

#include <QColor>
#include <QFileInfo>
#include <QFont>
#include <QIcon>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <functional>
#include <vector>

class QWidget;
class QComboBox;

namespace tav {

class AbstractWindow;

class XTools {
public:
    // ---- language ----------------------------------------------------------------
    // The catalogue resource used when the user has no "lang.xml" of their own.
    static void set_lang_path(const QString& resourcePath);
    static QString lang_path();
    // Loads the catalogue: the user's "lang.xml" in the configuration folder when
    // it exists and parses, else the resource.
    static bool lang_ini(bool reload);
    // Also loads Qt's own translations of the language (standard buttons, file dialogs).
    static void set_lang(const QString& lang);
    static QString lang();
    // Whether Qt's translations of the current language are installed (false for English).
    static bool qtTranslationsLoaded();
    // The live catalogue root ("GUI" with "Message" children).
    static XNode* nGUI();
    // Replaces the live catalogue's content by deep copies of the children of
    // 'catalogue', in their order; translations follow at once.
    static void set_catalogue_content(const XNode* catalogue);
    // Language names of the live catalogue / of a catalogue, in order of first appearance.
    static QStringList get_ar_lang();
    static QStringList get_ar_lang_from_node(XNode* catalogue);
    // Translation of an English text into the current language; the English text
    // when there is no entry. Line breaks and indentation do not matter for the match.
    static QString translate(const QString& english);
    // The text in a given language (a page that shows another language than the interface).
    static QString translateTo(const QString& english, const QString& language);
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

    // ---- icons and fonts ---------------------------------------------------------------
    // ":/tf/icons/" + ("dark/" in the dark style) + name; the light icon when the
    // dark variant is missing.
    static QString get_icon_path(const QString& name);
    static QIcon getIcon(const QString& name);
    // The platform's fixed-pitch font at a point size.
    static QFont getMonoFont(int pointSize);
    // 'font' at another point size (sizes below 4 become 4).
    static QFont get_font_resized(const QFont& font, int pointSize);
    // The icon the desktop shows for a file or folder.
    static QIcon get_file_icon_association(const QFileInfo& fi);

    // ---- windows ---------------------------------------------------------------------
    static void centerOnScreen(QWidget* w, int width, int height);
    // Centred, taking 'part' (0..1) of the screen's free area, never less than min.
    static void centerOnScreenPart(QWidget* w, double part, int minWidth, int minHeight);
    // Framework windows, oldest first. 'onlyTopLevel': windows without a parent
    // window only; 'includeHidden': hidden ones too.
    static std::vector<AbstractWindow*> getAbstractWindows(bool onlyTopLevel, bool includeHidden);
    static void closeAbstractWindow(AbstractWindow* w);

    // ---- widgets -----------------------------------------------------------------------
    // Background through the palette (and auto-fill), so style sheets of children stay.
    static void setBackgroundColor(QWidget* w, const QColor& c);
    // Draws attention to an editable combo box whose text was refused: its
    // background blinks red a few times and the text gets the focus.
    static void flash_combobox_editable(QComboBox* combo, int times = 3);
    // Tells the user why an input was refused: a tooltip at the field that stays
    // as its tooltip until cleared, and a short red flash.
    static void show_input_error(QWidget* field, const QString& message);
    static void clear_input_error(QWidget* field);
    // A drag of the file out of 'source' (to a file manager, a mail program...).
    // Returns false without a display or for a missing file.
    static bool drop_file(QWidget* source, const QFileInfo& fi);

    // ---- desktop -------------------------------------------------------------------------
    static bool open_file_with_default_program(const QFileInfo& fi);
    // Shows the item selected in the desktop's file manager; without one that
    // answers on the session bus, opens the folder (a folder itself, or the file's).
    static bool showFolderInFileManager(const QString& path);
};

class XClipboard {
public:
    static void setText(const QString& text);
    static QString text();
};

// Translation call used for every user-visible text.
QString xt(const QString& english);
inline QString xt(const char* english) { return xt(QString::fromUtf8(english)); }

} // namespace tav
