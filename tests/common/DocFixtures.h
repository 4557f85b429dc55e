#pragma once
// Containers made from text for the tests: archives and compressed streams
// through libarchive's writer, office documents and e-books as zips of small
// XML parts, PDFs written object by object.
#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace tftest {

struct Entry {
    QString name;
    QByteArray data;
};

enum class Pack { Tar, Zip, SevenZip, Cpio, Raw };
enum class Squeeze { None, Gzip, Bzip2, Xz, Zstd };

// 'passphrase' encrypts zip members (traditional zip encryption).
QByteArray makeArchive(Pack pack, Squeeze squeeze, const QList<Entry>& entries, const QByteArray& passphrase = {});
// One stream, no archive inside.
QByteArray compress(Squeeze squeeze, const QByteArray& data);

// Documents whose paragraphs (or, for a PDF, pages) are the given texts.
QByteArray makeDocx(const QStringList& paragraphs);
QByteArray makeXlsx(const QStringList& cells);
QByteArray makePptx(const QStringList& paragraphs);
QByteArray makeOdt(const QStringList& paragraphs);
QByteArray makeEpub(const QStringList& paragraphs);
QByteArray makePdf(const QStringList& pages);

} // namespace tftest
