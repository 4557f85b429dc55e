#include "base/text/XTokenizer.h"

#include "base/log/Logger.h"

namespace tav {

const QString XDelimiter::sDelimAll = QString::fromUtf8(
    " \t\r\n\f\v.,;:!?\"'`()[]{}<>/\\|+-*=&%$#@^~"
    "\u00a0\u00ab\u00bb\u2018\u2019\u201a\u201c\u201d\u201e\u2013\u2014\u2026\u00b7\u2022\u00bf\u00a1");

bool XDelimiter::isDelimiter(QChar c, const QString& delims) { return delims.contains(c); }

XTokenizer::XTokenizer(const QString& text, const QString& delimiters, bool keepEmpty, bool keepDelimiters) {
    const QStringView v(text);
    int start = 0;
    const int n = v.size();
    for (int i = 0; i < n; ++i) {
        if (!delimiters.contains(v[i])) continue;
        if (i > start || keepEmpty) tokens_.push_back(v.mid(start, i - start));
        if (keepDelimiters) tokens_.push_back(v.mid(i, 1));
        start = i + 1;
    }
    if (n > start) tokens_.push_back(v.mid(start));
}

QStringList XTokenizer::toStringList() const {
    QStringList out;
    for (const QStringView& t : tokens_) out << t.toString();
    return out;
}

void XTokenizer::show(unsigned level) const {
    if (level == 0) level = 32;
    for (size_t i = 0; i < tokens_.size(); ++i) log(level, "[$] '$'", int(i), tokens_[i].toString());
}

QByteArray XLineInfo::get_UTF8_Bytes(QChar c) { return QString(c).toUtf8(); }

QString ArrayTools::qByteArray_to_hex_string(const QByteArray& bytes, int maxBytes, int group, int lower) {
    QString out;
    const int n = maxBytes > 0 ? qMin(maxBytes, bytes.size()) : bytes.size();
    for (int i = 0; i < n; ++i) {
        if (i > 0) out += (group > 0 && i % group == 0) ? QStringLiteral("  ") : QStringLiteral(" ");
        const QString h = QStringLiteral("%1").arg(uchar(bytes[i]), 2, 16, QLatin1Char('0'));
        out += lower ? h : h.toUpper();
    }
    if (n < bytes.size()) out += QStringLiteral(" ...");
    return out;
}

static QString categoryName(QChar::Category c) {
    switch (c) {
    case QChar::Letter_Uppercase: return QStringLiteral("Letter, uppercase");
    case QChar::Letter_Lowercase: return QStringLiteral("Letter, lowercase");
    case QChar::Letter_Titlecase: return QStringLiteral("Letter, titlecase");
    case QChar::Letter_Modifier: return QStringLiteral("Letter, modifier");
    case QChar::Letter_Other: return QStringLiteral("Letter");
    case QChar::Number_DecimalDigit: return QStringLiteral("Digit");
    case QChar::Number_Letter:
    case QChar::Number_Other: return QStringLiteral("Number");
    case QChar::Separator_Space: return QStringLiteral("Space");
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph: return QStringLiteral("Separator");
    case QChar::Other_Control: return QStringLiteral("Control");
    case QChar::Other_Format: return QStringLiteral("Format");
    case QChar::Other_Surrogate: return QStringLiteral("Surrogate");
    case QChar::Other_PrivateUse: return QStringLiteral("Private use");
    case QChar::Other_NotAssigned: return QStringLiteral("Not assigned");
    case QChar::Symbol_Math: return QStringLiteral("Symbol, math");
    case QChar::Symbol_Currency: return QStringLiteral("Symbol, currency");
    case QChar::Symbol_Modifier:
    case QChar::Symbol_Other: return QStringLiteral("Symbol");
    case QChar::Mark_NonSpacing:
    case QChar::Mark_SpacingCombining:
    case QChar::Mark_Enclosing: return QStringLiteral("Mark");
    default: return QStringLiteral("Punctuation");
    }
}

XUtf8_Info XUtf8_Info::decode(const QString& ch) {
    XUtf8_Info info;
    if (ch.isEmpty()) return info;
    const QVector<uint> ucs = ch.toUcs4();
    info.cp_ = ucs.isEmpty() ? 0 : ucs.first();
    const QByteArray utf8 = ch.toUtf8();
    const QString hex = QStringLiteral("%1").arg(info.cp_, 4, 16, QLatin1Char('0')).toUpper();
    info.text_ = QStringLiteral("U+%1  UTF-8: %2  %3")
                     .arg(hex, ArrayTools::qByteArray_to_hex_string(utf8, 8, 0, 0),
                          categoryName(QChar::category(info.cp_)));
    info.html_ = QStringLiteral("&#%1;").arg(info.cp_);
    return info;
}

} // namespace tav
