#include "base/util/Demangle.h"

#include <cstdlib>
#include <cxxabi.h>

namespace tav {

QString demangle(const char* mangled) {
    if (!mangled) return QString();
    int status = 0;
    char* out = abi::__cxa_demangle(mangled, nullptr, nullptr, &status);
    QString result = (status == 0 && out) ? QString::fromLatin1(out) : QString::fromLatin1(mangled);
    std::free(out);
    return result;
}

} // namespace tav
