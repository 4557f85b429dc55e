#pragma once
// Readable C++ type names from run-time type information.
#include <QString>
#include <typeinfo>

namespace tav {

// "N9tavFinder4XAppE" -> "tavFinder::XApp"; the input as is when it cannot be demangled.
QString demangle(const char* mangled);

template <typename T>
QString typeName() { return demangle(typeid(T).name()); }

} // namespace tav
