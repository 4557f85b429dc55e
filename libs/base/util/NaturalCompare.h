#pragma once
// Name order as people read it: case is ignored and runs of digits compare by
// their value, so "file2" comes before "File10".
#include <QString>

namespace tav {

// <0, 0 or >0. Equal names apart from case or leading zeros fall back to a plain
// comparison, so the order is total and stable.
int naturalCompare(const QString& a, const QString& b);
inline bool naturalLess(const QString& a, const QString& b) { return naturalCompare(a, b) < 0; }

} // namespace tav
