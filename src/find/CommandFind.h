#pragma once
// The headless command "find": scans a folder, filters the files and searches
// their contents with the same engine as the main window, then prints the hits.
// It needs no display and no window library, so the program can run it
// without loading them (see main.cpp).
#include "base/kernel/CommandLine.h"
#include "base/kernel/CommandRegistry.h"

namespace tavFinder {

// Runs the command with the words after its name; exit code 0 something found,
// 1 nothing found, 2 bad input. After a search it ends the process itself.
int runFindCommand(tav::CommandLine& cl);

// The command's keys, for its registration (completion) and its own check.
tav::CommandKeys findCommandKeys();

} // namespace tavFinder
