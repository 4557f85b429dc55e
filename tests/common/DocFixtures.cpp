#include "DocFixtures.h"

#include <archive.h>
#include <archive_entry.h>

namespace tftest {

namespace {

la_ssize_t appendTo(archive*, void* out, const void* buf, size_t n) {
    static_cast<QByteArray*>(out)->append(static_cast<const char*>(buf), int(n));
    return la_ssize_t(n);
}

void addFilter(archive* a, Squeeze s) {
    switch (s) {
    case Squeeze::Gzip: archive_write_add_filter_gzip(a); break;
    case Squeeze::Bzip2: archive_write_add_filter_bzip2(a); break;
    case Squeeze::Xz: archive_write_add_filter_xz(a); break;
    case Squeeze::Zstd: archive_write_add_filter_zstd(a); break;
    case Squeeze::None: break;
    }
}

QString xmlEscaped(const QString& s) { return s.toHtmlEscaped(); }

} // namespace

QByteArray makeArchive(Pack pack, Squeeze squeeze, const QList<Entry>& entries, const QByteArray& passphrase) {
    QByteArray out;
    archive* a = archive_write_new();
    switch (pack) {
    case Pack::Tar: archive_write_set_format_pax_restricted(a); break;
    case Pack::Zip: archive_write_set_format_zip(a); break;
    case Pack::SevenZip: archive_write_set_format_7zip(a); break;
    case Pack::Cpio: archive_write_set_format_cpio_newc(a); break;
    case Pack::Raw: archive_write_set_format_raw(a); break;
    }
    addFilter(a, squeeze);
    if (!passphrase.isEmpty()) {
        archive_write_set_options(a, "zip:encryption=zipcrypt");
        archive_write_set_passphrase(a, passphrase.constData());
    }
    // Small blocks: no padding to 10 KiB after a tar's end.
    archive_write_set_bytes_per_block(a, 512);
    archive_write_set_bytes_in_last_block(a, 1);
    archive_write_open(a, &out, nullptr, appendTo, nullptr);
    for (const Entry& e : entries) {
        archive_entry* ent = archive_entry_new();
        archive_entry_set_pathname_utf8(ent, e.name.toUtf8().constData());
        archive_entry_set_filetype(ent, AE_IFREG);
        archive_entry_set_perm(ent, 0644);
        archive_entry_set_size(ent, e.data.size());
        archive_write_header(a, ent);
        archive_write_data(a, e.data.constData(), size_t(e.data.size()));
        archive_entry_free(ent);
    }
    archive_write_close(a);
    archive_write_free(a);
    return out;
}

QByteArray compress(Squeeze squeeze, const QByteArray& data) { return makeArchive(Pack::Raw, squeeze, {{"data", data}}); }

QByteArray makeDocx(const QStringList& paragraphs) {
    QString body;
    // Words split over runs, as editors write them.
    for (const QString& p : paragraphs) {
        const int half = p.size() / 2;
        body += QStringLiteral("<w:p><w:pPr><w:tabs><w:tab w:val=\"left\" w:pos=\"720\"/></w:tabs></w:pPr>"
                               "<w:r><w:t xml:space=\"preserve\">%1</w:t></w:r><w:r><w:instrText>PAGE</w:instrText>"
                               "<w:t>%2</w:t></w:r></w:p>\n")
                    .arg(xmlEscaped(p.left(half)), xmlEscaped(p.mid(half)));
    }
    const QString doc = QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
                                       "<w:document xmlns:w=\"http://schemas.openxmlformats.org/wordprocessingml/2006/main\">"
                                       "<w:body>%1</w:body></w:document>")
                            .arg(body);
    return makeArchive(Pack::Zip, Squeeze::None,
                       {{"[Content_Types].xml", "<?xml version=\"1.0\"?><Types/>"},
                        {"_rels/.rels", "<?xml version=\"1.0\"?><Relationships/>"},
                        {"word/document.xml", doc.toUtf8()}});
}

QByteArray makeXlsx(const QStringList& cells) {
    QString si;
    for (const QString& c : cells) si += QStringLiteral("<si><t>%1</t></si>").arg(xmlEscaped(c));
    const QString shared = QStringLiteral("<?xml version=\"1.0\"?><sst xmlns=\"http://schemas.openxmlformats.org/"
                                          "spreadsheetml/2006/main\">%1</sst>").arg(si);
    const QByteArray sheet = "<?xml version=\"1.0\"?><worksheet xmlns=\"http://schemas.openxmlformats.org/"
                             "spreadsheetml/2006/main\"><sheetData><row r=\"1\"><c r=\"A1\" t=\"s\"><v>0</v></c>"
                             "<c r=\"B1\"><v>12345</v></c></row></sheetData></worksheet>";
    return makeArchive(Pack::Zip, Squeeze::None,
                       {{"[Content_Types].xml", "<?xml version=\"1.0\"?><Types/>"},
                        {"xl/workbook.xml", "<?xml version=\"1.0\"?><workbook/>"},
                        {"xl/worksheets/sheet1.xml", sheet},
                        {"xl/sharedStrings.xml", shared.toUtf8()}});
}

