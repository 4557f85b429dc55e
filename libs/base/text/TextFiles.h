#pragma once
// The framework's list of extensions that count as text files (ASCII / UTF-8):
// common text, markup, data and source-code formats. Lower case, no dot.
#include <QString>
#include <QStringList>

namespace tav {

const QStringList& default_text_file_extensions();
// The same list as one text, each extension followed by "," and the last "," removed.
QString default_text_file_extensions_as_string();

} // namespace tav
