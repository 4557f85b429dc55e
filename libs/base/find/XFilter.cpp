#include "base/find/XFilter.h"

#include "base/log/Logger.h"

namespace tav {
namespace find {

QString XFilter::toString(bool verbose) const {
    if (verbose) {
        return fill("XFilter{$, $, error:$}", fileFilter.toString(true), contentFilter.toString(true),
                    pErrorWidget != nullptr);
    }
    QString s = fileFilter.toString(false);
    if (has_content_filter()) {
        if (!s.isEmpty()) s += QStringLiteral(" | ");
        s += contentFilter.toString(false);
    }
    return s;
}

} // namespace find
} // namespace tav
