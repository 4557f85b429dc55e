#pragma once

namespace tav {

// Called first thing in main. A search's workers now and then need tens of MiB
// for one file with a flood of hits; with the allocator's own growing limit
// such blocks came from the heap and stayed with the process after the file.
// Blocks of 1 MiB and more are mapped and given back when freed instead.
void tune_allocator();

} // namespace tav
