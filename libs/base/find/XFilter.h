#pragma once
// A whole search filter: the file filter, the content filter and the input
// widget (if any) whose content made the filter unusable.
#include "base/find/XContentFilter.h"
#include "base/find/XFileFilter.h"

#include <QObject>
#include <QString>

namespace tav {
namespace find {

class XFilter {
public:
    XFileFilter fileFilter;
    XContentFilter contentFilter;
    QObject* pErrorWidget = nullptr;   // null while the filter is usable
    QString sError;                    // what is wrong with that input, for the user

    // A compiled content filter is set (the search reads file contents).
    bool has_content_filter() const { return contentFilter.isValid(); }
    bool has_pattern(bool isNot) const { return fileFilter.hasPattern(isNot); }
    QString pattern(bool isNot) const { return fileFilter.pattern(isNot); }
    bool isUsable() const { return pErrorWidget == nullptr; }

    // Short form for a label, or every field for the log.
    QString toString(bool verbose) const;
};

} // namespace find
} // namespace tav
