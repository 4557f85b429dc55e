#pragma once
// Qt's own warnings (from image plugins and the like) that carry a listed text
// are dropped; all others go on to the handler that was installed before.
#include <QString>

namespace tav {

// Adds a text; a Qt message containing it is not shown.
void addConsoleMessageFilter(const QString& text);
bool isConsoleMessageFiltered(const QString& message);
// Installs the filtering handler (once per process; later calls do nothing).
void installQtMessageHandler();

} // namespace tav
