#pragma once
// The GUI kernel: the base kernel plus the Qt application object, styles,
// font scale and the watch on modifier keys.
#include "base/kernel/Kernel.h"

#include <functional>

class QCoreApplication;
class QObject;

namespace tav {

class KernelGUI;

struct KernelGUIConfig {
    // Called while the kernel starts, before any command runs.
    static std::function<bool(KernelGUI&)> lang_ini;
};

class KernelGUI : public Kernel {
public:
    // 'withDisplay' false: a console command; only a core application exists.
    KernelGUI(const QString& engineName, const QString& commandName, const QStringList& args, bool withDisplay);
    ~KernelGUI() override;

    static KernelGUI& kernelGui();
    static KernelGUI* instanceGui();
    bool hasDisplay() const { return withDisplay_; }

    // Runs the event loop.
    int exec();

    // Styles; the choice is kept in the engine node and applied at start.
    static void setTavStyleNewDark();
    static void setTavStyleNewStandard();
    // The theme the next start uses (stored); the running windows keep theirs.
    static void setTavStyleAtNextStart(bool dark);
    static bool tavStyleAtNextStart();
    static bool isTavStyleDark();
    // Font scale in percent (100 = the platform's default size).
    static void setFontScale(int percent);
    static int fontScale();

    static void set_generate_config_always() { Kernel::set_generate_config_always(true); }

private:
    void applyStartSettings();
    bool withDisplay_;
    QObject* modifierWatch_ = nullptr;
};

} // namespace tav
