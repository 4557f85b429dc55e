#pragma once
// Text of a PDF, page by page, through poppler's C++ interface (in the module).
#include <QByteArray>
#include <QString>
#include <cstdint>
#include <functional>
#include <vector>

namespace tav {
namespace extract {

// Reads the file at 'path', or 'data' when given. Each page's text starts at the
// offset added to 'pageStarts' and ends with a blank line. False with 'error'
// when the document cannot be read at all (corrupt, password); a document cut
// at 'maxOutput' bytes or by 'keepGoing' keeps its text so far, with 'error' set
// only for the cut.
bool pdfText(const QString& path, const QByteArray* data, uint64_t maxOutput, const std::function<bool()>& keepGoing,
             QByteArray& text, std::vector<int64_t>& pageStarts, QString* error);

} // namespace extract
} // namespace tav
