#pragma once
// Text of office documents and e-books: zip files of XML parts. Which parts
// hold the text, their order, and the words inside them read with
// QXmlStreamReader: text nodes joined, a blank line where the document ends a
// paragraph (so a paragraph search sees the document's own paragraphs).
#include <QByteArray>
#include <QString>
#include <QStringList>
#include <utility>
#include <vector>

namespace tav {
namespace extract {

enum class DocKind { None, OpenDocument, OfficeOpenXml, Epub };

// What a zip holds, by its member names: a document or a plain archive.
DocKind docKind(const QStringList& names);
// Whether the member is one of the document's text parts.
bool isTextPart(DocKind kind, const QString& name);
// The words of one part; 'error' gets what stopped the reader (the text up to there is kept).
QByteArray xmlText(DocKind kind, const QString& name, const QByteArray& xml, QString* error);
// The parts' texts in reading order, one after the other.
QByteArray joinParts(DocKind kind, std::vector<std::pair<QString, QByteArray>>& parts);

} // namespace extract
} // namespace tav
