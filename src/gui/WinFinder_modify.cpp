// Renaming and deleting from the main window.
#include "base/log/Logger.h"
#include "src/gui/WinFinder.h"

namespace tavFinder {

void WinFinder::on_rename() { tav::log(32, "WinFinder::on_rename"); }

} // namespace tavFinder