QByteArray makePptx(const QStringList& paragraphs) {
    QList<Entry> entries{{"[Content_Types].xml", "<?xml version=\"1.0\"?><Types/>"},
                         {"ppt/presentation.xml", "<?xml version=\"1.0\"?><presentation/>"}};
    // Slide 10 is stored before slide 2: the order is the slides' numbers.
    for (int i = paragraphs.size(); i >= 1; --i)
        entries << Entry{QStringLiteral("ppt/slides/slide%1.xml").arg(i == 2 && paragraphs.size() > 2 ? 10 : i),
                         QStringLiteral("<?xml version=\"1.0\"?><p:sld xmlns:p=\"p\" xmlns:a=\"a\"><a:p><a:r><a:t>%1"
                                        "</a:t></a:r></a:p></p:sld>")
                             .arg(xmlEscaped(paragraphs[i - 1]))
                             .toUtf8()};
    return makeArchive(Pack::Zip, Squeeze::None, entries);
}

QByteArray makeOdt(const QStringList& paragraphs) {
    QString body;
    for (const QString& p : paragraphs) {
        QString t = xmlEscaped(p);
        t.replace(QStringLiteral("  "), QStringLiteral(" <text:s/>"));
        body += QStringLiteral("<text:p text:style-name=\"P1\">\n  %1\n</text:p>").arg(t);
    }
    const QString content = QStringLiteral(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<office:document-content "
        "xmlns:office=\"urn:oasis:names:tc:opendocument:xmlns:office:1.0\" "
        "xmlns:text=\"urn:oasis:names:tc:opendocument:xmlns:text:1.0\"><office:body><office:text>%1"
        "</office:text></office:body></office:document-content>").arg(body);
    return makeArchive(Pack::Zip, Squeeze::None,
                       {{"mimetype", "application/vnd.oasis.opendocument.text"},
                        {"content.xml", content.toUtf8()},
                        {"styles.xml", "<?xml version=\"1.0\"?><styles>NOT_TEXT</styles>"}});
}

QByteArray makeEpub(const QStringList& paragraphs) {
    QString body;
    for (const QString& p : paragraphs) body += QStringLiteral("<p>%1</p>\n").arg(xmlEscaped(p));
    const QString chapter = QStringLiteral(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<html xmlns=\"http://www.w3.org/1999/xhtml\"><head>"
        "<title>HEADTITLE</title><style>p { color: red }</style></head><body>\n%1</body></html>").arg(body);
    return makeArchive(Pack::Zip, Squeeze::None,
                       {{"mimetype", "application/epub+zip"},
                        {"META-INF/container.xml", "<?xml version=\"1.0\"?><container/>"},
                        {"OEBPS/chapter1.xhtml", chapter.toUtf8()}});
}

QByteArray makePdf(const QStringList& pages) {
    const int n = pages.size();
    // Objects: 1 catalog, 2 page tree, 3 font, then a page and its contents per page.
    QList<QByteArray> objs;
    objs << "<< /Type /Catalog /Pages 2 0 R >>";
    QByteArray kids;
    for (int i = 0; i < n; ++i) kids += QByteArray::number(4 + 2 * i) + " 0 R ";
    objs << "<< /Type /Pages /Kids [" + kids + "] /Count " + QByteArray::number(n) + " >>";
    objs << "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>";
    for (int i = 0; i < n; ++i) {
        objs << "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] /Resources << /Font << /F1 3 0 R >> >> "
                "/Contents " + QByteArray::number(5 + 2 * i) + " 0 R >>";
        QByteArray text = pages[i].toLatin1();
        text.replace('\\', "\\\\").replace('(', "\\(").replace(')', "\\)");
        const QByteArray stream = "BT /F1 12 Tf 72 700 Td (" + text + ") Tj ET";
        objs << "<< /Length " + QByteArray::number(stream.size()) + " >>\nstream\n" + stream + "\nendstream";
    }
    QByteArray pdf = "%PDF-1.4\n";
    QList<int> offsets;
    for (int i = 0; i < objs.size(); ++i) {
        offsets << pdf.size();
        pdf += QByteArray::number(i + 1) + " 0 obj\n" + objs[i] + "\nendobj\n";
    }
    const int xref = pdf.size();
    pdf += "xref\n0 " + QByteArray::number(objs.size() + 1) + "\n0000000000 65535 f \n";
    for (int off : offsets) pdf += QByteArray::number(off).rightJustified(10, '0') + " 00000 n \n";
    pdf += "trailer\n<< /Size " + QByteArray::number(objs.size() + 1) + " /Root 1 0 R >>\nstartxref\n" +
           QByteArray::number(xref) + "\n%%EOF\n";
    return pdf;
}

} // namespace tftest
