#include "base/extract/XDocText.h"

#include <QRegularExpression>
#include <QSet>
#include <QXmlStreamReader>
#include <algorithm>

namespace tav {
namespace extract {

namespace {

// How one family writes its text.
struct XmlRules {
    QSet<QString> paragraphs;   // elements that end a paragraph
    QSet<QString> lineBreaks;   // elements that are a line end
    QSet<QString> tabs;
    QSet<QString> spaces;       // a space, repeated by the attribute "c"
    QSet<QString> textOnlyIn;   // when set: text counts only inside these
    QSet<QString> skipped;      // elements whose text never counts
    bool collapseBlanks = false;   // source formatting is not text (XHTML, ODF)
};

const XmlRules& rulesFor(DocKind kind) {
    static const XmlRules odf = [] {
        XmlRules r;
        r.paragraphs = {"p", "h"};
        r.lineBreaks = {"line-break"};
        r.tabs = {"tab"};
        r.spaces = {"s"};
        r.skipped = {"tracked-changes", "annotation"};
        r.collapseBlanks = true;
        return r;
    }();
    static const XmlRules ooxml = [] {
        XmlRules r;
        r.paragraphs = {"p", "si"};   // si: one shared string of a sheet
        r.lineBreaks = {"br", "cr"};
        r.tabs = {"tab"};
        r.textOnlyIn = {"t"};
        r.skipped = {"ppr", "rpr", "sectpr"};   // properties: tab stops are not tabs
        return r;
    }();
    static const XmlRules epub = [] {
        XmlRules r;
        r.paragraphs = {"p", "div", "h1", "h2", "h3", "h4", "h5", "h6", "li", "blockquote", "pre",
                        "tr", "dt", "dd", "section", "article", "table", "figcaption"};
        r.lineBreaks = {"br"};
        r.skipped = {"head", "script", "style"};
        r.collapseBlanks = true;
        return r;
    }();
    return kind == DocKind::OpenDocument ? odf : kind == DocKind::Epub ? epub : ooxml;
}

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

// Appends text; with collapsing, a run of blanks becomes one space and none starts a line.
void appendText(QByteArray& out, const QString& s, bool collapse) {
    if (!collapse) {
        out += s.toUtf8();
        return;
    }
    const QByteArray b = s.toUtf8();
    for (char c : b) {
        if (isBlank(c)) {
            if (!out.isEmpty() && !isBlank(out.back())) out += ' ';
        } else {
            out += c;
        }
    }
}

void trimLineEnd(QByteArray& out) {
    while (!out.isEmpty() && (out.back() == ' ' || out.back() == '\t')) out.chop(1);
}

void endParagraph(QByteArray& out) {
    trimLineEnd(out);
    if (out.isEmpty() || out.endsWith("\n\n")) return;
    out += out.endsWith('\n') ? "\n" : "\n\n";
}

int partNumber(const QString& name) {
    static const QRegularExpression digits(QStringLiteral("(\\d+)\\.xml$"));
    const QRegularExpressionMatch m = digits.match(name);
    return m.hasMatch() ? m.captured(1).toInt() : 0;
}

// Reading order: the body before its notes, slides and sheets by number.
int partRank(DocKind kind, const QString& name) {
    if (kind != DocKind::OfficeOpenXml) return 0;
    if (name == QLatin1String("word/document.xml") || name == QLatin1String("xl/sharedStrings.xml")) return 0;
    if (name.startsWith(QLatin1String("ppt/slides/")) || name.startsWith(QLatin1String("xl/worksheets/"))) return 1;
    return 2;
}

} // namespace

DocKind docKind(const QStringList& names) {
    const bool mimetype = names.contains(QStringLiteral("mimetype"));
    if (mimetype && names.contains(QStringLiteral("content.xml"))) return DocKind::OpenDocument;
    if (mimetype && names.contains(QStringLiteral("META-INF/container.xml"))) return DocKind::Epub;
    if (names.contains(QStringLiteral("[Content_Types].xml")) &&
        (names.contains(QStringLiteral("word/document.xml")) || names.contains(QStringLiteral("xl/workbook.xml")) ||
         names.contains(QStringLiteral("ppt/presentation.xml"))))
        return DocKind::OfficeOpenXml;
    return DocKind::None;
}

bool isTextPart(DocKind kind, const QString& name) {
    switch (kind) {
    case DocKind::OpenDocument:
        return name == QLatin1String("content.xml");
    case DocKind::Epub: {
        const QString n = name.toLower();
        return n.endsWith(QLatin1String(".xhtml")) || n.endsWith(QLatin1String(".html")) ||
               n.endsWith(QLatin1String(".htm"));
    }
    case DocKind::OfficeOpenXml: {
        static const QRegularExpression parts(QStringLiteral(
            "^(word/(document|footnotes|endnotes)\\.xml|xl/sharedStrings\\.xml|xl/worksheets/sheet\\d+\\.xml|"
            "ppt/slides/slide\\d+\\.xml)$"));
        return parts.match(name).hasMatch();
    }
    case DocKind::None:
        break;
    }
    return false;
}

QByteArray xmlText(DocKind kind, const QString& name, const QByteArray& xml, QString* error) {
    Q_UNUSED(name);
    const XmlRules& rules = rulesFor(kind);
    QByteArray out;
    out.reserve(xml.size() / 4);
    QXmlStreamReader r(xml);
    int skipDepth = 0;   // inside skipped elements
    int textDepth = 0;   // inside elements whose text counts
    const bool onlyIn = !rules.textOnlyIn.isEmpty();
    while (!r.atEnd()) {
        switch (r.readNext()) {
        case QXmlStreamReader::StartElement: {
            const QString n = r.name().toString().toLower();
            if (rules.skipped.contains(n)) ++skipDepth;
            if (onlyIn && rules.textOnlyIn.contains(n)) ++textDepth;
            if (skipDepth) break;
            if (rules.lineBreaks.contains(n)) {
                trimLineEnd(out);
                out += '\n';
            } else if (rules.tabs.contains(n)) {
                out += '\t';
            } else if (rules.spaces.contains(n)) {
                const int c = std::max(1, r.attributes().value(QLatin1String("text:c")).toInt());
                out += QByteArray(std::min(c, 1000), ' ');
            }
            break;
        }
        case QXmlStreamReader::EndElement: {
            const QString n = r.name().toString().toLower();
            if (!skipDepth && rules.paragraphs.contains(n)) endParagraph(out);
            if (rules.skipped.contains(n) && skipDepth) --skipDepth;
            if (onlyIn && rules.textOnlyIn.contains(n) && textDepth) --textDepth;
            break;
        }
        case QXmlStreamReader::Characters:
            if (!skipDepth && (!onlyIn || textDepth)) appendText(out, r.text().toString(), rules.collapseBlanks);
            break;
        default:
            break;
        }
    }
    if (r.hasError() && error) *error = r.errorString();
    endParagraph(out);
    return out;
}

QByteArray joinParts(DocKind kind, std::vector<std::pair<QString, QByteArray>>& parts) {
    std::stable_sort(parts.begin(), parts.end(), [kind](const auto& a, const auto& b) {
        const int ra = partRank(kind, a.first), rb = partRank(kind, b.first);
        if (ra != rb) return ra < rb;
        if (kind == DocKind::Epub) return false;   // the archive's order is the book's
        const QString da = a.first.left(a.first.lastIndexOf('/')), db = b.first.left(b.first.lastIndexOf('/'));
        if (da != db) return da < db;
        return partNumber(a.first) < partNumber(b.first);
    });
    QByteArray out;
    for (auto& p : parts) {
        if (p.second.isEmpty()) continue;
        out += p.second;
        endParagraph(out);
    }
    return out;
}

} // namespace extract
} // namespace tav
