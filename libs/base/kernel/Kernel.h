#pragma once
// The kernel of a run: the chosen command and its command line, the
// application node tree (one XML file in the configuration folder, loaded at
// start and written at the end), the save event and the modifier-key events.
#include "base/core/XEventListener.h"
#include "base/kernel/CommandLine.h"
#include "base/node/XNode.h"

#include <QString>
#include <functional>
#include <memory>

namespace tav {

class TalvoEngine;

class Kernel {
public:
    using Callback = std::function<void()>;

    Kernel(const QString& engineName, const QString& commandName, const QStringList& args);
    virtual ~Kernel();
    Kernel(const Kernel&) = delete;
    Kernel& operator=(const Kernel&) = delete;

    // The kernel of this process (the last one constructed), or null.
    static Kernel* instance();

    const QString& engineName() const { return engineName_; }
    const QString& commandName() const { return commandName_; }
    CommandLine& commandLine() { return commandLine_; }

    // ---- node tree ---------------------------------------------------------------
    // The engine node: the root of the tree ("lang", "fontScale", "flagSeeIniMessage", ...).
    TalvoEngine* getNodeRoot();
    XNode* nodeRoot() { return root_.get(); }
    // The application node: child "Application" of the root ("Config", "GUI" below it).
    XNode* getCreateNodeApplication();
    // The XML file of the tree.
    static QString nodeFilePath();
    // Reads the tree; a file that does not parse is moved aside (NAME.bad) and the
    // tree starts empty. Returns false in that case.
    bool loadNodes();
    bool saveNodes();
    // Start with an empty tree whatever the file holds.
    static void set_generate_config_always(bool on = true);

    // ---- events ----------------------------------------------------------------------
    // Save event: fired by save() before the tree is written.
    XEventListener<Callback>& eventSave() { return eventSave_; }
    int addSaveListener(Callback f) { return eventSave_.add(std::move(f)); }
    // Fires the save event and writes the tree.
    void save();
    // A run that must leave the configuration alone (a refused second instance) switches this off.
    void setSaveOnExit(bool on) { saveOnExit_ = on; }
    bool isSaveOnExit() const { return saveOnExit_; }

    // Two modifier-key events: the first fires when a modifier key goes down, the
    // second when one goes up. 'replace' removes every earlier listener.
    XEventListener<Callback>& eventModifier(int which) { return which == 0 ? eventModPressed_ : eventModReleased_; }
    int addModifierListener(int which, Callback f) { return eventModifier(which).add(std::move(f)); }
    int replaceModifierListener(int which, Callback f) { return eventModifier(which).replace(std::move(f)); }
    bool removeModifierListener(int which, int id) { return eventModifier(which).remove(id); }

    // ---- restart -----------------------------------------------------------------------
    static void setRebootProgram(bool on);
    static bool isRebootProgram();
    // Bring the configuration to its initial state: the tree is dropped at the end
    // of the run instead of being written.
    void set_config_to_initial_state();
    bool isResetRequested() const { return resetRequested_; }

    static bool isDebug();
    static void setDebug(bool on);

private:
    QString engineName_;
    QString commandName_;
    CommandLine commandLine_;
    std::unique_ptr<XNode> root_;
    std::unique_ptr<TalvoEngine> engine_;
    XEventListener<Callback> eventSave_;
    XEventListener<Callback> eventModPressed_;
    XEventListener<Callback> eventModReleased_;
    bool resetRequested_ = false;
    bool saveOnExit_ = true;
};

// The engine node's settings kept by the framework.
class TalvoEngine {
public:
    explicit TalvoEngine(XNode* root) : root_(root) {}
    XNode* node() const { return root_; }
    QString get_lang() const;
    void set_lang(const QString& lang);
    int fontScale() const;                 // percent, 100 by default
    void setFontScale(int percent);
    bool isStyleDark() const;
    void setStyleDark(bool dark);

    // Static forms used where only the kernel is at hand; a missing engine node
    // is reported as "nEngine == NULL".
    static void set_lang(TalvoEngine* engine, const QString& lang);
    static void setFontScale(TalvoEngine* engine, int percent);
    static void set_config_to_initial_state();

private:
    XNode* root_;
};

// Library list shown by information pages.
class TavLibraries {
public:
    static void addLib(int id, const QString& name);
    static QStringList libs();
};
class XAdditionalLibInfos {
public:
    static bool addLibInfo(const QString& line, bool unique);
    static QStringList infos();
};

// Logs an allocation failure before the standard handling.
void signal_handler_memory_alarm();

} // namespace tav
