#pragma once
// Finds the texts the sources pass to the translation call as literals:
// xt("..."), tav::xt("..."), xt(QStringLiteral("...")), adjacent literals
// joined, escapes resolved, comments skipped. Used to check that the language
// catalogue has an entry for every one of them.
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QString>
#include <QStringList>
#include <vector>

namespace tftest {

struct XtLiteral {
    QString text;
    QString file;   // relative to the scanned root
    int line = 0;
};

namespace detail {

inline bool isIdent(QChar c) { return c.isLetterOrNumber() || c == QLatin1Char('_'); }

inline int skipSpace(const QString& s, int i, int* line) {
    while (i < s.size()) {
        if (s[i] == QLatin1Char('\n')) ++*line;
        if (s[i].isSpace()) { ++i; continue; }
        if (s.midRef(i, 2) == QLatin1String("//")) {
            while (i < s.size() && s[i] != QLatin1Char('\n')) ++i;
            continue;
        }
        if (s.midRef(i, 2) == QLatin1String("/*")) {
            const int end = s.indexOf(QLatin1String("*/"), i + 2);
            const int stop = end < 0 ? s.size() : end + 2;
            for (int k = i; k < stop; ++k)
                if (s[k] == QLatin1Char('\n')) ++*line;
            i = stop;
            continue;
        }
        break;
    }
    return i;
}

// A string literal at 'i' (after the opening quote's position); returns the index
// after the closing quote, or -1.
inline int readLiteral(const QString& s, int i, QString* out) {
    if (i >= s.size() || s[i] != QLatin1Char('"')) return -1;
    for (++i; i < s.size(); ++i) {
        const QChar c = s[i];
        if (c == QLatin1Char('"')) return i + 1;
        if (c == QLatin1Char('\n')) return -1;
        if (c != QLatin1Char('\\')) {
            out->append(c);
            continue;
        }
        if (++i >= s.size()) return -1;
        switch (s[i].unicode()) {
        case 'n': out->append(QLatin1Char('\n')); break;
        case 't': out->append(QLatin1Char('\t')); break;
        case 'r': out->append(QLatin1Char('\r')); break;
        case 'u':
        case 'U': {
            // \uXXXX and \UXXXXXXXX name a code point
            const int digits = s[i] == QLatin1Char('u') ? 4 : 8;
            bool ok = false;
            const uint cp = s.mid(i + 1, digits).toUInt(&ok, 16);
            if (!ok) return -1;
            out->append(QString::fromUcs4(&cp, 1));
            i += digits;
            break;
        }
        case '0': out->append(QChar(0)); break;
        default: out->append(s[i]); break;   // \" \\ \'
        }
    }
    return -1;
}

// Skips the character literal or string at 'i' so their contents are not scanned.
inline int skipQuoted(const QString& s, int i) {
    const QChar q = s[i];
    for (++i; i < s.size() && s[i] != q && s[i] != QLatin1Char('\n'); ++i)
        if (s[i] == QLatin1Char('\\')) ++i;
    return i + 1;
}

} // namespace detail

// The literals of one source text.
inline std::vector<XtLiteral> xtLiteralsOfSource(const QString& src, const QString& file) {
    using namespace detail;
    std::vector<XtLiteral> out;
    int line = 1;
    int i = 0;
    while (i < src.size()) {
        const QChar c = src[i];
        if (c == QLatin1Char('\n')) { ++line; ++i; continue; }
        if (c == QLatin1Char('/') && (src.midRef(i, 2) == QLatin1String("//") || src.midRef(i, 2) == QLatin1String("/*"))) {
            i = skipSpace(src, i, &line);
            continue;
        }
        if (c == QLatin1Char('"') || c == QLatin1Char('\'')) { i = skipQuoted(src, i); continue; }
        const bool callXt = c == QLatin1Char('x') && src.midRef(i, 2) == QLatin1String("xt") &&
                            (i == 0 || !isIdent(src[i - 1])) && (i + 2 >= src.size() || !isIdent(src[i + 2]));
        if (!callXt) { ++i; continue; }
        const int at = line;
        int j = skipSpace(src, i + 2, &line);
        if (j >= src.size() || src[j] != QLatin1Char('(')) { i = j; continue; }
        j = skipSpace(src, j + 1, &line);
        for (const char* wrap : {"QStringLiteral", "QString::fromUtf8", "QLatin1String", "QString"}) {
            const QLatin1String w(wrap);
            if (src.midRef(j, w.size()) == w) {
                const int k = skipSpace(src, j + w.size(), &line);
                if (k < src.size() && src[k] == QLatin1Char('(')) j = skipSpace(src, k + 1, &line);
                break;
            }
        }
        QString text;
        bool any = false;
        while (j < src.size() && src[j] == QLatin1Char('"')) {
            const int next = readLiteral(src, j, &text);
            if (next < 0) break;
            any = true;
            j = skipSpace(src, next, &line);
        }
        if (any) out.push_back({text, file, at});
        i = j;
    }
    return out;
}

// Every literal under the given folders of 'root' (.cpp and .h files).
inline std::vector<XtLiteral> xtLiterals(const QString& root, const QStringList& folders) {
    std::vector<XtLiteral> out;
    const QDir base(root);
    for (const QString& folder : folders) {
        QDirIterator it(base.filePath(folder), {QStringLiteral("*.cpp"), QStringLiteral("*.h")}, QDir::Files,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            QFile f(it.next());
            if (!f.open(QIODevice::ReadOnly)) continue;
            for (XtLiteral& l : xtLiteralsOfSource(QString::fromUtf8(f.readAll()), base.relativeFilePath(f.fileName())))
                out.push_back(std::move(l));
        }
    }
    return out;
}

} // namespace tftest
