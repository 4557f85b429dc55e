#pragma once
// Named commands, registered at static initialisation. The runtime picks one
// by the first word of the command line.
#include <QString>
#include <functional>
#include <vector>

namespace tav {

class Kernel;

// The keys a command takes, as comma lists in CommandLine's form. A key may say
// what its value is after '=': "folder", "file", or choices split by '|'
// ("scope=File|Paragraph|Sentence"); completion offers them, the check ignores them.
struct CommandKeys {
    QString must;
    QString optional;
    // A command for users rather than a developer's try-out: completion offers
    // these first, the others only when none of these fits.
    bool forUsers = false;
};

struct CommandEntry {
    QString name;
    QString description;
    std::function<int(Kernel&)> run;
    bool needsDisplay = true;   // false: runs under a core application, no display needed
    bool placeholder = false;   // a command that is not built yet; a real one replaces it
    CommandKeys keys;           // declared on the command line before the command runs
};

class CommandRegistry {
public:
    static void add(CommandEntry entry);
    static const CommandEntry* find(const QString& name);
    static std::vector<CommandEntry> all();   // sorted by name
};

// Registers a placeholder that prints that the command is not available yet (exit 2).
void registerPendingCommand(const QString& name, const QString& description);

// Registers a command that needs only the base kernel.
class TestContextAdder {
public:
    TestContextAdder(std::function<int(Kernel&)> f, const QString& name, const QString& description, bool needsDisplay,
                     CommandKeys keys = {});
};

} // namespace tav
