#pragma once
// Named commands, registered at static initialisation. The runtime picks one
// by the first word of the command line.
#include <QString>
#include <functional>
#include <vector>

namespace tav {

class Kernel;

struct CommandEntry {
    QString name;
    QString description;
    std::function<int(Kernel&)> run;
    bool needsDisplay = true;   // false: runs under a core application, no display needed
    bool placeholder = false;   // a command that is not built yet; a real one replaces it
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
    TestContextAdder(std::function<int(Kernel&)> f, const QString& name, const QString& description, bool needsDisplay);
};

} // namespace tav
