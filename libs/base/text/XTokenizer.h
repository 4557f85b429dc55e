#pragma once
// Splitting text at delimiter characters, and small character helpers used by
// the statistics and the character information line.
#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <vector>

namespace tav {

struct XDelimiter {
    // Blanks, line ends and the usual ASCII and typographic punctuation.
    static const QString sDelimAll;
    static bool isDelimiter(QChar c, const QString& delims);
};

// Tokens of a text between delimiter characters. The text must outlive the
// tokenizer (tokens are views into it).
class XTokenizer {
public:
    // keepEmpty: empty tokens between adjacent delimiters are kept.
    // keepDelimiters: each delimiter character is returned as a token of its own.
    XTokenizer(const QString& text, const QString& delimiters, bool keepEmpty = false, bool keepDelimiters = false);

    const std::vector<QStringView>& tokens() const { return tokens_; }
    std::vector<QStringView>::const_iterator begin() const { return tokens_.begin(); }
    std::vector<QStringView>::const_iterator end() const { return tokens_.end(); }
    int size() const { return int(tokens_.size()); }
    QStringList toStringList() const;
    // Writes the tokens to the log (diagnostics).
    void show(unsigned level) const;

private:
    std::vector<QStringView> tokens_;
};
using Tokenizer = XTokenizer;

// Description of one character for the information line.
class XUtf8_Info {
public:
    static XUtf8_Info decode(const QString& ch);
    // "U+00E4  UTF-8: C3 A4  Letter, lowercase"
    QString text() const { return text_; }
    // The character as an HTML reference, "&#228;".
    QString toHTML() const { return html_; }
    uint codePoint() const { return cp_; }

private:
    QString text_;
    QString html_;
    uint cp_ = 0;
};

struct XLineInfo {
    static QByteArray get_UTF8_Bytes(QChar c);
};

struct ArrayTools {
    // Hex bytes separated by blanks ("C3 A4"), at most maxBytes, a blank group
    // separator every 'group' bytes (0: none); 'upper' != 0 for upper-case digits.
    static QString qByteArray_to_hex_string(const QByteArray& bytes, int maxBytes, int group, int lower);
};

} // namespace tav
