#include "base/kernel/CommandRegistry.h"

#include "base/log/Logger.h"

#include <algorithm>
#include <map>

namespace tav {

namespace {
// Function-local so that registration from other translation units' static
// initialisers never meets an unconstructed map.
std::map<QString, CommandEntry>& table() {
    static std::map<QString, CommandEntry> t;
    return t;
}
}

void CommandRegistry::add(CommandEntry entry) {
    auto& t = table();
    auto it = t.find(entry.name);
    if (it != t.end()) {
        if (entry.placeholder) return;   // the real command is there already
        if (!it->second.placeholder)
            Logger::printToCerr(QStringLiteral("command '%1' registered twice").arg(entry.name));
    }
    const QString name = entry.name;
    t[name] = std::move(entry);
}

const CommandEntry* CommandRegistry::find(const QString& name) {
    auto& t = table();
    auto it = t.find(name);
    return it == t.end() ? nullptr : &it->second;
}

std::vector<CommandEntry> CommandRegistry::all() {
    std::vector<CommandEntry> out;
    for (auto& [k, v] : table()) out.push_back(v);
    return out;
}

void registerPendingCommand(const QString& name, const QString& description) {
    CommandEntry e;
    e.name = name;
    e.description = description;
    e.needsDisplay = false;
    e.placeholder = true;
    e.run = [name](Kernel&) {
        Logger::printToCerr(QStringLiteral("command '%1' is not available yet").arg(name));
        return 2;
    };
    CommandRegistry::add(std::move(e));
}

TestContextAdder::TestContextAdder(std::function<int(Kernel&)> f, const QString& name, const QString& description,
                                   bool needsDisplay, CommandKeys keys) {
    CommandRegistry::add({name, description, std::move(f), needsDisplay, false, std::move(keys)});
}

} // namespace tav
