#pragma once
// What kind of file a name or a file's first bytes suggest: the extension in the
// form every extension table uses, and the framework's text-file test.
#include <QFileInfo>
#include <QString>

namespace tav {

// The part of a file name after its last dot; 'withoutDot' true gives "cpp",
// false ".cpp". Case is kept. A leading dot does not start an extension
// (".bashrc" has none), nor does a trailing one ("a."). Directories in the
// name are ignored.
QString getFileExtension(const QString& fileName, bool withoutDot);

// Bytes the text-file test looks at.
constexpr int kTextSniffBytes = 64 * 1024;

// True for a readable regular file whose first bytes look like text: no NUL
// byte and few control characters. An empty file is text. UTF-8 or a legacy
// 8-bit encoding both count; UTF-16 (NUL bytes) does not.
bool is_text_file(const QFileInfo& fi);
// The same test on bytes already read.
bool looks_like_text(const char* data, qint64 size);

} // namespace tav
